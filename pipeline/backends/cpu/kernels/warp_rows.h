// SPDX-License-Identifier: Apache-2.0
// Rows of a slimmed face: every pixel is taken from farther outside.
#ifndef LUMORA_PIPELINE_BACKENDS_CPU_KERNELS_WARP_ROWS_H_
#define LUMORA_PIPELINE_BACKENDS_CPU_KERNELS_WARP_ROWS_H_

#include <cstdint>

namespace lumora::cpu {

/// Columns are processed in groups of so many.
constexpr int kWarpColumns = 32;
/// So many bytes behind the last row of a source's planes are read, and not used.
constexpr int kWarpSlack = 4;

/// Where pixels come from. A place is that of a pixel's centre relative to the circle's, in pixels:
///   share = |place| / radius / hold, at most 1, hold = |place - limiter| / reach, at most 1
///   weight = share * (2 - border), at most 1
///   source = place * (1 + strength * |place| * (1 - weight))
/// where `border` is a power of the distance to the nearest border of the frame, a number of the
/// row or of the column, whichever is less.
struct WarpShape {
  float strength;        ///< per pixel
  float inverse_radius;  ///< per pixel
  float limiter_x, limiter_y;
  float inverse_reach;  ///< per pixel
  bool smooth_chroma;   ///< chroma between its samples, instead of that of the nearest pixels
};

/// The frame around the circle: luma, and pairs of chroma samples for every second row and column.
/// Both planes have rows of `stride` bytes; behind the last row of each there are another one and
/// kWarpSlack bytes that may be read.
struct WarpSource {
  const uint8_t* luma;
  const uint8_t* chroma;
  int stride;
  int columns, rows;  ///< of luma; even numbers, at least 4
  float x, y;         ///< place of the first pixel, in whole and a half pixels
};

/// Two rows of the result, of which the upper one has an even number in the source.
struct WarpRows {
  float x, y;   ///< place of the first pixel, of an even column and row of the source
  int columns;  ///< a multiple of kWarpColumns; all lie in the source
  const float* column_borders;  ///< a number a column
  float row_borders[2];
  uint8_t* luma[2];
  uint8_t* chroma;  ///< pairs as in the source
};

/// Draws two rows. A chroma sample is that of the nearest of its four pixels to the circle's
/// centre: so colours are not moved against brightness to any side.
void DrawWarp(const WarpShape& shape, const WarpSource& source, const WarpRows& rows);

namespace scalar {
/// The same bytes, pixel by pixel.
void DrawWarp(const WarpShape& shape, const WarpSource& source, const WarpRows& rows);
}  // namespace scalar

}  // namespace lumora::cpu

#endif  // LUMORA_PIPELINE_BACKENDS_CPU_KERNELS_WARP_ROWS_H_
