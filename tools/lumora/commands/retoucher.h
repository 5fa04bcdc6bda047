// SPDX-License-Identifier: Apache-2.0
// The pipeline as the commands use it: planes of pictures, and Failures instead of Statuses.
#ifndef LUMORA_TOOLS_COMMANDS_RETOUCHER_H_
#define LUMORA_TOOLS_COMMANDS_RETOUCHER_H_

#include <functional>
#include <memory>
#include <vector>

#include "lumora/pipeline/pipeline.h"
#include "tools/lumora/picture/planes.h"

namespace lumora::tools {

class Retoucher {
 public:
  /// Starts what computes the pictures. Throws Failure (NoDisplay, Failed, or Usage for a
  /// LUMORA_DEVICE that there is not).
  explicit Retoucher(Device device);

  /// The frame with the look applied to its faces. Throws Failure (Failed).
  Frame420 Process(const Frame420& frame, const std::vector<Face>& faces, const Look& look,
                   Report* report = nullptr, Chain chain = Chain::Auto);

  /// What `work`, one of the pipeline's operations, makes of the frame. Throws Failure (Failed).
  using Work = std::function<Status(Pipeline&, const ConstFrameView& in, const FrameView& out)>;
  Frame420 Run(const Frame420& frame, const Work& work);

  Pipeline& pipeline() { return *pipeline_; }

 private:
  std::unique_ptr<Pipeline> pipeline_;
};

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_COMMANDS_RETOUCHER_H_
