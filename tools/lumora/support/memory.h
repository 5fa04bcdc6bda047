// SPDX-License-Identifier: Apache-2.0
// How much memory there is, and whether some work may have what it needs.
#ifndef LUMORA_TOOLS_SUPPORT_MEMORY_H_
#define LUMORA_TOOLS_SUPPORT_MEMORY_H_

#include <cstdint>
#include <string>

namespace lumora::tools {

/// Work may take half of the memory.
inline constexpr uint64_t kMemoryParts = 2;

/// The bytes that this process can have at most: the machine's memory, or less where a control
/// group or a resource limit allows less. `root` stands before the paths of the system's files.
uint64_t MemoryLimit(const std::string& root = {});

/// Throws Failure (Unreadable) when the work on the input `name` needs more than that.
void CheckMemory(uint64_t bytes, const std::string& name);

/// The largest amount of memory that the process has held so far, in MiB.
double PeakMemory();

/// Throws std::bad_alloc when the exception that is being handled is how a library that starts
/// threads says that memory is short.
void RethrowIfOutOfMemory();

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_SUPPORT_MEMORY_H_
