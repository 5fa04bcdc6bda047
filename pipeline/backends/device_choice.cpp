// SPDX-License-Identifier: Apache-2.0
#include "pipeline/backends/device_choice.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <string_view>
#include <utility>

#include "pipeline/support/failure.h"

namespace lumora {
namespace {

/// What the request and the setting come to; Auto has no reason.
Status SettleWish(Device asked, const char* setting, DeviceChoice* wish) {
  if (*Name(asked) == '\0') {
    return Invalid("there is no device " + std::to_string(static_cast<int>(asked)));
  }
  if (asked != Device::Auto) {
    *wish = {asked, "it was asked for"};
    return {};
  }
  *wish = {};
  if (setting == nullptr || *setting == '\0') return {};
  const std::optional<Device> found = FindDevice(setting);
  if (!found.has_value()) {
    return Invalid(std::string(kDeviceSetting) + " is \"" + setting +
                   "\", but it has to be auto, gl or cpu");
  }
  if (*found != Device::Auto) *wish = {*found, std::string(kDeviceSetting) + " asks for it"};
  return {};
}

Status OpenWanted(Candidates& candidates, Device device) {
  if (device == Device::Cpu) return candidates.OpenCpu();
  Status status = candidates.OpenGl();
  if (status.code == StatusCode::NoDisplay) status.message += "; the device cpu needs none of it";
  return status;
}

Status TakeCpu(Candidates& candidates, std::string reason, DeviceChoice* choice) {
  *choice = {Device::Cpu, std::move(reason)};
  return candidates.OpenCpu();
}

}  // namespace

Status ChooseDevice(Device asked, const char* setting, Candidates& candidates,
                    DeviceChoice* choice) {
  if (Status status = SettleWish(asked, setting, choice); !status.ok()) return status;
  if (choice->device != Device::Auto) return OpenWanted(candidates, choice->device);

  if (!candidates.HasGpuNode()) return TakeCpu(candidates, "this machine has no GPU", choice);
  if (Status status = candidates.OpenGl(); !status.ok()) {
    if (status.code != StatusCode::NoDisplay) return status;
    return TakeCpu(candidates, "gl is not to be had: " + status.message, choice);
  }
  const DeviceInfo device = candidates.GlDevice();
  if (device.renderer.empty()) return TakeCpu(candidates, "the driver of gl has no name", choice);
  if (IsSoftware(device)) {
    return TakeCpu(candidates, "gl would be drawn by software, " + device.renderer, choice);
  }
  *choice = {Device::Gl, "gl is drawn by hardware, " + device.renderer};
  return {};
}

bool IsSoftware(const DeviceInfo& device) {
  if (device.display == DisplaySource::SoftwareDevice) return true;
  std::string renderer = device.renderer;
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
  std::transform(renderer.begin(), renderer.end(), renderer.begin(), lower);
  // Also inside the names of others that draw through them, such as "zink (llvmpipe (...))".
  constexpr std::string_view kPrograms[] = {"llvmpipe",    "softpipe", "swrast",
                                            "swiftshader", "lavapipe", "software rasterizer",
                                            "basic render"};
  return std::any_of(std::begin(kPrograms), std::end(kPrograms), [&](std::string_view program) {
    return renderer.find(program) != std::string::npos;
  });
}

}  // namespace lumora
