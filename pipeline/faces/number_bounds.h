// How large the numbers of callers may be, so that all that is computed from them stays a number.
#ifndef LUMORA_PIPELINE_FACES_NUMBER_BOUNDS_H_
#define LUMORA_PIPELINE_FACES_NUMBER_BOUNDS_H_

#include <algorithm>
#include <cmath>
#include <initializer_list>

#include "lumora/pipeline/face.h"
#include "lumora/pipeline/lens.h"
#include "pipeline/faces/landmarks.h"
#include "pipeline/frames/frame_check.h"

namespace lumora {

/// Whether a number is no farther from 0 than `most`; what is not a number is farther.
inline bool IsWithin(float number, float most) {
  return std::abs(number) <= most;
}

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

/// Whether every coefficient of a lens is within kLargestCoefficient.
inline bool IsUsable(const LensCoefficients& lens) {
  bool usable = true;
  for (const float k : {lens.k0, lens.k1, lens.k2, lens.k3}) {
    usable = usable && IsWithin(k, kLargestCoefficient);
  }
  return usable;
}

}  // namespace lumora

#endif  // LUMORA_PIPELINE_FACES_NUMBER_BOUNDS_H_
