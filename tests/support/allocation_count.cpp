#include "support/allocation_count.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

std::atomic<int> g_allocations{0};

void* Allocate(size_t size) {
  ++g_allocations;
  return std::malloc(size == 0 ? 1 : size);
}

void* AllocateOrEnd(size_t size) {
  void* const memory = Allocate(size);
  if (memory == nullptr) std::abort();
  return memory;
}

}  // namespace

// Arrays as well: sanitizers bring operators of their own, which do not call these.
void* operator new(size_t size) {
  return AllocateOrEnd(size);
}
void* operator new[](size_t size) {
  return AllocateOrEnd(size);
}
void* operator new(size_t size, const std::nothrow_t&) noexcept {
  return Allocate(size);
}
void* operator new[](size_t size, const std::nothrow_t&) noexcept {
  return Allocate(size);
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
  work();
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
