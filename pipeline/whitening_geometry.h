// Where whitening acts on a face: the engine's arithmetic on face records, for use outside of it.
#ifndef LUMORA_PIPELINE_WHITENING_GEOMETRY_H_
#define LUMORA_PIPELINE_WHITENING_GEOMETRY_H_

#include <array>
#include <cmath>

#include "lumora/engine/face_info.h"
#include "pipeline/face.h"

namespace lumora {

/// The engine's seven ellipses for a record, in the order of WhiteningEllipse.
std::array<Ellipse, 7> EllipsesOf(const FACE_INFO_t& record);

/// The grid of pixels in which the engine measures a face.
struct SampleSquare {
  int centre_x = 0;
  int centre_y = 0;
  int radius = 0;  ///< half side, pixels
  int step = 1;    ///< pixels from sample to sample
};
SampleSquare SampleSquareOf(const FACE_INFO_t& record);

/// The position of a point in an ellipse: below 1 inside, 1 on its line.
inline float PositionIn(const Ellipse& ellipse, float cos_angle, float sin_angle, PointF at) {
  const float x = at.x - ellipse.centre.x;
  const float y = at.y - ellipse.centre.y;
  const float along = (cos_angle * x + sin_angle * y) / ellipse.half_along;
  const float across = (cos_angle * y - sin_angle * x) / ellipse.half_across;
  return std::sqrt(along * along + across * across);
}

}  // namespace lumora

#endif  // LUMORA_PIPELINE_WHITENING_GEOMETRY_H_
