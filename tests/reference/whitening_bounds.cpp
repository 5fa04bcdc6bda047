// SPDX-License-Identifier: Apache-2.0
#include "reference/whitening_bounds.h"

#include "reference/colour_bounds.h"

namespace lumora::reference {
namespace {

// Computed with single precision, whatever the colours before were computed with.
constexpr double kShiftError = 1e-3;

// The value of the mask, with the pixels on a line counted as inside or as outside.
double MaskAlpha(Vec2 place, const WhiteningUniforms& u, double line) {
  const auto inside = [&](size_t ellipse) {
    return EllipseDistance(u.ellipses[ellipse], place) < line;
  };
  const bool eye = inside(2) || inside(3);
  const bool eye_pair = eye || inside(5) || inside(6);
  const bool centre = eye_pair || inside(1);
  double alpha = 1.0;
  if (eye) alpha -= 0.2;
  if (eye_pair) alpha -= 0.3;
  if (centre) alpha -= 0.4;
  if (inside(4)) alpha -= 0.6;
  return alpha;
}

}  // namespace

TexelBounds WhitenBounds(const TexelBounds& hsi, Vec2 place, const WhiteningUniforms& uniforms) {
  const double distance = EllipseDistance(uniforms.ellipses[0], place);
  if (!(distance < 1.0 + kLineSlack)) return hsi;
  TexelBounds result = TexelBounds::Exactly(Whiten(hsi.low, place, uniforms));
  result.include(Whiten(hsi.high, place, uniforms));
  // Every ellipse that holds a place lowers the value.
  result.low.a = MaskAlpha(place, uniforms, 1.0 + kLineSlack);
  result.high.a = MaskAlpha(place, uniforms, 1.0 - kLineSlack);
  result = Widened(result, kShiftError);
  if (distance > 1.0 - kLineSlack) result.include(hsi);
  return result;
}

TexelBounds WhitenBounds(const TexelBounds& hsi, const TexelBounds& previous, Vec2 place,
                         const WhiteningUniforms& uniforms) {
  if (previous.low.a > 0.0) return previous;
  TexelBounds result = WhitenBounds(hsi, place, uniforms);
  if (previous.high.a > 0.0) result.include(previous);
  return result;
}

}  // namespace lumora::reference
