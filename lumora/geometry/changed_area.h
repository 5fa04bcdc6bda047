// SPDX-License-Identifier: Apache-2.0
// Which pixels of an image a pass can change, from the uniforms that it draws with: plain geometry,
// no GL. Elsewhere such a pass writes every pixel just as it reads it, so that it need not be drawn
// there. Where that cannot be told for certain the answer is the whole image.
#ifndef LUMORA_GEOMETRY_CHANGED_AREA_H_
#define LUMORA_GEOMETRY_CHANGED_AREA_H_

#include <cstdint>

#include "lumora/geometry/rectangle.h"
#include "lumora/geometry/warp.h"

namespace lumora {

/// A part of an image: a few rectangles. Without pixels it is one empty rectangle, so that drawing
/// it is still a draw.
class ChangedArea {
 public:
  static constexpr int kMostParts = 16;

  ChangedArea() = default;
  explicit ChangedArea(const PixelRectangle& part) { Add(part); }

  /// An empty part adds nothing; one too many widens the last.
  void Add(const PixelRectangle& part);

  const PixelRectangle* begin() const { return parts_; }
  const PixelRectangle* end() const { return parts_ + (count_ > 0 ? count_ : 1); }

  PixelRectangle Box() const;
  int64_t Pixels() const;  ///< those of the parts together

 private:
  PixelRectangle parts_[kMostParts] = {};
  int count_ = 0;
};

/// The pixels of a width x height image that the warp can move: those of its circle, as bands.
ChangedArea WarpArea(const Warp& warp, int width, int height);

/// The pixels of a width x height image inside an ellipse, given by the matrix, column by column,
/// that takes texture coordinates (u, v, 1) to its unit circle.
PixelRectangle EllipseBox(const float matrix[9], int width, int height);

/// Whether so little of a width x height image lies outside the area that it is not worth the care.
bool CoversMost(const ChangedArea& area, int width, int height);

}  // namespace lumora

#endif  // LUMORA_GEOMETRY_CHANGED_AREA_H_
