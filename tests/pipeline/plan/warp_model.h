// SPDX-License-Identifier: Apache-2.0
// The slimming warp of the engine's two chains, written down once more in double precision.
#ifndef LUMORA_TESTS_PIPELINE_WARP_MODEL_H_
#define LUMORA_TESTS_PIPELINE_WARP_MODEL_H_

#include <algorithm>
#include <cmath>

#include "lumora/engine/face_info.h"

namespace lumora::test {

struct Vector {
  double x = 0;
  double y = 0;
};

/// The warp that a face record makes the engine draw in a frame of width x height pixels (multiples
/// of 32, as the engine gets it), in the preview chain or in a capture.
class WarpModel {
 public:
  WarpModel(const FACE_INFO_t& record, int width, int height, int beauty_level,
            bool capture = false)
      : capture_(capture),
        width_(width),
        height_(height),
        aspect_(height_ / width_),
        centre_{record.loc_x / width_, record.loc_y / height_} {
    const double larger = std::max(record.dist, record.chin_dist);
    const double shape = record.shapetype == 2 ? 0.5 : 1.0;
    radius_ = std::min(larger * (capture ? 1.05 : 1.15) / width_, 0.4);
    strength_ = shape * (1.1 + 0.1 * beauty_level) * std::pow(radius_, 0.3) *
                static_cast<double>(record.dist_level_ratio);
    const double direction = (record.roll - 90) * 0.0174533;
    limiter_ = {0.55 * radius_ * std::cos(direction), 0.55 * radius_ * std::sin(direction)};
    limiter_scale_ = (capture ? 1.3 : 1.1) * record.dist / record.chin_dist;
  }

  double radius_pixels() const { return radius_ * width_; }
  Vector centre_pixels() const { return {centre_.x * width_, centre_.y * height_}; }

  /// Where the pixel that is drawn at `at` is taken from, both in pixels.
  Vector Source(Vector at) const {
    const Vector from_centre = {at.x / width_ - centre_.x, at.y / height_ - centre_.y};
    const double distance = std::hypot(from_centre.x, from_centre.y * aspect_);
    const double pull = 1 + strength_ * distance * Weight(at, from_centre, distance);
    return {at.x + from_centre.x * (pull - 1) * width_,
            at.y + from_centre.y * (pull - 1) * height_};
  }

 private:
  /// 1 where the warp acts fully, 0 where it does not.
  double Weight(Vector at, Vector from_centre, double distance) const {
    const Vector from_limiter = {from_centre.x - limiter_.x, from_centre.y - limiter_.y};
    const double reach = std::hypot(from_limiter.x, from_limiter.y * aspect_) / limiter_scale_;
    const double hold = std::clamp(reach / (0.55 * radius_), 0.0, 1.0);
    if (hold == 0) return 0;
    const double ratio = std::clamp(distance / radius_ / hold, 0.0, 1.0);
    if (capture_) return 1 - ratio;
    const double u = at.x / width_;
    const double v = at.y / height_;
    const double to_border = std::max(0.0, std::min({u, 1 - u, v, 1 - v}));
    return 1 - std::clamp(ratio * (2 - std::pow(to_border, 0.2)), 0.0, 1.0);
  }

  bool capture_;
  double width_;
  double height_;
  double aspect_;
  Vector centre_;
  double radius_ = 0;
  double strength_ = 0;
  Vector limiter_;
  double limiter_scale_ = 0;
};

}  // namespace lumora::test

#endif  // LUMORA_TESTS_PIPELINE_WARP_MODEL_H_
