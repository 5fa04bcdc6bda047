// SPDX-License-Identifier: Apache-2.0
// What a chain takes in, for reports.
#ifndef LUMORA_PIPELINE_PLAN_DRAWN_BLOCKS_H_
#define LUMORA_PIPELINE_PLAN_DRAWN_BLOCKS_H_

#include <vector>

#include "lumora/pipeline/report.h"
#include "pipeline/plan/frame_plan.h"

namespace lumora {

/// Adds what is drawn of a frame of width x height pixels: all of it for a preview; the blocks of a
/// capture in their order, cut at the frame.
void AddDrawnBlocks(const FramePlan& plan, int width, int height, std::vector<PixelRect>* blocks);

}  // namespace lumora

#endif  // LUMORA_PIPELINE_PLAN_DRAWN_BLOCKS_H_
