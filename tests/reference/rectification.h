// SPDX-License-Identifier: Apache-2.0
// The rectification programs: four-corner remap and radial polynomial, with their parameters.
#ifndef LUMORA_REFERENCE_RECTIFICATION_H_
#define LUMORA_REFERENCE_RECTIFICATION_H_

#include <array>

#include "reference/image.h"
#include "reference/quad.h"

namespace lumora::reference {

/// Corners in input texture coordinates: 0 and 1 are the ends of the output's edge at y = 0, 2 and
/// 3 those of the edge at y = 1.
using RectificationQuad = std::array<Vec2, 4>;
/// k0 to k3, the factors of the powers of the squared radius.
using RadialCoefficients = std::array<double, 4>;

/// The quad of a degree setting, and the setting as the debug dot shows it (-3..3).
RectificationQuad QuadOfDegree(int degree);
double DegreeShown(int degree);

/// The coefficients used without a sensor's own, at float precision.
RadialCoefficients DefaultRadialCoefficients();

/// The texture coordinates of the radial draw: the whole texture, its corners moved inward so that
/// the bent frame edges fall outside. Always by the default coefficients.
Corners CroppedCorners();

/// Sample positions for an output coordinate.
Vec2 QuadMap(Vec2 coordinate, const RectificationQuad& quad);
Vec2 RadialMap(Vec2 coordinate, const RadialCoefficients& k);

struct Rectification {
  Sampler input;
  RectificationQuad quad{};
  bool mask = false;    ///< the debug variant, which draws a red dot
  double degree = 0.0;  ///< places the dot
  Texel operator()(Vec2 coordinate) const;
};

/// How far a coordinate lies outside the debug dot, in texture units (negative inside).
double DistanceFromDot(Vec2 coordinate, double degree);

struct RadialDistortion {
  Sampler input;
  RadialCoefficients k{};
  Texel operator()(Vec2 coordinate) const;
};

}  // namespace lumora::reference

#endif  // LUMORA_REFERENCE_RECTIFICATION_H_
