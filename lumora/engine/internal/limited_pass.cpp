// SPDX-License-Identifier: Apache-2.0
#include "lumora/engine/internal/limited_pass.h"

#include "lumora/engine/internal/set_up.h"
#include "lumora/platform/gl_api.h"
#include "lumora/platform/settings.h"

namespace lumora::engine {
namespace {

using android::GPUBeautyFace;

/// Whether both sides of an image are there.
bool IsShared(const SEGLImage* image) {
  return image != nullptr && image->m_spBuffer && image->m_eglImage != EGL_NO_IMAGE_KHR;
}

bool HasAllImages(const GPUBeautyFace& engine) {
  return IsShared(engine.m_pRGBImage) && IsShared(engine.m_pWorkImage[0]) &&
         IsShared(engine.m_pWorkImage[1]) && IsShared(engine.m_pWorkImage[2]) &&
         IsShared(engine.m_pYYYYImage) && IsShared(engine.m_pUVUVImage);
}

bool HasOneSize(const GPUBeautyFace& engine) {
  return engine.m_nSrcWidth == engine.m_nProcWidth && engine.m_nSrcHeight == engine.m_nProcHeight &&
         !engine.m_bRotate;
}

/// Whether nothing is masked, blended or tested. Otherwise a quad may write less than the pixels
/// that its program computes.
bool DrawsPlainly() {
  constexpr GLenum kTests[] = {GL_SCISSOR_TEST,   GL_BLEND,        GL_CULL_FACE,
                               GL_DEPTH_TEST,     GL_STENCIL_TEST, GL_SAMPLE_ALPHA_TO_COVERAGE,
                               GL_SAMPLE_COVERAGE};
  for (const GLenum test : kTests) {
    if (glIsEnabled(test) == GL_TRUE) return false;
  }
  GLboolean written[4] = {};
  glGetBooleanv(GL_COLOR_WRITEMASK, written);
  return written[0] == GL_TRUE && written[1] == GL_TRUE && written[2] == GL_TRUE &&
         written[3] == GL_TRUE;
}

}  // namespace

bool MayLimitDraws(const GPUBeautyFace& engine) {
  return IsPreview(SetUpOf(engine)) && HasOneSize(engine) && HasAllImages(engine) &&
         !platform::FullQuads() && DrawsPlainly();
}

ChangedArea WholeImage(const GPUBeautyFace& engine) {
  return ChangedArea({0, 0, engine.m_nAlignedWidth, engine.m_nAlignedHeight});
}

int RunLimitedPass(Pass pass, const Target& source, const ChangedArea& changed) {
  pass.input = TextureOf(source.image);
  const bool worthwhile = !CoversMost(changed, pass.width, pass.height);
  if (worthwhile && source.framebuffer != kNoName) {
    pass.area = &changed;
    pass.around = source;
  }
  return RunPass(pass);
}

}  // namespace lumora::engine
