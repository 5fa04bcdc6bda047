// SPDX-License-Identifier: Apache-2.0
// A part of a frame, copied for kernels.
#ifndef LUMORA_PIPELINE_BACKENDS_CPU_TILE_H_
#define LUMORA_PIPELINE_BACKENDS_CPU_TILE_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "lumora/geometry/rectangle.h"
#include "lumora/pipeline/frame.h"
#include "pipeline/backends/cpu/workers.h"

namespace lumora::cpu {

/// What lies beyond a frame. Its outermost samples go on until both sides are multiples of 32; from
/// there on this holds.
enum class Beyond {
  Repeat,  ///< they go on further
  Mirror,  ///< everything is seen in a mirror
};

/// Luma, and pairs of chroma samples, Cr first, of a rectangle of a frame and its surroundings.
/// Behind the last row of each plane lie another one and a few bytes, which hold anything.
class Tile {
 public:
  /// Takes a place whose sides and corner are even numbers and whose width is a multiple of 32. It
  /// holds a part of any frame that is going to be loaded. Asks for memory where it is larger than
  /// any place before.
  void SetPlace(const PixelRectangle& place);
  /// Copies what `frame` has there. Asks for no memory.
  void Load(const ConstFrameView& frame, Beyond beyond, Workers& workers);

  const PixelRectangle& place() const { return place_; }
  int stride() const { return place_.width; }  ///< bytes from row to row, in both planes
  const uint8_t* luma() const { return bytes_.data(); }
  const uint8_t* chroma() const { return bytes_.data() + PlaneBytes(place_.height); }

 private:
  size_t PlaneBytes(int rows) const;

  PixelRectangle place_;
  std::vector<uint8_t> bytes_;
};

/// Copies a frame to memory that it shares no byte with, as CopyFrame does.
void CopyInBands(const ConstFrameView& in, const FrameView& out, Workers& workers);

/// The part of a frame in a rectangle with an even corner.
template <typename Byte>
BasicFrameView<Byte> PartOf(const BasicFrameView<Byte>& frame, const PixelRectangle& part) {
  BasicFrameView<Byte> view = frame;
  view.width = part.width;
  view.height = part.height;
  const bool planar = frame.format == PixelFormat::I420;
  for (size_t plane = 0; plane < (planar ? 3 : 2); ++plane) {
    const std::ptrdiff_t row = plane == 0 ? part.y : part.y / 2;
    const std::ptrdiff_t column = plane == 0 || !planar ? part.x : part.x / 2;
    view.planes[plane] += row * frame.strides[plane] + column;
  }
  return view;
}

}  // namespace lumora::cpu

#endif  // LUMORA_PIPELINE_BACKENDS_CPU_TILE_H_
