// Slimming of one frame, as photo and demo do it.
#ifndef LUMORA_TOOLS_SUPPORT_SLIMMER_H_
#define LUMORA_TOOLS_SUPPORT_SLIMMER_H_

#include <memory>
#include <vector>

#include "pipeline/pipeline.h"
#include "tools/lumora/picture/planes.h"

namespace lumora::tools {

inline constexpr int kNaturalSlim = 40;

class Slimmer {
 public:
  /// Starts the engine. Throws Failure (NoDisplay, Failed).
  Slimmer();

  /// The frame with its faces slimmed. Throws Failure (Failed).
  Frame420 Slim(const Frame420& frame, const std::vector<Face>& faces, int slim,
                Report* report = nullptr);

  DeviceInfo Device() { return pipeline_->Device(); }

 private:
  std::unique_ptr<Pipeline> pipeline_;
};

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_SUPPORT_SLIMMER_H_
