// SPDX-License-Identifier: Apache-2.0
#include "lumora/platform/linux/cache_levels.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <ctime>

#include "lumora/platform/descriptor.h"
#include "lumora/platform/driver_digest.h"
#include "lumora/platform/edition.h"
#include "lumora/platform/gl_api.h"

namespace lumora::platform {
namespace {

constexpr char kPrefix[] = "programs-";
constexpr size_t kDigits = 16;
constexpr time_t kDay = 24 * 3600;
constexpr time_t kMonth = 30 * kDay;

/// A directory that is held open.
class OpenFolder {
 public:
  OpenFolder(int parent, const char* name)
      : folder_(::openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC)) {
    if (folder_.IsOpen() && ::fstat(folder_.Get(), &status_) != 0) status_.st_mode = 0;
  }

  int Get() const { return folder_.Get(); }
  time_t Changed() const { return status_.st_mtime; }
  /// Whether it is there and the effective user alone decides what is in it.
  bool IsOwn() const {
    return folder_.IsOpen() && S_ISDIR(status_.st_mode) && status_.st_uid == ::geteuid() &&
           IsOnlyOurs(status_);
  }

 private:
  Descriptor folder_;
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
  const OpenFolder level(levels.Get(), name);
  if (!level.IsOwn() || level.Changed() > std::time(nullptr) - kMonth) return;
  bool all_ours = true;
  ForEachEntry(level.Get(), [&](const char* file) {
    const bool self = std::strcmp(file, ".") == 0 || std::strcmp(file, "..") == 0;
    all_ours = all_ours && (self || IsOfThisCache(file));
  });
  if (!all_ours) return;
  ForEachEntry(level.Get(), [&](const char* file) {
    if (IsOfThisCache(file)) ::unlinkat(level.Get(), file, 0);
  });
  ::unlinkat(levels.Get(), name, AT_REMOVEDIR);
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
    const OpenFolder level(levels.Get(), current.text);
    const bool stale = level.IsOwn() && level.Changed() < std::time(nullptr) - kDay;
    if (stale) ::futimens(level.Get(), nullptr);
  }
  ForEachEntry(levels.Get(), [&](const char* name) {
    const bool other = std::strcmp(name, current.text) != 0;
    if (other && IsLevel(name)) RemoveIfForgotten(levels, name);
  });
}

}  // namespace lumora::platform
