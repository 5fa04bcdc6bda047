// SPDX-License-Identifier: Apache-2.0
#include "reference/rectification.h"

#include <algorithm>
#include <cmath>

namespace lumora::reference {
namespace {

Vec2 Mix(Vec2 a, Vec2 b, double amount) {
  return {a.x * (1.0 - amount) + b.x * amount, a.y * (1.0 - amount) + b.y * amount};
}

double Polynomial(const RadialCoefficients& k, double r) {
  return k[0] + k[1] * r + k[2] * r * r + k[3] * r * r * r;
}

}  // namespace

RectificationQuad QuadOfDegree(int degree) {
  const double d = static_cast<double>(static_cast<float>(degree) / 100.0f);
  const double h = d * 0.5;
  if (degree >= 0) return {{{d - h, d}, {1 - h, 0}, {d - h, 1 - d}, {1 - h, 1}}};
  return {{{-h, 0}, {1 + d - h, -d}, {-h, 1}, {1 + d - h, 1 + d}}};
}

double DegreeShown(int degree) {
  return std::clamp(static_cast<double>(degree), -3.0, 3.0);
}

RadialCoefficients DefaultRadialCoefficients() {
  RadialCoefficients k{};
  const float values[4] = {1.00453f, -0.0214308f, 0.00571108f, 0.032517f};
  std::copy(std::begin(values), std::end(values), k.begin());
  return k;
}

Corners CroppedCorners() {
  // A corner lies at squared radius 1, so its offset from the centre grows by the coefficients'
  // sum.
  const double corner = 0.5 * Polynomial(DefaultRadialCoefficients(), 1.0);
  const double low = std::abs(0.5 - corner);
  const double high = 2.0 - (0.5 + corner);
  return TextureRectangle(low, low, high, high);
}

Vec2 QuadMap(Vec2 coordinate, const RectificationQuad& quad) {
  return Mix(Mix(quad[0], quad[2], coordinate.y), Mix(quad[1], quad[3], coordinate.y),
             coordinate.x);
}

Vec2 RadialMap(Vec2 coordinate, const RadialCoefficients& k) {
  const double dx = 0.5 - coordinate.x;
  const double dy = 0.5 - coordinate.y;
  const double factor = Polynomial(k, (dx * dx + dy * dy) / 0.5);
  return {0.5 - dx * factor, 0.5 - dy * factor};
}

double DistanceFromDot(Vec2 coordinate, double degree) {
  const double sign = degree > 0 ? 1.0 : degree < 0 ? -1.0 : 0.0;
  const Vec2 dot{0.5 - (2.0 - std::abs(degree)) * 0.4, 0.5 - 0.4 * sign};
  return std::hypot(coordinate.x - dot.x, coordinate.y - dot.y) - 0.03;
}

Texel Rectification::operator()(Vec2 coordinate) const {
  if (mask && DistanceFromDot(coordinate, degree) < 0.0) return {1.0, 0.0, 0.0, 1.0};
  return input.sample(QuadMap(coordinate, quad));
}

Texel RadialDistortion::operator()(Vec2 coordinate) const {
  return input.sample(RadialMap(coordinate, k));
}

}  // namespace lumora::reference
