// SPDX-License-Identifier: Apache-2.0
#include "support/guarded_buffer.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace lumora::test {
namespace {

size_t PageSize() {
  return static_cast<size_t>(sysconf(_SC_PAGESIZE));
}

}  // namespace

GuardedBuffer::GuardedBuffer(size_t size, Guard guard) : size_(size) {
  const size_t page = PageSize();
  const size_t usable = std::max<size_t>(1, (size + page - 1) / page) * page;
  mapped_ = usable + 2 * page;
  void* memory = mmap(nullptr, mapped_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) std::abort();
  mapping_ = static_cast<uint8_t*>(memory);
  std::memset(mapping_ + page, kFill, usable);
  mprotect(mapping_, page, PROT_NONE);
  mprotect(mapping_ + page + usable, page, PROT_NONE);
  data_ = guard == Guard::Begin ? mapping_ + page : mapping_ + page + usable - size;
}

GuardedBuffer::~GuardedBuffer() {
  munmap(mapping_, mapped_);
}

bool GuardedBuffer::intact() const {
  const auto untouched = [](uint8_t byte) { return byte == kFill; };
  const uint8_t* begin = mapping_ + PageSize();
  const uint8_t* end = mapping_ + mapped_ - PageSize();
  return std::all_of(begin, static_cast<const uint8_t*>(data_), untouched) &&
         std::all_of(static_cast<const uint8_t*>(data_) + size_, end, untouched);
}

void GuardedBuffer::protect_from_writing() {
  mprotect(mapping_ + PageSize(), mapped_ - 2 * PageSize(), PROT_READ);
}

}  // namespace lumora::test
