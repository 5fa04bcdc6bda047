// SPDX-License-Identifier: Apache-2.0
#include "lumora/platform/settings.h"

#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string_view>
#include <utility>

#include "lumora/platform/immortal.h"
#include "lumora/platform/out_of_memory.h"
#include "lumora/platform/paths.h"

namespace lumora::platform {
namespace {

// A directory that the application or an environment variable chooses.
class DirectorySetting {
 public:
  explicit DirectorySetting(const char* variable) : variable_(variable) {}

  void Set(std::string directory) {
    const std::lock_guard<std::mutex> guard(mutex_);
    directory_ = std::move(directory);
  }

  // What `use` makes of it, without trailing slashes; empty when nobody chose.
  template <typename Use>
  auto Read(Use use) {
    const std::lock_guard<std::mutex> guard(mutex_);
    std::string_view directory = directory_;
    if (directory.empty()) {
      if (const char* value = std::getenv(variable_)) directory = value;
    }
    while (directory.size() > 1 && directory.back() == '/') directory.remove_suffix(1);
    return use(directory);
  }
  std::string Get() {
    return Read([](std::string_view directory) { return std::string(directory); });
  }

 private:
  const char* const variable_;
  std::mutex mutex_;
  std::string directory_;
};

DirectorySetting& CacheSetting() {
  static Immortal<DirectorySetting> setting("LUMORA_CACHE_DIR");
  return *setting;
}

DirectorySetting& RootSetting() {
  static Immortal<DirectorySetting> setting("LUMORA_SYSTEM_ROOT");
  return *setting;
}

void Set(DirectorySetting& setting, const std::string& directory) {
  UnlessOutOfMemory([&] { setting.Set(directory); });
}

// What a root puts before an absolute path: the system's own puts nothing there.
std::string_view AsPrefix(std::string_view root) {
  return root == "/" ? std::string_view() : root;
}

}  // namespace

std::string CacheDirectory() {
  return UnlessOutOfMemory(std::string(), [] {
    std::string chosen = CacheSetting().Get();
    return chosen.empty() ? DefaultCacheDirectory() : chosen;
  });
}

void SetCacheDirectory(const std::string& directory) {
  Set(CacheSetting(), directory);
}

void MakeCacheDirectory() {
  UnlessOutOfMemory([] {
    const std::string chosen = CacheSetting().Get();
    if (chosen.empty()) {
      MakeDefaultCacheDirectory();
    } else {
      MakeNamedCacheDirectory(chosen);
    }
  });
}

void NoteCacheUse() {
  UnlessOutOfMemory([] {
    if (CacheSetting().Get().empty()) NoteDefaultCacheUse();
  });
}

bool FullQuads() {
  const char* const value = std::getenv("LUMORA_FULL_QUADS");
  return value != nullptr && std::strcmp(value, "1") == 0;
}

std::string SystemRoot() {
  return UnlessOutOfMemory(std::string(), [] {
    return RootSetting().Read([](std::string_view root) { return std::string(AsPrefix(root)); });
  });
}

bool SystemPath(const char* path, char* text, size_t size) {
  return RootSetting().Read([&](std::string_view root) {
    const std::string_view prefix = AsPrefix(root);
    const size_t length = std::strlen(path);
    if (prefix.size() + length + 1 > size) return false;
    prefix.copy(text, prefix.size());
    std::memcpy(text + prefix.size(), path, length + 1);
    return true;
  });
}

void SetSystemRoot(const std::string& root) {
  Set(RootSetting(), root);
}

}  // namespace lumora::platform
