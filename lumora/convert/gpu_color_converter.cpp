// SPDX-License-Identifier: Apache-2.0
// Life and set-up of the colour converter; its passes are in gpu_color_converter_passes.cpp.
#include "lumora/convert/gpu_color_converter.h"

#include <new>

#include "lumora/convert/sp2yuvxs.h"
#include "lumora/geometry/frame_sizes.h"
#include "lumora/gl/destroy_images.h"
#include "lumora/gl/gl_steps.h"
#include "lumora/gl/log.h"
#include "lumora/gl/no_name.h"
#include "lumora/gl/texture_parameters.h"
#include "lumora/platform/display.h"
#include "lumora/platform/gl_api.h"
#include "lumora/platform/offscreen_context.h"
#include "lumora/programs/shader_texts.h"

LUMORA_LOG_TAG("GPUColorConvert");

namespace android {
namespace {

lumora::platform::OffscreenHandles EglHandles(GPUColorConverter& converter) {
  return {converter.m_eglDisplay, converter.m_eglConfig, converter.m_eglSurface,
          converter.m_eglContext};
}

/// A shared image, owned by the caller; null where there can be none.
SEGLImage* MakeImage(int width, int height, GLint wrap) {
  auto* image = new (std::nothrow) SEGLImage(1);
  if (image != nullptr) image->Create(width, height, 1);
  if (image == nullptr || image->m_hTexture == lumora::kNoName) {
    LOGE("[%s] can't new image", "InitTexture");
    delete image;
    return nullptr;
  }
  lumora::gl::SetWrap(wrap);
  lumora::gl::SetFilter(GL_LINEAR);
  return image;
}

}  // namespace

GPUColorConverter::GPUColorConverter()
    : m_eglDisplay(EGL_NO_DISPLAY),
      m_eglConfig(nullptr),
      m_eglSurface(EGL_NO_SURFACE),
      m_eglContext(EGL_NO_CONTEXT),
      m_bEGLReady(false),
      m_nSrcWidth(-1),
      m_nSrcHeight(-1),
      m_nProcWidth(-1),
      m_nProcHeight(-1),
      m_nYYYYWidth(-1),
      m_nYYYYHeight(-1),
      m_nUVUVWidth(-1),
      m_nUVUVHeight(-1),
      m_nAlignedWidth(-1),
      m_nAlignedHeight(-1),
      m_hFrameBuffer{},
      m_pOutputImage{},
      m_pInputImage(nullptr),
      m_hYUV2RGBProgram(0),
      m_nYUV2RGBVerCoordLoc(-1),
      m_nYUV2RGBTexCoordLoc(-1),
      m_nYUV2RGBTextureSlot(-1),
      m_nYUV2RGBMatrixSlot(-1),
      m_hRGB2HSIProgram(0),
      m_nRGB2HSIVerCoordLoc(-1),
      m_nRGB2HSITexCoordLoc(-1),
      m_nRGB2HSITextureSlot(-1),
      m_bCreated(true),
      m_bIsInit(false),
      m_bDisplayReferenced(false) {
  LOGI("GPUColorConverter()+");
  const bool ready = lumora::platform::CreateOffscreenContext(
      EglHandles(*this), m_bDisplayReferenced,
      [](const char* step) { LOGD("[%s] %s successfully", "GPUColorConverter", step); });
  if (!ready) {
    // What was made stays: the destructor does nothing without a context. A display that nobody
    // will terminate must not count, or no later engine would.
    if (m_bDisplayReferenced) lumora::platform::Forget(m_eglDisplay);
    m_bDisplayReferenced = false;
    return;
  }
  m_bEGLReady = true;
  LOGI("GPUColorConverter()-");
}

GPUColorConverter::~GPUColorConverter() {
  LOGI("~GPUColorConverter()+");
  if (!m_bEGLReady) return;
  if (m_bIsInit) DeInit();
  lumora::platform::DestroyOffscreenContext(
      EglHandles(*this), m_bDisplayReferenced,
      [](const char* step) { LOGI("[%s] %s", "~GPUColorConverter", step); });
  m_bEGLReady = false;
  LOGI("~GPUColorConverter()-");
}

int GPUColorConverter::Init(int nSrcImageWidth, int nSrcImageHeight, int* pStride) {
  LOGD("[CAMIN] GPUColorConverter 2012/04/17 Init+");
  LOGD("(nSrcImageWidth, nSrcImageHeight) = (%d, %d)", nSrcImageWidth, nSrcImageHeight);
  if (m_bIsInit) DeInit();
  m_nSrcWidth = m_nProcWidth = m_nAlignedWidth = nSrcImageWidth;
  m_nSrcHeight = m_nProcHeight = m_nYYYYHeight = m_nAlignedHeight = nSrcImageHeight;
  m_nYYYYWidth = m_nUVUVWidth = lumora::PackedWidth(nSrcImageWidth);
  InitTexture();
  InitShader();
  if (pStride != nullptr) *pStride = lumora::RoundUpTo32(nSrcImageWidth);
  m_bIsInit = true;
  LOGD("[CAMIN] GPUColorConverter 2012/04/17 Init-");
  return 1;
}

int GPUColorConverter::InitTexture() {
  const int width = lumora::RoundUpTo32(m_nSrcWidth);
  m_pInputImage = MakeImage(width, m_nSrcHeight, GL_MIRRORED_REPEAT);
  for (int i = 0; i < 2; ++i) {
    m_hFrameBuffer[i] = 0;  // release left the former one's name
    m_pOutputImage[i] = MakeImage(width, m_nSrcHeight, GL_CLAMP_TO_EDGE);
    if (m_pOutputImage[i] == nullptr) continue;
    GLuint framebuffer = 0;
    glGenFramebuffers(1, &framebuffer);
    m_hFrameBuffer[i] = framebuffer;
    if (framebuffer == 0) {
      LOGE("[%s] can't make framebuffer", "InitTexture");
      lumora::gl::CheckGlError("InitTexture - after RGB SetColorAttachment");
      continue;
    }
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    lumora::gl::AttachColour(GL_TEXTURE_2D, m_pOutputImage[i]->m_hTexture);
    lumora::gl::CheckGlError("InitTexture - after RGB SetColorAttachment");
  }
  return 1;
}

int GPUColorConverter::LoadShader() {
  const struct {
    GLuint& program;
    const char* fragment;
  } programs[] = {{m_hYUV2RGBProgram, lumora::shaders::kYuvToRgbFrag},
                  {m_hRGB2HSIProgram, lumora::shaders::kRgbToOpaqueHsiFrag}};
  for (const auto& [program, fragment] : programs) {
    program = lumora::gl::CreateProgram(lumora::shaders::kPassThroughVert, fragment);
    if (program == 0) {
      // One text for both programs.
      LOGE("[InitShaderProgram]m_hYUV2RGBProgram: Could not create program.");
      return 0;
    }
  }
  return 1;
}

int GPUColorConverter::InitShader() {
  LoadShader();
  enum Kind { kAttribute, kUniform };
  // The second program's look-ups report under the first one's names.
  const struct {
    GLuint program;
    Kind kind;
    const char* glsl_name;
    GLint& location;
    const char* label;
  } lookups[] = {
      {m_hYUV2RGBProgram, kAttribute, "a_vertexCoord", m_nYUV2RGBVerCoordLoc,
       "m_nYUV2RGBVerCoordLoc"},
      {m_hYUV2RGBProgram, kAttribute, "a_textureCoord", m_nYUV2RGBTexCoordLoc,
       "m_nYUV2RGBTexCoordLoc"},
      {m_hYUV2RGBProgram, kUniform, "s_texture0", m_nYUV2RGBTextureSlot, "m_nYUV2RGBTextureSlot"},
      {m_hYUV2RGBProgram, kUniform, "u_mat_yuv2rgb", m_nYUV2RGBMatrixSlot, "m_nYUV2RGBMatrixSlot"},
      {m_hRGB2HSIProgram, kAttribute, "a_vertexCoord", m_nRGB2HSIVerCoordLoc,
       "m_nYUV2RGBVerCoordLoc"},
      {m_hRGB2HSIProgram, kAttribute, "a_textureCoord", m_nRGB2HSITexCoordLoc,
       "m_nYUV2RGBTexCoordLoc"},
      {m_hRGB2HSIProgram, kUniform, "s_texture0", m_nRGB2HSITextureSlot, "m_nYUV2RGBTextureSlot"},
  };
  for (const auto& lookup : lookups) {
    lookup.location = lookup.kind == kAttribute
                          ? glGetAttribLocation(lookup.program, lookup.glsl_name)
                          : glGetUniformLocation(lookup.program, lookup.glsl_name);
    if (!lumora::gl::LocationIsValid(lookup.label, lookup.location)) return 0;
  }
  return 1;
}

int GPUColorConverter::ConvertYUV(void* pSrc) {
  if (m_pInputImage == nullptr) {
    LOGE("[SetSrcImage]g_pEGLRGB is not initiated");
    return 0;
  }
  unsigned char* texels = m_pInputImage->Lock();
  if (texels == nullptr || pSrc == nullptr) {
    LOGE("[%s] frame or image is missing", "ConvertYUV");
    return 0;
  }
  sp2yuvxs(texels, m_nYYYYWidth, pSrc, m_nSrcWidth, m_nSrcHeight, 0, 0, m_nSrcWidth, m_nSrcHeight);
  if (m_pInputImage->Unlock() < 0) return 0;
  DrawColorConvertYUV2RGB();
  DrawColorConvertRGB2HSI();
  glFlush();
  glFinish();
  return 1;
}

unsigned char* GPUColorConverter::GetRGB_Image() {
  return m_pOutputImage[0] != nullptr ? m_pOutputImage[0]->Lock() : nullptr;
}

unsigned char* GPUColorConverter::GetHSI_Image() {
  return m_pOutputImage[1] != nullptr ? m_pOutputImage[1]->Lock() : nullptr;
}

int GPUColorConverter::DeInit() {
  LOGD("[CAMIN] GPUColorConverter 2012/04/17 DeInit+");
  for (GLuint& framebuffer : m_hFrameBuffer) {
    if (framebuffer != 0) glDeleteFramebuffers(1, &framebuffer);
  }
  glBindFramebuffer(GL_FRAMEBUFFER, 0);
  // The second program is left: the next Init makes a new one, the context's end takes both.
  glDeleteProgram(m_hYUV2RGBProgram);

  lumora::gl::DestroyImages({&m_pInputImage, &m_pOutputImage[0], &m_pOutputImage[1]});
  glFlush();
  glFinish();
  m_bIsInit = false;
  LOGD("[CAMIN] GPUColorConverter 2012/04/17 DeInit-");
  return 1;
}

}  // namespace android
