// SPDX-License-Identifier: Apache-2.0
// Rows of a frame whose pixels are taken from elsewhere, between the samples there.
#ifndef LUMORA_PIPELINE_BACKENDS_CPU_KERNELS_REMAP_ROWS_H_
#define LUMORA_PIPELINE_BACKENDS_CPU_KERNELS_REMAP_ROWS_H_

#include <cstddef>
#include <cstdint>

namespace lumora::cpu {

/// One direction of what is taken from: a line of pixels that lies in a longer one, which repeats
/// the outermost pixels up to its ends, and is mirrored at these for ever.
struct RemapAxis {
  float length;  ///< of the longer one, in pixels; at most 32768
  int first;     ///< its pixel that is the first of the line
  int last;      ///< index of the line's last pixel
};

/// A position along an axis for every position in the result: from + from_x * x + from_y * y +
/// from_xy * x * y. Pixels' centres lie at halves; 0 in the result is the frame's border, 0 in the
/// source that of the longer line.
struct QuadAxis {
  float from, from_x, from_y, from_xy;
};

/// Bilinear positions: a quadrilateral of the source is drawn.
struct QuadMap {
  QuadAxis x, y;
};

/// Positions by distance from a point: middle + d * (k0 + k1 s + k2 s^2 + k3 s^3), d = position -
/// centre and s = dx^2 * share_x + dy^2 * share_y.
struct LensMap {
  float centre_x, centre_y;  ///< in the result
  float middle_x, middle_y;  ///< in the source
  float share_x, share_y;
  float k[4];
};

/// Everything about a frame that is drawn, all planes of it.
struct Remap {
  enum class Kind { Quad, Lens };
  Kind kind;
  QuadMap quad;  ///< of Kind::Quad
  LensMap lens;  ///< of Kind::Lens
  RemapAxis columns, rows;
  int width, height;  ///< of the result, in pixels
};

/// A plane that is taken from. Rows hold at least 16 bytes, and nothing else is read.
struct RemapSource {
  enum class Kind {
    Luma,
    Chroma,  ///< a sample for every second row and column
    Pairs,   ///< the same, two samples side by side
  };
  Kind kind;
  bool swapped;  ///< pairs: the result has the second sample of each first
  const uint8_t* samples;
  std::ptrdiff_t stride;
  int row_bytes;
};

/// Draws the samples, or pairs, [begin, end) of a row of the same kind of plane; `out` receives the
/// first of them.
///
/// A position between pixels is rounded to 1/256; weights of neighbours are whole numbers of 1/256,
/// and results are rounded to the nearest. A chroma sample is that of the nearest of its four
/// pixels to the frame's middle, so that colours are not moved against brightness to any side; the
/// pixels of the source share the sample of their square, unfiltered.
void RemapRow(const Remap& remap, const RemapSource& source, int row, int begin, int end,
              uint8_t* out);

namespace scalar {
/// The same bytes, sample by sample.
void RemapRow(const Remap& remap, const RemapSource& source, int row, int begin, int end,
              uint8_t* out);
}  // namespace scalar

}  // namespace lumora::cpu

#endif  // LUMORA_PIPELINE_BACKENDS_CPU_KERNELS_REMAP_ROWS_H_
