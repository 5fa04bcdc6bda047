// Moving samples between the caller's planes and the engine's frame.
#ifndef LUMORA_PIPELINE_FRAME_COPY_H_
#define LUMORA_PIPELINE_FRAME_COPY_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "pipeline/frame.h"

namespace lumora {

/// Copies a frame, sample by sample, into a frame of the same size and any format. The two may be
/// the same memory or overlap in any way. Bytes between the rows of `out` are not written.
void CopyFrame(const ConstFrameView& in, const FrameView& out);

/// A frame as the engine takes it: NV21, tightly packed in one piece, both sides rounded up to
/// multiples of 32. What lies beyond the caller's frame repeats its last column and row.
class PaddedFrame {
 public:
  /// Takes in a caller's frame. Memory is kept from frame to frame and grows as needed.
  void Load(const ConstFrameView& in);
  /// Gives the upper left part, of the size of `out`, which must be that of the frame taken in.
  void Store(const FrameView& out) const;

  int width() const { return width_; }    ///< pixels, and bytes from row to row in both planes
  int height() const { return height_; }  ///< pixels
  uint8_t* luma() { return bytes_.data(); }
  uint8_t* chroma() { return bytes_.data() + luma_size(); }

 private:
  size_t luma_size() const { return static_cast<size_t>(width_) * static_cast<size_t>(height_); }

  int width_ = 0;
  int height_ = 0;
  std::vector<uint8_t> bytes_;
};

}  // namespace lumora

#endif  // LUMORA_PIPELINE_FRAME_COPY_H_
