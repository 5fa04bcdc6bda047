#include "tools/lumora/commands/report_json.h"

#include <sys/resource.h>

#include <chrono>

namespace lumora::tools {

using Json = nlohmann::ordered_json;

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

double PeakMemory() {
  rusage usage = {};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) / 1024;
}

double Now() {
  const std::chrono::duration<double, std::milli> since =
      std::chrono::steady_clock::now().time_since_epoch();
  return since.count();
}

}  // namespace lumora::tools
