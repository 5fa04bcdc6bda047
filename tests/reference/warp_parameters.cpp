// SPDX-License-Identifier: Apache-2.0
#include "reference/warp_parameters.h"

#include <algorithm>
#include <cmath>

namespace lumora::reference {
namespace {

float Radius(const WarpRequest& r) {
  const double larger = std::max(r.dist, r.chin_dist);
  const float pixels = static_cast<float>(larger * (r.large ? 1.05 : 1.15));
  return std::min(pixels / static_cast<float>(r.frame_width), 0.4f);
}

}  // namespace

SlimmerUniforms WarpMembers::uniforms(double edge_fix) const {
  SlimmerUniforms u;
  u.centre = {static_cast<double>(controller[0]), static_cast<double>(controller[1])};
  u.strength = static_cast<double>(controller[2]);
  u.radius = static_cast<double>(controller[3]);
  u.aspect_ratio = static_cast<double>(aspect_ratio);
  u.limiter_direction = static_cast<double>(angle_limiter[0]);
  u.limiter_distance = static_cast<double>(angle_limiter[1]);
  u.limiter_scale = static_cast<double>(angle_limiter[2]);
  u.edge_fix = edge_fix;
  return u;
}

float WarpStrength(const WarpRequest& r) {
  const double shape = r.shape_type == 2 ? 0.5 : 1.0;
  const double strength = shape * (1.1 + 0.1 * r.level) *
                          std::pow(static_cast<double>(Radius(r)), 0.3) *
                          static_cast<double>(r.ratio);
  return static_cast<float>(strength);
}

bool SetParameters(const WarpRequest& r, WarpMembers* members) {
  const float width = static_cast<float>(r.frame_width);
  const float height = static_cast<float>(r.frame_height);
  if (!r.large) members->aspect_ratio = height / width;
  if (r.dist <= 0 || r.loc_x <= 0 || r.loc_y <= 0) return false;

  float strength = WarpStrength(r);
  if (r.large && r.block_mode) strength = static_cast<float>(static_cast<double>(strength) * 0.8);
  members->controller[0] = static_cast<float>(r.loc_x) / width;
  members->controller[1] = static_cast<float>(r.loc_y) / height;
  members->controller[2] = strength;
  members->controller[3] = Radius(r);

  const float chin_share = static_cast<float>(r.chin_dist) / static_cast<float>(r.dist);
  members->angle_limiter[0] = static_cast<float>((r.roll - 90) * 0.0174533);
  members->angle_limiter[1] = 0.55f;
  members->angle_limiter[2] =
      static_cast<float>((r.large ? 1.3 : 1.1) / static_cast<double>(chin_share));
  return true;
}

WarpRequest RequestOf(const FaceRecord& face, int level, int frame_width, int frame_height,
                      bool large) {
  const bool valid = face.get(FaceRecord::kDistValid) >= 1;
  WarpRequest r;
  r.loc_x = face.get(FaceRecord::kLocX);
  r.loc_y = face.get(FaceRecord::kLocY);
  r.dist = valid ? face.get(FaceRecord::kDist) : -1;
  r.roll = face.get(FaceRecord::kRoll);
  r.chin_dist = valid ? face.get(FaceRecord::kChinDist) : -1;
  r.level = level;
  r.shape_type = face.get(FaceRecord::kShapeType);
  r.large = large;
  r.ratio = face.ratio();
  r.frame_width = frame_width;
  r.frame_height = frame_height;
  return r;
}

}  // namespace lumora::reference
