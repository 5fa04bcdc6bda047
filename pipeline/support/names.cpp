// SPDX-License-Identifier: Apache-2.0
#include <optional>
#include <string_view>

#include "lumora/pipeline/chain.h"
#include "lumora/pipeline/device.h"

namespace lumora {

const char* Name(ChainUsed chain) {
  switch (chain) {
    case ChainUsed::NoCall:
      break;
    case ChainUsed::None:
      return "none";
    case ChainUsed::Preview:
      return "preview";
    case ChainUsed::Capture:
      return "capture";
    case ChainUsed::Convert:
      return "convert";
  }
  return "";
}

const char* Name(Device device) {
  switch (device) {
    case Device::Auto:
      return "auto";
    case Device::Gl:
      return "gl";
    case Device::Cpu:
      return "cpu";
  }
  return "";
}

std::optional<Device> FindDevice(std::string_view name) {
  for (const Device device : {Device::Auto, Device::Gl, Device::Cpu}) {
    if (name == Name(device)) return device;
  }
  return std::nullopt;
}

const char* Name(BufferKind kind) {
  switch (kind) {
    case BufferKind::None:
      break;
    case BufferKind::Staged:
      return "staged";
    case BufferKind::MemoryObject:
      return "memobj";
    case BufferKind::DmaBuf:
      return "dmabuf";
    case BufferKind::HardwareBuffer:
      return "hardware buffer";
  }
  return "";
}

const char* Name(DisplaySource source) {
  switch (source) {
    case DisplaySource::None:
      return "none";
    case DisplaySource::Default:
      return "default display";
    case DisplaySource::Device:
      return "EGL device";
    case DisplaySource::SoftwareDevice:
      return "EGL device (software)";
    case DisplaySource::Surfaceless:
      return "surfaceless platform";
  }
  return "";
}

}  // namespace lumora
