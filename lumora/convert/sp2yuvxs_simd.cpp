// SPDX-License-Identifier: Apache-2.0
#include "lumora/convert/sp2yuvxs_simd.h"

#include "lumora/convert/sp2yuvxs_scalar.h"

// Highway compiles the rest of this file once per instruction set.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "lumora/convert/sp2yuvxs_simd.cpp"
#include "hwy/foreach_target.h"  // must precede highway.h
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace lumora {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// For interleaving stores: with 64 bytes some compilers spend more on shuffles than they gain.
using Wide = hn::CappedTag<std::uint8_t, 32>;

// Writes Lanes(d) texels. Seen as 16-bit lanes each chroma pair sits under the two pixels that
// share it, so both bytes of a pair are doubled inside their own lane and nothing moves across
// lanes.
template <Stores kStores, class D>
HWY_INLINE void ExpandVector(D d, const std::uint8_t* HWY_RESTRICT luma,
                             const std::uint8_t* HWY_RESTRICT chroma,
                             std::uint8_t* HWY_RESTRICT dst) {
  const hn::Repartition<std::uint16_t, D> d16;
  const auto first = hn::Set(d16, 0x00FF);
  const auto pairs = hn::BitCast(d16, hn::LoadU(d, chroma));
  const auto c0 = hn::Or(hn::And(pairs, first), hn::ShiftLeft<8>(pairs));
  const auto c1 = hn::Or(hn::AndNot(first, pairs), hn::ShiftRight<8>(pairs));
  const auto y = hn::LoadU(d, luma);
  const auto alpha = hn::Set(d, 0xFF);

  if constexpr (kStores == Stores::Cached) {
    hn::StoreInterleaved4(y, hn::BitCast(d, c0), hn::BitCast(d, c1), alpha, d, dst);
  } else {
    // There is no streaming form of an interleaving store; the compiler keeps `texels` in
    // registers.
    HWY_ALIGN std::uint8_t texels[4 * hn::MaxLanes(d)];
    hn::StoreInterleaved4(y, hn::BitCast(d, c0), hn::BitCast(d, c1), alpha, d, texels);
    for (std::size_t i = 0; i < 4; ++i) {
      hn::Stream(hn::Load(d, texels + i * hn::Lanes(d)), d, dst + i * hn::Lanes(d));
    }
  }
}

// The same for vectors that hold the texels of a whole block. Luma widens to texels as it is
// loaded, and every texel picks its pair from the block's chroma, which lies in each quarter of a
// vector. That takes less than half the vector instructions: destinations beyond the second-level
// cache gain a tenth, because the processor gets to the next cache lines earlier.
template <class D>
HWY_INLINE void ExpandBlocks(D texels, std::uint8_t* HWY_RESTRICT dst,
                             const std::uint8_t* HWY_RESTRICT luma,
                             const std::uint8_t* HWY_RESTRICT chroma, std::size_t pixels) {
  static_assert(hn::MaxLanes(texels) == kBlockPixels, "a vector is a block");
  const hn::Rebind<std::uint8_t, D> narrow;
  const hn::Repartition<std::uint8_t, D> bytes;
  // Where the bytes of texel i lie in the block's chroma: 0x80 is nowhere and gives 0.
  const auto even = hn::AndNot(hn::Set(texels, 1), hn::Iota(texels, 0));
  const auto places =
      hn::Or3(hn::ShiftLeft<8>(even), hn::ShiftLeft<16>(even), hn::Set(texels, 0x80010080));
  const auto alpha = hn::Set(texels, 0xFF000000);
  for (std::size_t at = 0; at < pixels; at += kBlockPixels) {
    const auto y = hn::PromoteTo(texels, hn::LoadU(narrow, luma + at));
    const auto pairs = hn::LoadDup128(bytes, chroma + at);
    const auto c = hn::BitCast(texels, hn::TableLookupBytesOr0(pairs, hn::BitCast(bytes, places)));
    const auto block = hn::BitCast(bytes, hn::Or3(y, c, alpha));
    hn::StoreU(block, bytes, dst + at * kTexelBytes);
  }
}

// Whole vectors first, then the blocks that do not fill one.
template <Stores kStores>
HWY_INLINE void ExpandVectors(std::uint8_t* HWY_RESTRICT dst, const std::uint8_t* HWY_RESTRICT luma,
                              const std::uint8_t* HWY_RESTRICT chroma, std::size_t pixels) {
  const Wide wide;
  const hn::CappedTag<std::uint8_t, kBlockPixels> block;
  std::size_t at = 0;
  for (; at + hn::Lanes(wide) <= pixels; at += hn::Lanes(wide)) {
    ExpandVector<kStores>(wide, luma + at, chroma + at, dst + at * kTexelBytes);
  }
  for (; at < pixels; at += hn::Lanes(block)) {
    ExpandVector<kStores>(block, luma + at, chroma + at, dst + at * kTexelBytes);
  }
}

void ExpandRow(std::uint8_t* dst, const std::uint8_t* luma, const std::uint8_t* chroma,
               std::ptrdiff_t blocks, Stores stores) {
  if constexpr (HWY_TARGET == HWY_EMU128 || HWY_TARGET == HWY_SCALAR) {
    ExpandRowScalar(dst, luma, chroma, blocks);  // Highway's emulated vectors are much slower
  } else {
    const auto pixels = static_cast<std::size_t>(blocks * kBlockPixels);
    const std::size_t vector_bytes = hn::Lanes(Wide());
    const bool aligned = reinterpret_cast<std::uintptr_t>(dst) % vector_bytes == 0;
    if (stores == Stores::Streaming && aligned) {
      ExpandVectors<Stores::Streaming>(dst, luma, chroma, pixels);
    } else if constexpr (HWY_CAP_GE512) {
      ExpandBlocks(hn::CappedTag<std::uint32_t, kBlockPixels>(), dst, luma, chroma, pixels);
    } else {
      ExpandVectors<Stores::Cached>(dst, luma, chroma, pixels);
    }
  }
}

void ExpandRowPairs(const RowPairs& rows, Stores stores) {
  for (std::ptrdiff_t pair = 0; pair < rows.pairs; ++pair) {
    const std::uint8_t* const chroma = rows.chroma + pair * rows.chroma_pair;
    for (int row = 0; row < 2; ++row) {
      HWY_NAMESPACE::ExpandRow(rows.dst + pair * rows.dst_pair + row * rows.dst_row,
                               rows.luma + pair * rows.luma_pair + row * rows.luma_row, chroma,
                               rows.blocks, stores);
    }
  }
}

}  // namespace HWY_NAMESPACE
}  // namespace lumora
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace lumora {

HWY_EXPORT(ExpandRow);
HWY_EXPORT(ExpandRowPairs);

void ExpandRow(std::uint8_t* dst, const std::uint8_t* luma, const std::uint8_t* chroma,
               std::ptrdiff_t blocks, Stores stores) {
  HWY_DYNAMIC_DISPATCH(ExpandRow)(dst, luma, chroma, blocks, stores);
}

void ExpandRowPairs(const RowPairs& rows, Stores stores) {
  HWY_DYNAMIC_DISPATCH(ExpandRowPairs)(rows, stores);
}

}  // namespace lumora
#endif  // HWY_ONCE
