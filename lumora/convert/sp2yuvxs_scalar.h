// SPDX-License-Identifier: Apache-2.0
// The definition of the texel expansion in plain C++.
#ifndef LUMORA_CONVERT_SP2YUVXS_SCALAR_H_
#define LUMORA_CONVERT_SP2YUVXS_SCALAR_H_

#include <cstddef>
#include <cstdint>

namespace lumora {

// Pixels in a block, the unit of all expansion, and bytes in a texel.
constexpr std::ptrdiff_t kBlockPixels = 16;
constexpr std::ptrdiff_t kTexelBytes = 4;
constexpr std::ptrdiff_t kBlockBytes = kBlockPixels * kTexelBytes;

// Expands `blocks` blocks of one row: reads 16 luma bytes and 16 chroma bytes (8 pairs) a block and
// writes 64 bytes. Texel j is (luma[j], chroma[j & ~1], chroma[(j & ~1) + 1], 255). The pointers
// need no alignment; `dst` must not overlap the sources.
//
// This is what runs on a processor without a vector unit that the vector form knows, and what the
// vector form must equal byte for byte.
void ExpandRowScalar(std::uint8_t* dst, const std::uint8_t* luma, const std::uint8_t* chroma,
                     std::ptrdiff_t blocks);

}  // namespace lumora

#endif  // LUMORA_CONVERT_SP2YUVXS_SCALAR_H_
