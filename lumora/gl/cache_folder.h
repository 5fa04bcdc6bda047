// SPDX-License-Identifier: Apache-2.0
// The directory of a cache file, held open so that nobody can put another in its place.
#ifndef LUMORA_GL_CACHE_FOLDER_H_
#define LUMORA_GL_CACHE_FOLDER_H_

#include "lumora/platform/descriptor.h"

namespace lumora {

/// Splits a path into the name behind its last slash and the directory before, which is opened.
class CacheFolder {
 public:
  explicit CacheFolder(const char* path);
  CacheFolder(const CacheFolder&) = delete;
  CacheFolder& operator=(const CacheFolder&) = delete;

  /// Whether the directory is there and only ours to write, and the path names a file in it.
  bool IsUsable() const { return usable_; }
  int Get() const { return directory_.Get(); }
  /// The file's name; lives as long as the path that was given.
  const char* FileName() const { return name_; }

 private:
  const char* name_;
  platform::Descriptor directory_;
  bool usable_;
};

}  // namespace lumora

#endif  // LUMORA_GL_CACHE_FOLDER_H_
