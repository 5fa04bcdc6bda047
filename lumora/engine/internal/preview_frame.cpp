// SPDX-License-Identifier: Apache-2.0
#include "lumora/engine/internal/preview_frame.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "lumora/engine/internal/limited_pass.h"
#include "lumora/engine/internal/packed_targets.h"
#include "lumora/engine/internal/set_up.h"
#include "lumora/geometry/frame_sizes.h"
#include "lumora/gl/log.h"
#include "lumora/platform/gl_api.h"

LUMORA_LOG_TAG("Lumora");

namespace lumora::engine {
namespace {

using android::GPUBeautyFace;

size_t LumaSize(const GPUBeautyFace& engine) {
  return static_cast<size_t>(engine.m_nProcWidth) * static_cast<size_t>(engine.m_nProcHeight);
}

/// Whether the chroma plane `out` is the one of the frame, or lies apart from the whole frame.
bool IsOrdinaryOutput(const unsigned char* in, const unsigned char* out, size_t luma_size) {
  const auto frame = reinterpret_cast<uintptr_t>(in);
  const auto plane = reinterpret_cast<uintptr_t>(out);
  const size_t chroma_size = luma_size / 2;
  return plane == frame + luma_size || plane + chroma_size <= frame ||
         plane >= frame + luma_size + chroma_size;
}

/// Makes the packed targets what packing the caller's frame itself would give, but for the texels
/// beyond the frame's width.
bool FillPackedTargets(const GPUBeautyFace& engine, const unsigned char* frame) {
  const int texels = engine.m_nProcWidth / 4;
  const int rows = engine.m_nProcHeight;
  return engine.m_pYYYYImage->m_spBuffer->writeFrom({0, 0, texels, rows}, frame, texels) == 0 &&
         engine.m_pUVUVImage->m_spBuffer->writeFrom({0, 0, texels, rows / 2},
                                                    frame + LumaSize(engine), texels) == 0;
}

/// Whether only what differs from the frame needs to be packed and brought back. Then the packed
/// targets hold the frame.
bool MayBringBackPart(const GPUBeautyFace& engine, const unsigned char* frame,
                      const unsigned char* chroma, const ChangedArea& changed) {
  return !GoesByHsi(SetUpOf(engine)) && ExpandsExactly(engine.m_nProcWidth, engine.m_nProcHeight) &&
         frame != nullptr && chroma != nullptr &&
         IsOrdinaryOutput(frame, chroma, LumaSize(engine)) &&
         !CoversMost(changed, engine.m_nAlignedWidth, engine.m_nAlignedHeight) &&
         MayLimitDraws(engine) && FillPackedTargets(engine, frame);
}

/// Packs what lies in `changed`, and the texels beyond the frame's width.
bool PackPart(const GPUBeautyFace& engine, int passes, const PixelRectangle& changed) {
  const int texels = engine.m_nProcWidth / 4;
  const int beyond = engine.m_nAlignedWidth / 4 - texels;
  ChangedArea luma(InSteps(changed, 4, 1));
  luma.Add({texels, 0, beyond, engine.m_nAlignedHeight});
  ChangedArea chroma(InSteps(changed, 4, 2));
  chroma.Add({texels, 0, beyond, engine.m_nAlignedHeight / 2});
  return PackLuma(engine, passes, &luma) == 1 && PackChroma(engine, passes, &chroma) == 1;
}

/// Brings `changed` back; all else in the caller's planes is the frame's.
bool ReadPart(const GPUBeautyFace& engine, unsigned char* frame, unsigned char* chroma,
              const PixelRectangle& changed) {
  FirstLumaSize(engine);  // is settled by the first frame, whichever way that is brought back
  const unsigned char* const frame_chroma = frame + LumaSize(engine);
  if (chroma != frame_chroma) std::memcpy(chroma, frame_chroma, LumaSize(engine) / 2);
  const int columns = std::clamp(engine.m_nProcWidth - changed.x, 0, changed.width);
  const PixelRectangle inside{changed.x, changed.y, columns, changed.height};
  return ReadPacked(engine, {frame, InSteps(inside, 4, 1)}, {chroma, InSteps(inside, 4, 2)},
                    engine.m_nProcWidth / 4);
}

}  // namespace

bool IsPreviewReady(const GPUBeautyFace& engine) {
  if (engine.m_pRGBImage == nullptr) {
    LOGE("[SetSrcImage]g_pSrcTexture is not initiated");
    return false;
  }
  if (!engine.m_bIsInit) {
    LOGI("!m_bIsInit");
    return false;
  }
  // Another engine of this thread, or another thread, has the context: drawing would do nothing.
  if (eglGetCurrentContext() != engine.m_eglContext) {
    LOGE("[%s] the engine's context is not current on this thread", "SetSrcImage");
    return false;
  }
  return true;
}

bool BeginPreviewFrame(GPUBeautyFace& engine, void* frame) {
  if (!IsPreviewReady(engine)) return false;
  return GoesByHsi(SetUpOf(engine)) || engine.LoadPreviewFrameBuffer(frame) == 1;
}

bool FinishPreviewFrame(GPUBeautyFace& engine, const PreviewPlanes& planes, int passes,
                        const ChangedArea& changed) {
  auto* frame = static_cast<unsigned char*>(planes.frame);
  auto* chroma = static_cast<unsigned char*>(planes.chroma);
  const bool part = MayBringBackPart(engine, frame, chroma, changed);
  const PixelRectangle box = changed.Box();
  const bool packed = part ? PackPart(engine, passes, box)
                           : engine.DrawRGBtoYY(passes) == 1 && engine.DrawRGBtoUV(passes) == 1;
  if (!packed) return false;
  glFlush();
  glFinish();
  if (part && ReadPart(engine, frame, chroma, box)) return true;
  return engine.MemcpyYUV(planes.frame, planes.chroma) == 1;
}

}  // namespace lumora::engine
