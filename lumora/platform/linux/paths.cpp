// SPDX-License-Identifier: Apache-2.0
#include "lumora/platform/paths.h"

#include <sys/stat.h>

#include <cstdlib>

#include "lumora/platform/linux/cache_levels.h"

namespace lumora::platform {
namespace {

/// The directory of the default cache's levels.
std::string LevelsDirectory() {
  // A relative XDG_CACHE_HOME counts as unset, as its definition says.
  const char* const cache_home = std::getenv("XDG_CACHE_HOME");
  if (cache_home != nullptr && cache_home[0] == '/') return std::string(cache_home) + "/lumora";
  const char* const home = std::getenv("HOME");
  if (home != nullptr && home[0] != '\0') return std::string(home) + "/.cache/lumora";
  return {};
}

void MakeWithParents(std::string directory, mode_t mode) {
  for (size_t end = directory.find('/', 1); end != std::string::npos;
       end = directory.find('/', end + 1)) {
    directory[end] = '\0';
    mkdir(directory.c_str(), mode);
    directory[end] = '/';
  }
  if (!directory.empty()) mkdir(directory.c_str(), mode);
}

}  // namespace

std::string DefaultCacheDirectory() {
  const std::string levels = LevelsDirectory();
  const LevelName level = CurrentLevel();
  return levels.empty() || level.text[0] == '\0' ? levels : levels + "/" + level.text;
}

void MakeDefaultCacheDirectory() {
  MakeWithParents(DefaultCacheDirectory(), 0700);
}

void MakeNamedCacheDirectory(const std::string& directory) {
  MakeWithParents(directory, 0755);
}

void NoteDefaultCacheUse() {
  KeepLevels(LevelsDirectory().c_str(), CurrentLevel());
}

}  // namespace lumora::platform
