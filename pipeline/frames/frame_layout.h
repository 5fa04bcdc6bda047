// SPDX-License-Identifier: Apache-2.0
// What sizes and formats say about frames and their planes.
#ifndef LUMORA_PIPELINE_FRAMES_FRAME_LAYOUT_H_
#define LUMORA_PIPELINE_FRAMES_FRAME_LAYOUT_H_

#include <cstddef>

#include "lumora/pipeline/frame.h"

namespace lumora {

/// The smallest frame, in both directions.
constexpr int kSmallestSide = 32;
/// The largest frame that can be addressed, in both directions; drivers usually allow less.
constexpr int kLargestSide = 32768;

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
