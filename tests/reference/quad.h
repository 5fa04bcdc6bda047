// SPDX-License-Identifier: Apache-2.0
// The full-screen quad: how a draw turns texture coordinates into fragments.
#ifndef LUMORA_REFERENCE_QUAD_H_
#define LUMORA_REFERENCE_QUAD_H_

#include <array>
#include <functional>

#include "reference/image.h"

namespace lumora::reference {

/// Four vertices, drawn as the triangles 0 1 2 and 0 2 3.
using Corners = std::array<Vec2, 4>;

/// Positions in clip space.
constexpr Corners kNormalPositions = {{{-1, 1}, {-1, -1}, {1, -1}, {1, 1}}};
/// Positions turned by 90 degrees, for packing a frame that lies across.
constexpr Corners kRotatedPositions = {{{1, 1}, {-1, 1}, {-1, -1}, {1, -1}}};

/// Texture coordinates of the whole texture.
constexpr Corners kWholeTexture = {{{0, 1}, {0, 0}, {1, 0}, {1, 1}}};
/// Texture coordinates of the rectangle [s0, s1] x [t0, t1], in the same vertex order.
constexpr Corners TextureRectangle(double s0, double t0, double s1, double t1) {
  return {{{s0, t1}, {s0, t0}, {s1, t0}, {s1, t1}}};
}

struct Geometry {
  Corners positions = kNormalPositions;
  Corners coordinates = kWholeTexture;
};

/// A fragment shader with its uniforms and samplers bound: texture coordinate in, colour out.
using Shader = std::function<Texel(Vec2 coordinate)>;

/// Calls `fragment(x, y, coordinate)` for every pixel that the quad covers within a viewport at
/// (0, 0) and within the target. The viewport may be larger than the target.
void ForEachFragment(const Geometry& geometry, int viewport_width, int viewport_height,
                     int target_width, int target_height,
                     const std::function<void(int x, int y, Vec2 coordinate)>& fragment);

/// Draws the quad into `target`. Pixels outside the viewport keep their values.
void DrawFullQuad(const Shader& shader, int viewport_width, int viewport_height, Image* target,
                  const Geometry& geometry = {});

}  // namespace lumora::reference

#endif  // LUMORA_REFERENCE_QUAD_H_
