// SPDX-License-Identifier: Apache-2.0
// Images in one memory for CPU and GPU: Vulkan memory, imported by GL_EXT_memory_object_fd.
#ifndef LUMORA_PLATFORM_LINUX_MEMORY_OBJECT_H_
#define LUMORA_PLATFORM_LINUX_MEMORY_OBJECT_H_

#include <memory>

#include "lumora/platform/buffer/buffer_backing.h"
#include "lumora/platform/linux/vulkan_memory.h"

namespace lumora::platform {

/// The Vulkan device of the current context; null without a context or where GL imports no memory.
const VulkanMemory* CurrentMemoryDevice();

/// An image in the memory of `device`; null when the device does not lay out its rows by the
/// geometry. Its GL side falls back to copies in a context that cannot import the memory. Throws
/// std::bad_alloc.
std::unique_ptr<BufferBacking> MakeMemoryObjectBacking(const VulkanMemory& device,
                                                       const BufferGeometry& geometry);

}  // namespace lumora::platform

#endif  // LUMORA_PLATFORM_LINUX_MEMORY_OBJECT_H_
