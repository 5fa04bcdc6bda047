// SPDX-License-Identifier: Apache-2.0
// The store of a whole capture, whichever memory it is in.
#ifndef LUMORA_ENGINE_INTERNAL_WHOLE_FRAME_STORE_H_
#define LUMORA_ENGINE_INTERNAL_WHOLE_FRAME_STORE_H_

#include "lumora/engine/gpu_beauty_face.h"
#include "lumora/geometry/rectangle.h"

namespace lumora::engine {

/// The buffer of work image 1, or the large one of captures that fit no texture; null when there is
/// none. It has rows of the full frame's width rounded up to 32 pixels. A block of it is used by a
/// platform::CpuAccess, so that only that block moves between CPU and GPU.
inline platform::GraphicBuffer* WholeFrameStore(const android::GPUBeautyFace& engine) {
  if (engine.m_bLargeCapture) return engine.m_spLargeBuffer.get();
  const SEGLImage* const image = engine.m_pWorkImage[1];
  return image != nullptr ? image->m_spBuffer.get() : nullptr;
}

/// Locks `image` and copies the block at `place` of the store to its memory: `place.height` rows of
/// the full block's width. False when one of the two has no memory. The caller unlocks the image.
bool CopyFromStore(const android::GPUBeautyFace& engine, SEGLImage* image,
                   const PixelRectangle& place);

}  // namespace lumora::engine

#endif  // LUMORA_ENGINE_INTERNAL_WHOLE_FRAME_STORE_H_
