// SPDX-License-Identifier: Apache-2.0
#include "bench/engines.h"

#include <cstdlib>
#include <cstring>
#include <string>

#include "bench/bare_gl.h"
#include "bench/counters.h"

namespace lumora::bench {
namespace {

constexpr int kBeautyLevel = 0;

}  // namespace

BenchEngine::BenchEngine() {
  Require(engine_.m_bEGLReady, "no usable display");
}

BenchEngine::~BenchEngine() {
  // Not MakeCurrent, which may throw.
  eglMakeCurrent(engine_.m_eglDisplay, engine_.m_eglSurface, engine_.m_eglSurface,
                 engine_.m_eglContext);
}

void BenchEngine::MakeCurrent() {
  Require(eglMakeCurrent(engine_.m_eglDisplay, engine_.m_eglSurface, engine_.m_eglSurface,
                         engine_.m_eglContext) == EGL_TRUE,
          "the engine's context cannot be made current");
}

void BenchEngine::InitPreview(Size size, bool colour) {
  int stride = 0;
  engine_.Init(size.width, size.height, size.width, size.height, &stride, colour);
}

void BenchEngine::Slim(uint8_t* frame, Size size, const FACE_INFO_t& face) {
  Require(engine_.FaceProcess(frame, frame + size.Pixels(), kBeautyLevel, face, 0) == 1,
          "FaceProcess failed");
}

void BenchEngine::Whiten(uint8_t* frame, uint8_t* result, Size size, FACE_INFO_t face) {
  const bool done = engine_.LoadPreviewFrameBuffer(frame) == 1 && engine_.ConvertYUV() == 1 &&
                    engine_.DoFaceWhitening(&face, 1, kIntensityLevel, kSaturationLevel,
                                            BEAUTYSHOT_EFFECT_BOTH) == 1 &&
                    engine_.ConvertHSItoYUV() == 1 &&
                    engine_.CopyMemYUVfromSrcTexture(result, result + size.Pixels()) == 1;
  Require(done, "the whitening chain failed");
}

void BenchEngine::SetLinearFilters() {
  for (const SEGLImage* image : {engine_.m_pRGBImage, engine_.m_pWorkImage[0]}) {
    glBindTexture(GL_TEXTURE_2D, image->m_hTexture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
  }
}

void SetFullQuads(bool full) {
  if (full) {
    setenv("LUMORA_FULL_QUADS", "1", 1);
  } else {
    unsetenv("LUMORA_FULL_QUADS");
  }
}

Clock RendererClock() {
  static const Clock clock = [] {
    const BareContext context;
    const auto* renderer = reinterpret_cast<const char*>(glGetString(GL_RENDERER));
    const bool software = renderer != nullptr && (std::strstr(renderer, "llvmpipe") != nullptr ||
                                                  std::strstr(renderer, "softpipe") != nullptr);
    return software ? Clock::kProcessor : Clock::kWall;
  }();
  return clock;
}

void SetRendererThreads(int threads) {
  setenv("LP_NUM_THREADS", std::to_string(threads).c_str(), 1);
}

}  // namespace lumora::bench
