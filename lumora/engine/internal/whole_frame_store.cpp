// SPDX-License-Identifier: Apache-2.0
#include "lumora/engine/internal/whole_frame_store.h"

#include "lumora/geometry/rounding.h"
#include "lumora/platform/buffer/cpu_access.h"

namespace lumora::engine {

bool CopyFromStore(const android::GPUBeautyFace& engine, SEGLImage* image,
                   const PixelRectangle& place) {
  unsigned char* block = image != nullptr ? image->Lock() : nullptr;
  const platform::CpuAccess store(WholeFrameStore(engine), platform::CpuUse::Read,
                                  {place.x, place.y, engine.m_nSrcWidth, place.height});
  if (store.pixels() == nullptr || block == nullptr) return false;
  android::GPUBeautyFace::BlockCopyRGBA8888DrawBack(
      store.pixels(), block, place.x, place.y, RoundUpTo32(engine.m_nSrcWidth), place.height,
      RoundUpTo32(engine.m_nFullWidth), engine.m_nFullHeight);
  return true;
}

}  // namespace lumora::engine
