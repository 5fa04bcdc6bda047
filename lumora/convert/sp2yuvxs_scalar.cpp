#include "lumora/convert/sp2yuvxs_scalar.h"

#include <cstring>

namespace lumora {

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__,
              "a texel is put together as a word whose lowest byte comes first in memory");

// Both texels of a pair are put together as 32-bit words: GCC turns this into vector code, and
// where a compiler does not it is still twice as fast as storing bytes. The sources are promised
// not to overlap `dst`, which byte pointers would otherwise be taken to do.
void ExpandRowScalar(std::uint8_t* __restrict dst, const std::uint8_t* __restrict luma,
                     const std::uint8_t* __restrict chroma, std::ptrdiff_t blocks) {
  for (std::ptrdiff_t pair = 0; pair < blocks * kBlockPixels / 2; ++pair) {
    std::uint16_t chroma_pair;
    std::memcpy(&chroma_pair, chroma + 2 * pair, sizeof(chroma_pair));
    const std::uint32_t rest = std::uint32_t{chroma_pair} << 8 | 0xFF000000u;
    const std::uint32_t left = rest | luma[2 * pair];
    const std::uint32_t right = rest | luma[2 * pair + 1];
    std::memcpy(dst + 2 * pair * kTexelBytes, &left, kTexelBytes);
    std::memcpy(dst + (2 * pair + 1) * kTexelBytes, &right, kTexelBytes);
  }
}

}  // namespace lumora
