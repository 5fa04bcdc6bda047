// Places that differ between the platform bodies.
#ifndef LUMORA_PLATFORM_PATHS_H_
#define LUMORA_PLATFORM_PATHS_H_

#include <string>

namespace lumora::platform {

// The first two throw std::bad_alloc: they are for the platform layer itself.

/// The cache directory that the application or the environment names; empty where neither does.
std::string ChosenCacheDirectory();

/// The cache directory where nobody names one; empty where the platform knows no such place.
std::string DefaultCacheDirectory();

/// Says that the programs of the current context are looked for in the cache directory now.
/// (Linux: remembers that the default's level is in use, and removes levels that nobody has used
/// for a month.)
void NoteCacheUse();

}  // namespace lumora::platform

#endif  // LUMORA_PLATFORM_PATHS_H_
