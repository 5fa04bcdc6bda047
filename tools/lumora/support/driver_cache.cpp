// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/support/driver_cache.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

namespace lumora::tools {
namespace {

namespace fs = std::filesystem;

/// As Mesa's versions call it, by how they store shaders.
constexpr const char* kFolders[] = {"mesa_shader_cache", "mesa_shader_cache_db",
                                    "mesa_shader_cache_sf"};

/// Only an attempt tells: permissions say nothing about read-only file systems, nor to root.
bool CanMakeFolderIn(const fs::path& folder) {
  std::string name = (folder / "lumora-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) return false;
  rmdir(name.c_str());
  return true;
}

/// As Mesa finds it: it asks for the user's entry, not for HOME.
fs::path UsersCaches() {
  if (const char* const named = std::getenv("XDG_CACHE_HOME")) return named;
  const passwd* const user = getpwuid(getuid());
  if (user == nullptr || user->pw_dir == nullptr) return {};
  return fs::path(user->pw_dir) / ".cache";
}

}  // namespace

bool MayStartMesa(Device device) {
  if (device == Device::Auto) {
    const char* const setting = std::getenv("LUMORA_DEVICE");
    device = FindDevice(setting != nullptr ? setting : "").value_or(Device::Auto);
  }
  const char* const root = std::getenv("LUMORA_SYSTEM_ROOT");
  const fs::path nodes = std::string(root != nullptr ? root : "") + "/dev/dri";
  std::error_code ignored;
  return device == Device::Gl || (device == Device::Auto && fs::exists(nodes, ignored));
}

bool DriverCanCacheBelow(const fs::path& caches) {
  if (caches.empty()) return false;
  std::error_code ignored;
  for (const char* folder : kFolders) {
    const fs::file_status status = fs::status(caches / folder, ignored);
    if (fs::exists(status)) return fs::is_directory(status);
  }
  if (fs::is_directory(caches, ignored)) return CanMakeFolderIn(caches);
  if (fs::exists(caches, ignored)) return false;
  const fs::path above = caches.parent_path();
  return CanMakeFolderIn(above.empty() ? fs::path(".") : above);
}

void KeepDriverFromMissingItsCache() {
  for (const char* choice :
       {"MESA_SHADER_CACHE_DISABLE", "MESA_SHADER_CACHE_DIR", "MESA_GLSL_CACHE_DIR"}) {
    if (std::getenv(choice) != nullptr) return;
  }
  if (!DriverCanCacheBelow(UsersCaches())) setenv("MESA_SHADER_CACHE_DISABLE", "true", 0);
}

}  // namespace lumora::tools
