// SPDX-License-Identifier: Apache-2.0
#include "pipeline/plan/frame_difference.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <vector>

#include "pipeline/frames/frame_layout.h"
#include "pipeline/support/angles.h"

namespace lumora {
namespace {

enum Component { kY, kCb, kCr };

/// The samples of one component, whatever the format.
struct Plane {
  const uint8_t* first;
  std::ptrdiff_t stride;
  std::ptrdiff_t step;  // bytes from sample to sample

  uint8_t At(int x, int y) const { return first[y * stride + x * step]; }
};

Plane PlaneOf(const ConstFrameView& frame, Component component) {
  if (component == kY) return {frame.planes[0], frame.strides[0], 1};
  if (!IsSemiPlanar(frame.format)) {
    const size_t plane = component == kCb ? 1 : 2;
    return {frame.planes[plane], frame.strides[plane], 1};
  }
  const bool cb_first = frame.format == PixelFormat::NV12;
  const bool second = cb_first != (component == kCb);
  return {frame.planes[1] + (second ? 1 : 0), frame.strides[1], 2};
}

bool Holds(const WarpCircle& circle, double x, double y) {
  const double dx = x - static_cast<double>(circle.centre.x);
  const double dy = y - static_cast<double>(circle.centre.y);
  return circle.radius > 0 && std::hypot(dx, dy) <= static_cast<double>(circle.radius);
}

bool Holds(const Ellipse& ellipse, double x, double y) {
  if (ellipse.half_along == 0) return false;
  const double turn = static_cast<double>(ellipse.angle_degrees) * kRadiansPerDegree;
  const double dx = x - static_cast<double>(ellipse.centre.x);
  const double dy = y - static_cast<double>(ellipse.centre.y);
  const double along = std::cos(turn) * dx + std::sin(turn) * dy;
  const double across = std::cos(turn) * dy - std::sin(turn) * dx;
  return std::hypot(along / static_cast<double>(ellipse.half_along),
                    across / static_cast<double>(ellipse.half_across)) <= 1;
}

/// What a look may change.
class Area {
 public:
  Area(FaceSpan faces, const Look& look, int width, int height) : width_(width), height_(height) {
    for (const Face& face : faces) {
      if (look.slim > 0) circles_.push_back(SlimmingCircle(face, width, height));
      if (Whitens(look)) ellipses_.push_back(WhiteningEllipses(face)[kFaceEllipse]);
    }
  }

  int Columns(Component component) const { return component == kY ? width_ : ChromaSize(width_); }
  int Rows(Component component) const { return component == kY ? height_ : ChromaSize(height_); }

  /// Whether it holds a pixel that the sample stands for.
  bool HoldsSample(Component component, int x, int y) const {
    if (component == kY) return HoldsPixel(x, y);
    return HoldsPixel(2 * x, 2 * y) || HoldsPixel(2 * x + 1, 2 * y) ||
           HoldsPixel(2 * x, 2 * y + 1) || HoldsPixel(2 * x + 1, 2 * y + 1);
  }

 private:
  /// Whether there is such a pixel and the area holds its centre.
  bool HoldsPixel(int x, int y) const {
    if (x >= width_ || y >= height_) return false;
    const auto holds = [x, y](const auto& shape) { return Holds(shape, x + 0.5, y + 0.5); };
    return std::any_of(circles_.begin(), circles_.end(), holds) ||
           std::any_of(ellipses_.begin(), ellipses_.end(), holds);
  }

  int width_;
  int height_;
  std::vector<WarpCircle> circles_;
  std::vector<Ellipse> ellipses_;
};

PlaneDifference ComparePlanes(Component component, const Plane& in, const Plane& first,
                              const Plane& second, const Area& area) {
  PlaneDifference difference;
  int64_t sum = 0;
  for (int y = 0; y < area.Rows(component); ++y) {
    for (int x = 0; x < area.Columns(component); ++x) {
      const uint8_t was = in.At(x, y), a = first.At(x, y), b = second.At(x, y);
      const int steps = std::abs(a - b);
      ++difference.histogram[static_cast<size_t>(steps)];
      if (a == was && b == was) continue;
      if (a != was) {
        ++difference.changed;
        sum += steps;
      }
      if (!area.HoldsSample(component, x, y)) ++difference.stray;
    }
  }
  for (int steps = 255; steps > 0 && difference.largest == 0; --steps) {
    if (difference.histogram[static_cast<size_t>(steps)] > 0) difference.largest = steps;
  }
  if (difference.changed > 0) {
    difference.mean = static_cast<double>(sum) / static_cast<double>(difference.changed);
  }
  return difference;
}

}  // namespace

FrameDifference CompareResults(const ConstFrameView& in, const ConstFrameView& first,
                               const ConstFrameView& second, FaceSpan faces, const Look& look) {
  const Area area(faces, look, in.width, in.height);
  const auto compare = [&](Component component) {
    return ComparePlanes(component, PlaneOf(in, component), PlaneOf(first, component),
                         PlaneOf(second, component), area);
  };
  return {compare(kY), compare(kCb), compare(kCr)};
}

}  // namespace lumora
