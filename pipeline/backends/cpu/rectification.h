// SPDX-License-Identifier: Apache-2.0
// The corrections of whole frames, on the processor: what the engine would draw.
#ifndef LUMORA_PIPELINE_BACKENDS_CPU_RECTIFICATION_H_
#define LUMORA_PIPELINE_BACKENDS_CPU_RECTIFICATION_H_

#include "lumora/pipeline/frame.h"
#include "lumora/pipeline/lens.h"
#include "pipeline/backends/cpu/kernels/remap_rows.h"
#include "pipeline/frames/own_frame.h"

namespace lumora::cpu {

/// Where the pixels of a corrected frame come from. Frames lie in the engine's, whose sides are
/// multiples of 32: for the keystone in its upper left, for lenses in its middle. What lies around
/// a frame repeats its outermost pixels, and the whole is mirrored at the engine's borders.
Remap KeystoneRemap(int width, int height, int degree);
Remap LensRemap(int width, int height, const LensCoefficients& lens);

/// The coefficients that a lens stands for; those of a camera are read from its files.
LensCoefficients CoefficientsOf(const Lens& lens);

/// Rows of chroma in a frame, each with its two rows of luma: the unit in which frames are drawn.
int RowPairs(const ConstFrameView& frame);

/// Draws the row pairs [begin, end) of `out` from `in`, which have one size and share no memory.
/// Thread-safety: any number of calls may draw different rows of one frame at the same time.
/// Failure: none; asks for no memory.
void DrawRowPairs(const Remap& remap, const ConstFrameView& in, const FrameView& out, int begin,
                  int end);

/// A frame's source while it is drawn: `in` itself, or a copy in `memory` where `out` lies over it.
/// Throws where memory is short.
ConstFrameView SourceApart(const ConstFrameView& in, const FrameView& out, OwnFrame* memory);

}  // namespace lumora::cpu

#endif  // LUMORA_PIPELINE_BACKENDS_CPU_RECTIFICATION_H_
