// SPDX-License-Identifier: Apache-2.0
#include "pipeline/plan/whitening_geometry.h"

#include <algorithm>

#include "pipeline/support/angles.h"

namespace lumora {
namespace {

Ellipse EllipseOf(const EllipseAxes& axes) {
  const EllipseShape shape = ShapeOf(axes);
  Ellipse ellipse;
  ellipse.centre = {static_cast<float>(shape.centre_x), static_cast<float>(shape.centre_y)};
  ellipse.angle_degrees = static_cast<float>(shape.direction * kDegreesPerRadian);
  if (!shape.empty()) {
    ellipse.half_along = shape.half_first;
    ellipse.half_across = shape.half_second;
  }
  return ellipse;
}

}  // namespace

std::array<Ellipse, 7> EllipsesOf(const FACE_INFO_t& record, const FaceGeometry& geometry) {
  const std::array<EllipseAxes, 7> axes = FaceEllipses(record, geometry, 1.0f);
  std::array<Ellipse, 7> ellipses;
  std::transform(axes.begin(), axes.end(), ellipses.begin(), EllipseOf);
  return ellipses;
}

EllipseRows::EllipseRows(const Ellipse& ellipse)
    : centre_x_(static_cast<double>(ellipse.centre.x)),
      centre_y_(static_cast<double>(ellipse.centre.y)) {
  constexpr double kHeld = 1 - 1e-4;
  const double along = kHeld * static_cast<double>(ellipse.half_along);
  const double across = kHeld * static_cast<double>(ellipse.half_across);
  area_ = along * across;
  if (!(area_ > 0)) return;
  const double angle = static_cast<double>(ellipse.angle_degrees) / kDegreesPerRadian;
  const double cosine = std::cos(angle), sine = std::sin(angle);
  across2_ = std::pow(cosine / along, 2) + std::pow(sine / across, 2);
  mixed_ = 2 * cosine * sine * (1 / (along * along) - 1 / (across * across));
}

RowSpan EllipseRows::Row(int y, int width) const {
  if (!(area_ > 0)) return {};
  const double dy = y + 0.5 - centre_y_;
  // A quarter of the discriminant, in which all but this cancels out.
  const double left = across2_ - std::pow(dy / area_, 2);
  if (left < 0) return {};
  return SpanAround(centre_x_ - mixed_ * dy / (2 * across2_), std::sqrt(left) / across2_, width);
}

}  // namespace lumora
