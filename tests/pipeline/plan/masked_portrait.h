// SPDX-License-Identifier: Apache-2.0
// A face with the mask of its whitening.
#ifndef LUMORA_TESTS_PIPELINE_PLAN_MASKED_PORTRAIT_H_
#define LUMORA_TESTS_PIPELINE_PLAN_MASKED_PORTRAIT_H_

#include <cstddef>
#include <vector>

#include "lumora/geometry/rectangle.h"
#include "lumora/pipeline/face.h"
#include "pipeline/plan/skin_mask.h"

namespace lumora::test {

/// The frame, and the luma of the skin.
constexpr int kWidth = 416;
constexpr int kHeight = 384;
constexpr int kSkin = 150;

/// A face in that frame.
struct Portrait {
  explicit Portrait(PointF left_eye = {170, 150}, PointF right_eye = {250, 150})
      : face(FaceFromEyes(left_eye, right_eye)),
        outer(WhiteningEllipses(face)[kFaceEllipse]),
        mask(face, outer, kSkin, kWidth, kHeight) {}

  /// The mask's weight of the pixel at a place, 0 outside of its bounds.
  float WeightAt(PointF at) const {
    const PixelRectangle& bounds = mask.bounds();
    const int x = static_cast<int>(at.x), y = static_cast<int>(at.y);
    if (x < bounds.x || y < bounds.y || x >= bounds.x + bounds.width ||
        y >= bounds.y + bounds.height) {
      return 0;
    }
    std::vector<float> row(static_cast<size_t>(bounds.width));
    mask.Row(y, row.data());
    return row[static_cast<size_t>(x - bounds.x)];
  }

  Face face;
  Ellipse outer;
  SkinMask mask;
};

}  // namespace lumora::test

#endif  // LUMORA_TESTS_PIPELINE_PLAN_MASKED_PORTRAIT_H_
