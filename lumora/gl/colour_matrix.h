// SPDX-License-Identifier: Apache-2.0
// The YUV-to-RGB matrix.
#ifndef LUMORA_GL_COLOUR_MATRIX_H_
#define LUMORA_GL_COLOUR_MATRIX_H_

namespace lumora {

/// Full-range BT.601 with three decimals over (Y, Cr, Cb, 1), column by column; the last column is
/// the chroma offset of one half, folded in.
inline constexpr float kMatYUV2RGB[16] = {
    1.0f,    1.0f,    1.0f,    0.0f,  // Y
    1.402f,  -0.714f, 0.0f,    0.0f,  // Cr
    0.0f,    -0.344f, 1.772f,  0.0f,  // Cb
    -0.701f, 0.529f,  -0.886f, 1.0f,  // constant
};

}  // namespace lumora

#endif  // LUMORA_GL_COLOUR_MATRIX_H_
