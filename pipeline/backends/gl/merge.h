// SPDX-License-Identifier: Apache-2.0
// Taking parts of what the engine made into a frame, and leaving every other byte as it was.
#ifndef LUMORA_PIPELINE_BACKENDS_GL_MERGE_H_
#define LUMORA_PIPELINE_BACKENDS_GL_MERGE_H_

#include <vector>

#include "pipeline/frames/frame_copy.h"
#include "pipeline/plan/face_plan.h"
#include "pipeline/plan/skin_mask.h"

namespace lumora {

/// Moves the pixels of `frame` towards `processed`, a part of it that holds the bounds of `mask`
/// and begins at `place`, by the weights of `mask`. `memory` is for its own use.
void Blend(const PaddedFrame& processed, FramePlace place, const SkinMask& mask, PaddedFrame* frame,
           std::vector<float>* memory);

/// Copies the pixels in a face's circle from `processed`, and the chroma samples with any pixel in
/// it.
void CopyCircle(const PaddedFrame& processed, const FacePlan& face, PaddedFrame* frame);

/// Copies the same samples to a frame of any format, of the size that `processed` was taken in
/// with.
void StoreCircle(const PaddedFrame& processed, const FacePlan& face, const FrameView& out);

}  // namespace lumora

#endif  // LUMORA_PIPELINE_BACKENDS_GL_MERGE_H_
