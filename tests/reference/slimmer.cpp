// SPDX-License-Identifier: Apache-2.0
#include "reference/slimmer.h"

#include <algorithm>
#include <cmath>

#include "reference/colour.h"

namespace lumora::reference {
namespace {

// Not a number becomes the lower limit.
double Clamp01(double value) {
  return std::fmin(std::fmax(value, 0.0), 1.0);
}

// `offset` is the pixel's place relative to the face centre; `coordinate` its place in the drawn
// texture, whose borders hold the warp back.
WarpPoint Warp(Vec2 coordinate, Vec2 offset, const SlimmerUniforms& u) {
  const double distance = std::hypot(offset.x, offset.y * u.aspect_ratio);
  const double pull = 1.0 + u.strength * distance;

  // The limiter: an ellipse round a second centre, on the chin's side of the face.
  const double limiter_offset = u.limiter_distance * u.radius;
  const Vec2 from_limiter{offset.x - limiter_offset * std::cos(u.limiter_direction),
                          offset.y - limiter_offset * std::sin(u.limiter_direction)};
  const double limiter_length =
      std::hypot(from_limiter.x, from_limiter.y * u.aspect_ratio) / u.limiter_scale;
  const double sector = Clamp01(limiter_length / limiter_offset);

  const double border =
      std::min({coordinate.x, 1.0 - coordinate.x, coordinate.y, 1.0 - coordinate.y});
  const double fade = 2.0 - std::pow(border, u.edge_fix);

  WarpPoint point;
  const double ratio = distance / u.radius / sector;
  point.unclamped = ratio * fade;
  point.ratio = Clamp01(Clamp01(ratio) * fade);
  const double scale = pull * (1.0 - point.ratio) + point.ratio;
  point.coordinate = {offset.x * scale + u.centre.x, offset.y * scale + u.centre.y};
  return point;
}

}  // namespace

WarpPoint WarpFrame(Vec2 coordinate, const SlimmerUniforms& u) {
  return Warp(coordinate, {coordinate.x - u.centre.x, coordinate.y - u.centre.y}, u);
}

WarpPoint WarpBlock(Vec2 coordinate, const SlimmerUniforms& u) {
  const Vec2 offset{coordinate.x * u.block_scale.x - u.block_shift.x,
                    coordinate.y * u.block_scale.y - u.block_shift.y};
  return Warp(coordinate, offset, u);
}

bool MaskMarks(const WarpPoint& point) {
  return point.ratio > 0.95 && point.ratio < 1.0;
}

Texel CheekSlimmer::operator()(Vec2 coordinate) const {
  const WarpPoint point = WarpFrame(coordinate, uniforms);
  if (mask && MaskMarks(point)) return kMaskRed;
  return input.sample(point.coordinate);
}

Texel CheekSlimmerLarge::operator()(Vec2 coordinate) const {
  const WarpPoint point = WarpBlock(coordinate, uniforms);
  if (mask && MaskMarks(point)) return kMaskRed;
  const Texel pair = chroma.sample(point.coordinate);
  return {luma.sample(point.coordinate).r, pair.r, pair.a, 1.0};
}

Texel CheekSlimmerLargeHsi::operator()(Vec2 coordinate) const {
  const WarpPoint point = WarpBlock(coordinate, uniforms);
  if (mask && MaskMarks(point)) return kMaskRed;
  return HsiToYuv(input.sample(point.coordinate));
}

}  // namespace lumora::reference
