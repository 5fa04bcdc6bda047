// SPDX-License-Identifier: Apache-2.0
#include "lumora/convert/sp2yuvxs.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "hwy/cache_control.h"
#include "lumora/convert/sp2yuvxs_scalar.h"
#include "lumora/convert/sp2yuvxs_simd.h"

namespace lumora {
namespace {

// Sizes come as ints of any value, so every place in a plane is computed in this wider type and a
// pointer is made only for bytes that are read or written.
using Offset = std::ptrdiff_t;

// A destination above this size is written around the cache: about half of a usual last-level
// cache, so that frames up to 4 megapixels stay in reach of whoever reads them next. The size that
// a system reports is no better guide: virtual machines name caches that they share with many
// others.
constexpr Offset kStreamingBytes = Offset{16} << 20;

// A plane of the source and the offset of the rectangle's first byte in it.
struct Plane {
  const std::uint8_t* base;
  Offset at;
};

struct Source {
  Plane luma;
  Plane chroma;
  Offset stride;
};

// What a call does to the destination, in texels and groups of 16 texels.
struct Target {
  std::uint8_t* base;
  Offset stride;
  Offset edge_groups;   // repeated after each row
  Offset pair_advance;  // from the start of one row pair to the start of the next
};

Offset RowGroups(int w) {
  return std::max(w >> 4, 1);
}

// Chroma that follows `srcHeight` rows of luma in the same buffer.
Source OneBuffer(const void* src, Offset stride, Offset srcHeight, Offset x, Offset y) {
  const auto* base = static_cast<const std::uint8_t*>(src);
  return {{base, y * stride + x}, {base, (srcHeight + (y >> 1)) * stride + x}, stride};
}

Source TwoPlanes(const void* srcY, const void* srcUV, Offset stride, Offset x, Offset y) {
  return {{static_cast<const std::uint8_t*>(srcY), y * stride + x},
          {static_cast<const std::uint8_t*>(srcUV), (y >> 1) * stride + x},
          stride};
}

Target Unfilled(void* dst, Offset stride, int w) {
  return {static_cast<std::uint8_t*>(dst), stride, 0, RowGroups(w) * kBlockPixels + 2 * stride - w};
}

// The groups up to the edge are counted from the real width, not from the one group that a narrow
// rectangle is raised to: such a row ends one group further right.
Target Filled(void* dst, Offset stride, int w) {
  const Offset edge_groups = std::max<Offset>((stride >> 4) - (w >> 4), 0);
  const Offset row = (RowGroups(w) + edge_groups) * kBlockPixels;
  return {static_cast<std::uint8_t*>(dst), stride, edge_groups, row + stride};
}

// Writes a group of 16 copies of one texel.
void RepeatTexel(std::uint8_t* dst, std::uint8_t y, const std::uint8_t* pair) {
  const std::uint8_t texel[kTexelBytes] = {y, pair[0], pair[1], 0xFF};
  for (Offset i = 0; i < kBlockBytes; i += kTexelBytes) std::memcpy(dst + i, texel, kTexelBytes);
}

// Expands two rows. Both go in steps of `step` groups: a whole row at a time where the rows are
// apart; one group at a time, the upper row first, where one overwrites parts of the other.
void ExpandPair(const Target& target, Offset dst_at, const Source& source, Offset groups,
                Offset step, Stores stores) {
  const std::uint8_t* const chroma = source.chroma.base + source.chroma.at;
  const std::uint8_t* const luma[2] = {source.luma.base + source.luma.at,
                                       source.luma.base + source.luma.at + source.stride};
  std::uint8_t* const dst[2] = {target.base + dst_at * kTexelBytes,
                                target.base + (dst_at + target.stride) * kTexelBytes};
  for (Offset group = 0; group < groups; group += step) {
    const Offset pixel = group * kBlockPixels;
    for (int row = 0; row < 2; ++row) {
      ExpandRow(dst[row] + pixel * kTexelBytes, luma[row] + pixel, chroma + pixel, step, stores);
    }
  }
  const Offset end = groups * kBlockPixels;
  for (Offset group = groups; group < groups + target.edge_groups; ++group) {
    for (int row = 0; row < 2; ++row) {
      RepeatTexel(dst[row] + group * kBlockBytes, luma[row][end - 1], chroma + end - 2);
    }
  }
}

// Expands pairs whose rows are apart and have nothing behind them.
void ExpandApart(const Target& target, const Source& source, Offset displacement, Offset groups,
                 Offset pairs, Stores stores) {
  const RowPairs rows = {target.base,
                         target.stride * kTexelBytes,
                         target.pair_advance * kTexelBytes,
                         source.luma.base + source.luma.at,
                         source.stride,
                         2 * source.stride + displacement,
                         source.chroma.base + source.chroma.at,
                         source.stride + displacement,
                         groups,
                         pairs};
  ExpandRowPairs(rows, stores);
}

// Expands all row pairs; returns the place in the destination, in texels, where the next pair would
// start.
Offset ExpandPairs(const Target& target, Source source, int w, int h) {
  const Offset groups = RowGroups(w);
  const Offset pairs = std::max(h >> 1, 1);
  const Offset row = (groups + target.edge_groups) * kBlockPixels;
  const bool apart = std::abs(target.stride) >= row;
  const Offset displacement = groups * kBlockPixels - w;
  const Stores stores =
      2 * pairs * row * kTexelBytes > kStreamingBytes ? Stores::Streaming : Stores::Cached;

  Offset dst_at = 0;
  if (apart && target.edge_groups == 0) {
    ExpandApart(target, source, displacement, groups, pairs, stores);
    dst_at = pairs * target.pair_advance;
  } else {
    for (Offset pair = 0; pair < pairs; ++pair) {
      ExpandPair(target, dst_at, source, groups, apart ? groups : 1, stores);
      source.luma.at += 2 * source.stride + displacement;
      source.chroma.at += source.stride + displacement;
      dst_at += target.pair_advance;
    }
  }
  if (stores == Stores::Streaming) hwy::FlushStream();
  return dst_at;
}

// Copies the row before texel `dst_at` into each of the next `rows` rows.
void RepeatRow(const Target& target, Offset dst_at, Offset rows) {
  if (target.stride <= 0) return;
  for (Offset row = 0; row < rows; ++row, dst_at += target.stride) {
    std::memcpy(target.base + dst_at * kTexelBytes,
                target.base + (dst_at - target.stride) * kTexelBytes,
                static_cast<std::size_t>(target.stride * kTexelBytes));
  }
}

void ExpandAndFill(const Target& target, const Source& source, Offset dstHeight, int w, int h) {
  RepeatRow(target, ExpandPairs(target, source, w, h), dstHeight - h);
}

}  // namespace
}  // namespace lumora

void sp2yuvxs(void* dst, int dstStride, const void* src, int srcStride, int srcHeight, int x, int y,
              int w, int h) {
  lumora::ExpandPairs(lumora::Unfilled(dst, dstStride, w),
                      lumora::OneBuffer(src, srcStride, srcHeight, x, y), w, h);
}

void sp2yuvxs(void* dst, int dstStride, int dstHeight, const void* src, int srcStride,
              int srcHeight, int x, int y, int w, int h) {
  lumora::ExpandAndFill(lumora::Filled(dst, dstStride, w),
                        lumora::OneBuffer(src, srcStride, srcHeight, x, y), dstHeight, w, h);
}

void sp2yuvxs(void* dst, int dstStride, int dstHeight, const void* srcY, const void* srcUV,
              int srcStride, int /*srcHeight*/, int x, int y, int w, int h) {
  lumora::ExpandAndFill(lumora::Filled(dst, dstStride, w),
                        lumora::TwoPlanes(srcY, srcUV, srcStride, x, y), dstHeight, w, h);
}
