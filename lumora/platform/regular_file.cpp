#include "lumora/platform/regular_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace lumora::platform {

std::FILE* OpenRegularFile(const char* path) {
  // Without blocking: opening a named pipe would wait for its writer.
  const int fd = ::open(path, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  if (fd < 0) return nullptr;
  struct stat status = {};
  const bool regular = ::fstat(fd, &status) == 0 && S_ISREG(status.st_mode);
  std::FILE* const file = regular ? ::fdopen(fd, "rb") : nullptr;
  if (file == nullptr) ::close(fd);
  return file;
}

size_t ReadRegularFile(const char* path, void* bytes, size_t size) {
  std::FILE* const file = OpenRegularFile(path);
  if (file == nullptr) return 0;
  const size_t count = std::fread(bytes, 1, size, file);
  std::fclose(file);
  return count;
}

}  // namespace lumora::platform
