// SPDX-License-Identifier: Apache-2.0
// CPU-visible memory of a Vulkan device that OpenGL ES can import: the device that GL itself draws
// with, found by its identifiers. The Vulkan loader is opened at run time; without it there is
// none.
#ifndef LUMORA_PLATFORM_LINUX_VULKAN_MEMORY_H_
#define LUMORA_PLATFORM_LINUX_VULKAN_MEMORY_H_

#include <cstddef>
#include <optional>

#include "lumora/platform/buffer/buffer_geometry.h"
#include "lumora/platform/linux/vulkan_loader.h"

namespace lumora::platform {

/// Memory mapped for the CPU for its whole life.
struct VulkanAllocation {
  VkDeviceMemory memory;
  unsigned char* address;
  size_t size;  ///< bytes
};

/// One Vulkan device. Lives as long as the process. Thread-safe.
class VulkanMemory {
 public:
  /// The device with this identity; null when there is none or it cannot export memory.
  static const VulkanMemory* Find(const DeviceIdentity& identity);

  /// Zeroed memory that holds an RGBA image with the geometry's size, rows and slack. Nothing where
  /// the device lays out rows in another way, or has no such memory left.
  std::optional<VulkanAllocation> Allocate(const BufferGeometry& geometry) const;
  void Release(const VulkanAllocation& allocation) const;

  /// A file descriptor of the memory, owned by the caller; -1 on failure.
  int ExportDescriptor(const VulkanAllocation& allocation) const;

 private:
  struct Functions {
    PFN_vkCreateImage vkCreateImage;
    PFN_vkDestroyImage vkDestroyImage;
    PFN_vkGetImageMemoryRequirements vkGetImageMemoryRequirements;
    PFN_vkGetImageSubresourceLayout vkGetImageSubresourceLayout;
    PFN_vkAllocateMemory vkAllocateMemory;
    PFN_vkFreeMemory vkFreeMemory;
    PFN_vkMapMemory vkMapMemory;
    PFN_vkGetMemoryFdKHR vkGetMemoryFdKHR;
  };

  VulkanMemory() = default;
  bool Open(const DeviceIdentity& identity);
  std::optional<VkMemoryRequirements> Requirements(const BufferGeometry& geometry) const;
  std::optional<uint32_t> MemoryType(uint32_t allowed) const;

  VkDevice device_ = VK_NULL_HANDLE;
  VkPhysicalDeviceMemoryProperties types_{};
  Functions call_{};
};

}  // namespace lumora::platform

#endif  // LUMORA_PLATFORM_LINUX_VULKAN_MEMORY_H_
