// SPDX-License-Identifier: Apache-2.0
// Which samples of a frame faces may change.
#ifndef LUMORA_TESTS_PIPELINE_TOUCHED_AREA_H_
#define LUMORA_TESTS_PIPELINE_TOUCHED_AREA_H_

#include <cmath>
#include <cstddef>
#include <vector>

#include "lumora/pipeline/face.h"
#include "pipeline/frames/frame_memory.h"

namespace lumora::test {

/// Whether a point lies within an ellipse; nothing lies in one without axes.
inline bool Holds(const Ellipse& ellipse, double x, double y) {
  if (ellipse.half_along == 0) return false;
  const double angle = static_cast<double>(ellipse.angle_degrees) * 0.017453292519943295;
  const double dx = x - static_cast<double>(ellipse.centre.x);
  const double dy = y - static_cast<double>(ellipse.centre.y);
  const double along = std::cos(angle) * dx + std::sin(angle) * dy;
  const double across = std::cos(angle) * dy - std::sin(angle) * dx;
  return std::hypot(along / static_cast<double>(ellipse.half_along),
                    across / static_cast<double>(ellipse.half_across)) < 1;
}

/// Whether a point lies in a circle; nothing lies in one without a radius.
inline bool Holds(const WarpCircle& circle, double x, double y) {
  return circle.radius > 0 &&
         std::hypot(x - static_cast<double>(circle.centre.x),
                    y - static_cast<double>(circle.centre.y)) <= static_cast<double>(circle.radius);
}

/// The outer ellipses of the faces that are whitened and the circles of those that are slimmed.
class TouchedArea {
 public:
  TouchedArea(const std::vector<Face>& whitened, const std::vector<Face>& slimmed, int width,
              int height)
      : width_(width), height_(height) {
    for (const Face& face : whitened) ellipses_.push_back(WhiteningEllipses(face)[kFaceEllipse]);
    for (const Face& face : slimmed) circles_.push_back(SlimmingCircle(face, width, height));
  }

  /// Whether there is such a pixel and its centre lies in the area.
  bool HoldsPixel(int x, int y) const {
    if (x >= width_ || y >= height_) return false;
    for (const WarpCircle& circle : circles_) {
      if (Holds(circle, x + 0.5, y + 0.5)) return true;
    }
    for (const Ellipse& ellipse : ellipses_) {
      if (Holds(ellipse, x + 0.5, y + 0.5)) return true;
    }
    return false;
  }

  /// Whether it holds one of the pixels, up to four, that a chroma sample stands for.
  bool HoldsChroma(int column, int row) const {
    const int x = 2 * column, y = 2 * row;
    return HoldsPixel(x, y) || HoldsPixel(x + 1, y) || HoldsPixel(x, y + 1) ||
           HoldsPixel(x + 1, y + 1);
  }

 private:
  int width_;
  int height_;
  std::vector<Ellipse> ellipses_;
  std::vector<WarpCircle> circles_;
};

/// How many samples changed, inside and outside of an area.
struct AreaChanges {
  int inside = 0;
  int outside = 0;
};

inline AreaChanges CountChanges(const Samples& before, const Samples& after, int width, int height,
                                const TouchedArea& area) {
  AreaChanges changes;
  const auto count = [&changes](bool is_inside) {
    ++(is_inside ? changes.inside : changes.outside);
  };
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const auto i = static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x);
      if (before.y[i] != after.y[i]) count(area.HoldsPixel(x, y));
    }
  }
  const int chroma_width = (width + 1) / 2;
  for (int y = 0; y < (height + 1) / 2; ++y) {
    for (int x = 0; x < chroma_width; ++x) {
      const auto i =
          static_cast<size_t>(y) * static_cast<size_t>(chroma_width) + static_cast<size_t>(x);
      if (before.cb[i] == after.cb[i] && before.cr[i] == after.cr[i]) continue;
      count(area.HoldsChroma(x, y));
    }
  }
  return changes;
}

}  // namespace lumora::test

#endif  // LUMORA_TESTS_PIPELINE_TOUCHED_AREA_H_
