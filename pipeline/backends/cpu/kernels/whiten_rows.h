// SPDX-License-Identifier: Apache-2.0
// Rows of a whitened face: brighter and more coloured, by a weight a pixel.
#ifndef LUMORA_PIPELINE_BACKENDS_CPU_KERNELS_WHITEN_ROWS_H_
#define LUMORA_PIPELINE_BACKENDS_CPU_KERNELS_WHITEN_ROWS_H_

#include <cstdint>

namespace lumora::cpu {

/// Columns are processed in groups of so many.
constexpr int kWhitenColumns = 16;

/// What whitening makes of a pixel, between its own colour and full effect. A place is that of the
/// pixel's centre relative to that of the outer ellipse, in pixels; its position in the ellipse is
/// the length of the vector that the four factors make of it. In the hexcone model
///   intensity i' = gain i / (1 - i + gain i), the logistic curve of i, moved by log(gain)
///   saturation s' = s + saturation
/// both mixed with the pixel's own by the position. Between the steps colours are whole numbers of
/// 1/255, as images hold them.
struct WhitenTone {
  float along_x, along_y;    ///< per pixel
  float across_x, across_y;  ///< per pixel
  float gain;                ///< 1 leaves intensity as it is
  float saturation;          ///< 0..1
  float darkest;             ///< luma up to which nothing changes, 0..255
  float luma_scale;          ///< 1 / (luma from which everything does - darkest)
  bool round_rgb;            ///< whether red, green and blue are such numbers, too; else they may
                             ///< lie beyond 0 and 1
};

/// Two rows of a frame, which change in place. A pixel moves towards its whitened colour by its
/// weight times the share of its own luma, a chroma sample towards the mean of its four pixels by
/// the mean of theirs.
struct WhitenRows {
  float x, y;               ///< place of the first pixel
  int columns;              ///< a multiple of kWhitenColumns
  const float* weights[2];  ///< a number a column; 0 changes nothing
  uint8_t* luma[2];
  uint8_t* chroma;  ///< pairs of Cr and Cb, one for two columns and both rows
};

void DrawWhitening(const WhitenTone& tone, const WhitenRows& rows);

namespace scalar {
/// The same bytes, pixel by pixel.
void DrawWhitening(const WhitenTone& tone, const WhitenRows& rows);
}  // namespace scalar

}  // namespace lumora::cpu

#endif  // LUMORA_PIPELINE_BACKENDS_CPU_KERNELS_WHITEN_ROWS_H_
