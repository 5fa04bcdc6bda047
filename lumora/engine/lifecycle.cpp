// SPDX-License-Identifier: Apache-2.0
// Construction and destruction of the engine, set-up and release of its two paths.
#include <cstdlib>

#include "lumora/engine/gpu_beauty_face.h"
#include "lumora/engine/internal/set_up.h"
#include "lumora/geometry/frame_sizes.h"
#include "lumora/gl/destroy_images.h"
#include "lumora/gl/log.h"
#include "lumora/gl/no_name.h"
#include "lumora/platform/gl_api.h"
#include "lumora/platform/offscreen_context.h"
#include "lumora/platform/settings.h"

LUMORA_LOG_TAG("Lumora");

namespace android {
namespace {

/// Whether the programs are to paint their diagnostic marks: the property's value is exactly 1.
bool ReadShowMask() {
  char value[lumora::platform::kPropertyValueMax] = {};
  if (__system_property_get("persist.debug.camera.showmask", value) <= 0) return false;
  return std::strtol(value, nullptr, 10) == 1;
}

void DeleteFramebuffer(GLuint& fbo) {
  if (fbo == lumora::kNoName) return;
  glDeleteFramebuffers(1, &fbo);
  fbo = lumora::kNoName;
}

void DeleteProgram(GLProgram*& program) {
  delete program;
  program = nullptr;
}

void DeletePlaneTexture(GLuint& texture) {
  if (texture == lumora::kNoName) return;
  glDeleteTextures(1, &texture);
  texture = lumora::kNoName;
}

lumora::platform::OffscreenHandles EglHandles(GPUBeautyFace& engine) {
  return {engine.m_eglDisplay, engine.m_eglConfig, engine.m_eglSurface, engine.m_eglContext};
}

/// Sets the sizes that follow from that of the frame that the effects run on.
void SetProcessedSize(GPUBeautyFace& engine, int width, int height) {
  engine.m_nProcWidth = width;
  engine.m_nProcHeight = height;
  engine.m_nYYYYWidth = engine.m_nUVUVWidth = lumora::PackedWidth(width);
  engine.m_nYYYYHeight = height;
  engine.m_nUVUVHeight = height / 2;
  engine.m_nAlignedHeight = height;
}

}  // namespace

GPUBeautyFace::GPUBeautyFace()
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
      m_nFullWidth(-1),
      m_nFullHeight(-1),
      m_hYYYYFbo(lumora::kNoName),
      m_hUVUVFbo(lumora::kNoName),
      m_hWorkFbo{lumora::kNoName, lumora::kNoName, lumora::kNoName},
      m_hRGBFbo(lumora::kNoName),
      m_pWorkImage{},
      m_pRGBImage(nullptr),
      m_pYYYYImage(nullptr),
      m_pUVUVImage(nullptr),
      m_nResultIdx(0),
      m_pProgRGBtoY(nullptr),
      m_pProgRGBtoUV(nullptr),
      m_pProgCheekSlimmer(nullptr),
      m_pProgYUV2RGB(nullptr),
      m_pProgRGB2HSI(nullptr),
      m_pProgHSI2YUV(nullptr),
      m_pProgFaceWhitening(nullptr),
      m_pProgYUV2HSI(nullptr),
      m_pProgRectification(nullptr),
      m_pProgRadialDistortion(nullptr),
      m_bColorCvtMode(false),
      m_bRotate(true),
      m_bIsInit(false),
      m_bLargeCapture(false),
      m_hYTexture(lumora::kNoName),
      m_hCbCrTexture(lumora::kNoName),
      m_bShowMask(false),
      m_nFaceWhiteRadius(0),
      m_nFaceWhiteHalfWidth(0),
      m_nFaceWhiteHalfHeight(0),
      m_nFaceWhiteCenterX(0),
      m_nFaceWhiteCenterY(0),
      m_bDisplayReferenced(false) {
  LOGI("GPUBeautyFace()+");
  const bool ready = lumora::platform::CreateOffscreenContext(
      EglHandles(*this), m_bDisplayReferenced,
      [](const char* step) { LOGD("[%s] %s successfully", "GPUBeautyFace", step); });
  if (!ready) return;
  m_bEGLReady = true;
  LOGI("GPUBeautyFace()-");
}

GPUBeautyFace::~GPUBeautyFace() {
  LOGI("~GPUBeautyFace()+");
  if (m_bIsInit) DeInit();
  lumora::platform::DestroyOffscreenContext(
      EglHandles(*this), m_bDisplayReferenced,
      [](const char* step) { LOGI("[%s] %s", "~GPUBeautyFace", step); });
  m_bEGLReady = false;
  LOGI("~GPUBeautyFace()-");
  m_spLargeBuffer.clear();
}

int GPUBeautyFace::Init(int nSrcImageWidth, int nSrcImageHeight, int procWidth, int procHeight,
                        int* pStride, bool colorCvt) {
  LOGD("[CAMIN] Lumora 2012/05/17 Init+");
  LOGD("(nSrcImageWidth, nSrcImageHeight) = (%d, %d)", nSrcImageWidth, nSrcImageHeight);
  if (m_bIsInit) DeInit();
  m_bShowMask = ReadShowMask();

  m_nSrcWidth = nSrcImageWidth;
  m_nSrcHeight = nSrcImageHeight;
  SetProcessedSize(*this, procWidth, procHeight);
  m_nAlignedWidth = lumora::RoundUpTo32(procWidth);
  m_nFullWidth = nSrcImageWidth;
  m_nFullHeight = nSrcImageHeight;
  m_bRotate = lumora::LiesAcross(nSrcImageWidth, nSrcImageHeight, procWidth, procHeight);

  InitTexture();
  m_bColorCvtMode = colorCvt;
  if (colorCvt) {
    if (pStride != nullptr) *pStride = lumora::RoundUpTo32(nSrcImageWidth);
    InitColorCvtShader();
  }
  InitShader();

  m_bLargeCapture = false;
  m_nResultIdx = 2;
  m_bIsInit = true;
  LOGD("[CAMIN] Lumora 2012/05/17 Init-");
  return 1;
}

int GPUBeautyFace::InitCapture(void* pY, void* pCbCr, int width, int height, int* pStride,
                               bool blockMode) {
  LOGI("[CAMIN] Lumora 2012/05/17 InitCapture+");
  m_bShowMask = ReadShowMask();

  const lumora::WorkingSize working = lumora::CaptureWorkingSize(width, height);
  m_nSrcWidth = working.width;
  m_nSrcHeight = working.height;
  SetProcessedSize(*this, working.width, working.height);
  m_nAlignedWidth = working.width;
  m_nFullWidth = width;
  m_nFullHeight = height;
  // A capture is compared with itself, so it is never laid across.
  m_bRotate = lumora::LiesAcross(width, height, width, height);
  m_bLargeCapture = lumora::IsLargeCapture(width, height);

  m_bColorCvtMode = blockMode;
  if (blockMode) {
    if (pStride != nullptr) *pStride = lumora::RoundUpTo32(width);
    InitTextureLarge(width, height);
  } else {
    InitTextureLarge(pY, pCbCr, width, height);
  }
  InitShaderLarge();
  m_bIsInit = true;
  LOGI("[CAMIN] Lumora 2012/05/17 InitCapture-");
  return 1;
}

int GPUBeautyFace::DeInit() {
  LOGD("[CAMIN] Lumora 2012/05/17 DeInit+");
  const bool by_hsi = lumora::engine::GoesByHsi(lumora::engine::SetUpOf(*this));
  DeleteFramebuffer(m_hYYYYFbo);
  DeleteFramebuffer(m_hUVUVFbo);
  for (GLuint& fbo : m_hWorkFbo) DeleteFramebuffer(fbo);
  DeleteFramebuffer(m_hRGBFbo);
  glBindFramebuffer(GL_FRAMEBUFFER, 0);

  DeleteProgram(m_pProgRGBtoY);
  DeleteProgram(m_pProgRGBtoUV);
  DeleteProgram(m_pProgCheekSlimmer);
  DeleteProgram(m_pProgFaceWhitening);
  DeleteProgram(m_pProgRectification);
  DeleteProgram(m_pProgRadialDistortion);
  if (by_hsi) {
    DeleteProgram(m_pProgHSI2YUV);
    DeleteProgram(m_pProgYUV2RGB);
    DeleteProgram(m_pProgRGB2HSI);
  }

  lumora::gl::DestroyImages({&m_pRGBImage});
  for (SEGLImage*& image : m_pWorkImage) lumora::gl::DestroyImages({&image});
  lumora::gl::DestroyImages({&m_pYYYYImage, &m_pUVUVImage});

  glFlush();
  glFinish();
  m_bLargeCapture = false;
  m_bIsInit = false;
  LOGD("[CAMIN] Lumora 2012/05/17 DeInit-");
  return 1;
}

int GPUBeautyFace::DeInitCapture() {
  LOGD("[CAMIN] Lumora 2012/05/17  DeInitCapture+");
  const bool by_hsi = lumora::engine::GoesByHsi(lumora::engine::SetUpOf(*this));
  DeleteFramebuffer(m_hYYYYFbo);
  DeleteFramebuffer(m_hUVUVFbo);
  DeleteFramebuffer(m_hWorkFbo[0]);
  if (by_hsi) {
    DeleteFramebuffer(m_hRGBFbo);
    DeleteFramebuffer(m_hWorkFbo[1]);
    DeleteFramebuffer(m_hWorkFbo[2]);
  }
  glBindFramebuffer(GL_FRAMEBUFFER, 0);

  DeleteProgram(m_pProgRGBtoY);
  DeleteProgram(m_pProgRGBtoUV);
  DeleteProgram(m_pProgCheekSlimmer);
  DeleteProgram(m_pProgFaceWhitening);
  DeleteProgram(m_pProgYUV2HSI);
  DeleteProgram(m_pProgHSI2YUV);

  if (by_hsi) {
    lumora::gl::DestroyImages({&m_pRGBImage, &m_pWorkImage[1], &m_pWorkImage[2]});
  } else {
    DeletePlaneTexture(m_hYTexture);
    DeletePlaneTexture(m_hCbCrTexture);
  }
  lumora::gl::DestroyImages({&m_pWorkImage[0], &m_pYYYYImage, &m_pUVUVImage});

  glFlush();
  glFinish();
  m_bColorCvtMode = false;
  m_bLargeCapture = false;
  m_bIsInit = false;
  LOGD("[CAMIN] Lumora 2012/05/17 DeInitCapture-");
  return 1;
}

}  // namespace android
