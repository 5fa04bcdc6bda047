// SPDX-License-Identifier: Apache-2.0
#include "lumora/geometry/warp.h"

#include <algorithm>
#include <cmath>

namespace lumora {
namespace {

constexpr double kStrengthAtLevel0 = 1.1;
constexpr double kStrengthPerLevel = 0.1;
constexpr double kStrengthExponent = 0.3;  // of the radius
constexpr double kHsiChainReduction = 0.8;
constexpr double kRadiansPerDegree = 0.0174533;

}  // namespace

double WarpStrength(double radius, int beauty_level, double level_ratio) {
  return (kStrengthAtLevel0 + kStrengthPerLevel * beauty_level) *
         std::pow(radius, kStrengthExponent) * level_ratio;
}

double WarpRadiusInPixels(int size, const WarpScales& scales, double frame_width) {
  return std::min(size * scales.radius, kLargestWarpRadius * frame_width);
}

double EdgeFadeDivisor(double border, double exponent) {
  return 2.0 - std::pow(border, exponent);
}

FaceWarpParameters ComputeWarp(const FaceMeasures& face, const WarpRequest& request) {
  const auto width = static_cast<float>(request.frame_width);
  const auto height = static_cast<float>(request.frame_height);
  const WarpScales& scales = request.capture ? kCaptureWarp : kPreviewWarp;
  FaceWarpParameters warp{};
  warp.centre_x = static_cast<float>(face.loc_x) / width;
  warp.centre_y = static_cast<float>(face.loc_y) / height;

  const double size = std::max(face.dist, face.chin_dist);
  warp.radius = std::min(static_cast<float>(size * scales.radius) / width,
                         static_cast<float>(kLargestWarpRadius));

  const double shape_factor = face.shape_type == 2 ? 0.5 : 1.0;
  warp.told_strength = static_cast<float>(
      shape_factor * WarpStrength(static_cast<double>(warp.radius), request.beauty_level,
                                  static_cast<double>(request.level_ratio)));
  warp.strength = request.capture && request.hsi_chain
                      ? static_cast<float>(warp.told_strength * kHsiChainReduction)
                      : warp.told_strength;

  warp.limiter_direction =
      static_cast<float>((static_cast<double>(face.roll) - 90.0) * kRadiansPerDegree);
  warp.limiter_distance = static_cast<float>(kLimiterDistance);
  const float chin_share = static_cast<float>(face.chin_dist) / static_cast<float>(face.dist);
  warp.limiter_scale = static_cast<float>(scales.limiter / static_cast<double>(chin_share));

  warp.aspect_ratio = height / width;
  warp.edge_fade = request.capture ? 0.0f : static_cast<float>(kEdgeFade);
  warp.valid = face.dist > 0 && face.loc_x > 0 && face.loc_y > 0;
  return warp;
}

}  // namespace lumora
