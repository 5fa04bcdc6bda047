// SPDX-License-Identifier: Apache-2.0
// Zeroes in memory that a driver has just given, without touching every page of it.
#ifndef LUMORA_PLATFORM_LINUX_FRESH_MEMORY_H_
#define LUMORA_PLATFORM_LINUX_FRESH_MEMORY_H_

#include <cstddef>

namespace lumora::platform {

/// Makes `size` bytes of fresh memory read as zeros. `descriptor` is the memory's file or -1: where
/// it proves to be one that still has only holes, the kernel gives zeroed pages as they are used,
/// and nearly nothing is written here. What a driver keeps for itself may lie in its first page.
void ZeroFreshMemory(unsigned char* address, size_t size, int descriptor);

}  // namespace lumora::platform

#endif  // LUMORA_PLATFORM_LINUX_FRESH_MEMORY_H_
