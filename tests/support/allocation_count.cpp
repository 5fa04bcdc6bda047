// SPDX-License-Identifier: Apache-2.0
#include "support/allocation_count.h"

#include <dlfcn.h>
#include <execinfo.h>

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <exception>
#include <new>

namespace {

std::atomic<bool> g_counting{false};
std::atomic<int> g_allocations{0};

// Where the file that an address belongs to is loaded.
const void* FileOf(const void* address) {
  Dl_info info{};
  return dladdr(address, &info) != 0 ? info.dli_fbase : nullptr;
}

// Strings and streams ask through the C++ library: then whoever called that is asking.
bool AsksHere(const void* caller) {
  static const void* const here = FileOf(&g_counting);
  static const void* const standard = FileOf(reinterpret_cast<const void*>(&std::terminate));
  const void* file = FileOf(caller);
  if (file != standard) return file == here;
  void* frames[32];
  const int count = backtrace(frames, 32);
  int i = 0;
  while (i < count && FileOf(frames[i]) != standard) ++i;
  while (i < count && FileOf(frames[i]) == standard) ++i;
  return i < count && FileOf(frames[i]) == here;
}

void* Allocate(size_t size, const void* caller) {
  if (g_counting && AsksHere(caller)) ++g_allocations;
  return std::malloc(size == 0 ? 1 : size);
}

void* AllocateOrEnd(size_t size, const void* caller) {
  void* const memory = Allocate(size, caller);
  if (memory == nullptr) std::abort();
  return memory;
}

}  // namespace

// Arrays as well: sanitizers bring operators of their own, which do not call these. Never inlined,
// so that each knows its caller.
[[gnu::noinline]] void* operator new(size_t size) {
  return AllocateOrEnd(size, __builtin_return_address(0));
}
[[gnu::noinline]] void* operator new[](size_t size) {
  return AllocateOrEnd(size, __builtin_return_address(0));
}
[[gnu::noinline]] void* operator new(size_t size, const std::nothrow_t&) noexcept {
  return Allocate(size, __builtin_return_address(0));
}
[[gnu::noinline]] void* operator new[](size_t size, const std::nothrow_t&) noexcept {
  return Allocate(size, __builtin_return_address(0));
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete[](void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, size_t) noexcept {
  std::free(memory);
}
void operator delete[](void* memory, size_t) noexcept {
  std::free(memory);
}

namespace lumora::test {

int AllocationsOf(const std::function<void()>& work) {
  const int before = g_allocations;
  g_counting = true;
  work();
  g_counting = false;
  return g_allocations - before;
}

int SteadyAllocationsOf(const std::function<void()>& frame) {
  constexpr int kWarmUp = 4;  // programs, filters and digests settle
  for (int i = 0; i < kWarmUp; ++i) frame();
  return AllocationsOf([&frame] {
    for (int i = 0; i < 5; ++i) frame();
  });
}

}  // namespace lumora::test
