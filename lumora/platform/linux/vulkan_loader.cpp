// SPDX-License-Identifier: Apache-2.0
#include "lumora/platform/linux/vulkan_loader.h"

#include <dlfcn.h>

#include <array>
#include <cstring>

namespace lumora::platform {
namespace {

// The functions needed to find and open a device.
struct Instance {
  VkInstance handle = VK_NULL_HANDLE;
  PFN_vkGetInstanceProcAddr get = nullptr;

  template <typename Function>
  Function function(const char* name) const {
    return reinterpret_cast<Function>(get(handle, name));
  }
};

// The loader stays open for the life of the process: devices call into it.
std::optional<Instance> CreateInstance() {
  void* const loader = dlopen("libvulkan.so.1", RTLD_NOW | RTLD_LOCAL);
  if (loader == nullptr) return std::nullopt;
  Instance instance;
  instance.get =
      reinterpret_cast<PFN_vkGetInstanceProcAddr>(dlsym(loader, "vkGetInstanceProcAddr"));
  if (instance.get == nullptr) return std::nullopt;

  VkApplicationInfo application{};
  application.sType = VK_STRUCTURE_TYPE_APPLICATION_INFO;
  application.apiVersion = VK_API_VERSION_1_1;
  VkInstanceCreateInfo info{};
  info.sType = VK_STRUCTURE_TYPE_INSTANCE_CREATE_INFO;
  info.pApplicationInfo = &application;
  const auto create = instance.function<PFN_vkCreateInstance>("vkCreateInstance");
  if (create == nullptr || create(&info, nullptr, &instance.handle) != VK_SUCCESS) {
    return std::nullopt;
  }
  return instance;
}

bool HasIdentity(const Instance& instance, VkPhysicalDevice device,
                 const DeviceIdentity& identity) {
  VkPhysicalDeviceIDProperties ids{};
  ids.sType = VK_STRUCTURE_TYPE_PHYSICAL_DEVICE_ID_PROPERTIES;
  VkPhysicalDeviceProperties2 properties{};
  properties.sType = VK_STRUCTURE_TYPE_PHYSICAL_DEVICE_PROPERTIES_2;
  properties.pNext = &ids;
  instance.function<PFN_vkGetPhysicalDeviceProperties2>("vkGetPhysicalDeviceProperties2")(
      device, &properties);
  return properties.properties.apiVersion >= VK_API_VERSION_1_1 &&
         std::memcmp(ids.deviceUUID, identity.device.data(), identity.device.size()) == 0 &&
         std::memcmp(ids.driverUUID, identity.driver.data(), identity.driver.size()) == 0;
}

VkPhysicalDevice FindDevice(const Instance& instance, const DeviceIdentity& identity) {
  const auto enumerate =
      instance.function<PFN_vkEnumeratePhysicalDevices>("vkEnumeratePhysicalDevices");
  std::array<VkPhysicalDevice, 32> devices{};  // more than any machine has
  auto count = static_cast<uint32_t>(devices.size());
  enumerate(instance.handle, &count, devices.data());
  for (uint32_t i = 0; i < count; ++i) {
    if (HasIdentity(instance, devices[i], identity)) return devices[i];
  }
  return VK_NULL_HANDLE;
}

// Whether shared images can be exported. Memory that must belong to one image alone does not do,
// because a buffer has slack behind its rows.
bool ExportsImages(const Instance& instance, VkPhysicalDevice device) {
  const VkImageCreateInfo image = SharedImage(1, 1, nullptr);
  VkPhysicalDeviceExternalImageFormatInfo external{};
  external.sType = VK_STRUCTURE_TYPE_PHYSICAL_DEVICE_EXTERNAL_IMAGE_FORMAT_INFO;
  external.handleType = VK_EXTERNAL_MEMORY_HANDLE_TYPE_OPAQUE_FD_BIT;
  VkPhysicalDeviceImageFormatInfo2 query{};
  query.sType = VK_STRUCTURE_TYPE_PHYSICAL_DEVICE_IMAGE_FORMAT_INFO_2;
  query.pNext = &external;
  query.format = image.format;
  query.type = image.imageType;
  query.tiling = image.tiling;
  query.usage = image.usage;
  VkExternalImageFormatProperties offered{};
  offered.sType = VK_STRUCTURE_TYPE_EXTERNAL_IMAGE_FORMAT_PROPERTIES;
  VkImageFormatProperties2 answer{};
  answer.sType = VK_STRUCTURE_TYPE_IMAGE_FORMAT_PROPERTIES_2;
  answer.pNext = &offered;
  const auto ask = instance.function<PFN_vkGetPhysicalDeviceImageFormatProperties2>(
      "vkGetPhysicalDeviceImageFormatProperties2");
  if (ask(device, &query, &answer) != VK_SUCCESS) return false;
  const VkExternalMemoryFeatureFlags features =
      offered.externalMemoryProperties.externalMemoryFeatures;
  return (features & VK_EXTERNAL_MEMORY_FEATURE_EXPORTABLE_BIT) != 0 &&
         (features & VK_EXTERNAL_MEMORY_FEATURE_DEDICATED_ONLY_BIT) == 0;
}

VkDevice CreateDevice(const Instance& instance, VkPhysicalDevice physical) {
  constexpr float kPriority = 1.0f;
  VkDeviceQueueCreateInfo queue{};  // a device needs one; nothing is submitted to it
  queue.sType = VK_STRUCTURE_TYPE_DEVICE_QUEUE_CREATE_INFO;
  queue.queueCount = 1;
  queue.pQueuePriorities = &kPriority;
  const char* const extension = VK_KHR_EXTERNAL_MEMORY_FD_EXTENSION_NAME;
  VkDeviceCreateInfo info{};
  info.sType = VK_STRUCTURE_TYPE_DEVICE_CREATE_INFO;
  info.queueCreateInfoCount = 1;
  info.pQueueCreateInfos = &queue;
  info.enabledExtensionCount = 1;
  info.ppEnabledExtensionNames = &extension;
  VkDevice device = VK_NULL_HANDLE;
  const auto create = instance.function<PFN_vkCreateDevice>("vkCreateDevice");
  return create(physical, &info, nullptr, &device) == VK_SUCCESS ? device : VK_NULL_HANDLE;
}

}  // namespace

std::optional<OpenedVulkanDevice> OpenVulkanDevice(const DeviceIdentity& identity) {
  const std::optional<Instance> instance = CreateInstance();
  if (!instance) return std::nullopt;
  OpenedVulkanDevice opened{};
  const VkPhysicalDevice physical = FindDevice(*instance, identity);
  if (physical != VK_NULL_HANDLE && ExportsImages(*instance, physical)) {
    opened.device = CreateDevice(*instance, physical);
  }
  if (opened.device == VK_NULL_HANDLE) {
    instance->function<PFN_vkDestroyInstance>("vkDestroyInstance")(instance->handle, nullptr);
    return std::nullopt;
  }
  instance->function<PFN_vkGetPhysicalDeviceMemoryProperties>(
      "vkGetPhysicalDeviceMemoryProperties")(physical, &opened.memory_types);
  opened.get_proc_address = instance->function<PFN_vkGetDeviceProcAddr>("vkGetDeviceProcAddr");
  return opened;
}

VkImageCreateInfo SharedImage(uint32_t width, uint32_t height, const void* next) {
  VkImageCreateInfo info{};
  info.sType = VK_STRUCTURE_TYPE_IMAGE_CREATE_INFO;
  info.pNext = next;
  info.imageType = VK_IMAGE_TYPE_2D;
  info.format = VK_FORMAT_R8G8B8A8_UNORM;
  info.extent = {width, height, 1};
  info.mipLevels = 1;
  info.arrayLayers = 1;
  info.samples = VK_SAMPLE_COUNT_1_BIT;
  info.tiling = VK_IMAGE_TILING_LINEAR;
  info.usage = VK_IMAGE_USAGE_SAMPLED_BIT | VK_IMAGE_USAGE_COLOR_ATTACHMENT_BIT;
  return info;
}

}  // namespace lumora::platform
