// SPDX-License-Identifier: Apache-2.0
// How large the numbers of faces may be.
#ifndef LUMORA_PIPELINE_FACES_FACE_BOUNDS_H_
#define LUMORA_PIPELINE_FACES_FACE_BOUNDS_H_

#include <algorithm>

#include "lumora/pipeline/face.h"
#include "pipeline/faces/landmarks.h"
#include "pipeline/frames/frame_layout.h"
#include "pipeline/support/number_bounds.h"

namespace lumora {

/// The largest coordinate of a face in a frame of that size, and in any frame.
inline float FarthestIn(int width, int height) {
  return kFarthestInSides * static_cast<float>(std::max(width, height));
}
inline float FarthestInAnyFrame() {
  return FarthestIn(kLargestSide, kLargestSide);
}

/// Whether every coordinate of a face is within `farthest`, the sides of its box are within twice
/// that, and its roll is within `largest_roll`.
inline bool IsWithin(const Face& face, float farthest, float largest_roll = kLargestRoll) {
  bool within = IsWithin(face.roll_degrees, largest_roll);
  const auto look_at = [&within, farthest](const PointF& point) {
    within = within && IsWithin(point.x, farthest) && IsWithin(point.y, farthest);
  };
  look_at({face.box.x, face.box.y});
  look_at({face.box.width / 2, face.box.height / 2});
  ForEachPoint(face.landmarks, look_at);
  return within;
}

}  // namespace lumora

#endif  // LUMORA_PIPELINE_FACES_FACE_BOUNDS_H_
