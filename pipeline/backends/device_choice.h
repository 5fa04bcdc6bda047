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

/// What can be chosen from. Each answer may cost more than the one before, so nothing is asked that
/// does not matter.
class Candidates {
 public:
  virtual ~Candidates() = default;
  virtual bool HasGpuNode() = 0;
  /// Opens gl, in place of what is open.
  virtual Status OpenGl() = 0;
  /// What gl, which is open, runs on.
  virtual DeviceInfo GlDevice() = 0;
  /// Opens cpu, in place of what is open.
  virtual Status OpenCpu() = 0;
};

/// Opens the device that was asked for, or that the setting names where that was Auto: null or
/// empty is no setting. Auto is gl on a renderer that is hardware, and cpu everywhere else.
/// Failure: InvalidArgument for what is no device; what opening a device came back with, but
/// NoDisplay only where it had to be gl.
Status ChooseDevice(Device asked, const char* setting, Candidates& candidates,
                    DeviceChoice* choice);

/// Whether a renderer of GL is a program for the CPU.
bool IsSoftware(const DeviceInfo& device);

/// What a backend tells, with what the choice adds to it.
inline DeviceInfo Chosen(const DeviceChoice& choice, DeviceInfo info) {
  info.device = choice.device;
  info.reason = choice.reason;
  return info;
}

}  // namespace lumora

#endif  // LUMORA_PIPELINE_BACKENDS_DEVICE_CHOICE_H_
