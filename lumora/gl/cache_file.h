// SPDX-License-Identifier: Apache-2.0
// The files of the program binary cache, as bytes on disk.
//
// Beside each file lies its seal, a few words under the same name with kSealSuffix, which say what
// the file is (see binary_seal.h). Both belong together; nothing here knows what they mean.
//
// Only what nobody else can have written is used: the directory and both files belong to the
// effective user or to root, and neither their group nor others may write them.
#ifndef LUMORA_GL_CACHE_FILE_H_
#define LUMORA_GL_CACHE_FILE_H_

#include <cstddef>
#include <memory>

namespace lumora {

/// No driver's program binary comes near this many bytes; a larger file is none of ours.
constexpr size_t kMaxCacheFileSize = size_t{64} << 20;

/// What the name of a seal has behind that of its file.
constexpr char kSealSuffix[] = ".seal";
constexpr size_t kMaxSealSize = 128;

/// A file's bytes.
struct FileBytes {
  std::unique_ptr<unsigned char[]> data;
  size_t size = 0;
  char seal[kMaxSealSize];
  size_t seal_size = 0;  ///< 0 when there is none that may be used
};

enum class ReadResult {
  Ok,
  CannotOpen,  ///< missing, unreadable, not a regular file, or others may write it
  BadLength,   ///< shorter than `min_size`, larger than kMaxCacheFileSize, or no memory for it
};

/// Reads the regular file `path` whole, and its seal. A file that shrinks meanwhile is read as far
/// as it goes. A symbolic link at `path` is not followed.
ReadResult ReadCacheFile(const char* path, size_t min_size, FileBytes* bytes);

enum class WriteResult {
  Ok,
  CannotOpen,   ///< no file can be made beside `path`, none can take its place, or others may write
                ///< the directory
  CannotWrite,  ///< the bytes could not all be written
};

/// Bytes of somebody else.
struct ByteSpan {
  const void* data;
  size_t size;
};

/// Writes `head` and then `body` to `path`, and `seal` to its seal, so that a reader sees the old
/// file or the new one, never a part: the bytes go to hidden files in the same directory, which are
/// renamed when both are whole. Anybody may read them as far as the umask allows. A symbolic link
/// at `path` is replaced, not followed. Hidden files of the same kind that are older than an hour
/// are removed: their writers were killed.
WriteResult WriteCacheFile(const char* path, ByteSpan head, ByteSpan body, ByteSpan seal);

}  // namespace lumora

#endif  // LUMORA_GL_CACHE_FILE_H_
