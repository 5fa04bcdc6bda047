// SPDX-License-Identifier: Apache-2.0
// The blocks in which captures are drawn.
#ifndef LUMORA_PIPELINE_PLAN_CAPTURE_BLOCKS_H_
#define LUMORA_PIPELINE_PLAN_CAPTURE_BLOCKS_H_

#include <vector>

#include "lumora/pipeline/report.h"
#include "pipeline/plan/frame_plan.h"

namespace lumora {

/// Adds the blocks that the plan of a capture draws, in their order and cut at the frame of width x
/// height pixels.
void AddCaptureBlocks(const FramePlan& plan, int width, int height, std::vector<PixelRect>* blocks);

}  // namespace lumora

#endif  // LUMORA_PIPELINE_PLAN_CAPTURE_BLOCKS_H_
