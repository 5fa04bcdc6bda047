// SPDX-License-Identifier: Apache-2.0
// The quadrilateral of a frame that keystone correction samples.
#ifndef LUMORA_GEOMETRY_KEYSTONE_H_
#define LUMORA_GEOMETRY_KEYSTONE_H_

namespace lumora {

/// Its corners in texture coordinates: upper left, upper right, lower left, lower right.
struct Keystone {
  float x[4];
  float y[4];
};

/// One side is shortened by d = degree / 100 at both ends, the left one where that is positive;
/// both are moved in by half of it.
inline Keystone KeystoneOf(int degree) {
  const float d = static_cast<float>(degree) / 100.0f;
  const float h = d * 0.5f;
  if (degree >= 0) return {{d - h, 1 - h, d - h, 1 - h}, {d, 0, 1 - d, 1}};
  return {{-h, 1 + d - h, -h, 1 + d - h}, {0, -d, 1, 1 + d}};
}

}  // namespace lumora

#endif  // LUMORA_GEOMETRY_KEYSTONE_H_
