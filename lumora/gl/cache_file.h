// The files of the program binary cache, as bytes on disk.
#ifndef LUMORA_GL_CACHE_FILE_H_
#define LUMORA_GL_CACHE_FILE_H_

#include <cstddef>
#include <memory>

namespace lumora {

/// No driver's program binary comes near this many bytes; a larger file is none of ours.
constexpr size_t kMaxCacheFileSize = size_t{64} << 20;

/// A file's bytes.
struct FileBytes {
  std::unique_ptr<unsigned char[]> data;
  size_t size = 0;
};

enum class ReadResult {
  Ok,
  CannotOpen,  ///< missing, unreadable, or not a regular file
  BadLength,   ///< shorter than `min_size`, larger than kMaxCacheFileSize, or no memory for it
};

/// Reads the regular file `path` whole. A file that shrinks meanwhile is read as far as it goes.
ReadResult ReadCacheFile(const char* path, size_t min_size, FileBytes* bytes);

enum class WriteResult {
  Ok,
  CannotOpen,   ///< no file can be made beside `path`, or none can take its place
  CannotWrite,  ///< the bytes could not all be written
};

/// Writes `head` and then `body` to `path` so that a reader sees the old file or the new one, never
/// a part: the bytes go to a hidden file in the same directory, which is then renamed. Only the
/// user can read and write it. A symbolic link at `path` is replaced, not followed. Hidden files of
/// the same kind that are older than an hour are removed: their writers were killed.
WriteResult WriteCacheFile(const char* path, const void* head, size_t head_size, const void* body,
                           size_t body_size);

}  // namespace lumora

#endif  // LUMORA_GL_CACHE_FILE_H_
