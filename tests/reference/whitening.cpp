// SPDX-License-Identifier: Apache-2.0
#include "reference/whitening.h"

#include <cmath>

namespace lumora::reference {
namespace {

constexpr double kSlope = 0.85;

double Mix(double a, double b, double amount) {
  return a * (1.0 - amount) + b * amount;
}

// The mask value: which of the inner ellipses hold the place. The eyes count for the second pair's
// and the centre ellipse's share as well.
double MaskAlpha(Vec2 place, const WhiteningUniforms& u) {
  const auto inside = [&](size_t ellipse) {
    return EllipseDistance(u.ellipses[ellipse], place) < 1.0;
  };
  const bool first_eyes = inside(2) || inside(3);
  const bool any_eye = first_eyes || inside(5) || inside(6);
  const bool centre = any_eye || inside(1);
  return 1.0 - (first_eyes ? 0.2 : 0.0) - (any_eye ? 0.3 : 0.0) - (centre ? 0.4 : 0.0) -
         (inside(4) ? 0.6 : 0.0);
}

}  // namespace

double EllipseDistance(const EllipseMatrix& m, Vec2 p) {
  return std::hypot(m[0] * p.x + m[3] * p.y + m[6], m[1] * p.x + m[4] * p.y + m[7]);
}

Texel Whiten(const Texel& hsi, Vec2 place, const WhiteningUniforms& u) {
  const double ratio = EllipseDistance(u.ellipses[0], place);
  if (!(ratio < 1.0)) return hsi;
  const double logit = -std::log(1.0 / hsi.b - 1.0) / kSlope + u.intensity_shift;
  const double intensity = 1.0 / (1.0 + std::exp(-kSlope * logit));
  return {hsi.r, Mix(hsi.g + u.saturation_shift, hsi.g, ratio), Mix(intensity, hsi.b, ratio),
          MaskAlpha(place, u)};
}

Texel FaceWhitening::operator()(Vec2 coordinate) const {
  return Whiten(input.sample(coordinate), coordinate, uniforms);
}

Texel FaceWhiteningLarge::operator()(Vec2 coordinate) const {
  const Texel before = previous.sample(coordinate);
  if (before.a != 0.0) return before;
  const Vec2 place{uniforms.tile_offset.x + uniforms.tile_scale.x * coordinate.x,
                   uniforms.tile_offset.y + uniforms.tile_scale.y * coordinate.y};
  return Whiten(input.sample(coordinate), place, uniforms);
}

}  // namespace lumora::reference
