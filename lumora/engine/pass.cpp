#include "lumora/engine/pass.h"

#include "lumora/gl/gl_helpers.h"
#include "lumora/gl/log.h"
#include "lumora/gl/offscreen_context.h"
#include "lumora/platform/gl_api.h"

LUMORA_LOG_TAG("Lumora");

namespace android {

int GPUBeautyFace::RunPass(const Pass& pass) {
  if (pass.program == nullptr || pass.source == nullptr || pass.destination == nullptr ||
      pass.target == static_cast<GLuint>(-1)) {
    LOGE("[%s] program or image is missing", pass.name);
    return 0;
  }
  pass.program->SetTextures(0, static_cast<int>(pass.source->m_hTexture));
  glBindFramebuffer(GL_FRAMEBUFFER, pass.target);
  glViewport(0, 0, pass.width, pass.height);
  if (pass.filter != 0) {
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, pass.filter);
    checkGlError("glTexParameteri MIN- Y");
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, pass.filter);
    checkGlError("glTexParameteri MAG- Y");
  }
  if (!pass.keep_coordinates) lumora::quad::ResetTextureCoordinates();
  DrawQuad(*pass.program, pass.positions);
  return 1;
}

void DrawQuad(GLProgram& program, const float* positions) {
  program.Use();
  program.SetVertexCoord(4, positions);
  program.SetTextureCoord(2, lumora::quad::TextureCoordinates());
  program.Draw();
}

}  // namespace android
