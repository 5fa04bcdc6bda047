// SPDX-License-Identifier: Apache-2.0
// The packed targets: images whose bytes are the planes of a frame.
#ifndef LUMORA_ENGINE_INTERNAL_PACKED_TARGETS_H_
#define LUMORA_ENGINE_INTERNAL_PACKED_TARGETS_H_

#include <cstddef>

#include "lumora/engine/gpu_beauty_face.h"
#include "lumora/geometry/changed_area.h"
#include "lumora/geometry/rectangle.h"

namespace lumora::engine {

/// DrawRGBtoYY, within an area of the target; null packs the whole image.
int PackLuma(const android::GPUBeautyFace& engine, int source, const ChangedArea* area);

/// DrawRGBtoUV, likewise.
int PackChroma(const android::GPUBeautyFace& engine, int source, const ChangedArea* area);

/// A part of a caller's plane, in packed texels, and the place of the plane's first texel.
struct PlanePart {
  unsigned char* plane;
  PixelRectangle part;
};

/// Reads both packed targets from the GPU straight into planes with rows of `stride` texels. False,
/// with anything written, where that cannot be.
bool ReadPacked(const android::GPUBeautyFace& engine, const PlanePart& luma,
                const PlanePart& chroma, int stride);

/// Bytes of a luma plane of the first frame that the process brought back, which this call may
/// settle. Planes that stand in for missing ones have this size for ever.
size_t FirstLumaSize(const android::GPUBeautyFace& engine);

}  // namespace lumora::engine

#endif  // LUMORA_ENGINE_INTERNAL_PACKED_TARGETS_H_
