// SPDX-License-Identifier: Apache-2.0
#include "lumora/convert/sp2yuvxs_scalar.h"

#include <cstring>

namespace lumora {

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__,
              "texels are put together from words whose lowest byte comes first in memory");

// A pair's bytes are handled as 16-bit words, four of them to two texels: compilers turn this into
// vector code, which takes a quarter of the time of storing bytes. The sources are promised not to
// overlap `dst`, which byte pointers would otherwise be taken to do.
void ExpandRowScalar(std::uint8_t* __restrict dst, const std::uint8_t* __restrict luma,
                     const std::uint8_t* __restrict chroma, std::ptrdiff_t blocks) {
  using Word = std::uint16_t;
  const auto word = [](int value) { return static_cast<Word>(value); };
  for (std::ptrdiff_t pair = 0; pair < blocks * kBlockPixels / 2; ++pair) {
    Word pixels, colour;
    std::memcpy(&pixels, luma + 2 * pair, sizeof(pixels));
    std::memcpy(&colour, chroma + 2 * pair, sizeof(colour));
    const Word first = word(colour << 8);
    const Word rest = word(colour >> 8 | 0xFF00);
    const Word left = word((pixels & 0xFF) | first);
    const Word right = word(pixels >> 8 | first);
    std::uint8_t* const texels = dst + 2 * pair * kTexelBytes;
    std::memcpy(texels, &left, sizeof(left));
    std::memcpy(texels + 2, &rest, sizeof(rest));
    std::memcpy(texels + 4, &right, sizeof(right));
    std::memcpy(texels + 6, &rest, sizeof(rest));
  }
}

}  // namespace lumora
