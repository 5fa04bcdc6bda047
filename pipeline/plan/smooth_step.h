// SPDX-License-Identifier: Apache-2.0
// A soft step.
#ifndef LUMORA_PIPELINE_PLAN_SMOOTH_STEP_H_
#define LUMORA_PIPELINE_PLAN_SMOOTH_STEP_H_

#include <algorithm>

namespace lumora {

/// 0 up to `low`, 1 from `high` on.
inline float SmoothStep(float low, float high, float value) {
  const float t = std::min(std::max((value - low) / (high - low), 0.f), 1.f);
  return t * t * (3 - 2 * t);
}

}  // namespace lumora

#endif  // LUMORA_PIPELINE_PLAN_SMOOTH_STEP_H_
