// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/support/streams.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "tools/lumora/support/failure.h"
#include "tools/lumora/support/places.h"

namespace lumora::tools {
namespace {

constexpr mode_t kNewFileMode = 0666;  // less the umask
constexpr int kMostTries = 1000;       // of names for a file on its way

std::string Reason() {
  return std::strerror(errno);
}

bool IsDeviceOrPipe(const std::string& place) {
  struct stat status = {};
  return stat(place.c_str(), &status) == 0 && !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode);
}

std::string EntryOf(int fd) {
  return "/proc/self/fd/" + std::to_string(fd);
}

mode_t ModeOfNewFiles() {
  const mode_t mask = umask(0);
  umask(mask);
  return kNewFileMode & ~mask;
}

}  // namespace

ReadStop::ReadStop() : fd_(eventfd(0, EFD_CLOEXEC)) {
  if (fd_ < 0) throw Failure(ExitCode::Failed, "cannot wait for input: " + Reason());
}

ReadStop::~ReadStop() {
  close(fd_);
}

void ReadStop::Set() {
  eventfd_write(fd_, 1);
}

void ReadStop::WaitFor(int fd) const {
  pollfd both[] = {{fd, POLLIN, 0}, {fd_, POLLIN, 0}};
  while (poll(both, 2, -1) < 0 && errno == EINTR) {
  }
  if (both[1].revents != 0) throw Failure(ExitCode::Unreadable, "reading was ended");
}

InputStream::InputStream(const std::string& path, const ReadStop* stop)
    : name_(path == kStandardStream ? "standard input" : path),
      fd_(path == kStandardStream ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_CLOEXEC)),
      stop_(stop) {
  if (fd_ < 0) throw Failure(ExitCode::Unreadable, "cannot read " + name_ + ": " + Reason());
}

InputStream::~InputStream() {
  if (fd_ > STDERR_FILENO) close(fd_);
}

size_t InputStream::Read(uint8_t* bytes, size_t count) {
  size_t done = 0;
  while (done < count) {
    if (stop_ != nullptr) stop_->WaitFor(fd_);
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

/// Where the bytes go. A new file has no name until it is finished, where the system can do that;
/// elsewhere it has a hidden one beside its place.
class OutputStream::Target {
 public:
  explicit Target(const std::string& path)
      : path_(path == kStandardStream ? "standard output" : path) {
    if (path == kStandardStream) {
      fd_ = STDOUT_FILENO;
      return;
    }
    const std::filesystem::path place = PlaceOf(path);
    if (IsDeviceOrPipe(place)) {
      fd_ = open(place.c_str(), O_WRONLY | O_CLOEXEC);
      if (fd_ < 0) throw Error(Reason());
      return;
    }
    name_ = place.filename();
    const std::string folder = place.has_parent_path() ? place.parent_path().string() : ".";
    folder_ = open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    if (folder_ < 0) throw Error(Reason());
    try {
      OpenBeside();
    } catch (...) {
      close(folder_);
      throw;
    }
  }

  ~Target() {
    if (fd_ > STDERR_FILENO) close(fd_);
    if (!beside_.empty()) unlinkat(folder_, beside_.c_str(), 0);
    if (folder_ >= 0) close(folder_);
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
    const bool replaces = folder_ >= 0;
    if (replaces) {
      if (fchmod(fd_, Mode()) != 0) throw Error(Reason());
      if (beside_.empty()) GiveName();
    }
    const int fd = fd_;
    fd_ = -1;
    // Some systems only now report that the content did not get through.
    if (close(fd) != 0) throw Error(Reason());
    if (!replaces) return;
    if (renameat(folder_, beside_.c_str(), folder_, name_.c_str()) != 0) throw Error(Reason());
    beside_.clear();
  }

 private:
  Failure Error(const std::string& reason) const {
    return {ExitCode::Failed, "cannot write " + path_ + ": " + reason};
  }

  void OpenBeside() {
    struct stat existing = {};
    const bool exists = fstatat(folder_, name_.c_str(), &existing, 0) == 0;
    if (name_.empty() || (exists && S_ISDIR(existing.st_mode))) throw Error("it is a folder");
    if (!exists && errno != ENOENT) throw Error(Reason());  // a name that is too long, for one
    if (exists && faccessat(folder_, name_.c_str(), W_OK, 0) != 0) throw Error(Reason());
    fd_ = openat(folder_, ".", O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
    if (fd_ >= 0 && access(EntryOf(fd_).c_str(), F_OK) == 0) return;
    if (fd_ >= 0) close(fd_);  // it could not be given a name
    beside_ = FreeName([this](const char* name) {
      fd_ = openat(folder_, name, O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0600);
      return fd_ >= 0;
    });
  }

  /// A name for a file without one, for the moment before it is renamed.
  void GiveName() {
    beside_ = FreeName([this](const char* name) {
      return linkat(AT_FDCWD, EntryOf(fd_).c_str(), folder_, name, AT_SYMLINK_FOLLOW) == 0;
    });
  }

  /// The first name that `take` could use. It is short whatever the file's own name is, so it is
  /// allowed wherever that one is; names of processes that were killed may be in the way.
  template <typename Take>
  std::string FreeName(const Take& take) {
    for (int number = 0; number < kMostTries; ++number) {
      std::string name = ".lumora-" + std::to_string(getpid()) + "-" + std::to_string(number);
      if (take(name.c_str())) return name;
      if (errno != EEXIST) break;
    }
    throw Error(Reason());
  }

  mode_t Mode() const {
    struct stat existing = {};
    const bool exists = fstatat(folder_, name_.c_str(), &existing, 0) == 0;
    return exists ? existing.st_mode & 07777 : ModeOfNewFiles();
  }

  std::string path_;    // for messages
  std::string name_;    // of the file, in its folder
  int folder_ = -1;     // where a new file takes the place; else bytes go to fd_ directly
  std::string beside_;  // the name of the new file while it is not in its place
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
  const std::string place = PlaceOf(path);
  if (!IsDeviceOrPipe(place)) {
    OutputStream probe(path);
  } else if (access(place.c_str(), W_OK) != 0) {
    throw Failure(ExitCode::Failed, "cannot write " + path + ": " + Reason());
  }
}

}  // namespace lumora::tools
