// SPDX-License-Identifier: Apache-2.0
#include "lumora/platform/regular_file.h"

#include <utility>

namespace lumora::platform {

Descriptor OpenRegularAt(int folder, const char* name, int flags, struct stat* status) {
  // Without blocking: opening a named pipe would wait for its writer.
  Descriptor file(::openat(folder, name, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC | flags));
  const bool regular =
      file.IsOpen() && ::fstat(file.Get(), status) == 0 && S_ISREG(status->st_mode);
  return regular ? std::move(file) : Descriptor();
}

std::FILE* OpenRegularFile(const char* path) {
  struct stat status = {};
  Descriptor file = OpenRegularAt(AT_FDCWD, path, 0, &status);
  std::FILE* const stream = file.IsOpen() ? ::fdopen(file.Get(), "rb") : nullptr;
  if (stream != nullptr) file.Release();
  return stream;
}

size_t ReadRegularFile(const char* path, void* bytes, size_t size) {
  std::FILE* const file = OpenRegularFile(path);
  if (file == nullptr) return 0;
  const size_t count = std::fread(bytes, 1, size, file);
  std::fclose(file);
  return count;
}

}  // namespace lumora::platform
