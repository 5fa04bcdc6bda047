#include "lumora/gl/cache_file.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <new>
#include <string>

namespace lumora {
namespace {

/// An open file descriptor that closes itself.
class Descriptor {
 public:
  explicit Descriptor(int fd) : fd_(fd) {}
  ~Descriptor() {
    if (fd_ >= 0) ::close(fd_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  bool valid() const { return fd_ >= 0; }
  int get() const { return fd_; }

  /// Closes now; false when the last bytes could not be written.
  bool close() {
    const int fd = fd_;
    fd_ = -1;
    return ::close(fd) == 0;
  }

 private:
  int fd_;
};

size_t ReadUpTo(int fd, unsigned char* data, size_t size) {
  size_t done = 0;
  while (done < size) {
    const ssize_t count = ::read(fd, data + done, size - done);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) break;
    done += static_cast<size_t>(count);
  }
  return done;
}

bool WriteAll(int fd, const void* bytes, size_t size) {
  const auto* data = static_cast<const unsigned char*>(bytes);
  while (size > 0) {
    const ssize_t count = ::write(fd, data, size);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    data += count;
    size -= static_cast<size_t>(count);
  }
  return true;
}

/// Names of files that are still being written: hidden, after the file whose place they take, with
/// six characters that make them unique.
struct TemporaryName {
  explicit TemporaryName(const char* path) {
    const std::string whole = path;
    const size_t slash = whole.rfind('/');
    directory = slash == std::string::npos ? "" : whole.substr(0, slash + 1);
    stem = "." + whole.substr(directory.size()) + ".";
  }

  std::string pattern() const { return directory + stem + kUnique; }
  bool fits(const char* name) const {
    return std::strlen(name) == stem.size() + std::strlen(kUnique) &&
           std::strncmp(name, stem.c_str(), stem.size()) == 0;
  }

  static constexpr char kUnique[] = "XXXXXX";
  std::string directory;  ///< empty or with its slash
  std::string stem;
};

/// Removes what a process left that was killed while it wrote. Nobody takes an hour to write a
/// file.
void RemoveScraps(const TemporaryName& temporary) {
  constexpr time_t kScrapAge = 3600;
  DIR* const directory = ::opendir(temporary.directory.empty() ? "." : temporary.directory.c_str());
  if (directory == nullptr) return;
  while (const dirent* const entry = ::readdir(directory)) {
    if (!temporary.fits(entry->d_name)) continue;
    const std::string path = temporary.directory + entry->d_name;
    struct stat status = {};
    if (::lstat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) continue;
    if (status.st_mtime < std::time(nullptr) - kScrapAge) ::unlink(path.c_str());
  }
  ::closedir(directory);
}

}  // namespace

ReadResult ReadCacheFile(const char* path, size_t min_size, FileBytes* bytes) {
  // Without blocking: a named pipe under this name must not stop the start of a camera.
  const Descriptor file(::open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  struct stat status = {};
  if (!file.valid() || ::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) {
    return ReadResult::CannotOpen;
  }
  const auto size = static_cast<size_t>(status.st_size);
  if (size < min_size || size > kMaxCacheFileSize) return ReadResult::BadLength;
  bytes->data.reset(new (std::nothrow) unsigned char[size]);
  if (bytes->data == nullptr) return ReadResult::BadLength;
  bytes->size = ReadUpTo(file.get(), bytes->data.get(), size);
  return bytes->size < min_size ? ReadResult::BadLength : ReadResult::Ok;
}

WriteResult WriteCacheFile(const char* path, const void* head, size_t head_size, const void* body,
                           size_t body_size) {
  const TemporaryName name(path);
  RemoveScraps(name);
  std::string temporary = name.pattern();
  Descriptor file(::mkostemp(temporary.data(), O_CLOEXEC));
  if (!file.valid()) return WriteResult::CannotOpen;
  const bool written =
      WriteAll(file.get(), head, head_size) && WriteAll(file.get(), body, body_size);
  const bool whole = file.close() && written;
  if (whole && ::rename(temporary.c_str(), path) == 0) return WriteResult::Ok;
  ::unlink(temporary.c_str());
  return whole ? WriteResult::CannotOpen : WriteResult::CannotWrite;
}

}  // namespace lumora
