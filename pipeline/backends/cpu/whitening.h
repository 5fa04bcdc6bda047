// SPDX-License-Identifier: Apache-2.0
// Whitening faces on the CPU.
#ifndef LUMORA_PIPELINE_BACKENDS_CPU_WHITENING_H_
#define LUMORA_PIPELINE_BACKENDS_CPU_WHITENING_H_

#include <cstdint>
#include <vector>

#include "pipeline/backends/cpu/kernels/mask_weights.h"
#include "pipeline/backends/cpu/workers.h"
#include "pipeline/plan/frame_plan.h"

namespace lumora::cpu {

/// Whitens the faces of frames, one after another, in memory that serves again and again.
class Whitening {
 public:
  /// Takes the memory for a plan.
  void Prepare(const FramePlan& plan, const Workers& workers);
  /// Whitens the faces of that plan in `frame`. Asks for no memory.
  void Draw(const FramePlan& plan, const FrameView& frame, Workers& workers);

 private:
  void DrawFace(const WhiteningJob& job, const WhiteningShifts& shifts, Chain chain,
                const FrameView& frame, Workers& workers);

  size_t columns_ = 0;  // that the memory is for
  MaskTaps taps_;
  std::vector<float> weights_;    // two rows a worker
  std::vector<uint8_t> samples_;  // two rows of luma and one of chroma a worker
};

}  // namespace lumora::cpu

#endif  // LUMORA_PIPELINE_BACKENDS_CPU_WHITENING_H_
