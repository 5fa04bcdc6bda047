#include "lumora/geometry/warp.h"

#include <algorithm>
#include <cmath>

namespace lumora {
namespace {

constexpr double kPreviewRadiusScale = 1.15;
constexpr double kCaptureRadiusScale = 1.05;
constexpr float kMaxRadius = 0.4f;
constexpr double kPreviewLimiterScale = 1.1;
constexpr double kCaptureLimiterScale = 1.3;
constexpr double kHsiChainReduction = 0.8;
constexpr double kRadiansPerDegree = 0.0174533;
constexpr float kLimiterDistance = 0.55f;

}  // namespace

WarpParameters ComputeWarp(const FaceMeasures& face, const WarpRequest& request) {
  const auto width = static_cast<float>(request.frame_width);
  const auto height = static_cast<float>(request.frame_height);
  WarpParameters warp{};
  warp.centre_x = static_cast<float>(face.loc_x) / width;
  warp.centre_y = static_cast<float>(face.loc_y) / height;

  const double size = std::max(face.dist, face.chin_dist);
  const double radius_scale = request.capture ? kCaptureRadiusScale : kPreviewRadiusScale;
  warp.radius = std::min(static_cast<float>(size * radius_scale) / width, kMaxRadius);

  const double shape_factor = face.shape_type == 2 ? 0.5 : 1.0;
  warp.told_strength = static_cast<float>(shape_factor * (1.1 + 0.1 * request.beauty_level) *
                                          std::pow(static_cast<double>(warp.radius), 0.3) *
                                          static_cast<double>(request.level_ratio));
  warp.strength = request.capture && request.hsi_chain
                      ? static_cast<float>(warp.told_strength * kHsiChainReduction)
                      : warp.told_strength;

  warp.limiter_direction =
      static_cast<float>((static_cast<double>(face.roll) - 90.0) * kRadiansPerDegree);
  warp.limiter_distance = kLimiterDistance;
  const float chin_share = static_cast<float>(face.chin_dist) / static_cast<float>(face.dist);
  const double limiter_scale = request.capture ? kCaptureLimiterScale : kPreviewLimiterScale;
  warp.limiter_scale = static_cast<float>(limiter_scale / static_cast<double>(chin_share));

  warp.valid = face.dist > 0 && face.loc_x > 0 && face.loc_y > 0;
  return warp;
}

}  // namespace lumora
