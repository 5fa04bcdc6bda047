// Files that others name: whatever lies there, opening and reading it ends at once.
#ifndef LUMORA_PLATFORM_REGULAR_FILE_H_
#define LUMORA_PLATFORM_REGULAR_FILE_H_

#include <cstddef>
#include <cstdio>

namespace lumora::platform {

/// Opens a regular file for reading in bytes. Null for everything else: named pipes and devices,
/// which may have nothing to say for ever or no end, and directories.
std::FILE* OpenRegularFile(const char* path);

/// Reads up to `size` bytes from the start of a regular file, and says how many; 0 where there is
/// none.
size_t ReadRegularFile(const char* path, void* bytes, size_t size);

}  // namespace lumora::platform

#endif  // LUMORA_PLATFORM_REGULAR_FILE_H_
