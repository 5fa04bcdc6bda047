// SPDX-License-Identifier: Apache-2.0
// Single samples of frames of any format.
#ifndef LUMORA_PIPELINE_FRAMES_FRAME_SAMPLE_H_
#define LUMORA_PIPELINE_FRAMES_FRAME_SAMPLE_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "lumora/pipeline/frame.h"
#include "pipeline/frames/frame_layout.h"

namespace lumora {

struct YuvSample {
  uint8_t y, cr, cb;
};

/// The samples of the pixel (x, y), neither below 0. To the right of a frame and below it those of
/// its outermost pixels go on.
inline YuvSample SampleAt(const ConstFrameView& frame, int x, int y) {
  const auto at = [&frame](size_t plane, int column, int row) {
    return frame.planes[plane][row * frame.strides[plane] + column];
  };
  const uint8_t luma = at(0, std::min(x, frame.width - 1), std::min(y, frame.height - 1));
  const int column = std::min(x / 2, ChromaSize(frame.width) - 1);
  const int row = std::min(y / 2, ChromaSize(frame.height) - 1);
  if (!IsSemiPlanar(frame.format)) return {luma, at(2, column, row), at(1, column, row)};
  const uint8_t first = at(1, 2 * column, row);
  const uint8_t second = at(1, 2 * column + 1, row);
  if (frame.format == PixelFormat::NV21) return {luma, first, second};
  return {luma, second, first};
}

}  // namespace lumora

#endif  // LUMORA_PIPELINE_FRAMES_FRAME_SAMPLE_H_
