// SPDX-License-Identifier: Apache-2.0
// Angles in degrees and radians.
#ifndef LUMORA_PIPELINE_SUPPORT_ANGLES_H_
#define LUMORA_PIPELINE_SUPPORT_ANGLES_H_

namespace lumora {

constexpr double kDegreesPerRadian = 57.295779513082320877;
constexpr double kRadiansPerDegree = 0.0174532925199432958;

}  // namespace lumora

#endif  // LUMORA_PIPELINE_SUPPORT_ANGLES_H_
