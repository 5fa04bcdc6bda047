// SPDX-License-Identifier: Apache-2.0
#include "lumora/engine/internal/pass.h"

#include "lumora/gl/log.h"
#include "lumora/gl/texture_parameters.h"
#include "lumora/platform/gl_api.h"

LUMORA_LOG_TAG("Lumora");

namespace lumora::engine {
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

  static void Limit(const PixelRectangle& part) {
    glScissor(part.x, part.y, part.width, part.height);
  }

 private:
  GLint before_[4] = {};
};

/// Copies what `from` holds to `to`. The texture that was bound is bound again.
void CopyImage(const Target& from, const Target& to, int width, int height) {
  GLint bound = 0;
  glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
  glBindFramebuffer(GL_FRAMEBUFFER, from.framebuffer);
  glBindTexture(GL_TEXTURE_2D, to.image->m_hTexture);
  glCopyTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, 0, 0, width, height);
  glBindTexture(GL_TEXTURE_2D, static_cast<GLuint>(bound));
}

/// Makes the program current and draws the quad at the texture coordinates of the moment.
void DrawQuad(GLProgram& program, const float* positions) {
  program.Use();
  program.SetVertexCoord(4, positions);
  program.SetTextureCoord(2, quad::TextureCoordinates());
  program.Draw();
}

}  // namespace

bool IsComplete(const Pass& pass) {
  return pass.program != nullptr && pass.input != kNoName && pass.second_input != kNoName &&
         pass.destination.image != nullptr && pass.destination.framebuffer != kNoName;
}

int RunPass(const Pass& pass) {
  if (!IsComplete(pass)) {
    LOGE("[%s] program or image is missing", pass.name);
    return 0;
  }
  if (pass.area != nullptr && pass.around.framebuffer != kNoName) {
    CopyImage(pass.around, pass.destination, pass.width, pass.height);
  }
  pass.program->SetTextures(0, static_cast<int>(pass.input));
  if (pass.second_input != 0) pass.program->SetTextures(1, static_cast<int>(pass.second_input));
  glBindFramebuffer(GL_FRAMEBUFFER, pass.destination.framebuffer);
  if (!pass.keep_viewport) glViewport(0, 0, pass.width, pass.height);
  if (pass.filter != 0) gl::SetFilterOfPass(pass.filter);
  if (!pass.keep_coordinates) quad::ResetTextureCoordinates();
  if (pass.area == nullptr) {
    DrawQuad(*pass.program, pass.positions);
    return 1;
  }
  const ScissorScope scissor;
  for (const PixelRectangle& part : *pass.area) {
    ScissorScope::Limit(part);
    DrawQuad(*pass.program, pass.positions);
  }
  return 1;
}

}  // namespace lumora::engine
