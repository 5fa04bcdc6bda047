#include "lumora/gl/cache_file.h"

#include <dirent.h>
#include <fcntl.h>

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <new>

#include "lumora/gl/cache_folder.h"

namespace lumora {
namespace {

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
  bool set(const char* before, const char* name, const char* after) {
    const int length = std::snprintf(text, sizeof(text), "%s%s%s", before, name, after);
    return length > 0 && length < static_cast<int>(sizeof(text));
  }
};

/// Opens a file that only we can have written, and says how long it is. Without blocking: a named
/// pipe under this name must not stop the start of a camera.
int OpenOurs(const CacheFolder& folder, const char* name, size_t* size) {
  const int fd =
      ::openat(folder.fd(), name, O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_NOCTTY | O_CLOEXEC);
  if (fd < 0) return -1;
  struct stat status = {};
  if (::fstat(fd, &status) != 0 || !S_ISREG(status.st_mode) || !OnlyOurs(status)) {
    ::close(fd);
    return -1;
  }
  *size = static_cast<size_t>(status.st_size);
  return fd;
}

void ReadSeal(const CacheFolder& folder, FileBytes* bytes) {
  bytes->seal_size = 0;
  FileName name;
  size_t size = 0;
  if (!name.set("", folder.name(), kSealSuffix)) return;
  const Descriptor file(OpenOurs(folder, name.text, &size));
  if (!file.valid() || size > sizeof(bytes->seal)) return;
  bytes->seal_size = ReadUpTo(file.get(), bytes->seal, size);
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
    if (!name_.set("", folder.name(), suffix) || !stem_.set(".", name_.text, ".")) return;
    RemoveScraps();
    char unique[kUniqueCharacters + 1] = "";
    for (int attempt = 0; attempt < 100; ++attempt) {
      MakeUnique(unique);
      if (!hidden_.set(stem_.text, unique, "")) return;
      file_.take(::openat(folder.fd(), hidden_.text,
                          O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0644));
      made_ = file_.valid();
      if (made_ || errno != EEXIST) return;
    }
  }
  ~HiddenFile() {
    if (made_) ::unlinkat(folder_.fd(), hidden_.text, 0);
  }
  HiddenFile(const HiddenFile&) = delete;
  HiddenFile& operator=(const HiddenFile&) = delete;

  bool made() const { return made_; }

  bool Write(ByteSpan bytes) const { return WriteAll(file_.get(), bytes); }

  /// False when the last bytes could not be written.
  bool Close() { return file_.close(); }

  bool TakePlace() {
    const bool taken = ::renameat(folder_.fd(), hidden_.text, folder_.fd(), name_.text) == 0;
    made_ = made_ && !taken;
    return taken;
  }

 private:
  bool IsScrap(const char* name) const {
    const size_t stem = std::strlen(stem_.text);
    return std::strncmp(name, stem_.text, stem) == 0 &&
           std::strlen(name) == stem + kUniqueCharacters;
  }

  /// Removes what a process left that was killed while it wrote. Nobody takes an hour to write a
  /// file.
  void RemoveScraps() const {
    constexpr time_t kScrapAge = 3600;
    DIR* const directory = ::opendir(folder_.path()[0] == '\0' ? "." : folder_.path());
    if (directory == nullptr) return;
    while (const dirent* const entry = ::readdir(directory)) {
      struct stat status = {};
      if (!IsScrap(entry->d_name) ||
          ::fstatat(folder_.fd(), entry->d_name, &status, AT_SYMLINK_NOFOLLOW) != 0) {
        continue;
      }
      const bool old = status.st_mtime < std::time(nullptr) - kScrapAge;
      if (old && S_ISREG(status.st_mode)) ::unlinkat(folder_.fd(), entry->d_name, 0);
    }
    ::closedir(directory);
  }

  const CacheFolder& folder_;
  FileName name_, stem_, hidden_;
  Descriptor file_;
  bool made_ = false;
};

}  // namespace

ReadResult ReadCacheFile(const char* path, size_t min_size, FileBytes* bytes) {
  bytes->seal_size = 0;
  const CacheFolder folder(path);
  if (!folder.usable()) return ReadResult::CannotOpen;
  size_t size = 0;
  const Descriptor file(OpenOurs(folder, folder.name(), &size));
  if (!file.valid()) return ReadResult::CannotOpen;
  if (size < min_size || size > kMaxCacheFileSize) return ReadResult::BadLength;
  bytes->data.reset(new (std::nothrow) unsigned char[size]);
  if (bytes->data == nullptr) return ReadResult::BadLength;
  bytes->size = ReadUpTo(file.get(), bytes->data.get(), size);
  if (bytes->size < min_size) return ReadResult::BadLength;
  ReadSeal(folder, bytes);
  return ReadResult::Ok;
}

WriteResult WriteCacheFile(const char* path, ByteSpan head, ByteSpan body, ByteSpan seal) {
  const CacheFolder folder(path);
  if (!folder.usable()) return WriteResult::CannotOpen;
  HiddenFile file(folder, "");
  HiddenFile sealing(folder, kSealSuffix);
  if (!file.made() || !sealing.made()) return WriteResult::CannotOpen;
  const bool written = file.Write(head) && file.Write(body) && sealing.Write(seal);
  const bool file_whole = file.Close();
  const bool seal_whole = sealing.Close();
  if (!written || !file_whole || !seal_whole) return WriteResult::CannotWrite;
  // The seal comes last: where it fits the file, the file is there.
  return file.TakePlace() && sealing.TakePlace() ? WriteResult::Ok : WriteResult::CannotOpen;
}

}  // namespace lumora
