// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <cstddef>

#include "pipeline/backends/cpu/kernels/colour_rows.h"

namespace lumora::cpu::scalar {
namespace {

/// A whole number of thousandths, rounded; none is as low as -512.
constexpr int Rounded(int thousandths) {
  return (thousandths + 500 + 512000) / 1000 - 512;
}

constexpr uint8_t ToByte(int value) {
  return static_cast<uint8_t>(std::clamp(value, 0, 255));
}

struct Colour {
  uint8_t red, green, blue;
};

struct Tone {
  uint8_t hue, saturation, intensity;
};

/// What chroma adds to luma. No sum lies halfway between two whole numbers.
struct ChromaShare {
  int red, green, blue;
};

ChromaShare ShareOf(int cr, int cb) {
  return {Rounded(1402 * cr - 178755), Rounded(134895 - 714 * cr - 344 * cb),
          Rounded(1772 * cb - 225930)};
}

Tone ToneOf(const Colour& colour) {
  const int red = colour.red, green = colour.green, blue = colour.blue;
  const int largest = std::max(red, std::max(green, blue));
  const int range = largest - std::min(red, std::min(green, blue));
  if (range == 0) return {0, 0, colour.red};
  int sixths = red == largest     ? green - blue  // times the range
               : green == largest ? blue - red + 2 * range
                                  : red - green + 4 * range;
  if (sixths < 0) sixths += 6 * range;
  return {static_cast<uint8_t>((85 * sixths + range) / (2 * range)),
          static_cast<uint8_t>((510 * range + largest) / (2 * largest)),
          static_cast<uint8_t>(largest)};
}

void Put(const ImageRows& image, int row, int column, uint8_t first, uint8_t second,
         uint8_t third) {
  if (image.rows[row] == nullptr) return;
  uint8_t* const to = image.rows[row] + std::ptrdiff_t{column} * image.channels;
  to[0] = first;
  to[1] = second;
  to[2] = third;
  if (image.channels == 4) to[3] = 255;
}

}  // namespace

void ConvertColours(const ColourRows& in, const ImageRows& rgb, const ImageRows& hsi) {
  for (int row = 0; row < 2; ++row) {
    if (in.luma[row] == nullptr) continue;
    for (int column = 0; column < in.columns; ++column) {
      const std::ptrdiff_t sample = std::ptrdiff_t{column / 2} * in.chroma_step;
      const ChromaShare share = ShareOf(in.cr[sample], in.cb[sample]);
      const int luma = in.luma[row][column];
      const Colour colour = {ToByte(luma + share.red), ToByte(luma + share.green),
                             ToByte(luma + share.blue)};
      Put(rgb, row, column, colour.red, colour.green, colour.blue);
      if (hsi.rows[row] == nullptr) continue;
      const Tone tone = ToneOf(colour);
      Put(hsi, row, column, tone.hue, tone.saturation, tone.intensity);
    }
  }
}

}  // namespace lumora::cpu::scalar
