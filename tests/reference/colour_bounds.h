// SPDX-License-Identifier: Apache-2.0
// Colour conversions of values that are known up to a small error, as ranges.
//
// Drivers may compute colours with half-precision numbers, and a result that falls on the border of
// two bytes may be stored as either: a conversion therefore gives a range for every byte.
#ifndef LUMORA_REFERENCE_COLOUR_BOUNDS_H_
#define LUMORA_REFERENCE_COLOUR_BOUNDS_H_

#include "reference/bounds.h"

namespace lumora::reference {

/// How far a colour that a driver computes may be off, on the scale where 1 is full brightness: the
/// sum of a few half-precision numbers about 1.
constexpr double kColourError = 1.0 / 512;

/// The texel, each component up to `error` lower or higher.
TexelBounds Widened(const Texel& texel, double error);
TexelBounds Widened(TexelBounds texel, double error);

/// RGB of a YUV texel.
TexelBounds YuvToRgbBounds(const TexelBounds& yuv);
/// HSI of an RGB colour. The hue of colours near grey may be any, and that of reds may lie at
/// either end of the scale.
TexelBounds RgbToHsiBounds(const TexelBounds& rgb, double alpha);
/// YUV of an HSI texel.
TexelBounds HsiToYuvBounds(const Texel& hsi);

}  // namespace lumora::reference

#endif  // LUMORA_REFERENCE_COLOUR_BOUNDS_H_
