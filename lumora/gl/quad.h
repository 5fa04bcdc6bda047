// SPDX-License-Identifier: Apache-2.0
// The full-screen quad that every draw of the library is.
#ifndef LUMORA_GL_QUAD_H_
#define LUMORA_GL_QUAD_H_

#include <cstdint>

namespace lumora::quad {

/// Positions: four vertices of x, y, z, w.
inline constexpr float kPositions[16] = {
    -1, 1,  1, 1,  // top left
    -1, -1, 1, 1,  // bottom left
    1,  -1, 1, 1,  // bottom right
    1,  1,  1, 1,  // top right
};

/// The same quad turned by 90 degrees, for frames that are packed along the vertical axis.
inline constexpr float kRotatedPositions[16] = {
    1, 1, 1, 1, -1, 1, 1, 1, -1, -1, 1, 1, 1, -1, 1, 1,
};

/// Two triangles over the four vertices.
inline constexpr uint16_t kIndices[6] = {0, 1, 2, 0, 2, 3};

/// Points the attribute at `location` at `coords`, `size` floats a vertex, tightly packed, in
/// client memory that outlives the draw, and enables it.
void PointAttribute(int location, int size, const void* coords);

/// The texture coordinates of the next draw, four vertices of s, t. One writable array for all
/// passes: most reset it, the capture block loop writes a block's rectangle into it and the pass
/// that follows uses that. One array a thread, since engines of different threads draw at the same
/// time.
float* TextureCoordinates();

/// Sets the coordinates to the whole texture: (0, 1), (0, 0), (1, 0), (1, 1).
void ResetTextureCoordinates();

/// Sets the coordinates to the rectangle from (s0, t0) to (s1, t1).
void SetTextureRectangle(float s0, float t0, float s1, float t1);

}  // namespace lumora::quad

#endif  // LUMORA_GL_QUAD_H_
