// SPDX-License-Identifier: Apache-2.0
// The levels of the default cache directory: one for each library and driver, so that an upgrade of
// either starts with an empty cache and several may be in use at once.
#ifndef LUMORA_PLATFORM_LINUX_CACHE_LEVELS_H_
#define LUMORA_PLATFORM_LINUX_CACHE_LEVELS_H_

namespace lumora::platform {

/// "programs-<version>-<16 hexadecimal digits>"; empty where there is none.
struct LevelName {
  char text[64];
};

/// The level of this library, its shader texts and the current context's driver; empty without a
/// context.
LevelName CurrentLevel();

/// Notes in the time of `directory`/`current` that the level is in use, and removes the levels
/// beside it that were not for a month: those that bear such a name, belong to the effective user
/// and hold nothing but files of this cache. Does so once for each level of a process.
void KeepLevels(const char* directory, const LevelName& current);

}  // namespace lumora::platform

#endif  // LUMORA_PLATFORM_LINUX_CACHE_LEVELS_H_
