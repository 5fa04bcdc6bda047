// SPDX-License-Identifier: Apache-2.0
#include "lumora/geometry/changed_area.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <initializer_list>

namespace lumora {
namespace {

// Pixels around what the arithmetic gives, for the rounding of the shader's.
constexpr double kMargin = 2.0;

// The shaders compute in floats of 24 significant bits.
constexpr double kFloatStep = 1.0 / (1 << 23);

// A sample that is less than this many pixels off its texel's centre is that texel, also under the
// linear filter: the neighbour's share is lost in the rounding to 8 bits.
constexpr double kSamplingSlack = 1.0 / 512;

bool AllFinite(std::initializer_list<double> numbers) {
  return std::all_of(numbers.begin(), numbers.end(), [](double n) { return std::isfinite(n); });
}

// The pixels whose centres lie between `low` and `high`, of a line of `length` pixels.
struct Span {
  int start;
  int length;
};

Span SpanOf(double low, double high, int length) {
  const double limit = length;
  const double start = std::clamp(std::floor(low - kMargin), 0.0, limit);
  const double end = std::clamp(std::ceil(high + kMargin), start, limit);
  return {static_cast<int>(start), static_cast<int>(end - start)};
}

// The height of a band, for `rows` rows in as many bands as an area holds: flatter ones follow the
// circle more closely, but every draw has its price, and renderers work in blocks.
int BandRows(int rows) {
  constexpr int kBlock = 8;
  constexpr int kBands = ChangedArea::kMostParts - 1;  // blocks seldom start where the rows do
  return std::max(1, (rows + kBands * kBlock - 1) / (kBands * kBlock)) * kBlock;
}

// How far the warp reaches, as a share of its radius, no farther than `border` from the nearest
// border (texture coordinates, at most 0.5): the shader multiplies its ratio by the fade.
double FadedReach(double border, double fade) {
  // Renderers compute powers from approximations of two logarithms.
  constexpr double kSlack = 1.0 / 64;
  return std::min(1.0, (1.0 + kSlack) / EdgeFadeDivisor(border, fade));
}

// The box around a centre, from texture coordinates to pixels.
PixelRectangle BoxAround(double x, double y, double reach_x, double reach_y, int width,
                         int height) {
  const Span columns = SpanOf((x - reach_x) * width, (x + reach_x) * width, width);
  const Span rows = SpanOf((y - reach_y) * height, (y + reach_y) * height, height);
  if (columns.length == 0 || rows.length == 0) return {0, 0, 0, 0};
  return {columns.start, rows.start, columns.length, rows.length};
}

}  // namespace

void ChangedArea::Add(const PixelRectangle& part) {
  if (IsEmpty(part)) return;
  if (count_ < kMostParts) {
    parts_[count_++] = part;
  } else {
    parts_[count_ - 1] = Union(parts_[count_ - 1], part);
  }
}

PixelRectangle ChangedArea::Box() const {
  PixelRectangle box{};
  for (const PixelRectangle& part : *this) box = Union(box, part);
  return box;
}

int64_t ChangedArea::Pixels() const {
  int64_t pixels = 0;
  for (const PixelRectangle& part : *this) pixels += int64_t{part.width} * part.height;
  return pixels;
}

ChangedArea WarpArea(const Warp& warp, int width, int height) {
  const ChangedArea whole({0, 0, width, height});
  if (!AllFinite({warp.centre_x, warp.centre_y, warp.strength, warp.radius, warp.limiter_direction,
                  warp.limiter_distance, warp.limiter_scale, warp.aspect_ratio, warp.edge_fade})) {
    return whole;
  }
  // The shader's ratio is distance / radius divided by a number of 0 .. 1, times a fade towards the
  // borders of 1 or more. Where that is 1 the warp is mix(twisted, own, 1).
  if (!(warp.radius > 0.0f) || !(warp.aspect_ratio > 0.0f) || warp.edge_fade < 0.0f) return whole;
  // What rounding leaves of that depends on how large the numbers are that cancel out.
  const double aspect = static_cast<double>(warp.aspect_ratio);
  const double shift = 1.0 + std::max(std::abs(static_cast<double>(warp.centre_x)),
                                      std::abs(static_cast<double>(warp.centre_y)));
  const double distance = shift * std::hypot(1.0, aspect);
  const double twisted = shift * (1.0 + std::abs(static_cast<double>(warp.strength)) * distance);
  if (twisted * std::max(width, height) * kFloatStep > kSamplingSlack) return whole;

  const double x = static_cast<double>(warp.centre_x);
  const double y = static_cast<double>(warp.centre_y);
  const double radius = static_cast<double>(warp.radius);
  const Span rows = SpanOf((y - radius / aspect) * height, (y + radius / aspect) * height, height);
  const int step = BandRows(rows.length);
  ChangedArea area;
  for (int top = rows.start / step * step; top < rows.start + rows.length; top += step) {
    const int bottom = std::min(top + step, height);
    const double low = (top - kMargin) / height;
    const double high = (bottom + kMargin) / height;
    const double border = std::min({0.5, high, 1.0 - low});
    const double reach = radius * FadedReach(border, static_cast<double>(warp.edge_fade));
    const double away = std::max({0.0, low - y, y - high}) * aspect;
    if (away >= reach) continue;
    const double half = std::sqrt(reach * reach - away * away);
    const Span columns = SpanOf((x - half) * width, (x + half) * width, width);
    area.Add({columns.start, top, columns.length, bottom - top});
  }
  return area;
}

PixelRectangle EllipseBox(const float matrix[9], int width, int height) {
  const PixelRectangle whole{0, 0, width, height};
  // (p, q) = (a u + c v + e, b u + d v + f): the third row takes no part in the distance.
  const double a = static_cast<double>(matrix[0]), b = static_cast<double>(matrix[1]);
  const double c = static_cast<double>(matrix[3]), d = static_cast<double>(matrix[4]);
  const double e = static_cast<double>(matrix[6]), f = static_cast<double>(matrix[7]);
  const double determinant = a * d - c * b;
  const double x = (c * f - d * e) / determinant;
  const double y = (b * e - a * f) / determinant;
  const double reach_x = std::hypot(d, c) / std::abs(determinant);
  const double reach_y = std::hypot(b, a) / std::abs(determinant);
  if (!AllFinite({x, y, reach_x, reach_y})) return whole;
  // The shader's distance is off by its rounding; that must not carry the line beyond the margin.
  const double largest =
      std::abs(a) + std::abs(b) + std::abs(c) + std::abs(d) + std::abs(e) + std::abs(f) + 1.0;
  const double pixels = std::max(reach_x * width, reach_y * height);
  if (!(4 * largest * kFloatStep * pixels < kMargin / 2)) return whole;
  return BoxAround(x, y, reach_x, reach_y, width, height);
}

bool CoversMost(const ChangedArea& area, int width, int height) {
  return area.Pixels() * 8 >= int64_t{width} * height * 7;
}

}  // namespace lumora
