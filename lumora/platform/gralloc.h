// SPDX-License-Identifier: Apache-2.0
// The memory allocator's controller: finds the allocator of a set of flags and cleans caches by it.
#ifndef LUMORA_PLATFORM_GRALLOC_H_
#define LUMORA_PLATFORM_GRALLOC_H_

#include <cstddef>

#include "lumora/platform/ref_base.h"

namespace lumora::platform::gralloc {

/// Cache operation: write the CPU's cache back to memory.
constexpr int CACHE_CLEAN = 1;

class IMemAlloc : public RefBase {
 public:
  /// Applies the cache operation to [base + offset, base + offset + size). The buffer is found by
  /// its base address. Returns 0, or a negative number when no live buffer starts at `base`.
  virtual int clean_buffer(void* base, size_t size, int offset, int fd, int operation) = 0;
};

class IAllocController : public RefBase {
 public:
  /// The process's controller.
  static sp<IAllocController> getInstance();
  /// The allocator that serves `flags`; never null.
  virtual sp<IMemAlloc> getAllocator(int flags) = 0;
};

}  // namespace lumora::platform::gralloc

#endif  // LUMORA_PLATFORM_GRALLOC_H_
