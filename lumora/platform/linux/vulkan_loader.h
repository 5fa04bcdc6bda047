// SPDX-License-Identifier: Apache-2.0
// The Vulkan loader and a device opened by it.
#ifndef LUMORA_PLATFORM_LINUX_VULKAN_LOADER_H_
#define LUMORA_PLATFORM_LINUX_VULKAN_LOADER_H_

#define VK_NO_PROTOTYPES
#include <vulkan/vulkan_core.h>

#include <array>
#include <cstdint>
#include <optional>

namespace lumora::platform {

/// What tells that two drivers speak of one device and understand each other's memory.
struct DeviceIdentity {
  std::array<unsigned char, VK_UUID_SIZE> device;
  std::array<unsigned char, VK_UUID_SIZE> driver;
};

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
