// SPDX-License-Identifier: Apache-2.0
// Rectangles of whole pixels.
#ifndef LUMORA_GEOMETRY_RECTANGLE_H_
#define LUMORA_GEOMETRY_RECTANGLE_H_

#include <algorithm>
#include <cstdint>

namespace lumora {

// Programs that are linked with the library know it by this name.
namespace platform {

/// A part of an image, in pixels from its first pixel.
struct PixelRectangle {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
};

}  // namespace platform

using platform::PixelRectangle;

constexpr bool IsEmpty(const PixelRectangle& rectangle) {
  return rectangle.width <= 0 || rectangle.height <= 0;
}

/// Whether two rectangles, none of which is empty, have a pixel in common.
constexpr bool Meet(const PixelRectangle& a, const PixelRectangle& b) {
  return a.x < b.x + b.width && b.x < a.x + a.width && a.y < b.y + b.height && b.y < a.y + a.height;
}

/// The smallest rectangle that holds both; an empty one adds nothing.
inline PixelRectangle Union(const PixelRectangle& a, const PixelRectangle& b) {
  if (IsEmpty(a)) return b;
  if (IsEmpty(b)) return a;
  const int x = std::min(a.x, b.x);
  const int y = std::min(a.y, b.y);
  return {x, y, std::max(a.x + a.width, b.x + b.width) - x,
          std::max(a.y + a.height, b.y + b.height) - y};
}

/// What lies of it in an image of width x height pixels; its numbers may be any.
inline PixelRectangle CutToImage(const PixelRectangle& part, int width, int height) {
  const int x0 = std::clamp(part.x, 0, width);
  const int y0 = std::clamp(part.y, 0, height);
  const auto x1 = std::clamp<int64_t>(int64_t{part.x} + part.width, x0, width);
  const auto y1 = std::clamp<int64_t>(int64_t{part.y} + part.height, y0, height);
  return {x0, y0, static_cast<int>(x1) - x0, static_cast<int>(y1) - y0};
}

/// The rectangle with its sides moved outwards to multiples of `step_x` and `step_y`, then measured
/// in them. An empty one stays empty.
constexpr PixelRectangle InSteps(const PixelRectangle& box, int step_x, int step_y) {
  if (IsEmpty(box)) return {};
  const auto up = [](int value, int step) { return (value + step - 1) / step; };
  const int x = box.x / step_x;
  const int y = box.y / step_y;
  return {x, y, up(box.x + box.width, step_x) - x, up(box.y + box.height, step_y) - y};
}

}  // namespace lumora

#endif  // LUMORA_GEOMETRY_RECTANGLE_H_
