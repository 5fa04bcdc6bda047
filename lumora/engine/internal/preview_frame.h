// SPDX-License-Identifier: Apache-2.0
// What the effects on preview frames share: their beginning and their end.
#ifndef LUMORA_ENGINE_INTERNAL_PREVIEW_FRAME_H_
#define LUMORA_ENGINE_INTERNAL_PREVIEW_FRAME_H_

#include "lumora/engine/gpu_beauty_face.h"
#include "lumora/geometry/changed_area.h"

namespace lumora::engine {

/// A caller's frame, tightly packed, luma then chroma, and where the chroma of the result goes. The
/// luma goes where it came from.
struct PreviewPlanes {
  void* frame;
  void* chroma;
};

/// Whether the engine has what a preview operation needs; what it lacks is told.
bool IsPreviewReady(const android::GPUBeautyFace& engine);

/// The same, with the frame brought into the input image, unless the set-up is one whose callers
/// have done so already.
bool BeginPreviewFrame(android::GPUBeautyFace& engine, void* frame);

/// Packs the target after `passes` passes and brings it back. `changed` is what differs from the
/// frame. Returns whether the planes hold the result.
bool FinishPreviewFrame(android::GPUBeautyFace& engine, const PreviewPlanes& planes, int passes,
                        const ChangedArea& changed);

}  // namespace lumora::engine

#endif  // LUMORA_ENGINE_INTERNAL_PREVIEW_FRAME_H_
