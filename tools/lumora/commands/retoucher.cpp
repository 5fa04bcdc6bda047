// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/commands/retoucher.h"

#include "tools/lumora/support/failure.h"

namespace lumora::tools {

Retoucher::Retoucher(Device device) {
  Status status;
  PipelineOptions options;
  options.device = device;
  pipeline_ = Pipeline::Create(options, &status);
  ThrowUnlessMade(status);
}

Frame420 Retoucher::Process(const Frame420& frame, const std::vector<Face>& faces, const Look& look,
                            Report* report, Chain chain) {
  return Run(frame, [&](Pipeline& pipeline, const ConstFrameView& in, const FrameView& out) {
    return pipeline.Process({in, out, faces, look, chain}, report);
  });
}

Frame420 Retoucher::Run(const Frame420& frame, const Work& work) {
  Frame420 result = frame;
  ThrowUnlessOk(work(*pipeline_, frame.View(), result.MutableView()));
  return result;
}

}  // namespace lumora::tools
