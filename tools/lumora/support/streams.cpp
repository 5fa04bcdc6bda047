#include "tools/lumora/support/streams.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "tools/lumora/support/failure.h"

namespace lumora::tools {
namespace {

namespace fs = std::filesystem;

constexpr mode_t kNewFileMode = 0666;  // less the umask

std::string Reason() {
  return std::strerror(errno);
}

/// The file that a path means once links are followed.
fs::path Resolved(const std::string& path) {
  std::error_code ignored;
  const fs::path target = fs::weakly_canonical(path, ignored);
  return target.empty() ? fs::path(path) : target;
}

bool IsDeviceOrPipe(const fs::path& target) {
  std::error_code ignored;
  const fs::file_status status = fs::status(target, ignored);
  return fs::exists(status) && !fs::is_regular_file(status) && !fs::is_directory(status);
}

mode_t ModeFor(const fs::path& target) {
  struct stat existing = {};
  if (stat(target.c_str(), &existing) == 0) return existing.st_mode & 07777;
  const mode_t mask = umask(0);
  umask(mask);
  return kNewFileMode & ~mask;
}

}  // namespace

InputStream::InputStream(const std::string& path)
    : name_(path == kStandardStream ? "standard input" : path),
      fd_(path == kStandardStream ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
  if (fd_ < 0) throw Failure(ExitCode::Unreadable, "cannot read " + name_ + ": " + Reason());
}

InputStream::~InputStream() {
  if (fd_ > STDERR_FILENO) close(fd_);
}

size_t InputStream::Read(uint8_t* bytes, size_t count) {
  size_t done = 0;
  while (done < count) {
    const ssize_t got = read(fd_, bytes + done, count - done);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) throw Failure(ExitCode::Unreadable, "cannot read " + name_ + ": " + Reason());
    if (got == 0) break;
    done += static_cast<size_t>(got);
  }
  return done;
}

std::optional<uint64_t> InputStream::Length() const {
  struct stat status = {};
  if (fstat(fd_, &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
  return static_cast<uint64_t>(status.st_size);
}

/// Where the bytes go. A new file has no name until it is finished, where the file system can do
/// that; elsewhere it has one beside its place.
class OutputStream::Target {
 public:
  explicit Target(const std::string& path)
      : name_(path == kStandardStream ? "standard output" : path) {
    if (path == kStandardStream) {
      fd_ = STDOUT_FILENO;
      return;
    }
    place_ = Resolved(path);
    if (IsDeviceOrPipe(place_)) {
      fd_ = open(place_.c_str(), O_WRONLY | O_CLOEXEC);
      if (fd_ < 0) throw Error(Reason());
      return;
    }
    replaces_ = true;
    OpenBeside();
  }

  ~Target() {
    if (fd_ > STDERR_FILENO) close(fd_);
    if (!beside_.empty()) unlink(beside_.c_str());
  }

  Target(const Target&) = delete;
  Target& operator=(const Target&) = delete;

  void Write(const uint8_t* bytes, size_t count) {
    size_t done = 0;
    while (done < count) {
      const ssize_t written = write(fd_, bytes + done, count - done);
      if (written < 0 && errno == EINTR) continue;
      if (written <= 0) throw Error(Reason());
      done += static_cast<size_t>(written);
    }
  }

  void Finish() {
    if (fd_ == STDOUT_FILENO) return;
    if (replaces_) {
      if (fchmod(fd_, ModeFor(place_)) != 0) throw Error(Reason());
      if (beside_.empty()) GiveName();
    }
    const int fd = fd_;
    fd_ = -1;
    // Some systems only now report that the content did not get through.
    if (close(fd) != 0) throw Error(Reason());
    if (!replaces_) return;
    if (rename(beside_.c_str(), place_.c_str()) != 0) throw Error(Reason());
    beside_.clear();
  }

 private:
  Failure Error(const std::string& reason) const {
    return {ExitCode::Failed, "cannot write " + name_ + ": " + reason};
  }

  void OpenBeside() {
    if (fs::is_directory(place_)) throw Error("it is a folder");
    if (fs::exists(place_) && access(place_.c_str(), W_OK) != 0) throw Error(Reason());
    const fs::path folder = place_.has_parent_path() ? place_.parent_path() : fs::path(".");
    fd_ = open(folder.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
    if (fd_ >= 0) return;
    std::string name = place_.string() + ".lumora-XXXXXX";
    fd_ = mkstemp(name.data());
    if (fd_ < 0) throw Error(Reason());
    beside_ = name;
  }

  /// A name for a file without one, for the moment before it is renamed.
  void GiveName() {
    const std::string itself = "/proc/self/fd/" + std::to_string(fd_);
    const std::string name = place_.string() + ".lumora-" + std::to_string(getpid());
    unlink(name.c_str());  // of an earlier process that was killed within that moment
    if (linkat(AT_FDCWD, itself.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) != 0) {
      throw Error(Reason());
    }
    beside_ = name;
  }

  std::string name_;
  fs::path place_;
  std::string beside_;     // the name of the new file while it is not in its place
  bool replaces_ = false;  // a new file takes the place; else bytes go there directly
  int fd_ = -1;
};

OutputStream::OutputStream(const std::string& path) : target_(std::make_unique<Target>(path)) {}

OutputStream::~OutputStream() = default;

void OutputStream::Write(const uint8_t* bytes, size_t count) {
  target_->Write(bytes, count);
}

void OutputStream::Finish() {
  target_->Finish();
}

void CheckWritable(const std::string& path) {
  if (path == kStandardStream) return;
  // Opening a pipe would already tell its reader that something comes.
  const fs::path place = Resolved(path);
  if (!IsDeviceOrPipe(place)) {
    OutputStream probe(path);
  } else if (access(place.c_str(), W_OK) != 0) {
    throw Failure(ExitCode::Failed, "cannot write " + path + ": " + Reason());
  }
}

}  // namespace lumora::tools
