// SPDX-License-Identifier: Apache-2.0
// Settings of the library: the program cache directory, the system root, and with them the
// properties of the running system. Everything is read when needed, never at load.
#ifndef LUMORA_PLATFORM_SETTINGS_H_
#define LUMORA_PLATFORM_SETTINGS_H_

#include <cstddef>
#include <string>

#include "lumora/export.h"
#include "lumora/platform/property.h"

namespace lumora::platform {

/// The directory of the program binary cache, without a trailing slash: what SetCacheDirectory set,
/// else LUMORA_CACHE_DIR, else the platform's default (Linux: "lumora" below the user's cache home,
/// and in it, where a context is current, a level of its own for this library and that context's
/// driver; Android: "/data/GPU"). Empty where the platform knows no such place, or
/// memory is short. Thread-safe.
LUMORA_API std::string CacheDirectory();

/// Sets the cache directory of this process; an empty text goes back to the environment and
/// default. Where memory is short the directory stays as it was.
LUMORA_API void SetCacheDirectory(const std::string& directory);

/// Creates the cache directory with its missing parents (Linux: mode 0755, and 0700 for the
/// default; Android: the directory alone, mode 0755). An existing one is left as it is. The result
/// is not reported: a failure shows when a file in it cannot be written.
void MakeCacheDirectory();

/// Says that the programs of the current context are looked for in the cache directory now.
void NoteCacheUse();

/// Whether every pass is to draw its whole image, also where it can change only a part of it:
/// LUMORA_FULL_QUADS is 1.
bool FullQuads();

/// The text put before "/sys" and "/system" paths: what SetSystemRoot set, else LUMORA_SYSTEM_ROOT,
/// else empty, also where memory is short. Thread-safe.
LUMORA_API std::string SystemRoot();

/// Puts the system root before `path`, at `text` of `size` bytes: as SystemRoot tells it, but
/// asking for no memory. False where it does not fit. Thread-safe.
bool SystemPath(const char* path, char* text, size_t size);

/// Sets the system root of this process; an empty text goes back to the environment and default.
/// Where memory is short it stays as it was.
LUMORA_API void SetSystemRoot(const std::string& root);

}  // namespace lumora::platform

#endif  // LUMORA_PLATFORM_SETTINGS_H_
