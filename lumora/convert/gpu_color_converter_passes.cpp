// SPDX-License-Identifier: Apache-2.0
// The two passes of the colour converter.
#include "lumora/convert/gpu_color_converter.h"
#include "lumora/gl/cache_clean.h"
#include "lumora/gl/colour_matrix.h"
#include "lumora/gl/gl_steps.h"
#include "lumora/gl/log.h"
#include "lumora/gl/quad.h"
#include "lumora/gl/texture_parameters.h"
#include "lumora/platform/gl_api.h"
#include "lumora/platform/graphic_buffer.h"

LUMORA_LOG_TAG("GPUColorConvert");

namespace android {
namespace {

/// A pass: program and locations, source and target.
struct ConverterPass {
  GLuint program = 0;
  GLint vertex_coord = -1;
  GLint texture_coord = -1;
  GLint texture_slot = -1;
  const SEGLImage* source = nullptr;
  GLuint framebuffer = 0;
};

ConverterPass YuvToRgb(const GPUColorConverter& converter) {
  ConverterPass pass;
  pass.program = converter.m_hYUV2RGBProgram;
  pass.vertex_coord = converter.m_nYUV2RGBVerCoordLoc;
  pass.texture_coord = converter.m_nYUV2RGBTexCoordLoc;
  pass.texture_slot = converter.m_nYUV2RGBTextureSlot;
  pass.source = converter.m_pInputImage;
  pass.framebuffer = converter.m_hFrameBuffer[0];
  return pass;
}

ConverterPass RgbToHsi(const GPUColorConverter& converter) {
  ConverterPass pass;
  pass.program = converter.m_hRGB2HSIProgram;
  pass.vertex_coord = converter.m_nRGB2HSIVerCoordLoc;
  pass.texture_coord = converter.m_nRGB2HSITexCoordLoc;
  pass.texture_slot = converter.m_nRGB2HSITextureSlot;
  pass.source = converter.m_pOutputImage[0];
  pass.framebuffer = converter.m_hFrameBuffer[1];
  return pass;
}

/// Makes target, program and source of a pass current. 0 when the program is not valid or the
/// source is missing.
int SetPass(const GPUColorConverter& converter, const ConverterPass& pass) {
  glBindFramebuffer(GL_FRAMEBUFFER, pass.framebuffer);
  glViewport(0, 0, converter.m_nSrcWidth, converter.m_nSrcHeight);
  lumora::gl::CheckGlError("glViewport - YUV2RGB");
  // On whatever texture is bound at this moment; the input is bound below.
  lumora::gl::SetFilterOfPass(GL_LINEAR);
  if (pass.source == nullptr || glIsProgram(pass.program) == GL_FALSE) return 0;
  glUseProgram(pass.program);
  lumora::gl::CheckGlError("SetColorConvertShader - glUseProgram");
  glActiveTexture(GL_TEXTURE0);
  glUniform1i(pass.texture_slot, 0);
  glBindTexture(GL_TEXTURE_2D, pass.source->m_hTexture);
  return 1;
}

void DrawPass(const ConverterPass& pass) {
  lumora::quad::PointAttribute(pass.vertex_coord, 4, lumora::quad::kPositions);
  lumora::quad::ResetTextureCoordinates();
  lumora::quad::PointAttribute(pass.texture_coord, 2, lumora::quad::TextureCoordinates());
  lumora::platform::BeforeDraw();
  glDrawElements(GL_TRIANGLES, 6, GL_UNSIGNED_SHORT, lumora::quad::kIndices);
  lumora::gl::CheckGlError("glDrawElements - FaceDist");
}

}  // namespace

int GPUColorConverter::SetColorConvertYUV2RGBShader() {
  if (SetPass(*this, YuvToRgb(*this)) == 0) return 0;
  glUniformMatrix4fv(m_nYUV2RGBMatrixSlot, 1, GL_FALSE, lumora::kMatYUV2RGB);
  return 1;
}

int GPUColorConverter::SetColorConvertRGB2HSIShader() {
  return SetPass(*this, RgbToHsi(*this));
}

int GPUColorConverter::DrawColorConvertYUV2RGB() {
  SetColorConvertYUV2RGBShader();
  DrawPass(YuvToRgb(*this));
  return 1;
}

int GPUColorConverter::DrawColorConvertRGB2HSI() {
  SetColorConvertRGB2HSIShader();
  DrawPass(RgbToHsi(*this));
  return 1;
}

int GPUColorConverter::clean_buffer(void* base, int flags, int offset, int fd, int size) {
  if (lumora::CleanBuffer(base, flags, offset, fd, size) >= 0) return 1;
  LOGD("[%s] clean buffer error", "clean_buffer");
  return 0;
}

}  // namespace android
