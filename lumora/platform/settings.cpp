#include "lumora/platform/settings.h"

#include <cstdlib>
#include <cstring>
#include <mutex>
#include <utility>

#include "lumora/platform/paths.h"

namespace lumora::platform {
namespace {

// A directory that the application or an environment variable chooses.
class DirectorySetting {
 public:
  explicit DirectorySetting(const char* variable) : variable_(variable) {}

  void set(std::string directory) {
    const std::lock_guard<std::mutex> guard(mutex_);
    directory_ = std::move(directory);
  }

  // Without trailing slashes; empty when nobody chose.
  std::string get() {
    const std::lock_guard<std::mutex> guard(mutex_);
    std::string directory = directory_;
    if (directory.empty()) {
      if (const char* value = std::getenv(variable_)) directory = value;
    }
    while (directory.size() > 1 && directory.back() == '/') directory.pop_back();
    return directory;
  }

 private:
  const char* const variable_;
  std::mutex mutex_;
  std::string directory_;
};

// Never destroyed, like everything that a static object's end may still ask.
DirectorySetting& CacheSetting() {
  static auto* const setting = new DirectorySetting("LUMORA_CACHE_DIR");
  return *setting;
}

DirectorySetting& RootSetting() {
  static auto* const setting = new DirectorySetting("LUMORA_SYSTEM_ROOT");
  return *setting;
}

}  // namespace

std::string ChosenCacheDirectory() {
  return CacheSetting().get();
}

std::string CacheDirectory() {
  const std::string chosen = ChosenCacheDirectory();
  return chosen.empty() ? DefaultCacheDirectory() : chosen;
}

void SetCacheDirectory(const std::string& directory) {
  CacheSetting().set(directory);
}

bool FullQuads() {
  const char* const value = std::getenv("LUMORA_FULL_QUADS");
  return value != nullptr && std::strcmp(value, "1") == 0;
}

std::string SystemRoot() {
  const std::string root = RootSetting().get();
  return root == "/" ? std::string() : root;
}

void SetSystemRoot(const std::string& root) {
  RootSetting().set(root);
}

}  // namespace lumora::platform
