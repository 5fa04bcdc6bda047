// SPDX-License-Identifier: Apache-2.0
// Reports: printing those for machines, and the parts that several commands share.
#ifndef LUMORA_TOOLS_COMMANDS_REPORT_JSON_H_
#define LUMORA_TOOLS_COMMANDS_REPORT_JSON_H_

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "lumora/pipeline/device.h"
#include "lumora/pipeline/look.h"
#include "lumora/pipeline/report.h"

namespace lumora::tools {

/// A report on standard output. Throws Failure (Failed) when it cannot be written.
void PrintReport(const nlohmann::ordered_json& report);

/// The device's name; null for Auto, where none was used.
nlohmann::ordered_json DeviceJson(Device device);

/// The device for people: "cpu, AVX2, 1 thread", or the renderer and the kind of buffers.
std::string DeviceText(const DeviceInfo& device);

nlohmann::ordered_json LookJson(const Look& look);

nlohmann::ordered_json BlocksJson(const std::vector<PixelRect>& blocks);

/// What whitening measured, one entry a whitened face.
nlohmann::ordered_json TonesJson(const std::vector<FaceTone>& tones);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_COMMANDS_REPORT_JSON_H_
