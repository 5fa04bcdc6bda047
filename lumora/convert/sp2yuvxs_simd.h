// SPDX-License-Identifier: Apache-2.0
// The texel expansion on the best vector unit of the processor at hand.
#ifndef LUMORA_CONVERT_SP2YUVXS_SIMD_H_
#define LUMORA_CONVERT_SP2YUVXS_SIMD_H_

#include <cstddef>
#include <cstdint>

namespace lumora {

// How texels reach memory. Streaming stores go around the cache: better for a destination that
// would push everything else out of it, worse for one that stays there until it is read. They
// become visible to other threads only after hwy::FlushStream().
enum class Stores { Cached, Streaming };

// Same arguments and same bytes as ExpandRowScalar(). Rows whose address is not a multiple of the
// vector size are written with cached stores whatever `stores` says.
void ExpandRow(std::uint8_t* dst, const std::uint8_t* luma, const std::uint8_t* chroma,
               std::ptrdiff_t blocks, Stores stores);

// Pairs of rows that share their chroma. Sizes are bytes, and the first row of a pair is written
// before the second.
struct RowPairs {
  std::uint8_t* dst;
  std::ptrdiff_t dst_row;   // from the first row of a pair to its second
  std::ptrdiff_t dst_pair;  // from pair to pair
  const std::uint8_t* luma;
  std::ptrdiff_t luma_row;
  std::ptrdiff_t luma_pair;
  const std::uint8_t* chroma;
  std::ptrdiff_t chroma_pair;
  std::ptrdiff_t blocks;  // of a row
  std::ptrdiff_t pairs;
};

// ExpandRow() for all rows: the vector unit is chosen once instead of row by row.
void ExpandRowPairs(const RowPairs& rows, Stores stores);

}  // namespace lumora

#endif  // LUMORA_CONVERT_SP2YUVXS_SIMD_H_
