#include "lumora/platform/linux/cache_levels.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <ctime>

#include "lumora/platform/driver_digest.h"
#include "lumora/platform/edition.h"
#include "lumora/platform/gl_api.h"

namespace lumora::platform {
namespace {

constexpr char kPrefix[] = "programs-";
constexpr size_t kDigits = 16;
constexpr time_t kDay = 24 * 3600;
constexpr time_t kMonth = 30 * kDay;

/// An open directory that closes itself.
class OpenFolder {
 public:
  OpenFolder(int parent, const char* name)
      : fd_(::openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC)) {
    if (fd_ >= 0 && ::fstat(fd_, &status_) != 0) status_.st_mode = 0;
  }
  ~OpenFolder() {
    if (fd_ >= 0) ::close(fd_);
  }
  OpenFolder(const OpenFolder&) = delete;
  OpenFolder& operator=(const OpenFolder&) = delete;

  int fd() const { return fd_; }
  time_t changed() const { return status_.st_mtime; }
  /// Whether it is there and the effective user alone decides what is in it.
  bool IsOwn() const {
    return fd_ >= 0 && S_ISDIR(status_.st_mode) && status_.st_uid == ::geteuid() &&
           (status_.st_mode & (S_IWGRP | S_IWOTH)) == 0;
  }

  /// Calls `action` with the name of each entry.
  template <typename Action>
  void ForEach(Action action) const {
    const int again = ::openat(fd_, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    DIR* const entries = again >= 0 ? ::fdopendir(again) : nullptr;
    if (entries == nullptr) {
      if (again >= 0) ::close(again);
      return;
    }
    while (const dirent* const entry = ::readdir(entries)) action(entry->d_name);
    ::closedir(entries);
  }

 private:
  int fd_;
  struct stat status_ = {};
};

bool BeginsWith(const char* text, const char* start) {
  return std::strncmp(text, start, std::strlen(start)) == 0;
}

bool IsLevel(const char* name) {
  if (!BeginsWith(name, kPrefix)) return false;
  const char* const version = name + std::strlen(kPrefix);
  const size_t length = std::strspn(version, "0123456789.");
  const char* const digits = version + length + 1;
  return length > 0 && version[length] == '-' &&
         std::strspn(digits, "0123456789abcdef") == kDigits && digits[kDigits] == '\0';
}

/// Programs, their seals, and both while they are written.
bool IsOfThisCache(const char* name) {
  return (BeginsWith(name, "prog_") || BeginsWith(name, ".prog_")) &&
         std::strstr(name, ".bin") != nullptr;
}

void RemoveIfForgotten(const OpenFolder& levels, const char* name) {
  const OpenFolder level(levels.fd(), name);
  if (!level.IsOwn() || level.changed() > std::time(nullptr) - kMonth) return;
  bool all_ours = true;
  level.ForEach([&](const char* file) {
    const bool self = std::strcmp(file, ".") == 0 || std::strcmp(file, "..") == 0;
    all_ours = all_ours && (self || IsOfThisCache(file));
  });
  if (!all_ours) return;
  level.ForEach([&](const char* file) {
    if (IsOfThisCache(file)) ::unlinkat(level.fd(), file, 0);
  });
  ::unlinkat(levels.fd(), name, AT_REMOVEDIR);
}

/// Whether this process asks for the level for the first time since it asked for another.
bool IsNews(const LevelName& level) {
  static std::atomic<uint64_t> last{0};
  ByteDigest digest;
  digest.AddText(level.text);
  return last.exchange(digest.Value()) != digest.Value();
}

}  // namespace

LevelName CurrentLevel() {
  LevelName name = {};
  if (eglGetCurrentContext() == EGL_NO_CONTEXT) return name;
  ByteDigest digest;
  digest.AddText(kShaderTextsDigest);
  AddLibraryAndDriver(&digest);
  std::snprintf(name.text, sizeof(name.text), "%s%s-%016" PRIx64, kPrefix, kLibraryVersion,
                digest.Value());
  return name;
}

void KeepLevels(const char* directory, const LevelName& current) {
  if (current.text[0] == '\0' || !IsNews(current)) return;
  const OpenFolder levels(AT_FDCWD, directory);
  if (!levels.IsOwn()) return;
  {
    // A day's grace spares the disk a write at every start.
    const OpenFolder level(levels.fd(), current.text);
    const bool stale = level.IsOwn() && level.changed() < std::time(nullptr) - kDay;
    if (stale) ::futimens(level.fd(), nullptr);
  }
  levels.ForEach([&](const char* name) {
    const bool other = std::strcmp(name, current.text) != 0;
    if (other && IsLevel(name)) RemoveIfForgotten(levels, name);
  });
}

}  // namespace lumora::platform
