// SPDX-License-Identifier: Apache-2.0
#include "bench/pipelines.h"

#include "bench/counters.h"

namespace lumora::bench {

std::unique_ptr<Pipeline> MakePipeline(Device device, int threads) {
  Status status;
  PipelineOptions options;
  options.device = device;
  options.threads = threads;
  auto pipeline = Pipeline::Create(options, &status);
  Require(pipeline != nullptr, status.message);
  return pipeline;
}

FrameView ViewOf(const Buffer& frame, Size size) {
  return {PixelFormat::NV21,
          size.width,
          size.height,
          {frame.data(), frame.data() + size.Pixels(), nullptr},
          {size.width, size.width, 0}};
}

ConstFrameView ConstViewOf(const Buffer& frame, Size size) {
  return AsConst(ViewOf(frame, size));
}

void ProcessFrame(Pipeline& pipeline, const Buffer& in, const Buffer& out, Size size,
                  const Face& face, const Look& look, Chain chain) {
  const Status done =
      pipeline.Process({ConstViewOf(in, size), ViewOf(out, size), face, look, chain});
  Require(done.ok(), done.message);
}

}  // namespace lumora::bench
