#include "lumora/engine/pass.h"

#include "lumora/gl/gl_steps.h"
#include "lumora/gl/log.h"
#include "lumora/gl/offscreen_context.h"
#include "lumora/platform/gl_api.h"

LUMORA_LOG_TAG("Lumora");

namespace android {
namespace {

/// Limits draws to rectangles, for the life of the object.
class ScissorScope {
 public:
  ScissorScope() {
    glGetIntegerv(GL_SCISSOR_BOX, before_);
    glEnable(GL_SCISSOR_TEST);
  }
  ~ScissorScope() {
    glDisable(GL_SCISSOR_TEST);
    glScissor(before_[0], before_[1], before_[2], before_[3]);
  }
  ScissorScope(const ScissorScope&) = delete;
  ScissorScope& operator=(const ScissorScope&) = delete;

  static void limit(const lumora::PixelRectangle& part) {
    glScissor(part.x, part.y, part.width, part.height);
  }

 private:
  GLint before_[4] = {};
};

/// Copies what a framebuffer has to `texture`. The texture that was bound is bound again.
void CopyImage(GLuint framebuffer, GLuint texture, int width, int height) {
  GLint bound = 0;
  glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
  glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
  glBindTexture(GL_TEXTURE_2D, texture);
  glCopyTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, 0, 0, width, height);
  glBindTexture(GL_TEXTURE_2D, static_cast<GLuint>(bound));
}

}  // namespace

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

int GPUBeautyFace::RunPass(const Pass& pass) {
  if (pass.program == nullptr || pass.source == nullptr || pass.destination == nullptr ||
      pass.target == lumora::kNoName) {
    LOGE("[%s] program or image is missing", pass.name);
    return 0;
  }
  if (pass.area != nullptr && pass.copy_from != lumora::kNoName) {
    CopyImage(pass.copy_from, pass.destination->m_hTexture, pass.width, pass.height);
  }
  pass.program->SetTextures(0, static_cast<int>(pass.source->m_hTexture));
  glBindFramebuffer(GL_FRAMEBUFFER, pass.target);
  glViewport(0, 0, pass.width, pass.height);
  if (pass.filter != 0) {
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, pass.filter);
    lumora::gl::CheckGlError("glTexParameteri MIN- Y");
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, pass.filter);
    lumora::gl::CheckGlError("glTexParameteri MAG- Y");
  }
  if (!pass.keep_coordinates) lumora::quad::ResetTextureCoordinates();
  if (pass.area == nullptr) {
    DrawQuad(*pass.program, pass.positions);
    return 1;
  }
  const ScissorScope scissor;
  for (const lumora::PixelRectangle& part : *pass.area) {
    ScissorScope::limit(part);
    DrawQuad(*pass.program, pass.positions);
  }
  return 1;
}

void DrawQuad(GLProgram& program, const float* positions) {
  program.Use();
  program.SetVertexCoord(4, positions);
  program.SetTextureCoord(2, lumora::quad::TextureCoordinates());
  program.Draw();
}

}  // namespace android
