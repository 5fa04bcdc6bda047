// SPDX-License-Identifier: Apache-2.0
// The radial lens polynomial k0 + k1 s + k2 s^2 + k3 s^3, s the squared distance from the centre of
// a unit square whose corners lie at distance 1.
#ifndef LUMORA_GEOMETRY_LENS_H_
#define LUMORA_GEOMETRY_LENS_H_

namespace lumora {

/// Coefficients of lenses without a parameter file.
inline constexpr float kDefaultLensCoefficients[4] = {1.00453f, -0.0214308f, 0.00571108f,
                                                      0.032517f};

/// Half the diagonal of the unit square.
inline constexpr float kHalfDiagonal = 0.70710677f;

/// Moves the corner (u, v) by the default polynomial: a coordinate of exactly 0 or 1 moves inward
/// by as much as the lens bends the frame's edge, any other passes unchanged.
inline void CropCorner(float u, float v, float out[2]) {
  const float du = (0.5f - u) / kHalfDiagonal;
  const float dv = (0.5f - v) / kHalfDiagonal;
  const float s = du * du + dv * dv;
  const float* k = kDefaultLensCoefficients;
  const float factor = k[0] + (k[1] + (k[2] + k[3] * s) * s) * s;
  const auto corrected = [factor](float coordinate, float offset) {
    const float bent = 0.5f - offset * factor * kHalfDiagonal;
    if (coordinate == 0.0f) return bent < 0.0f ? -bent : bent;
    if (coordinate == 1.0f) return 2.0f - bent;
    return coordinate;
  };
  out[0] = corrected(u, du);
  out[1] = corrected(v, dv);
}

}  // namespace lumora

#endif  // LUMORA_GEOMETRY_LENS_H_
