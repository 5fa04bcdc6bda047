// Parts of the reports for machines that several commands share.
#ifndef LUMORA_TOOLS_COMMANDS_REPORT_JSON_H_
#define LUMORA_TOOLS_COMMANDS_REPORT_JSON_H_

#include <nlohmann/json.hpp>
#include <vector>

#include "lumora/pipeline/report.h"

namespace lumora::tools {

nlohmann::ordered_json BlocksJson(const std::vector<PixelRect>& blocks);

/// What whitening measured, one entry a whitened face.
nlohmann::ordered_json TonesJson(const std::vector<FaceTone>& tones);

/// The largest amount of memory that the process has held so far, in MiB.
double PeakMemory();

/// Milliseconds of a clock that never goes back.
double Now();

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_COMMANDS_REPORT_JSON_H_
