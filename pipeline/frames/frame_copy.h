// SPDX-License-Identifier: Apache-2.0
// Moving samples between the caller's planes and the engine's frame.
#ifndef LUMORA_PIPELINE_FRAMES_FRAME_COPY_H_
#define LUMORA_PIPELINE_FRAMES_FRAME_COPY_H_

#include <cstddef>
#include <cstdint>
#include <memory>

#include "lumora/geometry/rectangle.h"
#include "lumora/geometry/rounding.h"
#include "lumora/pipeline/frame.h"
#include "pipeline/frames/row_span.h"

namespace lumora {

/// Copies a frame, sample by sample, into a frame of the same size and any format. The two may be
/// the same memory or overlap in any way. Bytes between the rows of `out` are not written.
void CopyFrame(const ConstFrameView& in, const FrameView& out);

/// Gives columns of one row of chroma samples to a frame of any format. `pairs` holds those
/// of the columns, Cr first.
void StoreChromaPairs(const uint8_t* pairs, int row, RowSpan columns, const FrameView& out);

/// Where a caller's frame lies in the engine's, in pixels; even numbers.
struct FramePlace {
  int left = 0;
  int top = 0;
};

/// Where a frame of width x height pixels has its middle in the middle of the engine's.
inline FramePlace MiddlePlace(int width, int height) {
  const auto offset = [](int size) { return (RoundUpTo32(size) - size) / 4 * 2; };
  return {offset(width), offset(height)};
}

/// A frame as the engine takes it: NV21, tightly packed in one piece, both sides rounded up to
/// multiples of 32. What lies beyond the caller's frame repeats its outermost columns and rows.
class PaddedFrame {
 public:
  /// `column_alignment` replaces the 32 pixels for widths.
  explicit PaddedFrame(int column_alignment = kRowStep) : column_alignment_(column_alignment) {}

  /// Takes in a caller's frame. Memory is kept from frame to frame and grows as needed.
  void Load(const ConstFrameView& in, FramePlace place = {});
  /// Repeats the outermost columns and rows anew, after the frame that was taken in, of width x
  /// height pixels, has changed.
  void Extend(int width, int height);
  /// Takes the sizes of `other`. What the frame then holds is not defined, and memory that is never
  /// written is not used.
  void Resize(const PaddedFrame& other);
  /// Becomes the same as `other`.
  void Copy(const PaddedFrame& other);
  /// Gives the part that the frame taken in lay in; `out` has that frame's size.
  void Store(const FrameView& out) const;
  /// The same for columns of one row of pixels, or of chroma samples. Frames that were taken in at
  /// another place have no such rows.
  void StoreLuma(int row, RowSpan columns, const FrameView& out) const;
  void StoreChroma(int row, RowSpan columns, const FrameView& out) const;

  /// A part of it, at an even place, with even sides.
  ConstFrameView Part(const PixelRectangle& area) const;

  int width() const { return width_; }    ///< pixels, and bytes from row to row in both planes
  int height() const { return height_; }  ///< pixels
  uint8_t* luma() { return bytes_.get(); }
  const uint8_t* luma() const { return bytes_.get(); }
  uint8_t* chroma() { return bytes_.get() + luma_size(); }
  const uint8_t* chroma() const { return bytes_.get() + luma_size(); }

 private:
  size_t luma_size() const { return static_cast<size_t>(width_) * static_cast<size_t>(height_); }

  void SetSize(int width, int height);

  int column_alignment_;
  int width_ = 0;
  int height_ = 0;
  FramePlace place_;
  size_t capacity_ = 0;
  std::unique_ptr<uint8_t[]> bytes_;
};

}  // namespace lumora

#endif  // LUMORA_PIPELINE_FRAMES_FRAME_COPY_H_
