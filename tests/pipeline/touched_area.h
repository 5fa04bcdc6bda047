// Which pixels of a frame faces may change.
#ifndef LUMORA_TESTS_PIPELINE_TOUCHED_AREA_H_
#define LUMORA_TESTS_PIPELINE_TOUCHED_AREA_H_

#include <cmath>
#include <cstddef>
#include <vector>

#include "pipeline/face.h"
#include "pipeline/frame_memory.h"

namespace lumora::test {

/// The outer ellipses of the faces that are whitened and the circles of those that are slimmed.
class TouchedArea {
 public:
  TouchedArea(const std::vector<Face>& whitened, const std::vector<Face>& slimmed, int width,
              int height) {
    for (const Face& face : whitened) ellipses_.push_back(WhiteningEllipses(face)[kFaceEllipse]);
    for (const Face& face : slimmed) circles_.push_back(SlimmingCircle(face, width, height));
  }

  bool Holds(int x, int y) const {
    const double px = x + 0.5, py = y + 0.5;
    for (const WarpCircle& circle : circles_) {
      if (std::hypot(px - static_cast<double>(circle.centre.x),
                     py - static_cast<double>(circle.centre.y)) <=
          static_cast<double>(circle.radius)) {
        return true;
      }
    }
    for (const Ellipse& ellipse : ellipses_) {
      if (ellipse.half_along == 0) continue;
      const double angle = static_cast<double>(ellipse.angle_degrees) * 0.017453292519943295;
      const double dx = px - static_cast<double>(ellipse.centre.x);
      const double dy = py - static_cast<double>(ellipse.centre.y);
      const double along = std::cos(angle) * dx + std::sin(angle) * dy;
      const double across = std::cos(angle) * dy - std::sin(angle) * dx;
      if (std::hypot(along / static_cast<double>(ellipse.half_along),
                     across / static_cast<double>(ellipse.half_across)) < 1) {
        return true;
      }
    }
    return false;
  }

 private:
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
      if (before.y[i] != after.y[i]) count(area.Holds(x, y));
    }
  }
  const int chroma_width = (width + 1) / 2;
  for (int y = 0; y < (height + 1) / 2; ++y) {
    for (int x = 0; x < chroma_width; ++x) {
      const auto i =
          static_cast<size_t>(y) * static_cast<size_t>(chroma_width) + static_cast<size_t>(x);
      if (before.cb[i] == after.cb[i] && before.cr[i] == after.cr[i]) continue;
      // A chroma sample stands for four pixels and is taken from one of them.
      count(area.Holds(2 * x, 2 * y) || area.Holds(2 * x + 1, 2 * y) ||
            area.Holds(2 * x, 2 * y + 1) || area.Holds(2 * x + 1, 2 * y + 1));
    }
  }
  return changes;
}

}  // namespace lumora::test

#endif  // LUMORA_TESTS_PIPELINE_TOUCHED_AREA_H_
