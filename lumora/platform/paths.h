// SPDX-License-Identifier: Apache-2.0
// Places that differ between the platform bodies. For settings.cpp, which knows what was chosen:
// all of these may throw std::bad_alloc.
#ifndef LUMORA_PLATFORM_PATHS_H_
#define LUMORA_PLATFORM_PATHS_H_

#include <string>

namespace lumora::platform {

/// The cache directory where nobody names one; empty where the platform knows no such place.
std::string DefaultCacheDirectory();

/// Creates the default cache directory, where there is to be one, or the one that somebody named.
/// (Linux: with missing parents, mode 0700 or 0755; Android: the directory alone, mode 0755.) An
/// existing one is left as it is.
void MakeDefaultCacheDirectory();
void MakeNamedCacheDirectory(const std::string& directory);

/// Says that the programs of the current context are looked for in the default cache directory now.
/// (Linux: remembers that its level is in use, and removes levels that nobody has used for a
/// month.)
void NoteDefaultCacheUse();

}  // namespace lumora::platform

#endif  // LUMORA_PLATFORM_PATHS_H_
