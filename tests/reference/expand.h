// SPDX-License-Identifier: Apache-2.0
// Frames to YUV texels and back, for regular sizes (width a multiple of 16, even height).
#ifndef LUMORA_REFERENCE_EXPAND_H_
#define LUMORA_REFERENCE_EXPAND_H_

#include "reference/frame.h"
#include "reference/image.h"

namespace lumora::reference {

/// `value` rounded up to a multiple of `unit`.
constexpr int RoundUp(int value, int unit) {
  return (value + unit - 1) / unit * unit;
}

/// Writes the frame's pixels as texels (Y, Cr, Cb, 255) into the top left corner of `image`; the
/// rest of it keeps its values. The four pixels of a chroma pair share it unfiltered.
void Expand(const Frame& frame, Image* image);
/// The frame as an image of its own size, or with rows of `row_texels` (the rest zeroed).
Image Expanded(const Frame& frame);
Image Expanded(const Frame& frame, int row_texels);

/// The frame in two packed targets: each texel of `luma` holds four Y bytes, each texel of `chroma`
/// two pairs, rows as in a frame.
Frame Unpack(const Image& luma, const Image& chroma, int width, int height);

/// The top left width x height pixels of a YUV image as a frame; a pair is taken from the top left
/// pixel of its four.
Frame ToFrame(const Image& yuv, int width, int height);

}  // namespace lumora::reference

#endif  // LUMORA_REFERENCE_EXPAND_H_
