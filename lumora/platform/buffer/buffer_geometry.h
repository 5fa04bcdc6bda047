// SPDX-License-Identifier: Apache-2.0
// Sizes of a graphic buffer's rows and memory.
#ifndef LUMORA_PLATFORM_BUFFER_BUFFER_GEOMETRY_H_
#define LUMORA_PLATFORM_BUFFER_BUFFER_GEOMETRY_H_

#include <cstddef>
#include <cstdint>

#include "lumora/geometry/rectangle.h"

namespace lumora::platform {

/// Bytes of one RGBA pixel.
constexpr uint32_t kPixelBytes = 4;

/// An RGBA image in CPU memory.
struct CpuImage {
  unsigned char* pixels;  ///< the first one
  int stride;             ///< pixels from one row to the next
};

/// Copies `part` of an image to the same place in another one.
void CopyPart(const CpuImage& from, const CpuImage& to, const PixelRectangle& part);

struct BufferGeometry {
  uint32_t width;   ///< pixels
  uint32_t height;  ///< pixels
  uint32_t stride;  ///< pixels from one row to the next: the width rounded up to 32
  size_t size;      ///< bytes, slack included; 0 when no memory can be that large

  size_t RowBytes() const { return size_t{stride} * kPixelBytes; }
  PixelRectangle Whole() const { return {0, 0, static_cast<int>(width), static_cast<int>(height)}; }
};

/// Lays out an image. The memory holds rows as if the width were rounded up to 128 pixels, and as
/// many of them as the height rounded up to 2 and two more: the frame expansion works in blocks of
/// pixels and pairs of rows and may overrun by that much. An empty image gets the memory of one
/// pixel.
BufferGeometry LayOut(uint32_t width, uint32_t height);

}  // namespace lumora::platform

#endif  // LUMORA_PLATFORM_BUFFER_BUFFER_GEOMETRY_H_
