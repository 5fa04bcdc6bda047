// SPDX-License-Identifier: Apache-2.0
#include "lumora/gl/cache_file.h"

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <new>

#include "lumora/gl/cache_folder.h"
#include "lumora/platform/descriptor.h"
#include "lumora/platform/regular_file.h"

namespace lumora {
namespace {

using platform::Descriptor;

size_t ReadUpTo(int fd, void* bytes, size_t size) {
  auto* const data = static_cast<unsigned char*>(bytes);
  size_t done = 0;
  while (done < size) {
    const ssize_t count = ::read(fd, data + done, size - done);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) break;
    done += static_cast<size_t>(count);
  }
  return done;
}

bool WriteAll(int fd, ByteSpan bytes) {
  const auto* data = static_cast<const unsigned char*>(bytes.data);
  while (bytes.size > 0) {
    const ssize_t count = ::write(fd, data, bytes.size);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    data += count;
    bytes.size -= static_cast<size_t>(count);
  }
  return true;
}

/// The name of a file in a directory.
struct FileName {
  char text[256] = "";  // no file system knows longer ones

  /// "<before><name><after>"; false when that is too long.
  bool Set(const char* before, const char* name, const char* after) {
    const int length = std::snprintf(text, sizeof(text), "%s%s%s", before, name, after);
    return length > 0 && length < static_cast<int>(sizeof(text));
  }
};

/// Opens a file that only we can have written, and says how long it is.
Descriptor OpenOurs(const CacheFolder& folder, const char* name, size_t* size) {
  struct stat status = {};
  Descriptor file = platform::OpenRegularAt(folder.Get(), name, O_NOFOLLOW, &status);
  if (!file.IsOpen() || !platform::IsOnlyOurs(status)) return Descriptor();
  *size = static_cast<size_t>(status.st_size);
  return file;
}

void ReadSeal(const CacheFolder& folder, FileBytes* bytes) {
  bytes->seal_size = 0;
  FileName name;
  size_t size = 0;
  if (!name.Set("", folder.FileName(), kSealSuffix)) return;
  const Descriptor file(OpenOurs(folder, name.text, &size));
  if (!file.IsOpen() || size > sizeof(bytes->seal)) return;
  bytes->seal_size = ReadUpTo(file.Get(), bytes->seal, size);
}

constexpr int kUniqueCharacters = 6;

/// Six characters that no other writer is likely to come to.
void MakeUnique(char* characters) {
  static std::atomic<uint64_t> count{0};
  timespec now = {};
  ::clock_gettime(CLOCK_MONOTONIC, &now);
  uint64_t number = static_cast<uint64_t>(now.tv_sec) * 1000000000 +
                    static_cast<uint64_t>(now.tv_nsec) + (static_cast<uint64_t>(::getpid()) << 40) +
                    (++count << 32);
  number *= 0x9E3779B97F4A7C15;  // spreads what differs over the upper bits
  number >>= 20;
  constexpr char kDigits[] = "abcdefghijklmnopqrstuvwxyz0123456789";
  constexpr uint64_t kBase = sizeof(kDigits) - 1;
  for (int i = 0; i < kUniqueCharacters; ++i, number /= kBase) {
    characters[i] = kDigits[number % kBase];
  }
}

/// A file that is being written, under a hidden name: that of the file whose place it takes, with
/// six characters that make it unique. Removed unless it took its place.
class HiddenFile {
 public:
  HiddenFile(const CacheFolder& folder, const char* suffix) : folder_(folder) {
    named_ = name_.Set("", folder.FileName(), suffix) && stem_.Set(".", name_.text, ".");
  }
  ~HiddenFile() {
    if (made_) ::unlinkat(folder_.Get(), hidden_.text, 0);
  }
  HiddenFile(const HiddenFile&) = delete;
  HiddenFile& operator=(const HiddenFile&) = delete;

  /// Whether a file of that name was left by a writer of the same file.
  bool IsScrap(const char* name) const {
    const size_t stem = std::strlen(stem_.text);
    return named_ && std::strncmp(name, stem_.text, stem) == 0 &&
           std::strlen(name) == stem + kUniqueCharacters;
  }

  /// False when there is no such file to write to.
  bool Make() {
    char unique[kUniqueCharacters + 1] = "";
    for (int attempt = 0; named_ && attempt < 100; ++attempt) {
      MakeUnique(unique);
      if (!hidden_.Set(stem_.text, unique, "")) return false;
      file_.Take(::openat(folder_.Get(), hidden_.text,
                          O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0644));
      made_ = file_.IsOpen();
      if (made_ || errno != EEXIST) return made_;
    }
    return false;
  }

  bool Write(ByteSpan bytes) const { return WriteAll(file_.Get(), bytes); }

  /// False when the last bytes could not be written.
  bool Close() { return file_.Close(); }

  bool TakePlace() {
    const bool taken = ::renameat(folder_.Get(), hidden_.text, folder_.Get(), name_.text) == 0;
    made_ = made_ && !taken;
    return taken;
  }

 private:
  const CacheFolder& folder_;
  FileName name_, stem_, hidden_;
  Descriptor file_;
  bool named_ = false;
  bool made_ = false;
};

/// Removes what processes left that were killed while they wrote either file. Nobody takes an hour
/// to write one.
void RemoveScraps(const CacheFolder& folder, const HiddenFile& file, const HiddenFile& seal) {
  constexpr time_t kScrapAge = 3600;
  platform::ForEachEntry(folder.Get(), [&](const char* name) {
    struct stat status = {};
    if (!file.IsScrap(name) && !seal.IsScrap(name)) return;
    if (::fstatat(folder.Get(), name, &status, AT_SYMLINK_NOFOLLOW) != 0) return;
    const bool old = status.st_mtime < std::time(nullptr) - kScrapAge;
    if (old && S_ISREG(status.st_mode)) ::unlinkat(folder.Get(), name, 0);
  });
}

}  // namespace

ReadResult ReadCacheFile(const char* path, size_t min_size, FileBytes* bytes) {
  bytes->seal_size = 0;
  const CacheFolder folder(path);
  if (!folder.IsUsable()) return ReadResult::CannotOpen;
  size_t size = 0;
  const Descriptor file(OpenOurs(folder, folder.FileName(), &size));
  if (!file.IsOpen()) return ReadResult::CannotOpen;
  if (size < min_size || size > kMaxCacheFileSize) return ReadResult::BadLength;
  bytes->data.reset(new (std::nothrow) unsigned char[size]);
  if (bytes->data == nullptr) return ReadResult::BadLength;
  bytes->size = ReadUpTo(file.Get(), bytes->data.get(), size);
  if (bytes->size < min_size) return ReadResult::BadLength;
  ReadSeal(folder, bytes);
  return ReadResult::Ok;
}

WriteResult WriteCacheFile(const char* path, ByteSpan head, ByteSpan body, ByteSpan seal) {
  const CacheFolder folder(path);
  if (!folder.IsUsable()) return WriteResult::CannotOpen;
  HiddenFile file(folder, "");
  HiddenFile sealing(folder, kSealSuffix);
  RemoveScraps(folder, file, sealing);
  if (!file.Make() || !sealing.Make()) return WriteResult::CannotOpen;
  const bool written = file.Write(head) && file.Write(body) && sealing.Write(seal);
  const bool file_whole = file.Close();
  const bool seal_whole = sealing.Close();
  if (!written || !file_whole || !seal_whole) return WriteResult::CannotWrite;
  // The seal comes last: where it fits the file, the file is there.
  return file.TakePlace() && sealing.TakePlace() ? WriteResult::Ok : WriteResult::CannotOpen;
}

}  // namespace lumora
