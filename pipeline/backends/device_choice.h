// SPDX-License-Identifier: Apache-2.0
// Which device a pipeline computes on.
#ifndef LUMORA_PIPELINE_BACKENDS_DEVICE_CHOICE_H_
#define LUMORA_PIPELINE_BACKENDS_DEVICE_CHOICE_H_

#include <string>

#include "lumora/pipeline/device.h"
#include "lumora/pipeline/status.h"

namespace lumora {

/// The name of the environment variable that holds where Device::Auto is asked for.
inline constexpr char kDeviceSetting[] = "LUMORA_DEVICE";

/// A device, and why this one: a sentence without its full stop.
struct DeviceChoice {
  Device device = Device::Auto;
  std::string reason;
};

/// What a backend tells, with what the choice adds to it.
inline DeviceInfo Chosen(const DeviceChoice& choice, DeviceInfo info) {
  info.device = choice.device;
  info.reason = choice.reason;
  return info;
}

/// What a request for `asked` comes to where the setting is `setting`, null or empty when there is
/// none. The reason is empty for Auto. InvalidArgument for what is no device.
Status SettleWish(Device asked, const char* setting, DeviceChoice* wish);

}  // namespace lumora

#endif  // LUMORA_PIPELINE_BACKENDS_DEVICE_CHOICE_H_
