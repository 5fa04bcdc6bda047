// SPDX-License-Identifier: Apache-2.0
// Files that others name: whatever lies there, opening and reading it ends at once.
#ifndef LUMORA_PLATFORM_REGULAR_FILE_H_
#define LUMORA_PLATFORM_REGULAR_FILE_H_

#include <cstddef>
#include <cstdio>

#include "lumora/platform/descriptor.h"

namespace lumora::platform {

/// Opens a regular file for reading in bytes, with flags of open() beside those. Nothing is opened
/// for everything else: named pipes and devices, which may have nothing to say for ever or no end,
/// and directories. `name` counts from the open directory `folder`; AT_FDCWD is the current one.
/// `status` receives what is told of the file.
Descriptor OpenRegularAt(int folder, const char* name, int flags, struct stat* status);

/// The same for a path, as a stream; null where nothing is opened.
std::FILE* OpenRegularFile(const char* path);

/// Reads up to `size` bytes from the start of a regular file, and says how many; 0 where there is
/// none.
size_t ReadRegularFile(const char* path, void* bytes, size_t size);

}  // namespace lumora::platform

#endif  // LUMORA_PLATFORM_REGULAR_FILE_H_
