// SPDX-License-Identifier: Apache-2.0
#include "pipeline/plan/face_plan.h"

#include <algorithm>
#include <cmath>

namespace lumora {

PixelRectangle CircleBounds(PointF centre, double radius, int width, int height) {
  const auto clip = [](double value, int limit) {
    return static_cast<int>(std::clamp(std::floor(value / 2) * 2, 0.0, static_cast<double>(limit)));
  };
  const auto x = static_cast<double>(centre.x);
  const auto y = static_cast<double>(centre.y);
  PixelRectangle bounds;
  bounds.x = clip(x - radius, width);
  bounds.y = clip(y - radius, height);
  bounds.width = clip(x + radius + 2, width) - bounds.x;
  bounds.height = clip(y + radius + 2, height) - bounds.y;
  return bounds;
}

}  // namespace lumora
