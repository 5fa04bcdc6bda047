// SPDX-License-Identifier: Apache-2.0
#include "pipeline/backends/device_choice.h"

#include <optional>

#include "pipeline/support/failure.h"

namespace lumora {

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

}  // namespace lumora
