// SPDX-License-Identifier: Apache-2.0
// What whitening is to do with each face of a frame.
#ifndef LUMORA_PIPELINE_PLAN_WHITENING_PLAN_H_
#define LUMORA_PIPELINE_PLAN_WHITENING_PLAN_H_

#include <cstddef>
#include <vector>

#include "lumora/geometry/whitening.h"
#include "lumora/pipeline/chain.h"
#include "lumora/pipeline/face.h"
#include "lumora/pipeline/frame.h"
#include "lumora/pipeline/look.h"
#include "lumora/pipeline/report.h"
#include "pipeline/plan/face_plan.h"
#include "pipeline/plan/skin_mask.h"

namespace lumora {

/// One face to whiten.
struct WhiteningJob {
  size_t face = 0;           ///< among the faces of the plan
  int intensity_level = 0;   ///< as the engine takes them, 0..255
  int saturation_level = 0;  ///< 0..255
  WhiteningShifts shifts{};  ///< what these levels come to on this face
  Ellipse outer;             ///< outside of which nothing is whitened
  SkinMask mask;
};

/// Whether a preview can draw both in one pass.
inline bool SameLevels(const WhiteningJob& a, const WhiteningJob& b) {
  return a.intensity_level == b.intensity_level && a.saturation_level == b.saturation_level;
}

/// What whitening does in a frame. Fills its memory anew for each one.
struct WhiteningPlan {
  Effect effect = Effect::Both;    ///< never Auto
  std::vector<WhiteningJob> jobs;  ///< those that a preview can draw at once follow one another
  std::vector<FaceTone> tones;     ///< what was measured, face by face
};

/// Measures the faces in `frame` as the engine will, and chooses the levels that make the same step
/// of every skin tone: the engine's own levels lift bright skin to white. Faces for which nothing
/// would be shifted have no job. `plans` are those of `faces` that can be processed.
void PlanWhitening(const ConstFrameView& frame, FaceSpan faces, const std::vector<FacePlan>& plans,
                   const Look& look, Chain chain, WhiteningPlan* whitening);

}  // namespace lumora

#endif  // LUMORA_PIPELINE_PLAN_WHITENING_PLAN_H_
