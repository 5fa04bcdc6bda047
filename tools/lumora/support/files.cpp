#include "tools/lumora/support/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>

#include "tools/lumora/support/failure.h"

namespace lumora::tools {
namespace {

namespace fs = std::filesystem;

constexpr size_t kLargestInput = size_t{1} << 30;  // bytes
constexpr mode_t kNewFileMode = 0666;              // less the umask

class Descriptor {
 public:
  explicit Descriptor(int fd) : fd_(fd) {}
  ~Descriptor() {
    if (fd_ > STDERR_FILENO) close(fd_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  int get() const { return fd_; }
  /// Closes now; false when the system only then reports that the content did not get through.
  bool Close() {
    const int fd = fd_;
    fd_ = -1;
    return close(fd) == 0;
  }

 private:
  int fd_;
};

std::string Reason() {
  return std::strerror(errno);
}

Failure CannotWrite(const std::string& path, const std::string& reason) {
  return {ExitCode::Failed, "cannot write " + path + ": " + reason};
}

bool WriteAll(int fd, const Bytes& content) {
  size_t done = 0;
  while (done < content.size()) {
    const ssize_t written = write(fd, content.data() + done, content.size() - done);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    done += static_cast<size_t>(written);
  }
  return true;
}

/// The file that a path means once links are followed.
fs::path Target(const std::string& path) {
  std::error_code ignored;
  const fs::path target = fs::weakly_canonical(path, ignored);
  return target.empty() ? fs::path(path) : target;
}

bool IsDeviceOrPipe(const fs::path& target) {
  std::error_code ignored;
  const fs::file_status status = fs::status(target, ignored);
  return fs::exists(status) && !fs::is_regular_file(status) && !fs::is_directory(status);
}

/// A new file beside the target that disappears again unless it is renamed into place.
class FileBeside {
 public:
  FileBeside(const std::string& path, const fs::path& target)
      : path_(path), target_(target), name_(target.string() + ".lumora-XXXXXX") {
    if (fs::is_directory(target)) throw CannotWrite(path, "it is a folder");
    if (fs::exists(target) && access(target.c_str(), W_OK) != 0) throw CannotWrite(path, Reason());
    fd_ = mkstemp(name_.data());
    if (fd_ < 0) throw CannotWrite(path, Reason());
  }
  ~FileBeside() {
    if (fd_ >= 0) close(fd_);
    if (!renamed_) unlink(name_.c_str());
  }
  FileBeside(const FileBeside&) = delete;
  FileBeside& operator=(const FileBeside&) = delete;

  void Become(const Bytes& content) {
    struct stat existing = {};
    const mode_t mask = umask(0);
    umask(mask);
    const bool replaces = stat(target_.c_str(), &existing) == 0;
    const mode_t mode = replaces ? existing.st_mode & 07777 : kNewFileMode & ~mask;
    if (!WriteAll(fd_, content) || fchmod(fd_, mode) != 0) throw CannotWrite(path_, Reason());
    const int fd = fd_;
    fd_ = -1;
    if (close(fd) != 0 || rename(name_.c_str(), target_.c_str()) != 0) {
      throw CannotWrite(path_, Reason());
    }
    renamed_ = true;
  }

 private:
  std::string path_;
  fs::path target_;
  std::string name_;
  int fd_ = -1;
  bool renamed_ = false;
};

}  // namespace

Bytes ReadWhole(const std::string& path) {
  const bool standard = path == kStandardStream;
  const std::string name = standard ? "standard input" : path;
  const auto failure = [&name](const std::string& reason) {
    return Failure(ExitCode::Unreadable, "cannot read " + name + ": " + reason);
  };
  const Descriptor file(standard ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (file.get() < 0) throw failure(Reason());
  Bytes content;
  for (size_t filled = 0;;) {
    content.resize(std::max(content.size(), filled + (size_t{1} << 20)));
    const ssize_t got = read(file.get(), content.data() + filled, content.size() - filled);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) throw failure(Reason());
    filled += static_cast<size_t>(got);
    if (filled > kLargestInput) throw failure("it is larger than 1 GiB");
    if (got == 0) {
      content.resize(filled);
      break;
    }
    if (filled == content.size()) content.resize(2 * filled);
  }
  if (content.empty()) throw failure("it is empty");
  return content;
}

void CheckWritable(const std::string& path) {
  if (path == kStandardStream) return;
  const fs::path target = Target(path);
  if (!IsDeviceOrPipe(target)) {
    FileBeside probe(path, target);
  } else if (access(target.c_str(), W_OK) != 0) {
    throw CannotWrite(path, Reason());
  }
}

void WriteWhole(const std::string& path, const Bytes& content) {
  if (path == kStandardStream) {
    if (!WriteAll(STDOUT_FILENO, content)) throw CannotWrite("standard output", Reason());
    return;
  }
  const fs::path target = Target(path);
  if (!IsDeviceOrPipe(target)) {
    FileBeside(path, target).Become(content);
    return;
  }
  Descriptor device(open(target.c_str(), O_WRONLY | O_CLOEXEC));
  if (device.get() < 0 || !WriteAll(device.get(), content) || !device.Close()) {
    throw CannotWrite(path, Reason());
  }
}

}  // namespace lumora::tools
