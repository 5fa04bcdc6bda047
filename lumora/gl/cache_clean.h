// SPDX-License-Identifier: Apache-2.0
// The allocator's cache clean, as images and engines use it.
#ifndef LUMORA_GL_CACHE_CLEAN_H_
#define LUMORA_GL_CACHE_CLEAN_H_

#include <cstddef>

#include "lumora/platform/gralloc.h"

namespace lumora {

/// Asks the allocator that serves `flags` to write the CPU's cache of a buffer back to memory.
/// Returns its result: 0, or a negative number when it refuses.
inline int CleanBuffer(void* base, int flags, int offset, int fd, int size) {
  namespace gralloc = platform::gralloc;
  const auto allocator = gralloc::IAllocController::getInstance()->getAllocator(flags);
  return allocator->clean_buffer(base, static_cast<size_t>(size), offset, fd, gralloc::CACHE_CLEAN);
}

}  // namespace lumora

#endif  // LUMORA_GL_CACHE_CLEAN_H_
