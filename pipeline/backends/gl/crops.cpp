// SPDX-License-Identifier: Apache-2.0
#include "pipeline/backends/gl/crops.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "lumora/geometry/rounding.h"
#include "lumora/geometry/whitening.h"
#include "pipeline/plan/whitening_geometry.h"
#include "pipeline/support/angles.h"

namespace lumora {
namespace {

/// What every crop costs, in pixels drawn: its passes have to be begun and waited for.
constexpr int64_t kPixelsPerCrop = 10000;

/// So many faces lie in one crop without a look at every pair.
constexpr size_t kMostApart = 64;

/// The smallest rectangle around places that are added one by one.
class Extent {
 public:
  void Add(int64_t x, int64_t y) {
    left_ = std::min(left_, x);
    top_ = std::min(top_, y);
    right_ = std::max(right_, x + 1);
    bottom_ = std::max(bottom_, y + 1);
  }
  PixelRectangle Rectangle() const {
    return {ClampToInt(left_), ClampToInt(top_), ClampToInt(right_ - left_),
            ClampToInt(bottom_ - top_)};
  }

 private:
  int64_t left_ = INT64_MAX, top_ = INT64_MAX;
  int64_t right_ = INT64_MIN, bottom_ = INT64_MIN;
};

/// A side of the area around a reach from `begin` on.
struct Side {
  int begin;
  int length;
};
Side SideAround(int begin, int length, int frame_length) {
  const int even = begin & ~1;  // downwards, also below 0
  const int side = std::min(CropSide(length + begin - even), frame_length);
  return {std::clamp(even, 0, frame_length - side), side};
}

PixelRectangle AreaAround(const PixelRectangle& reach, int width, int height) {
  const Side across = SideAround(reach.x, reach.width, width);
  const Side down = SideAround(reach.y, reach.height, height);
  return {across.begin, down.begin, across.length, down.length};
}

int64_t CostOf(const PixelRectangle& area) {
  return int64_t{area.width} * area.height + kPixelsPerCrop;
}

}  // namespace

PixelRectangle WhiteningReach(const FACE_INFO_t& record) {
  const FaceGeometry geometry = MeasureFace(record);
  Extent extent;
  for (const int landmark : {42, 65, 68, 69, 70, 71}) {
    extent.Add(record.landmark(landmark).x, record.landmark(landmark).y);
  }
  extent.Add(geometry.forehead.x, geometry.forehead.y);
  const int64_t square = geometry.sample_radius;
  extent.Add(geometry.centre_x - square, geometry.centre_y - square);
  extent.Add(geometry.centre_x + square, geometry.centre_y + square);

  const Ellipse outer = EllipsesOf(record, geometry)[kFaceEllipse];
  const double angle = static_cast<double>(outer.angle_degrees) * kRadiansPerDegree;
  const auto along = static_cast<double>(outer.half_along);
  const auto across = static_cast<double>(outer.half_across);
  // As far as a mask of chroma samples may go beyond the line.
  constexpr double kMargin = 2;
  const double x = std::hypot(along * std::cos(angle), across * std::sin(angle)) + kMargin;
  const double y = std::hypot(along * std::sin(angle), across * std::cos(angle)) + kMargin;
  const auto add = [&extent, &outer](double dx, double dy) {
    extent.Add(static_cast<int64_t>(std::floor(static_cast<double>(outer.centre.x) + dx)),
               static_cast<int64_t>(std::floor(static_cast<double>(outer.centre.y) + dy)));
  };
  add(-x, -y);
  add(x, y);
  return extent.Rectangle();
}

int CropSide(int length) {
  int64_t step = kRowStep;
  while (16 * step <= length) step *= 2;
  return ClampToInt(RoundUpTo<int64_t>(length, step));
}

bool Crop::Holds(const PixelRectangle& face) const {
  return Meet(reach, face);
}

void LayCrops(const std::vector<PixelRectangle>& reaches, int width, int height,
              std::vector<Crop>* crops) {
  const auto around = [width, height](const PixelRectangle& reach) {
    return Crop{AreaAround(reach, width, height), reach};
  };
  crops->clear();
  for (const PixelRectangle& reach : reaches) {
    Crop crop = around(reach);
    // Whoever joins others may come to share pixels with those that were looked at before.
    for (auto other = crops->begin(); other != crops->end();) {
      const Crop both = around(Union(crop.reach, other->reach));
      const bool together = reaches.size() > kMostApart || Meet(crop.reach, other->reach) ||
                            CostOf(both.area) <= CostOf(crop.area) + CostOf(other->area);
      if (together) {
        crop = both;
        crops->erase(other);
        other = crops->begin();
      } else {
        ++other;
      }
    }
    crops->push_back(crop);
  }
}

FACE_INFO_t SeenFrom(const Crop& crop, const FACE_INFO_t& record) {
  FACE_INFO_t seen = record;
  for (fpf_point& point : seen.landmarks) {
    point.x -= crop.area.x;
    point.y -= crop.area.y;
  }
  return seen;
}

}  // namespace lumora
