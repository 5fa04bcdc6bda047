// SPDX-License-Identifier: Apache-2.0
// How captures are cut into blocks, and what a block's packed targets hold.
#ifndef LUMORA_REFERENCE_CAPTURE_BLOCKS_H_
#define LUMORA_REFERENCE_CAPTURE_BLOCKS_H_

#include <cstdint>
#include <vector>

#include "reference/bounds.h"

namespace lumora::reference {

/// A place and size in pixels of the whole capture.
struct Rectangle {
  int x, y, width, height;
};

struct CaptureSize {
  CaptureSize(int capture_width, int capture_height);

  int width, height;
  int block_width, block_height;
  int row;  ///< the width rounded up to 32
};

/// Blocks from the even place at or behind the rectangle's start on, as long as they start inside
/// the rectangle and before the limits. Their sizes are those of a block, as far as they lie inside
/// the capture (which may be 0 columns or less when limit_x lies beyond it).
std::vector<Rectangle> BlocksOf(const CaptureSize& capture, const Rectangle& rectangle,
                                int limit_x);

/// Two planes, tightly packed, of which each byte's range is known.
struct PlaneBounds {
  PlaneBounds(int plane_width, int plane_height, const std::vector<uint8_t>& bytes);

  /// Replaces what `block` covers by the packed form of the YUV picture `drawn`, whose size is that
  /// of a block. Luma is that of the pixel; chroma is taken between four pixels, any of which may
  /// answer. Frames of odd height have no chroma for their last row.
  void put(const Rectangle& block, const ImageBounds& drawn);

  int width, height;
  std::vector<uint8_t> low, high;  ///< luma, then chroma
};

}  // namespace lumora::reference

#endif  // LUMORA_REFERENCE_CAPTURE_BLOCKS_H_
