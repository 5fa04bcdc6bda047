// SPDX-License-Identifier: Apache-2.0
// Frames and images as the pipeline takes and gives them.
#ifndef LUMORA_PIPELINE_FRAME_H_
#define LUMORA_PIPELINE_FRAME_H_

#include <array>
#include <cstddef>
#include <cstdint>

namespace lumora {

/// Layout of a YUV 4:2:0 frame. Chroma planes have (width + 1) / 2 columns and (height + 1) / 2
/// rows.
enum class PixelFormat {
  NV21,  ///< plane 0: Y; plane 1: pairs of Cr, Cb
  NV12,  ///< plane 0: Y; plane 1: pairs of Cb, Cr
  I420,  ///< plane 0: Y; plane 1: Cb; plane 2: Cr
};

/// A frame in the caller's memory. Nothing is owned: the planes must stay valid during the call
/// that takes the view. Samples are full-range (JPEG) BT.601.
template <typename Byte>
struct BasicFrameView {
  PixelFormat format = PixelFormat::NV21;
  int width = 0;                            ///< pixels
  int height = 0;                           ///< pixels
  std::array<Byte*, 3> planes{};            ///< first byte of each plane; unused ones null
  std::array<std::ptrdiff_t, 3> strides{};  ///< bytes from row to row of each plane
};

using FrameView = BasicFrameView<uint8_t>;
using ConstFrameView = BasicFrameView<const uint8_t>;

inline ConstFrameView AsConst(const FrameView& frame) {
  return {frame.format,
          frame.width,
          frame.height,
          {frame.planes[0], frame.planes[1], frame.planes[2]},
          frame.strides};
}

/// An interleaved image in the caller's memory, 8 bits a channel. Nothing is owned.
struct ImageView {
  uint8_t* data = nullptr;    ///< first byte; null: this image is not wanted
  int width = 0;              ///< pixels
  int height = 0;             ///< pixels
  int channels = 3;           ///< 3, or 4 with 255 in the fourth
  std::ptrdiff_t stride = 0;  ///< bytes from row to row
};

}  // namespace lumora

#endif  // LUMORA_PIPELINE_FRAME_H_
