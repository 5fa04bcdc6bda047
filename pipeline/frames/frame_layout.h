// What a pixel format says about its planes.
#ifndef LUMORA_PIPELINE_FRAMES_FRAME_LAYOUT_H_
#define LUMORA_PIPELINE_FRAMES_FRAME_LAYOUT_H_

#include <cstddef>

#include "lumora/pipeline/frame.h"

namespace lumora {

constexpr int ChromaSize(int luma_size) {
  return (luma_size + 1) / 2;
}

constexpr bool IsSemiPlanar(PixelFormat format) {
  return format != PixelFormat::I420;
}

constexpr size_t PlaneCount(PixelFormat format) {
  return IsSemiPlanar(format) ? 2 : 3;
}

/// Bytes that hold samples in each row of a plane.
constexpr int RowBytes(PixelFormat format, size_t plane, int width) {
  if (plane == 0) return width;
  return IsSemiPlanar(format) ? 2 * ChromaSize(width) : ChromaSize(width);
}

constexpr int PlaneRows(size_t plane, int height) {
  return plane == 0 ? height : ChromaSize(height);
}

}  // namespace lumora

#endif  // LUMORA_PIPELINE_FRAMES_FRAME_LAYOUT_H_
