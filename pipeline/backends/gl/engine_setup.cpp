// SPDX-License-Identifier: Apache-2.0
#include "pipeline/backends/gl/engine_setup.h"

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <new>

#include "lumora/platform/display.h"
#include "pipeline/backends/gl/engine_faults.h"
#include "pipeline/backends/gl/gl_state.h"
#include "pipeline/backends/gl/smooth_slimmer.h"

namespace lumora {

BEAUTYSHOT_EFFECT_t EngineEffect(Effect effect) {
  switch (effect) {
    case Effect::Intensity:
      return BEAUTYSHOT_EFFECT_INTENSITY;
    case Effect::Saturation:
      return BEAUTYSHOT_EFFECT_SATURATION;
    case Effect::Mask:
      return BEAUTYSHOT_EFFECT_MASK;
    case Effect::Auto:
    case Effect::Both:
      break;
  }
  return BEAUTYSHOT_EFFECT_BOTH;
}

EngineSetup::EngineSetup() {
  if (engine_.m_bEGLReady) platform::KeepDisplay(engine_.m_eglDisplay);
}

bool EngineSetup::Use() {
  if (!engine_.m_bEGLReady) return false;
  return eglGetCurrentContext() == engine_.m_eglContext ||
         eglMakeCurrent(engine_.m_eglDisplay, engine_.m_eglSurface, engine_.m_eglSurface,
                        engine_.m_eglContext) != EGL_FALSE;
}

Status EngineSetup::Preview(int width, int height, bool colour) {
  if (!Use()) return NotSetUp(kNoContext);
  const State state = colour ? State::ColourPreview : State::Preview;
  if (state_ == state && width == width_ && height == height_) return {};
  if (Status status = CheckTextureSize(width, height); !status.ok()) return status;
  Release();
  int stride = 0;
  engine_.Init(width, height, width, height, &stride, colour);
  width_ = width;
  height_ = height;
  return Keep(state, PreviewFault(colour));
}

void EngineSetup::SetPreviewFilters(GLint filter) {
  for (const SEGLImage* image : {engine_.m_pRGBImage, engine_.m_pWorkImage[0],
                                 engine_.m_pWorkImage[1], engine_.m_pWorkImage[2]}) {
    glBindTexture(GL_TEXTURE_2D, image->m_hTexture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, filter);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, filter);
  }
}

Status EngineSetup::CaptureBlocks(int width, int height) {
  if (!Use()) return NotSetUp(kNoContext);
  Release();
  int stride = 0;
  engine_.InitCapture(nullptr, nullptr, width, height, &stride, true);
  return Keep(State::Blocks, BlocksFault());
}

Status EngineSetup::CapturePlanes(PaddedFrame& frame) {
  if (!Use()) return NotSetUp(kNoContext);
  if (Status status = CheckTextureSize(frame.width(), frame.height()); !status.ok()) return status;
  Release();
  int stride = 0;
  engine_.InitCapture(frame.luma(), frame.chroma(), frame.width(), frame.height(), &stride, false);
  // The engine keeps no error of its uploads; a texture without storage takes no pixel.
  ClearGlErrors();
  UpdatePlanes(frame, 0, 2);
  const bool planes = CheckGlErrors().ok();

  std::unique_ptr<SmoothSlimmer> slimmer(new (std::nothrow) SmoothSlimmer);
  if (slimmer != nullptr && !slimmer->Load()) slimmer.reset();
  delete engine_.m_pProgCheekSlimmer;
  engine_.m_pProgCheekSlimmer = slimmer.release();
  return Keep(State::Planes, planes ? PlanesFault() : kNoMemory);
}

void EngineSetup::UpdatePlanes(const PaddedFrame& frame, int first_row, int rows) {
  const auto upload = [&frame](GLuint texture, GLenum format, const uint8_t* plane, int columns,
                               int row, int count) {
    const auto offset = static_cast<size_t>(row) * static_cast<size_t>(frame.width());
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, row, columns, count, format, GL_UNSIGNED_BYTE,
                    plane + offset);
  };
  upload(engine_.m_hYTexture, GL_LUMINANCE, frame.luma(), frame.width(), first_row, rows);
  upload(engine_.m_hCbCrTexture, GL_LUMINANCE_ALPHA, frame.chroma(), frame.width() / 2,
         first_row / 2, rows / 2);
}

void EngineSetup::Release() {
  if (state_ == State::None) return;
  Use();
  if (state_ == State::Preview || state_ == State::ColourPreview) engine_.DeInit();
  if (state_ == State::Blocks || state_ == State::Planes) {
    engine_.DeInitCapture();
    engine_.m_spLargeBuffer.clear();
  }
  state_ = State::None;
  width_ = height_ = 0;
}

/// The engine's set-up itself does not tell whether it worked.
Status EngineSetup::Keep(State state, const char* fault) {
  state_ = state;
  if (fault == nullptr) return {};
  Release();
  return NotSetUp(fault);
}

const char* EngineSetup::PreviewFault(bool colour) {
  const auto& e = engine_;
  const char* fault = FaultOf(
      {e.m_pProgRGBtoY, e.m_pProgRGBtoUV, e.m_pProgCheekSlimmer, e.m_pProgFaceWhitening,
       e.m_pProgRectification, e.m_pProgRadialDistortion},
      {e.m_pRGBImage, e.m_pWorkImage[0], e.m_pWorkImage[1], e.m_pWorkImage[2], e.m_pYYYYImage,
       e.m_pUVUVImage},
      {e.m_hRGBFbo, e.m_hWorkFbo[0], e.m_hWorkFbo[1], e.m_hWorkFbo[2], e.m_hYYYYFbo, e.m_hUVUVFbo});
  if (fault == nullptr && colour) {
    fault = FaultOf({e.m_pProgYUV2RGB, e.m_pProgRGB2HSI, e.m_pProgHSI2YUV}, {}, {});
  }
  return fault;
}

const char* EngineSetup::BlocksFault() {
  const auto& e = engine_;
  const char* fault =
      FaultOf({e.m_pProgRGBtoY, e.m_pProgRGBtoUV, e.m_pProgFaceWhitening, e.m_pProgYUV2HSI,
               e.m_pProgHSI2YUV},
              {e.m_pRGBImage, e.m_pWorkImage[0], e.m_pWorkImage[2], e.m_pYYYYImage, e.m_pUVUVImage},
              {e.m_hRGBFbo, e.m_hWorkFbo[0], e.m_hWorkFbo[2], e.m_hYYYYFbo, e.m_hUVUVFbo});
  if (fault != nullptr) return fault;
  if (!e.m_bLargeCapture) return FaultOf({}, {e.m_pWorkImage[1]}, {e.m_hWorkFbo[1]});
  const bool has_store =
      e.m_spLargeBuffer.get() != nullptr && e.m_spLargeBuffer->handle().base != nullptr;
  return has_store ? nullptr : kNoMemory;
}

const char* EngineSetup::PlanesFault() {
  const auto& e = engine_;
  return FaultOf({e.m_pProgRGBtoY, e.m_pProgRGBtoUV, e.m_pProgCheekSlimmer},
                 {e.m_pYYYYImage, e.m_pUVUVImage}, {e.m_hWorkFbo[0], e.m_hYYYYFbo, e.m_hUVUVFbo});
}

}  // namespace lumora
