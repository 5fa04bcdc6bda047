// SPDX-License-Identifier: Apache-2.0
// Expansion of semi-planar YUV 4:2:0 frames into four-byte texels, on the CPU.
//
// A camera frame is a plane of luma bytes and a plane of chroma pairs at half resolution in both
// directions. A GPU would rather see one RGBA texture. sp2yuvxs() writes a rectangle of the frame
// as texels whose bytes in memory are (Y, C0, C1, 255): C0 and C1 are the bytes of the pixel's
// chroma pair in the order in which the frame has them (Cr, Cb in the frames that the shader
// programs expect). Chroma is not filtered: the four pixels of a 2x2 square share one pair.
// clang-format off
//
// Source     Luma of pixel (col, row) is the byte at  luma + row * srcStride + col;  its chroma
//            pair is at  chroma + (row >> 1) * srcStride + (col & ~1).  Both planes have rows of
//            srcStride bytes.
// Rectangle  x, y, w, h in source pixels. The texel of source pixel (x + j, y + i) goes to column
//            j of row i of the destination: x and y never move the destination. x must be even,
//            or the two bytes of every pair trade places with their neighbours.
// dst        Rows of dstStride texels (4 * dstStride bytes), tightly one after the other. No
//            alignment is needed; rows that start at multiples of 64 bytes are the fastest.
//
// The three forms differ in where chroma is and in what happens around the rectangle:
//
//   A  src, no dstHeight      chroma starts srcHeight rows after src; only the rectangle is written
//   B  src, dstHeight         planes as in A; the rest of the destination is filled as well
//   C  srcY, srcUV            planes apart, fill as in B; srcHeight is not used
//
// The fill repeats the last texel of each row up to column 16 * (dstStride >> 4) and then repeats
// the last row (dstHeight - h) times, so that a GPU that samples past the edge finds the edge.
//
// Regular sizes
//   w and h are positive, w is a multiple of 16, h is even and, in forms B and C, dstStride is a
//   multiple of 16 that is not less than w. Then exactly this memory is touched:
//     read     luma    w bytes of h rows, from column x of row y on
//              chroma  w bytes of h / 2 rows, from byte x of row (y >> 1) on
//     written  A       w texels of h rows; texels right of the rectangle keep their value
//              B, C    dstStride texels of h rows, and of max(dstHeight, h) rows altogether
//
// Other sizes
//   There is no remainder loop. Work is done in groups of 16 pixels on pairs of rows, at least one
//   group and at least one pair, whatever w and h say:
//     - Each row handles B = 16 * max(w >> 4, 1) pixels. A narrow rectangle reads and writes a
//       whole group; the columns from B to w of a wider one are left out.
//     - max(h >> 1, 1) pairs are handled. h = 1 reads and writes two rows; an odd h above that
//       leaves out its last row.
//     - From one pair to the next luma moves by 2 * srcStride - w + B bytes and chroma by
//       srcStride - w + B bytes. So a w that is no multiple of 16 shifts each pair sideways
//       against the one before it.
//     - The destination moves, in form A, by 2 * dstStride - w + B texels; in forms B and C by the
//       texels written to a row, B + 16 * max((dstStride >> 4) - (w >> 4), 0), plus dstStride.
//     - The bottom fill is still made of (dstHeight - h) copies of 4 * dstStride bytes, from the
//       row before the place where the last pair ended. After an odd h above 1 it therefore ends
//       one row before row dstHeight, and after h = 1 one row behind it.
//   Rows of a pair that overlap in the destination are written group by group, the upper row
//   first. All of the memory that these rules name must be readable and writable.
//
// clang-format on
//
// Nothing is checked and nothing is reported: null pointers and short buffers are errors of the
// caller. Source and destination must not overlap.
//
// Thread-safety: no state is kept; calls may run at the same time on any threads if their
// destinations do not overlap. Large destinations are written around the cache, and these stores
// are complete before the call returns.
#ifndef LUMORA_CONVERT_SP2YUVXS_H_
#define LUMORA_CONVERT_SP2YUVXS_H_

#include "lumora/export.h"

// Form A: one buffer, only the rectangle is written.
LUMORA_API void sp2yuvxs(void* dst, int dstStride, const void* src, int srcStride, int srcHeight,
                         int x, int y, int w, int h);

// Form B: one buffer, the destination is filled to 16 * (dstStride >> 4) columns and dstHeight
// rows.
LUMORA_API void sp2yuvxs(void* dst, int dstStride, int dstHeight, const void* src, int srcStride,
                         int srcHeight, int x, int y, int w, int h);

// Form C: two planes, fill as in form B. srcHeight may have any value.
LUMORA_API void sp2yuvxs(void* dst, int dstStride, int dstHeight, const void* srcY,
                         const void* srcUV, int srcStride, int srcHeight, int x, int y, int w,
                         int h);

#endif  // LUMORA_CONVERT_SP2YUVXS_H_
