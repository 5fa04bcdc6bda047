// SPDX-License-Identifier: Apache-2.0
// Sizes that follow from a frame's size.
#ifndef LUMORA_GEOMETRY_FRAME_SIZES_H_
#define LUMORA_GEOMETRY_FRAME_SIZES_H_

#include "lumora/geometry/rounding.h"

namespace lumora {

/// Captures wider than this many pixels go in blocks.
constexpr int kWidestWholeFrame = 1280;

/// Both sides of these blocks, in pixels.
constexpr int kCaptureBlock = 384;

/// The size that a capture is processed at.
struct WorkingSize {
  int width;
  int height;
};

/// Wide captures go in square blocks, smaller ones at once as far as they fit.
constexpr WorkingSize CaptureWorkingSize(int width, int height) {
  constexpr int kMaxWidth = 2048;
  constexpr int kMaxHeight = 1536;
  if (width > kWidestWholeFrame) return {kCaptureBlock, kCaptureBlock};
  return {width < kMaxWidth ? width : kMaxWidth, height < kMaxHeight ? height : kMaxHeight};
}

/// Whether a capture is too large for one texture of the whole frame.
constexpr bool IsLargeCapture(int width, int height) {
  constexpr unsigned kMaxTexture = 4096;
  return static_cast<unsigned>(width) > kMaxTexture || static_cast<unsigned>(height) > kMaxTexture;
}

/// Width of the packed targets in samples: four samples a texel, rows of whole 32 texels.
constexpr int PackedWidth(int frame_width) {
  return RoundUpTo32(frame_width >> 2) * 4;
}

/// Whether the expansion of a frame puts every pixel to its place: only then are the packed texels
/// of the unchanged frame the frame's own bytes.
constexpr bool ExpandsExactly(int width, int height) {
  return width > 0 && height > 0 && width % 16 == 0 && height % 2 == 0;
}

/// Whether the frame is laid across: the source is narrower in shape than the result.
inline bool LiesAcross(int src_width, int src_height, int proc_width, int proc_height) {
  const float source = static_cast<float>(src_width) / static_cast<float>(src_height);
  const float result = static_cast<float>(proc_width) / static_cast<float>(proc_height);
  return source - result < 0;
}

}  // namespace lumora

#endif  // LUMORA_GEOMETRY_FRAME_SIZES_H_
