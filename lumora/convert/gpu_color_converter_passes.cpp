// The two passes of the colour converter.
#include "lumora/convert/gpu_color_converter.h"
#include "lumora/gl/cache_clean.h"
#include "lumora/gl/colour_matrix.h"
#include "lumora/gl/gl_steps.h"
#include "lumora/gl/log.h"
#include "lumora/gl/offscreen_context.h"
#include "lumora/gl/quad.h"
#include "lumora/platform/gl_api.h"
#include "lumora/platform/graphic_buffer.h"

LUMORA_LOG_TAG("GPUColorConvert");

namespace android {

/// A pass: program and locations, source and target.
struct GPUColorConverter::Pass {
  GLuint program;
  GLint vertex_coord;
  GLint texture_coord;
  GLint texture_slot;
  const SEGLImage* source;
  GLuint target;
};

GPUColorConverter::Pass GPUColorConverter::YuvToRgb() const {
  return {m_hYUV2RGBProgram,     m_nYUV2RGBVerCoordLoc, m_nYUV2RGBTexCoordLoc,
          m_nYUV2RGBTextureSlot, m_pInputImage,         m_hFrameBuffer[0]};
}

GPUColorConverter::Pass GPUColorConverter::RgbToHsi() const {
  return {m_hRGB2HSIProgram,     m_nRGB2HSIVerCoordLoc, m_nRGB2HSITexCoordLoc,
          m_nRGB2HSITextureSlot, m_pOutputImage[0],     m_hFrameBuffer[1]};
}

int GPUColorConverter::SetPass(const Pass& pass) {
  glBindFramebuffer(GL_FRAMEBUFFER, pass.target);
  glViewport(0, 0, m_nSrcWidth, m_nSrcHeight);
  lumora::gl::CheckGlError("glViewport - YUV2RGB");
  // On whatever texture is bound at this moment; the input is bound below.
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
  lumora::gl::CheckGlError("glTexParameteri MIN- Y");
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
  lumora::gl::CheckGlError("glTexParameteri MAG- Y");
  if (pass.source == nullptr || glIsProgram(pass.program) == GL_FALSE) return 0;
  glUseProgram(pass.program);
  lumora::gl::CheckGlError("SetColorConvertShader - glUseProgram");
  glActiveTexture(GL_TEXTURE0);
  glUniform1i(pass.texture_slot, 0);
  glBindTexture(GL_TEXTURE_2D, pass.source->m_hTexture);
  return 1;
}

int GPUColorConverter::SetColorConvertYUV2RGBShader() {
  if (SetPass(YuvToRgb()) == 0) return 0;
  glUniformMatrix4fv(m_nYUV2RGBMatrixSlot, 1, GL_FALSE, lumora::kMatYUV2RGB);
  return 1;
}

int GPUColorConverter::SetColorConvertRGB2HSIShader() {
  return SetPass(RgbToHsi());
}

void GPUColorConverter::DrawPass(const Pass& pass) {
  lumora::quad::PointAttribute(pass.vertex_coord, 4, lumora::quad::kPositions);
  lumora::quad::ResetTextureCoordinates();
  lumora::quad::PointAttribute(pass.texture_coord, 2, lumora::quad::TextureCoordinates());
  lumora::platform::BeforeDraw();
  glDrawElements(GL_TRIANGLES, 6, GL_UNSIGNED_SHORT, lumora::quad::kIndices);
  lumora::gl::CheckGlError("glDrawElements - FaceDist");
}

int GPUColorConverter::DrawColorConvertYUV2RGB() {
  SetColorConvertYUV2RGBShader();
  DrawPass(YuvToRgb());
  return 1;
}

int GPUColorConverter::DrawColorConvertRGB2HSI() {
  SetColorConvertRGB2HSIShader();
  DrawPass(RgbToHsi());
  return 1;
}

int GPUColorConverter::clean_buffer(void* base, int flags, int offset, int fd, int size) {
  if (lumora::CleanBuffer(base, flags, offset, fd, size)) return 1;
  LOGD("[%s] clean buffer error", "clean_buffer");
  return 0;
}

}  // namespace android
