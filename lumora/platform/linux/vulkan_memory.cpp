// SPDX-License-Identifier: Apache-2.0
#include "lumora/platform/linux/vulkan_memory.h"

#include <algorithm>
#include <memory>
#include <mutex>
#include <vector>

#include "lumora/platform/descriptor.h"
#include "lumora/platform/immortal.h"
#include "lumora/platform/linux/fresh_memory.h"
#include "lumora/platform/out_of_memory.h"

namespace lumora::platform {
namespace {

// Uncached memory would be slower to read than any copy.
constexpr VkMemoryPropertyFlags kWantedMemory = VK_MEMORY_PROPERTY_HOST_VISIBLE_BIT |
                                                VK_MEMORY_PROPERTY_HOST_COHERENT_BIT |
                                                VK_MEMORY_PROPERTY_HOST_CACHED_BIT;

// The answer for one identity: a device, or none.
struct Known {
  DeviceIdentity identity;
  const VulkanMemory* device;
};

struct Answers {
  std::mutex mutex;
  std::vector<Known> known;
};

}  // namespace

const VulkanMemory* VulkanMemory::Find(const DeviceIdentity& identity) {
  // The devices are never closed either: buffers of static objects may outlive any other static.
  static Immortal<Answers> answers;
  const std::lock_guard<std::mutex> guard((*answers).mutex);
  std::vector<Known>& known = (*answers).known;
  for (const Known& answer : known) {
    if (answer.identity.device == identity.device && answer.identity.driver == identity.driver) {
      return answer.device;
    }
  }
  return UnlessOutOfMemory<const VulkanMemory*>(nullptr, [&] {
    known.reserve(known.size() + 1);  // before anything is opened
    std::unique_ptr<VulkanMemory> device(new VulkanMemory);
    if (!device->Open(identity)) device.reset();
    known.push_back({identity, device.get()});
    return device.release();
  });
}

bool VulkanMemory::Open(const DeviceIdentity& identity) {
  const std::optional<OpenedVulkanDevice> opened = OpenVulkanDevice(identity);
  if (!opened) return false;
  device_ = opened->device;
  types_ = opened->memory_types;
  bool complete = true;
  const auto look = [&](auto& function, const char* name) {
    function = reinterpret_cast<std::remove_reference_t<decltype(function)>>(
        opened->get_proc_address(device_, name));
    complete = complete && function != nullptr;
  };
  look(call_.vkCreateImage, "vkCreateImage");
  look(call_.vkDestroyImage, "vkDestroyImage");
  look(call_.vkGetImageMemoryRequirements, "vkGetImageMemoryRequirements");
  look(call_.vkGetImageSubresourceLayout, "vkGetImageSubresourceLayout");
  look(call_.vkAllocateMemory, "vkAllocateMemory");
  look(call_.vkFreeMemory, "vkFreeMemory");
  look(call_.vkMapMemory, "vkMapMemory");
  look(call_.vkGetMemoryFdKHR, "vkGetMemoryFdKHR");
  return complete;
}

std::optional<VulkanAllocation> VulkanMemory::Allocate(const BufferGeometry& geometry) const {
  const std::optional<VkMemoryRequirements> needed = Requirements(geometry);
  if (!needed) return std::nullopt;
  const std::optional<uint32_t> type = MemoryType(needed->memoryTypeBits);
  if (!type) return std::nullopt;

  VkExportMemoryAllocateInfo exported{};
  exported.sType = VK_STRUCTURE_TYPE_EXPORT_MEMORY_ALLOCATE_INFO;
  exported.handleTypes = VK_EXTERNAL_MEMORY_HANDLE_TYPE_OPAQUE_FD_BIT;
  VkMemoryAllocateInfo info{};
  info.sType = VK_STRUCTURE_TYPE_MEMORY_ALLOCATE_INFO;
  info.pNext = &exported;
  info.allocationSize = std::max<VkDeviceSize>(needed->size, geometry.size);
  info.memoryTypeIndex = *type;
  VulkanAllocation allocation{};
  allocation.size = static_cast<size_t>(info.allocationSize);
  if (call_.vkAllocateMemory(device_, &info, nullptr, &allocation.memory) != VK_SUCCESS) {
    return std::nullopt;
  }
  void* address = nullptr;
  if (call_.vkMapMemory(device_, allocation.memory, 0, VK_WHOLE_SIZE, 0, &address) != VK_SUCCESS) {
    call_.vkFreeMemory(device_, allocation.memory, nullptr);
    return std::nullopt;
  }
  allocation.address = static_cast<unsigned char*>(address);
  const Descriptor descriptor(ExportDescriptor(allocation));
  ZeroFreshMemory(allocation.address, allocation.size, descriptor.Get());
  return allocation;
}

void VulkanMemory::Release(const VulkanAllocation& allocation) const {
  call_.vkFreeMemory(device_, allocation.memory, nullptr);  // unmaps as well
}

int VulkanMemory::ExportDescriptor(const VulkanAllocation& allocation) const {
  VkMemoryGetFdInfoKHR info{};
  info.sType = VK_STRUCTURE_TYPE_MEMORY_GET_FD_INFO_KHR;
  info.memory = allocation.memory;
  info.handleType = VK_EXTERNAL_MEMORY_HANDLE_TYPE_OPAQUE_FD_BIT;
  int descriptor = -1;
  return call_.vkGetMemoryFdKHR(device_, &info, &descriptor) == VK_SUCCESS ? descriptor : -1;
}

// What memory an image of this size needs; nothing when its rows do not lie as the geometry says.
std::optional<VkMemoryRequirements> VulkanMemory::Requirements(
    const BufferGeometry& geometry) const {
  if (geometry.width == 0 || geometry.height == 0) return std::nullopt;
  VkExternalMemoryImageCreateInfo external{};
  external.sType = VK_STRUCTURE_TYPE_EXTERNAL_MEMORY_IMAGE_CREATE_INFO;
  external.handleTypes = VK_EXTERNAL_MEMORY_HANDLE_TYPE_OPAQUE_FD_BIT;
  const VkImageCreateInfo info = SharedImage(geometry.width, geometry.height, &external);
  VkImage image = VK_NULL_HANDLE;
  if (call_.vkCreateImage(device_, &info, nullptr, &image) != VK_SUCCESS) return std::nullopt;
  constexpr VkImageSubresource kColor = {VK_IMAGE_ASPECT_COLOR_BIT, 0, 0};
  VkSubresourceLayout layout{};
  VkMemoryRequirements needed{};
  call_.vkGetImageSubresourceLayout(device_, image, &kColor, &layout);
  call_.vkGetImageMemoryRequirements(device_, image, &needed);
  call_.vkDestroyImage(device_, image, nullptr);
  if (layout.offset != 0 || layout.rowPitch != geometry.RowBytes()) return std::nullopt;
  return needed;
}

std::optional<uint32_t> VulkanMemory::MemoryType(uint32_t allowed) const {
  for (uint32_t type = 0; type < types_.memoryTypeCount; ++type) {
    const VkMemoryPropertyFlags offered = types_.memoryTypes[type].propertyFlags;
    if ((allowed & (1u << type)) != 0 && (offered & kWantedMemory) == kWantedMemory) return type;
  }
  return std::nullopt;
}

}  // namespace lumora::platform
