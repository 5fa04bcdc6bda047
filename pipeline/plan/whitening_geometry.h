// SPDX-License-Identifier: Apache-2.0
// Where whitening acts on a face: the engine's arithmetic on face records, for use outside of it.
#ifndef LUMORA_PIPELINE_PLAN_WHITENING_GEOMETRY_H_
#define LUMORA_PIPELINE_PLAN_WHITENING_GEOMETRY_H_

#include <array>
#include <cmath>

#include "lumora/geometry/whitening.h"
#include "lumora/pipeline/face.h"
#include "pipeline/frames/row_span.h"

namespace lumora {

/// The engine's seven ellipses for a record with that geometry, in the order of WhiteningEllipse.
std::array<Ellipse, 7> EllipsesOf(const FACE_INFO_t& record, const FaceGeometry& geometry);

/// The position of a point in an ellipse: below 1 inside, 1 on its line.
inline float PositionIn(const Ellipse& ellipse, float cos_angle, float sin_angle, PointF at) {
  const float x = at.x - ellipse.centre.x;
  const float y = at.y - ellipse.centre.y;
  const float along = (cos_angle * x + sin_angle * y) / ellipse.half_along;
  const float across = (cos_angle * y - sin_angle * x) / ellipse.half_across;
  return std::sqrt(along * along + across * across);
}

/// The rows of an ellipse. Without its outermost ten-thousandth, so that whoever computes with
/// fewer digits finds no pixel of it outside.
class EllipseRows {
 public:
  EllipseRows() = default;  ///< of an ellipse that holds nothing
  explicit EllipseRows(const Ellipse& ellipse);

  /// The columns of row `y`, of `width` pixels, whose centres lie in the ellipse.
  RowSpan Row(int y, int width) const;

 private:
  // Its points are those with across2 dx^2 + mixed dx dy + down2 dy^2 < 1, from the centre.
  double centre_x_ = 0;
  double centre_y_ = 0;
  double across2_ = 0;
  double mixed_ = 0;
  double area_ = 0;  // of the rectangle of both half axes; 0 for an ellipse that holds nothing
};

}  // namespace lumora

#endif  // LUMORA_PIPELINE_PLAN_WHITENING_GEOMETRY_H_
