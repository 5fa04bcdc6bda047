// SPDX-License-Identifier: Apache-2.0
// Lenses whose bent lines RectifyRadial straightens.
#ifndef LUMORA_PIPELINE_LENS_H_
#define LUMORA_PIPELINE_LENS_H_

#include <variant>

#include "lumora/geometry/lens.h"

namespace lumora {

/// The largest coefficient of a lens.
constexpr float kLargestCoefficient = 1000;

/// The radial lens polynomial k0 + k1 s + k2 s^2 + k3 s^3, s the squared distance from the frame's
/// centre, 1 in the corners: a pixel is taken from so many times its distance from the centre. The
/// defaults are those of lenses without a parameter file. Every coefficient is finite and lies
/// within kLargestCoefficient, to both sides of 0; others are an InvalidArgument.
struct LensCoefficients {
  float k0 = kDefaultLensCoefficients[0];
  float k1 = kDefaultLensCoefficients[1];
  float k2 = kDefaultLensCoefficients[2];
  float k3 = kDefaultLensCoefficients[3];
};

/// A camera of the device. It stands for the coefficients that the camera's parameter file names
/// when a frame is corrected; for the default ones where there is no such file, or one of them is
/// beyond its range.
enum class Camera { First, Second };

/// A lens: known coefficients, or a camera of the device. Either converts to it by itself.
using Lens = std::variant<LensCoefficients, Camera>;

}  // namespace lumora

#endif  // LUMORA_PIPELINE_LENS_H_
