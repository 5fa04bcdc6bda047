// SPDX-License-Identifier: Apache-2.0
#ifndef LUMORA_PIPELINE_BACKENDS_CPU_KERNELS_ROUND_HALF_UP_H_
#define LUMORA_PIPELINE_BACKENDS_CPU_KERNELS_ROUND_HALF_UP_H_

namespace lumora::cpu {

/// The nearest whole number to one that is not negative, as vectors have it: a half more, cut.
inline int RoundHalfUp(float value) {
  return static_cast<int>(value + 0.5f);  // NOLINT(bugprone-incorrect-roundings): meant so
}

}  // namespace lumora::cpu

#endif  // LUMORA_PIPELINE_BACKENDS_CPU_KERNELS_ROUND_HALF_UP_H_
