// SPDX-License-Identifier: Apache-2.0
// Drawing only the part of an image that a pass can change.
#ifndef LUMORA_ENGINE_INTERNAL_LIMITED_PASS_H_
#define LUMORA_ENGINE_INTERNAL_LIMITED_PASS_H_

#include "lumora/engine/gpu_beauty_face.h"
#include "lumora/engine/internal/pass.h"
#include "lumora/engine/internal/target.h"
#include "lumora/geometry/changed_area.h"

namespace lumora::engine {

/// Whether draws may be limited: a preview whose images are all there and of one size, and a
/// context that draws as the engine set it up.
bool MayLimitDraws(const android::GPUBeautyFace& engine);

/// The area of a pass that may change every pixel.
ChangedArea WholeImage(const android::GPUBeautyFace& engine);

/// Draws a pass from `source`, which leaves all outside of `changed` as it reads it. There the
/// source is copied instead, unless little would be saved.
int RunLimitedPass(Pass pass, const Target& source, const ChangedArea& changed);

}  // namespace lumora::engine

#endif  // LUMORA_ENGINE_INTERNAL_LIMITED_PASS_H_
