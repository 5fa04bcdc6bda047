// SPDX-License-Identifier: Apache-2.0
#include "lumora/platform/linux/fresh_memory.h"

#include <unistd.h>

#include <cstring>

namespace lumora::platform {
namespace {

size_t PageSize() {
  static const auto size = static_cast<size_t>(sysconf(_SC_PAGESIZE));
  return size;
}

// Whether the file is as large as the memory in it. Descriptors of other kinds have no size.
bool Holds(int descriptor, size_t size) {
  const off_t end = lseek(descriptor, 0, SEEK_END);
  return end >= 0 && static_cast<size_t>(end) >= size;
}

// Whether any page behind the first has ever been written.
bool HasDataBehindFirstPage(int descriptor) {
  return lseek(descriptor, static_cast<off_t>(PageSize()), SEEK_DATA) >= 0;
}

}  // namespace

void ZeroFreshMemory(unsigned char* address, size_t size, int descriptor) {
  const size_t page = PageSize();
  if (descriptor < 0 || size <= 2 * page || !Holds(descriptor, size) ||
      HasDataBehindFirstPage(descriptor)) {
    std::memset(address, 0, size);
    return;
  }
  std::memset(address, 0, page);
  std::memset(address + size - page, 0, page);
  // What has just been written to memory must show in the file: else the memory is elsewhere.
  if (HasDataBehindFirstPage(descriptor)) return;
  std::memset(address + page, 0, size - 2 * page);
}

}  // namespace lumora::platform
