// SPDX-License-Identifier: Apache-2.0
// Colour spaces and the packing of results, as the colour programs compute them.
//
// A YUV texel is (Y, Cr, Cb, 1), chroma offset by one half. An HSI texel is the hexcone model:
// hue in turns, saturation (max - min) / max, intensity max(R, G, B).
#ifndef LUMORA_REFERENCE_COLOUR_H_
#define LUMORA_REFERENCE_COLOUR_H_

#include <array>

#include "reference/image.h"

namespace lumora::reference {

/// 4 x 4, column after column: entry 4 * input + output.
using Matrix4 = std::array<double, 16>;

/// The full-range matrix that every program starts with, at float precision.
Matrix4 YuvToRgbMatrix();

Texel Multiply(const Matrix4& matrix, const Texel& input);
/// Alpha of the result is `alpha`, whatever the input's is.
Texel RgbToHsi(const Texel& rgb, double alpha = 0.0);
Texel HsiToYuv(const Texel& hsi);

struct Yuv2Rgb {
  Sampler input;
  Matrix4 matrix = YuvToRgbMatrix();
  Texel operator()(Vec2 coordinate) const;
};

struct Rgb2Hsi {
  Sampler input;
  double alpha = 0.0;  ///< 0 in the engine's programs, 1 in the colour converter's
  Texel operator()(Vec2 coordinate) const;
};

struct Yuv2Hsi {
  Sampler input;
  Matrix4 matrix = YuvToRgbMatrix();
  double alpha = 0.0;
  Texel operator()(Vec2 coordinate) const;
};

struct Hsi2Yuv {
  Sampler input;
  Texel operator()(Vec2 coordinate) const;
};

/// Four luma samples a texel; only red is read.
struct LumaPacker {
  Sampler input;
  std::array<Vec2, 4> shift;
  Texel operator()(Vec2 coordinate) const;
};

/// Two chroma pairs a texel, Cr before Cb; only green and blue are read.
struct ChromaPacker {
  Sampler input;
  std::array<Vec2, 2> shift;
  Texel operator()(Vec2 coordinate) const;
};

/// The packers' offsets for a frame of `width` x `height` pixels (rows already rounded up), as
/// floats. `rotate`: the packed samples follow each other along t. The luma offsets are multiples
/// of 1 / width then too.
std::array<Vec2, 4> LumaShifts(int width, bool rotate);
std::array<Vec2, 2> ChromaShifts(int width, int height, bool rotate);

}  // namespace lumora::reference

#endif  // LUMORA_REFERENCE_COLOUR_H_
