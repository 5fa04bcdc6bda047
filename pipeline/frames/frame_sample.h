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

/// The samples of a frame, pixel by pixel. What depends on its format is looked at once.
class FrameSamples {
 public:
  explicit FrameSamples(const ConstFrameView& frame)
      : last_x_(frame.width - 1),
        last_y_(frame.height - 1),
        step_(IsSemiPlanar(frame.format) ? 2 : 1) {
    const size_t cr = IsSemiPlanar(frame.format) ? 1 : 2;
    luma_ = {frame.planes[0], frame.strides[0]};
    cr_ = {frame.planes[cr] + (frame.format == PixelFormat::NV12 ? 1 : 0), frame.strides[cr]};
    cb_ = {frame.planes[1] + (frame.format == PixelFormat::NV21 ? 1 : 0), frame.strides[1]};
  }

  /// Those of the pixel (x, y), neither below 0. To the right of the frame and below it those of
  /// its outermost pixels go on.
  YuvSample At(int x, int y) const {
    x = std::min(x, last_x_);
    y = std::min(y, last_y_);
    const ptrdiff_t column = x / 2 * step_;
    return {luma_.Row(y)[x], cr_.Row(y / 2)[column], cb_.Row(y / 2)[column]};
  }

 private:
  struct Plane {
    const uint8_t* first = nullptr;
    ptrdiff_t stride = 0;

    const uint8_t* Row(int y) const { return first + y * stride; }
  };

  int last_x_, last_y_;
  int step_;  // bytes from one chroma sample to the next
  Plane luma_, cr_, cb_;
};

}  // namespace lumora

#endif  // LUMORA_PIPELINE_FRAMES_FRAME_SAMPLE_H_
