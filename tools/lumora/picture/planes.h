// SPDX-License-Identifier: Apache-2.0
// YUV planes: the 4:2:0 frame that the pipeline works on, and the way from other samplings and
// back.
#ifndef LUMORA_TOOLS_PICTURE_PLANES_H_
#define LUMORA_TOOLS_PICTURE_PLANES_H_

#include "lumora/pipeline/frame.h"
#include "tools/lumora/images/image.h"

namespace lumora::tools {

/// A full-range 4:2:0 frame of even size. A picture of odd size has its last column or row
/// repeated.
struct Frame420 {
  Image y, cb, cr;  ///< the chroma planes have half the columns and rows

  ConstFrameView View() const;
  FrameView MutableView();
};

/// How many pixels share a sample of a plane, across and down: 1 x 1 for luma, 2 x 2 for the chroma
/// of 4:2:0, 2 x 1 for 4:2:2.
struct SampleArea {
  int across = 1;
  int down = 1;
};

/// `size` with both sides rounded up to even.
Size EvenSize(Size size);

/// The frame of a picture without colours, of which that is the luma.
Frame420 GrayFrame(const Image& luma);

/// 255 where two planes of one size differ, else 0.
Image Differences(const Image& before, const Image& after);

/// A chroma plane of any sampling as one of 4:2:0, for a picture of `picture` pixels.
Image ChromaTo420(const Image& plane, SampleArea area, Size picture);

/// Puts into `plane` the samples of `after` where it differs from `before`, and leaves all others
/// untouched. `before` and `after` are 4:2:0 chroma planes, `plane` has the given sampling.
void MergeChroma(const Image& before, const Image& after, SampleArea area, Image& plane);

/// The same for luma.
void MergeLuma(const Image& before, const Image& after, Image& plane);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_PICTURE_PLANES_H_
