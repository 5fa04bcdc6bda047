// What the effects on preview frames share: their beginning and end, and drawing only the part of
// an image that a pass can change.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "lumora/engine/pass.h"
#include "lumora/geometry/frame_sizes.h"
#include "lumora/gl/log.h"
#include "lumora/gl/no_name.h"
#include "lumora/gl/offscreen_context.h"
#include "lumora/platform/gl_api.h"
#include "lumora/platform/settings.h"

LUMORA_LOG_TAG("Lumora");

namespace android {
namespace {

/// Whether both sides of an image are there.
bool IsShared(const SEGLImage* image) {
  return image != nullptr && image->m_spBuffer && image->m_eglImage != EGL_NO_IMAGE_KHR;
}

/// Whether the chroma plane `out` is the one of the frame, or lies apart from the whole frame.
bool IsOrdinaryOutput(const unsigned char* in, const unsigned char* out, size_t luma_size) {
  const auto frame = reinterpret_cast<uintptr_t>(in);
  const auto plane = reinterpret_cast<uintptr_t>(out);
  const size_t chroma_size = luma_size / 2;
  return plane == frame + luma_size || plane + chroma_size <= frame ||
         plane >= frame + luma_size + chroma_size;
}

}  // namespace

int GPUBeautyFace::CheckPreviewReady() {
  if (m_pRGBImage == nullptr) {
    LOGE("[SetSrcImage]g_pSrcTexture is not initiated");
    return 0;
  }
  if (!m_bIsInit) {
    LOGI("!m_bIsInit");
    return 0;
  }
  // Another engine of this thread, or another thread, has the context: drawing would do nothing.
  if (eglGetCurrentContext() != m_eglContext) {
    LOGE("[%s] the engine's context is not current on this thread", "SetSrcImage");
    return 0;
  }
  return 1;
}

int GPUBeautyFace::BeginPreviewFrame(void* in) {
  if (CheckPreviewReady() == 0) return 0;
  // In colour-convert mode the input image is filled already.
  if (m_bColorCvtMode) return 1;
  return LoadPreviewFrameBuffer(in);
}

lumora::ChangedArea GPUBeautyFace::WholeImage() const {
  return lumora::ChangedArea({0, 0, m_nAlignedWidth, m_nAlignedHeight});
}

bool GPUBeautyFace::MayLimitDraws() const {
  // Only the preview set-up has the rectification programs; then the others are for previews too.
  const bool preview = m_pProgRadialDistortion != nullptr;
  const bool one_size = m_nSrcWidth == m_nProcWidth && m_nSrcHeight == m_nProcHeight && !m_bRotate;
  return preview && one_size && IsShared(m_pRGBImage) && IsShared(m_pWorkImage[0]) &&
         IsShared(m_pWorkImage[1]) && IsShared(m_pWorkImage[2]) && IsShared(m_pYYYYImage) &&
         IsShared(m_pUVUVImage) && !lumora::platform::FullQuads() && DrawsPlainly();
}

int GPUBeautyFace::RunLimitedPass(Pass pass, GLuint source_target,
                                  const lumora::ChangedArea& changed) {
  if (source_target == lumora::kNoName || pass.destination == nullptr ||
      lumora::CoversMost(changed, pass.width, pass.height)) {
    return RunPass(pass);
  }
  pass.area = &changed;
  pass.copy_from = source_target;
  return RunPass(pass);
}

int GPUBeautyFace::FinishPreviewFrame(void* in, void* out, int packed_source,
                                      const lumora::ChangedArea& changed) {
  auto* frame = static_cast<unsigned char*>(in);
  auto* chroma = static_cast<unsigned char*>(out);
  const bool part = !m_bColorCvtMode && lumora::ExpandsExactly(m_nProcWidth, m_nProcHeight) &&
                    frame != nullptr && chroma != nullptr &&
                    IsOrdinaryOutput(frame, chroma, LumaSize()) &&
                    !lumora::CoversMost(changed, m_nAlignedWidth, m_nAlignedHeight) &&
                    MayLimitDraws() && FillPackedTargets(frame);
  const lumora::PixelRectangle box = changed.Box();
  if (part) {
    if (PackPart(packed_source, box) == 0) return 0;
  } else if (DrawRGBtoYY(packed_source) == 0 || DrawRGBtoUV(packed_source) == 0) {
    return 0;
  }
  glFlush();
  glFinish();
  return part && ReadPart(frame, chroma, box) ? 1 : MemcpyYUV(in, out);
}

size_t GPUBeautyFace::LumaSize() const {
  return static_cast<size_t>(m_nProcWidth) * static_cast<size_t>(m_nProcHeight);
}

/// Makes the packed targets what packing the caller's frame itself would give, but for the texels
/// beyond the frame's width.
bool GPUBeautyFace::FillPackedTargets(const unsigned char* frame) {
  const int texels = m_nProcWidth / 4;
  return m_pYYYYImage->m_spBuffer->writeFrom({0, 0, texels, m_nProcHeight}, frame, texels) == 0 &&
         m_pUVUVImage->m_spBuffer->writeFrom({0, 0, texels, m_nProcHeight / 2}, frame + LumaSize(),
                                             texels) == 0;
}

/// Packs what lies in `changed`, and the texels beyond the frame's width.
int GPUBeautyFace::PackPart(int packed_source, const lumora::PixelRectangle& changed) {
  const int texels = m_nProcWidth / 4;
  const int beyond = m_nAlignedWidth / 4 - texels;
  lumora::ChangedArea luma(lumora::InSteps(changed, 4, 1));
  luma.Add({texels, 0, beyond, m_nAlignedHeight});
  lumora::ChangedArea chroma(lumora::InSteps(changed, 4, 2));
  chroma.Add({texels, 0, beyond, m_nAlignedHeight / 2});
  return PackLuma(packed_source, &luma) == 1 && PackChroma(packed_source, &chroma) == 1 ? 1 : 0;
}

/// Brings `changed` back; all else in the caller's planes is the frame's.
bool GPUBeautyFace::ReadPart(unsigned char* frame, unsigned char* chroma,
                             const lumora::PixelRectangle& changed) {
  FirstFrameSize();  // is settled by the first frame, whichever way that is brought back
  const unsigned char* const frame_chroma = frame + LumaSize();
  if (chroma != frame_chroma) std::memcpy(chroma, frame_chroma, LumaSize() / 2);
  const int columns = std::clamp(m_nProcWidth - changed.x, 0, changed.width);
  const lumora::PixelRectangle inside{changed.x, changed.y, columns, changed.height};
  return ReadPacked({frame, lumora::InSteps(inside, 4, 1)}, {chroma, lumora::InSteps(inside, 4, 2)},
                    m_nProcWidth / 4);
}

}  // namespace android
