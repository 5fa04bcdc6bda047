// SPDX-License-Identifier: Apache-2.0
// A frame's way through images in imported memory, as the engine goes it.
#ifndef LUMORA_PLATFORM_LINUX_MEMORY_OBJECT_REHEARSAL_H_
#define LUMORA_PLATFORM_LINUX_MEMORY_OBJECT_REHEARSAL_H_

#include "lumora/platform/linux/vulkan_memory.h"

namespace lumora::platform {

/// Whether frames of two sizes come out of images in the memory of `device` as they must, several
/// times over. Each is written by the CPU, copied to a second image, drawn over there and into a
/// third by a shader within a rectangle, and read by the CPU, which by then has written the next
/// frame over it. Compares every byte.
/// Context: current, with the state it was made with; nothing else may be done with it afterwards.
bool RehearseFrames(const VulkanMemory& device);

}  // namespace lumora::platform

#endif  // LUMORA_PLATFORM_LINUX_MEMORY_OBJECT_REHEARSAL_H_
