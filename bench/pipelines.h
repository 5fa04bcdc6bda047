// SPDX-License-Identifier: Apache-2.0
// Pipelines on a device of one's choice, and frames for them.
#ifndef LUMORA_BENCH_PIPELINES_H_
#define LUMORA_BENCH_PIPELINES_H_

#include <memory>

#include "bench/scene.h"
#include "lumora/pipeline/pipeline.h"

namespace lumora::bench {

/// The strength of whitening, on the pipeline's scale.
constexpr int kWhiten = 40;

/// Throws where there is none.
std::unique_ptr<Pipeline> MakePipeline(Device device, int threads = 1);

/// A tightly packed frame in NV21.
FrameView ViewOf(const Buffer& frame, Size size);
ConstFrameView ConstViewOf(const Buffer& frame, Size size);

/// One frame, which must succeed. Both may be the same memory.
void ProcessFrame(Pipeline& pipeline, const Buffer& in, const Buffer& out, Size size,
                  const Face& face, const Look& look, Chain chain);

}  // namespace lumora::bench

#endif  // LUMORA_BENCH_PIPELINES_H_
