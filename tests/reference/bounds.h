// SPDX-License-Identifier: Apache-2.0
// Pictures of which only a range is known.
//
// The exact result of a warp cannot be foretold where a sample falls on the border of two texels:
// the last bit of the driver's arithmetic decides. The model then keeps both answers, as the lowest
// and the highest value that each byte may take, and carries them through later passes.
#ifndef LUMORA_REFERENCE_BOUNDS_H_
#define LUMORA_REFERENCE_BOUNDS_H_

#include "reference/frame.h"
#include "reference/image.h"

namespace lumora::reference {

/// A range for every byte of an image: low <= actual <= high.
struct ImageBounds {
  ImageBounds() = default;
  ImageBounds(int width, int height) : low(width, height), high(width, height) {}
  /// Exactly this image.
  explicit ImageBounds(const Image& exact) : low(exact), high(exact) {}

  Image low;
  Image high;
};

/// A range for every byte of a frame: low <= actual <= high.
struct FrameBounds {
  Frame low;
  Frame high;
};

/// A range for every component of a texel.
struct TexelBounds {
  Texel low;
  Texel high;

  void include(const Texel& texel);
  void include(const TexelBounds& other);
  static TexelBounds Exactly(const Texel& texel) { return {texel, texel}; }
};

/// Everything that may be read from `bounds` at a coordinate that is known up to `slack` texels in
/// each direction.
TexelBounds SampleBounds(const ImageBounds& bounds, Wrap wrap, Filter filter, Vec2 coordinate,
                         double slack);

}  // namespace lumora::reference

#endif  // LUMORA_REFERENCE_BOUNDS_H_
