// SPDX-License-Identifier: Apache-2.0
#include "lumora/gl/gl_program.h"

#include <algorithm>
#include <iterator>

#include "lumora/gl/colour_matrix.h"
#include "lumora/gl/gl_steps.h"
#include "lumora/gl/log.h"
#include "lumora/gl/quad.h"
#include "lumora/platform/gl_api.h"
#include "lumora/platform/graphic_buffer.h"

LUMORA_LOG_TAG("GLProgram");

GLProgram::GLProgram()
    : m_hProgram(static_cast<unsigned int>(-1)),
      m_nVerCoordLoc(-1),
      m_nTexCoordLoc(-1),
      m_hTextures{} {
  std::fill(std::begin(m_nAttribLoc), std::end(m_nAttribLoc), -1);
  std::fill(std::begin(m_nUniformLoc), std::end(m_nUniformLoc), -1);
  std::fill(std::begin(m_nSamplerLoc), std::end(m_nSamplerLoc), -1);
  std::copy(std::begin(lumora::kMatYUV2RGB), std::end(lumora::kMatYUV2RGB), m_fMatYUV2RGB);
}

GLProgram::~GLProgram() {
  glDeleteProgram(m_hProgram);
  LOGI("[%s] program %d deleted\n", "~GLProgram", static_cast<int>(m_hProgram));
}

bool GLProgram::Load(const char* vertexSource, const char* fragmentSource) {
  m_hProgram = lumora::gl::CreateProgram(vertexSource, fragmentSource);
  if (m_hProgram != 0) return true;
  // One text for every program.
  LOGE("[InitShaderProgram]m_hFaceDistProgram: Could not create program.");
  return false;
}

bool GLProgram::Use() {
  if (glIsProgram(m_hProgram) == GL_FALSE) {
    LOGE("[%s] invalid program id %d", "Use", static_cast<int>(m_hProgram));
    return false;
  }
  glUseProgram(m_hProgram);
  return true;
}

bool GLProgram::SetVertexCoord(int size, const void* coords) {
  lumora::quad::PointAttribute(m_nVerCoordLoc, size, coords);
  return true;
}

bool GLProgram::SetTextureCoord(int size, const void* coords) {
  lumora::quad::PointAttribute(m_nTexCoordLoc, size, coords);
  return true;
}

bool GLProgram::VertexAttribPointer(int index, int size, const void* coords) {
  lumora::quad::PointAttribute(m_nAttribLoc[index], size, coords);
  return true;
}

bool GLProgram::Draw() {
  return GLProgram::Draw(6, lumora::quad::kIndices);
}

bool GLProgram::Draw(int count, const void* indices) {
  lumora::platform::BeforeDraw();
  glDrawElements(GL_TRIANGLES, count, GL_UNSIGNED_SHORT, indices);
  return true;
}

bool GLProgram::SetTextures(unsigned int index, int texture) {
  if (index >= kTextureSlots) {
    LOGE("[%s] nIdx %d must < %d", "SetTextures", static_cast<int>(index), kTextureSlots);
    return false;
  }
  m_hTextures[index] = static_cast<unsigned int>(texture);
  return true;
}

bool GLProgram::LocIsValid(const char* name, int loc) {
  if (loc >= 0) return true;
  LOGE("[%s] invalid %s == %d", "LocIsValid", name, loc);
  return false;
}

void GLProgram::BindInput(int unit) {
  glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(unit));
  glUniform1i(m_nSamplerLoc[unit], unit);
  glBindTexture(GL_TEXTURE_2D, m_hTextures[unit]);
}

void GLProgram::UploadColourMatrix() {
  glUniformMatrix4fv(m_nSamplerLoc[SAMPLER_MAT_YUV2RGB], 1, GL_FALSE, m_fMatYUV2RGB);
}
