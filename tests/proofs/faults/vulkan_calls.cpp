// SPDX-License-Identifier: Apache-2.0
// Vulkan calls that can fail. The library finds them by name, one through the other: from the
// loader, from there the device's, from there the functions.
// NOLINTBEGIN(bugprone-reserved-identifier): the linker's names.
#define VK_NO_PROTOTYPES
#include <vulkan/vulkan_core.h>

#include <cstring>

#include "proofs/faults/fault_switch.h"

extern "C" void* __real_dlsym(void* library, const char* name);

namespace {

using lumora::test::Call;
using lumora::test::Fails;

PFN_vkGetInstanceProcAddr g_get_instance = nullptr;
PFN_vkGetDeviceProcAddr g_get_device = nullptr;
PFN_vkCreateImage g_create_image = nullptr;
PFN_vkAllocateMemory g_allocate = nullptr;
PFN_vkMapMemory g_map = nullptr;
PFN_vkGetMemoryFdKHR g_export = nullptr;

VKAPI_ATTR VkResult VKAPI_CALL CreateImage(VkDevice device, const VkImageCreateInfo* info,
                                           const VkAllocationCallbacks* callbacks, VkImage* image) {
  if (Fails(Call::VulkanImage)) return VK_ERROR_OUT_OF_DEVICE_MEMORY;
  return g_create_image(device, info, callbacks, image);
}

VKAPI_ATTR VkResult VKAPI_CALL Allocate(VkDevice device, const VkMemoryAllocateInfo* info,
                                        const VkAllocationCallbacks* callbacks,
                                        VkDeviceMemory* memory) {
  if (Fails(Call::VulkanAllocation)) return VK_ERROR_OUT_OF_DEVICE_MEMORY;
  return g_allocate(device, info, callbacks, memory);
}

VKAPI_ATTR VkResult VKAPI_CALL Map(VkDevice device, VkDeviceMemory memory, VkDeviceSize offset,
                                   VkDeviceSize size, VkMemoryMapFlags flags, void** address) {
  if (Fails(Call::VulkanMapping)) return VK_ERROR_MEMORY_MAP_FAILED;
  return g_map(device, memory, offset, size, flags, address);
}

VKAPI_ATTR VkResult VKAPI_CALL Export(VkDevice device, const VkMemoryGetFdInfoKHR* info,
                                      int* descriptor) {
  if (Fails(Call::VulkanExport)) return VK_ERROR_TOO_MANY_OBJECTS;
  return g_export(device, info, descriptor);
}

// Remembers the function found and gives the one of this file.
template <typename Function>
PFN_vkVoidFunction Replace(PFN_vkVoidFunction found, Function& original, Function replacement) {
  original = reinterpret_cast<Function>(found);
  return reinterpret_cast<PFN_vkVoidFunction>(replacement);
}

VKAPI_ATTR PFN_vkVoidFunction VKAPI_CALL OfDevice(VkDevice device, const char* name) {
  const PFN_vkVoidFunction found = g_get_device(device, name);
  const auto is = [name](const char* other) { return std::strcmp(name, other) == 0; };
  if (is("vkCreateImage")) return Replace(found, g_create_image, &CreateImage);
  if (is("vkAllocateMemory")) return Replace(found, g_allocate, &Allocate);
  if (is("vkMapMemory")) return Replace(found, g_map, &Map);
  if (is("vkGetMemoryFdKHR")) return Replace(found, g_export, &Export);
  return found;
}

VKAPI_ATTR PFN_vkVoidFunction VKAPI_CALL OfInstance(VkInstance instance, const char* name) {
  const PFN_vkVoidFunction found = g_get_instance(instance, name);
  if (std::strcmp(name, "vkGetDeviceProcAddr") != 0) return found;
  return Replace(found, g_get_device, &OfDevice);
}

}  // namespace

extern "C" void* __wrap_dlsym(void* library, const char* name) {
  void* const found = __real_dlsym(library, name);
  if (found == nullptr || std::strcmp(name, "vkGetInstanceProcAddr") != 0) return found;
  g_get_instance = reinterpret_cast<PFN_vkGetInstanceProcAddr>(found);
  return reinterpret_cast<void*>(&OfInstance);
}
// NOLINTEND(bugprone-reserved-identifier)
