// SPDX-License-Identifier: Apache-2.0
#include "pipeline/plan/drawn_blocks.h"

#include <algorithm>

#include "lumora/geometry/blocks.h"
#include "lumora/geometry/frame_sizes.h"
#include "lumora/geometry/rectangle.h"
#include "lumora/geometry/rounding.h"
#include "lumora/geometry/whitening.h"

namespace lumora {
namespace {

PixelRectangle WhitenedArea(const FACE_INFO_t& record, const WorkingSize& block) {
  const FaceGeometry face = MeasureFace(record);
  return BlocksAroundExtent(ClampToInt(face.centre_x), ClampToInt(face.centre_y),
                            ClampToInt(face.half_width), ClampToInt(face.half_height), block.width,
                            block.height);
}

PixelRectangle SlimmedArea(const FACE_INFO_t& record, const WorkingSize& block) {
  return BlocksAroundFace(record.loc_x, record.loc_y, std::max(record.dist, record.chin_dist),
                          block.width, block.height);
}

}  // namespace

void AddDrawnBlocks(const FramePlan& plan, int width, int height, std::vector<PixelRect>* blocks) {
  if (plan.chain == Chain::Preview) return blocks->push_back({0, 0, width, height});
  const int padded_width = RoundUpTo32(width), padded_height = RoundUpTo32(height);
  const WorkingSize block = CaptureWorkingSize(padded_width, padded_height);
  const auto add = [&](const PixelRectangle& area) {
    ForEachBlock(
        ClipToFrame(area, padded_width, padded_height), block.width, block.height,
        [&](int x, int y) {
          const PixelRect part = CutToImage({x, y, block.width, block.height}, width, height);
          if (!IsEmpty(part)) blocks->push_back(part);
          return true;
        });
  };
  if (plan.whitens) {
    for (const WhiteningJob& job : plan.whitening.jobs) {
      add(WhitenedArea(plan.faces[job.face].record, block));
    }
  }
  if (plan.slims) {
    for (const FacePlan& face : plan.faces) add(SlimmedArea(face.record, block));
  }
}

}  // namespace lumora
