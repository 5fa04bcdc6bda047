// SPDX-License-Identifier: Apache-2.0
// Proof that images in imported memory really are one memory for CPU and GPU here.
#ifndef LUMORA_PLATFORM_LINUX_MEMORY_OBJECT_PROOF_H_
#define LUMORA_PLATFORM_LINUX_MEMORY_OBJECT_PROOF_H_

#include "lumora/platform/linux/vulkan_memory.h"

namespace lumora::platform {

/// The Vulkan device of the current context when images in its memory passed the proof, else null.
/// GL cannot tell how it lays out imported memory, nor how far its finish can be trusted, so frames
/// are rehearsed in a context of its own; once a display.
/// Thread-safe; the current context is as before afterwards.
const VulkanMemory* ProvenMemoryDevice();

}  // namespace lumora::platform

#endif  // LUMORA_PLATFORM_LINUX_MEMORY_OBJECT_PROOF_H_
