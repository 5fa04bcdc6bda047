// SPDX-License-Identifier: Apache-2.0
// What a look does to the faces of a frame: computed once, carried to whoever draws it.
#ifndef LUMORA_PIPELINE_PLAN_FRAME_PLAN_H_
#define LUMORA_PIPELINE_PLAN_FRAME_PLAN_H_

#include <vector>

#include "lumora/pipeline/chain.h"
#include "lumora/pipeline/face.h"
#include "lumora/pipeline/frame.h"
#include "lumora/pipeline/look.h"
#include "pipeline/plan/face_plan.h"
#include "pipeline/plan/whitening_plan.h"

namespace lumora {

/// Plain values: whoever draws needs nothing else of the request but its frames. Whitening comes
/// first, then slimming.
struct FramePlan {
  Chain chain = Chain::Preview;  ///< Preview or Capture
  bool slims = false;
  bool whitens = false;
  std::vector<FacePlan> faces;  ///< those that can be processed; none where there is nothing to do
  WhiteningPlan whitening;      ///< where `whitens`
};

/// Plans what `look` does to `faces`, which have been checked, in the frame `in`. `plan` is filled
/// anew, in the memory that it has; a frame like the one before needs no more.
///
/// Thread: any. Failure: throws where memory is short, and leaves a plan that can be filled again.
void PlanFrame(const ConstFrameView& in, FaceSpan faces, const Look& look, Chain chain,
               FramePlan* plan);

}  // namespace lumora

#endif  // LUMORA_PIPELINE_PLAN_FRAME_PLAN_H_
