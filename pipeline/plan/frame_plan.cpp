// SPDX-License-Identifier: Apache-2.0
#include "pipeline/plan/frame_plan.h"

#include <cstddef>
#include <optional>

#include "lumora/geometry/frame_sizes.h"
#include "lumora/geometry/rounding.h"
#include "pipeline/plan/warp_geometry.h"

namespace lumora {
namespace {

Chain ChainFor(int width, Chain wanted) {
  if (wanted != Chain::Auto) return wanted;
  return RoundUpTo32(width) > kWidestWholeFrame ? Chain::Capture : Chain::Preview;
}

FacePlan PlanFace(size_t index, const FACE_INFO_t& record, const ConstFrameView& in, Chain chain) {
  FacePlan plan;
  plan.index = index;
  plan.record = record;
  plan.centre = WarpCentre(record);
  plan.radius = WarpRadius(record, in.width, chain);
  plan.bounds =
      CircleBounds(plan.centre, plan.radius, RoundUpTo32(in.width), RoundUpTo32(in.height));
  return plan;
}

}  // namespace

void PlanFrame(const ConstFrameView& in, FaceSpan faces, const Look& look, Chain chain,
               FramePlan* plan) {
  plan->chain = ChainFor(in.width, chain);
  plan->slims = look.slim > 0;
  plan->whitens = Whitens(look);
  plan->faces.clear();
  if (!plan->slims && !plan->whitens) return;
  for (size_t i = 0; i < faces.size(); ++i) {
    const std::optional<FACE_INFO_t> record =
        MakeFaceRecord(faces[i], in.width, in.height, look.slim, plan->chain);
    if (record) plan->faces.push_back(PlanFace(i, *record, in, plan->chain));
  }
  if (!plan->whitens || plan->faces.empty()) return;
  PlanWhitening(in, faces, plan->faces, look, plan->chain, &plan->whitening);
}

}  // namespace lumora
