// SPDX-License-Identifier: Apache-2.0
// Open files and directories that close themselves, and who may have written them.
#ifndef LUMORA_PLATFORM_DESCRIPTOR_H_
#define LUMORA_PLATFORM_DESCRIPTOR_H_

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace lumora::platform {

/// An open file descriptor, or none.
class Descriptor {
 public:
  explicit Descriptor(int fd = -1) : fd_(fd) {}
  ~Descriptor() {
    if (IsOpen()) ::close(fd_);
  }
  Descriptor(Descriptor&& other) noexcept : fd_(other.Release()) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  bool IsOpen() const { return fd_ >= 0; }
  int Get() const { return fd_; }

  /// Takes a descriptor over; it must hold none yet.
  void Take(int fd) { fd_ = fd; }

  /// Leaves the descriptor to the caller.
  int Release() {
    const int fd = fd_;
    fd_ = -1;
    return fd;
  }

  /// Closes now. False when the last bytes could not be written.
  bool Close() { return ::close(Release()) == 0; }

 private:
  int fd_;
};

/// Whether nobody but the effective user and root can have written what `status` tells of.
inline bool IsOnlyOurs(const struct stat& status) {
  const bool owned = status.st_uid == ::geteuid() || status.st_uid == 0;
  return owned && (status.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

/// Calls action(name) for each entry of a directory, "." and ".." among them. Nothing happens where
/// it cannot be read. The descriptor may be one that only names the directory (O_PATH).
template <typename Action>
void ForEachEntry(int directory, Action action) {
  Descriptor again(::openat(directory, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  DIR* const entries = again.IsOpen() ? ::fdopendir(again.Get()) : nullptr;
  if (entries == nullptr) return;
  again.Release();
  while (const dirent* const entry = ::readdir(entries)) {
    action(static_cast<const char*>(entry->d_name));
  }
  ::closedir(entries);
}

}  // namespace lumora::platform

#endif  // LUMORA_PLATFORM_DESCRIPTOR_H_
