// The Vulkan loader and a device opened by it.
#ifndef LUMORA_PLATFORM_LINUX_VULKAN_LOADER_H_
#define LUMORA_PLATFORM_LINUX_VULKAN_LOADER_H_

#include "lumora/platform/linux/vulkan_memory.h"

namespace lumora::platform {

struct OpenedVulkanDevice {
  VkDevice device;
  VkPhysicalDeviceMemoryProperties memory_types;
  PFN_vkGetDeviceProcAddr get_proc_address;
};

/// Opens the device with this identity, with memory export enabled. Nothing where the loader is not
/// installed, no device matches, or linear RGBA images of the device cannot be exported as file
/// descriptors together with memory around them.
std::optional<OpenedVulkanDevice> OpenVulkanDevice(const DeviceIdentity& identity);

/// The images that GL shares with Vulkan: linear RGBA, sampled and drawn into.
VkImageCreateInfo SharedImage(uint32_t width, uint32_t height, const void* next);

}  // namespace lumora::platform

#endif  // LUMORA_PLATFORM_LINUX_VULKAN_LOADER_H_
