// SPDX-License-Identifier: Apache-2.0
// Rows of frames as red, green and blue, and as hue, saturation and intensity.
#ifndef LUMORA_PIPELINE_BACKENDS_CPU_KERNELS_COLOUR_ROWS_H_
#define LUMORA_PIPELINE_BACKENDS_CPU_KERNELS_COLOUR_ROWS_H_

#include <cstdint>

namespace lumora::cpu {

/// Two rows of pixels that share their chroma, or the first of them alone.
struct ColourRows {
  const uint8_t* luma[2];  ///< the second is null where there is one row
  const uint8_t* cr;       ///< a sample for two columns
  const uint8_t* cb;
  int chroma_step;  ///< from sample to sample: 1 in planes; 2 in pairs, whose samples lie together
  int columns;
};

/// Where the rows of an image go.
struct ImageRows {
  uint8_t* rows[2];  ///< null: not wanted
  int channels;      ///< 3, or 4 with 255 in the fourth
};

/// Converts rows. Nothing but their samples is read or written.
///
/// Colours, of full-range luma and chroma around 127.5, rounded to the nearest and kept within
/// 0..255:
// clang-format off
///   red   = y + 1.402 cr - 178.755
///   green = y - 0.714 cr - 0.344 cb + 134.895
///   blue  = y + 1.772 cb - 225.93
/// From these bytes, largest and least of the three:
///   hue        = 42.5 * sixths, where red is the largest (green - blue) / (largest - least), or 6
///                more if that is below 0; else where green is it 2 + (blue - red) / (largest -
///                least); else 4 + (red - green) / (largest - least). 0 where all three are equal.
///   saturation = 255 * (largest - least) / largest, 0 for black
///   intensity  = largest
// clang-format on
/// rounded to the nearest, halves up.
void ConvertColours(const ColourRows& in, const ImageRows& rgb, const ImageRows& hsi);

namespace scalar {
/// The same bytes, pixel by pixel.
void ConvertColours(const ColourRows& in, const ImageRows& rgb, const ImageRows& hsi);
}  // namespace scalar

}  // namespace lumora::cpu

#endif  // LUMORA_PIPELINE_BACKENDS_CPU_KERNELS_COLOUR_ROWS_H_
