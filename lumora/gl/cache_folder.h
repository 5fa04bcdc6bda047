// The directory of a cache file, held open so that nobody can put another in its place.
#ifndef LUMORA_GL_CACHE_FOLDER_H_
#define LUMORA_GL_CACHE_FOLDER_H_

#include <sys/stat.h>
#include <unistd.h>

namespace lumora {

/// An open file descriptor that closes itself.
class Descriptor {
 public:
  explicit Descriptor(int fd = -1) : fd_(fd) {}
  ~Descriptor() {
    if (fd_ >= 0) ::close(fd_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  bool valid() const { return fd_ >= 0; }
  int get() const { return fd_; }

  /// Takes a descriptor over; it must hold none yet.
  void take(int fd) { fd_ = fd; }

  /// Closes now; false when the last bytes could not be written.
  bool close() {
    const int fd = fd_;
    fd_ = -1;
    return ::close(fd) == 0;
  }

 private:
  int fd_;
};

/// Whether nobody but the effective user and root can have written what `status` tells of.
bool OnlyOurs(const struct stat& status);

/// Splits a path into the name behind its last slash and the directory before, which is opened.
class CacheFolder {
 public:
  explicit CacheFolder(const char* path);
  CacheFolder(const CacheFolder&) = delete;
  CacheFolder& operator=(const CacheFolder&) = delete;

  /// Whether the directory is there and only ours to write, and the path names a file in it.
  bool usable() const { return usable_; }
  int fd() const { return directory_.get(); }
  /// The path of the directory: empty for the current one, else with a slash at its end.
  const char* path() const { return text_; }
  /// The file's name; lives as long as the path that was given.
  const char* name() const { return name_; }

 private:
  static constexpr unsigned kMaxPath = 4096;  // the kernel takes no longer one

  char text_[kMaxPath];
  const char* name_;
  Descriptor directory_;  // of text_
  bool usable_;
};

}  // namespace lumora

#endif  // LUMORA_GL_CACHE_FOLDER_H_
