// SPDX-License-Identifier: Apache-2.0
// Lenses of frames that fill a part of the engine's only.
#ifndef LUMORA_PIPELINE_SUPPORT_LENS_SHARE_H_
#define LUMORA_PIPELINE_SUPPORT_LENS_SHARE_H_

#include <array>
#include <cstddef>

namespace lumora {

/// The sides of the caller's frame as shares of those of the engine's.
struct FrameShare {
  double x = 1;
  double y = 1;
};

/// The coefficients that bend the frame as the four given ones bend one that fills the engine's:
/// the engine measures the squared distance in its own, larger frame.
inline std::array<double, 4> CoefficientsIn(const FrameShare& share, const float (&given)[4]) {
  const double area = (share.x * share.x + share.y * share.y) / 2;
  std::array<double, 4> coefficients{};
  double power = 1;
  for (size_t i = 0; i < coefficients.size(); ++i) {
    coefficients[i] = static_cast<double>(given[i]) / power;
    power *= area;
  }
  return coefficients;
}

}  // namespace lumora

#endif  // LUMORA_PIPELINE_SUPPORT_LENS_SHARE_H_
