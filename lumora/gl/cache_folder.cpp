#include "lumora/gl/cache_folder.h"

#include <fcntl.h>

#include <cstddef>
#include <cstring>

namespace lumora {
namespace {

const char* NameIn(const char* path) {
  const char* const slash = std::strrchr(path, '/');
  return slash != nullptr ? slash + 1 : path;
}

/// Copies what comes before `name` in `path` to `text` and opens it.
template <size_t kSize>
int OpenFolder(const char* path, const char* name, char (&text)[kSize]) {
  const auto length = static_cast<size_t>(name - path);
  if (length >= kSize) return -1;
  std::memcpy(text, path, length);
  text[length] = '\0';
  return ::open(length == 0 ? "." : text, O_PATH | O_DIRECTORY | O_CLOEXEC);
}

}  // namespace

bool OnlyOurs(const struct stat& status) {
  const bool owned = status.st_uid == ::geteuid() || status.st_uid == 0;
  return owned && (status.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

CacheFolder::CacheFolder(const char* path)
    : text_{}, name_(NameIn(path)), directory_(OpenFolder(path, name_, text_)), usable_(false) {
  struct stat status = {};
  usable_ = *name_ != '\0' && directory_.valid() && ::fstat(directory_.get(), &status) == 0 &&
            OnlyOurs(status);
}

}  // namespace lumora
