// SPDX-License-Identifier: Apache-2.0
// Where frames and images lie, and frames of our own.
#ifndef LUMORA_PIPELINE_FRAMES_OWN_FRAME_H_
#define LUMORA_PIPELINE_FRAMES_OWN_FRAME_H_

#include <cstddef>
#include <cstdint>
#include <memory>

#include "lumora/pipeline/frame.h"
#include "pipeline/frames/frame_copy.h"
#include "pipeline/frames/frame_layout.h"

namespace lumora {

/// The addresses of a plane or an image, from its first sample to behind its last.
struct Extent {
  uintptr_t begin;
  uintptr_t end;
};

template <typename Byte>
Extent ExtentOf(const BasicFrameView<Byte>& frame, size_t plane) {
  const auto begin = reinterpret_cast<uintptr_t>(frame.planes[plane]);
  const auto rows = static_cast<uintptr_t>(PlaneRows(plane, frame.height));
  const auto row_bytes = static_cast<uintptr_t>(RowBytes(frame.format, plane, frame.width));
  return {begin, begin + (rows - 1) * static_cast<uintptr_t>(frame.strides[plane]) + row_bytes};
}

/// That of an image with memory.
inline Extent ExtentOf(const ImageView& image) {
  const auto begin = reinterpret_cast<uintptr_t>(image.data);
  const auto rows = static_cast<uintptr_t>(image.height);
  const auto row_bytes =
      static_cast<uintptr_t>(image.width) * static_cast<uintptr_t>(image.channels);
  return {begin, begin + (rows - 1) * static_cast<uintptr_t>(image.stride) + row_bytes};
}

/// Whether a frame has a plane in such a place.
inline bool Overlap(const ConstFrameView& frame, const Extent& place) {
  for (size_t plane = 0; plane < PlaneCount(frame.format); ++plane) {
    const Extent here = ExtentOf(frame, plane);
    if (here.begin < place.end && place.begin < here.end) return true;
  }
  return false;
}

inline bool Overlap(const ConstFrameView& in, const FrameView& out) {
  for (size_t plane = 0; plane < PlaneCount(out.format); ++plane) {
    if (Overlap(in, ExtentOf(out, plane))) return true;
  }
  return false;
}

/// A frame in memory of its own.
class OwnFrame {
 public:
  /// Becomes the same as `frame`, in the same format, planes one behind the other. Memory is kept
  /// from frame to frame and grows as needed; throws where it is short. The view holds until the
  /// next call.
  ConstFrameView Copy(const ConstFrameView& frame) {
    FrameView copy = {frame.format, frame.width, frame.height, {}, {}};
    size_t needed = 0;
    for (size_t plane = 0; plane < PlaneCount(frame.format); ++plane) {
      copy.strides[plane] = RowBytes(frame.format, plane, frame.width);
      needed += PlaneSize(copy, plane);
    }
    if (needed > capacity_) {
      capacity_ = 0;
      bytes_.reset(new uint8_t[needed]);
      capacity_ = needed;
    }
    uint8_t* next = bytes_.get();
    for (size_t plane = 0; plane < PlaneCount(frame.format); ++plane) {
      copy.planes[plane] = next;
      next += PlaneSize(copy, plane);
    }
    CopyFrame(frame, copy);
    return AsConst(copy);
  }

 private:
  static size_t PlaneSize(const FrameView& frame, size_t plane) {
    return static_cast<size_t>(frame.strides[plane]) *
           static_cast<size_t>(PlaneRows(plane, frame.height));
  }

  size_t capacity_ = 0;
  std::unique_ptr<uint8_t[]> bytes_;
};

}  // namespace lumora

#endif  // LUMORA_PIPELINE_FRAMES_OWN_FRAME_H_
