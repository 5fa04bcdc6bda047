// SPDX-License-Identifier: Apache-2.0
// How large the numbers of callers may be, so that all that is computed from them stays a number.
#ifndef LUMORA_PIPELINE_SUPPORT_NUMBER_BOUNDS_H_
#define LUMORA_PIPELINE_SUPPORT_NUMBER_BOUNDS_H_

#include <cmath>
#include <initializer_list>

#include "lumora/pipeline/lens.h"

namespace lumora {

/// Whether a number is no farther from 0 than `most`; what is not a number is farther.
inline bool IsWithin(float number, float most) {
  return std::abs(number) <= most;
}

/// Whether every coefficient of a lens is within kLargestCoefficient.
inline bool IsUsable(const LensCoefficients& lens) {
  bool usable = true;
  for (const float k : {lens.k0, lens.k1, lens.k2, lens.k3}) {
    usable = usable && IsWithin(k, kLargestCoefficient);
  }
  return usable;
}

}  // namespace lumora

#endif  // LUMORA_PIPELINE_SUPPORT_NUMBER_BOUNDS_H_
