// SPDX-License-Identifier: Apache-2.0
// Reports for machines: printing them, and the parts that several commands share.
#ifndef LUMORA_TOOLS_COMMANDS_REPORT_JSON_H_
#define LUMORA_TOOLS_COMMANDS_REPORT_JSON_H_

#include <nlohmann/json_fwd.hpp>
#include <vector>

#include "lumora/pipeline/look.h"
#include "lumora/pipeline/report.h"

namespace lumora::tools {

/// A report on standard output. Throws Failure (Failed) when it cannot be written.
void PrintReport(const nlohmann::ordered_json& report);

nlohmann::ordered_json LookJson(const Look& look);

nlohmann::ordered_json BlocksJson(const std::vector<PixelRect>& blocks);

/// What whitening measured, one entry a whitened face.
nlohmann::ordered_json TonesJson(const std::vector<FaceTone>& tones);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_COMMANDS_REPORT_JSON_H_
