// SPDX-License-Identifier: Apache-2.0
#include "reference/sp2yuvxs_model.h"

#include <algorithm>
#include <cmath>

namespace {

long FloorDivide(int value, int by) {
  return static_cast<long>(std::floor(double(value) / by));
}

void PutTexel(Arena& dst, long at, std::uint8_t y, std::uint8_t c0, std::uint8_t c1) {
  dst[at] = y;
  dst[at + 1] = c0;
  dst[at + 2] = c1;
  dst[at + 3] = 255;
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const Geometry& g) {
  return out << "dstStride " << g.dstStride << " dstHeight " << g.dstHeight << " srcStride "
             << g.srcStride << " srcHeight " << g.srcHeight << " x " << g.x << " y " << g.y << " w "
             << g.w << " h " << g.h;
}

void ModelSp2yuvxs(Form form, Arena& dst, Arena& luma, Arena& chroma, const Geometry& g) {
  const long blocks = FloorDivide(g.w, 16);
  const long done_blocks = blocks < 1 ? 1 : blocks;
  const long done_pixels = 16 * done_blocks;
  const long dst_row = 4L * g.dstStride;
  const long chroma_row = (form == Form::kC ? 0 : g.srcHeight) + FloorDivide(g.y, 2);

  long y_at = long(g.y) * g.srcStride + g.x;
  long c_at = chroma_row * g.srcStride + g.x;
  long d_at = 0;

  long pairs = FloorDivide(g.h, 2);
  do {
    long d = d_at;
    for (long block = 0; block < done_blocks; ++block) {
      for (long row = 0; row < 2; ++row) {
        for (long j = 0; j < 16; ++j) {
          const long column = 16 * block + j;
          const long pair = c_at + column - column % 2;
          PutTexel(dst, d + row * dst_row + 4 * j, luma[y_at + row * g.srcStride + column],
                   chroma[pair], chroma[pair + 1]);
        }
      }
      d += 64;
    }
    if (form == Form::kA) {
      d_at += 64 * done_blocks + 4 * (2L * g.dstStride - g.w);
    } else {
      const std::uint8_t c0 = chroma[c_at + done_pixels - 2];
      const std::uint8_t c1 = chroma[c_at + done_pixels - 1];
      for (long pad = FloorDivide(g.dstStride, 16) - blocks; pad > 0; --pad) {
        for (long row = 0; row < 2; ++row) {
          const std::uint8_t last = luma[y_at + row * g.srcStride + done_pixels - 1];
          for (long j = 0; j < 16; ++j) PutTexel(dst, d + row * dst_row + 4 * j, last, c0, c1);
        }
        d += 64;
      }
      d_at = d + dst_row;
    }
    y_at += 2L * g.srcStride - g.w + done_pixels;
    c_at += long(g.srcStride) - g.w + done_pixels;
  } while (--pairs > 0);

  if (form == Form::kA) return;
  for (long row = g.h; row < g.dstHeight; ++row, d_at += dst_row) {
    for (long i = 0; i < dst_row; ++i) dst[d_at + i] = dst[d_at + i - dst_row];
  }
}
