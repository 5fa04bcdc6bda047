// SPDX-License-Identifier: Apache-2.0
#include "lumora/gl/cache_folder.h"

#include <cstddef>
#include <cstring>

namespace lumora {
namespace {

const char* NameIn(const char* path) {
  const char* const slash = std::strrchr(path, '/');
  return slash != nullptr ? slash + 1 : path;
}

/// Opens the directory that comes before `name` in `path`.
int OpenFolder(const char* path, const char* name) {
  constexpr size_t kMaxPath = 4096;  // the kernel takes no longer one
  const auto length = static_cast<size_t>(name - path);
  if (length >= kMaxPath) return -1;
  char text[kMaxPath];
  std::memcpy(text, path, length);
  text[length] = '\0';
  return ::open(length == 0 ? "." : text, O_PATH | O_DIRECTORY | O_CLOEXEC);
}

}  // namespace

CacheFolder::CacheFolder(const char* path)
    : name_(NameIn(path)), directory_(OpenFolder(path, name_)), usable_(false) {
  struct stat status = {};
  usable_ = *name_ != '\0' && directory_.IsOpen() && ::fstat(directory_.Get(), &status) == 0 &&
            platform::IsOnlyOurs(status);
}

}  // namespace lumora
