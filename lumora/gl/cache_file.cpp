#include "lumora/gl/cache_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
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
  std::string temporary = std::string(path) + ".XXXXXX";
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
