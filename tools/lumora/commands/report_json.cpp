// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/commands/report_json.h"

#include <nlohmann/json.hpp>
#include <string>

#include "tools/lumora/options/look_options.h"
#include "tools/lumora/support/files.h"

namespace lumora::tools {

using Json = nlohmann::ordered_json;

void PrintReport(const Json& report) {
  // Paths need not be UTF-8; what is not is shown by a replacement character.
  const std::string text = report.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
  WriteWhole(kStandardStream, Bytes(text.begin(), text.end()));
}

Json DeviceJson(Device device) {
  return device == Device::Auto ? Json() : Json(Name(device));
}

std::string DeviceText(const DeviceInfo& device) {
  if (device.device != Device::Cpu) {
    return device.renderer + ", " + Name(device.buffer_kind);
  }
  return std::string(Name(Device::Cpu)) + ", " + device.simd + ", " +
         std::to_string(device.threads) + (device.threads == 1 ? " thread" : " threads");
}

Json LookJson(const Look& look) {
  return {{"slim", look.slim},
          {"whiten", look.whiten},
          {"saturate", look.saturate},
          {"effect", NameOf(look.effect)}};
}

Json BlocksJson(const std::vector<PixelRect>& blocks) {
  Json json = Json::array();
  for (const PixelRect& block : blocks) {
    json.push_back({block.x, block.y, block.width, block.height});
  }
  return json;
}

Json TonesJson(const std::vector<FaceTone>& tones) {
  Json json = Json::array();
  for (const FaceTone& tone : tones) {
    json.push_back({{"face", tone.face},
                    {"mean_intensity", tone.mean_intensity},
                    {"mean_saturation", tone.mean_saturation},
                    {"intensity_shifted", tone.intensity_shifted},
                    {"saturation_shifted", tone.saturation_shifted}});
  }
  return json;
}

}  // namespace lumora::tools
