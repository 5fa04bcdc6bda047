// SPDX-License-Identifier: Apache-2.0
// Slimming faces on the CPU.
#ifndef LUMORA_PIPELINE_BACKENDS_CPU_SLIMMING_H_
#define LUMORA_PIPELINE_BACKENDS_CPU_SLIMMING_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "pipeline/backends/cpu/kernels/warp_rows.h"
#include "pipeline/backends/cpu/tile.h"
#include "pipeline/backends/cpu/workers.h"
#include "pipeline/plan/frame_plan.h"

namespace lumora::cpu {

/// Slims the faces of frames, one after another, in memory that serves again and again.
class Slimming {
 public:
  /// Takes the memory for a plan and a frame of that size.
  void Prepare(const FramePlan& plan, int width, int height, const Workers& workers);
  /// Slims the faces of that plan in `frame`. Asks for no memory.
  void Draw(const FramePlan& plan, const FrameView& frame, Workers& workers);

 private:
  void DrawFace(const FacePlan& face, Chain chain, Beyond beyond, const FrameView& frame,
                Workers& workers);
  /// The tile as the kernel takes it.
  WarpSource SourceFor(const FacePlan& face) const;
  /// The rows of one worker: two of luma and one of chroma.
  uint8_t* RowsOf(int worker) {
    return rows_.data() + 3 * static_cast<size_t>(worker) * static_cast<size_t>(tile_.stride());
  }

  Tile tile_;
  std::vector<float> borders_;  // of columns
  std::vector<uint8_t> rows_;
};

}  // namespace lumora::cpu

#endif  // LUMORA_PIPELINE_BACKENDS_CPU_SLIMMING_H_
