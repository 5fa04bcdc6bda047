#include "lumora/gl/gl_program.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

#include "lumora/gl/gl_helpers.h"
#include "lumora/gl/log.h"
#include "lumora/gl/program_loader.h"
#include "lumora/platform/gl_api.h"
#include "lumora/platform/graphic_buffer.h"

LUMORA_LOG_TAG("GLProgram");

namespace {

constexpr uint16_t kQuadIndices[6] = {0, 1, 2, 0, 2, 3};

// Column by column; the last column is the chroma offset of one half, folded in.
constexpr float kMatYUV2RGB[16] = {
    1.0f,    1.0f,    1.0f,    0.0f,  // Y
    1.402f,  -0.714f, 0.0f,    0.0f,  // Cr
    0.0f,    -0.344f, 1.772f,  0.0f,  // Cb
    -0.701f, 0.529f,  -0.886f, 1.0f,  // constant
};

void PointAttribute(int location, int size, const void* coords) {
  const auto index = static_cast<GLuint>(location);
  glVertexAttribPointer(index, size, GL_FLOAT, GL_FALSE, 0, coords);
  glEnableVertexAttribArray(index);
}

}  // namespace

GLProgram::GLProgram()
    : m_hProgram(static_cast<unsigned int>(-1)),
      m_nVerCoordLoc(-1),
      m_nTexCoordLoc(-1),
      m_hTextures{} {
  std::fill(std::begin(m_nAttribLoc), std::end(m_nAttribLoc), -1);
  std::fill(std::begin(m_nUniformLoc), std::end(m_nUniformLoc), -1);
  std::fill(std::begin(m_nSamplerLoc), std::end(m_nSamplerLoc), -1);
  std::copy(std::begin(kMatYUV2RGB), std::end(kMatYUV2RGB), m_fMatYUV2RGB);
}

GLProgram::~GLProgram() {
  glDeleteProgram(m_hProgram);
  LOGI("[%s] program %d deleted\n", "~GLProgram", static_cast<int>(m_hProgram));
}

bool GLProgram::Load(const char* vertexSource, const char* fragmentSource) {
  m_hProgram = createProgram(vertexSource, fragmentSource);
  if (m_hProgram != 0) return true;
  // One text for every program.
  LOGE("[InitShaderProgram]m_hFaceDistProgram: Could not create program.");
  return false;
}

bool GLProgram::LoadDescribed(const lumora::ProgramDescription& description) {
  return lumora::LoadProgram(*this, description);
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
  PointAttribute(m_nVerCoordLoc, size, coords);
  return true;
}

bool GLProgram::SetTextureCoord(int size, const void* coords) {
  PointAttribute(m_nTexCoordLoc, size, coords);
  return true;
}

bool GLProgram::VertexAttribPointer(int index, int size, const void* coords) {
  PointAttribute(m_nAttribLoc[index], size, coords);
  return true;
}

bool GLProgram::Draw() {
  return GLProgram::Draw(6, kQuadIndices);
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
