// SPDX-License-Identifier: Apache-2.0
// Colours as luma and chroma (full-range BT.601, as JPEGs have them) and as blue, green and red.
#ifndef LUMORA_TOOLS_IMAGES_COLOURS_H_
#define LUMORA_TOOLS_IMAGES_COLOURS_H_

#include "tools/lumora/images/image.h"

namespace lumora::tools {

/// Chroma of gray.
inline constexpr uint8_t kNoColour = 128;

/// Planes of one size.
struct ColourPlanes {
  Image y, cb, cr;
};

/// The planes of an image of three channels, or of four, whose opacity is left out.
ColourPlanes PlanesOf(const Image& bgr);

/// The image of three channels that the planes show.
Image BgrOf(const Image& y, const Image& cb, const Image& cr);

/// An image of any number of channels as one of three; opacity is left out.
Image BgrOf(const Image& image);

Image WithRedAndBlueSwapped(Image image);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_IMAGES_COLOURS_H_
