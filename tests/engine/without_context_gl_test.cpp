// SPDX-License-Identifier: Apache-2.0
// What an engine answers while its context is not current: the GPU's newer pixels cannot be had.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "lumora/lumora.h"
#include "support/caller_memory.h"
#include "support/faces.h"
#include "support/log_capture.h"
#include "support/pictures.h"
#include "support/scoped.h"

namespace lumora::test {
namespace {

using android::GPUBeautyFace;
using android::GPUColorConverter;

constexpr int kWidth = 160;
constexpr int kHeight = 120;

class WithoutItsContext : public testing::TestWithParam<const char*> {
 protected:
  static void leave() {
    EXPECT_EQ(EGL_TRUE, eglMakeCurrent(eglGetCurrentDisplay(), EGL_NO_SURFACE, EGL_NO_SURFACE,
                                       EGL_NO_CONTEXT));
  }
  static void come_back(const GPUBeautyFace& engine) {
    ASSERT_EQ(EGL_TRUE, eglMakeCurrent(engine.m_eglDisplay, engine.m_eglSurface,
                                       engine.m_eglSurface, engine.m_eglContext));
  }

 private:
  const ScopedEnvironment kind_{"LUMORA_BUFFER", GetParam()};
};
INSTANTIATE_TEST_SUITE_P(Kinds, WithoutItsContext, testing::Values("staged", "memobj"),
                         [](const auto& kind) { return std::string(kind.param); });

// What was drawn cannot be fetched then: the frame before must not pass for it.
TEST_P(WithoutItsContext, NoFrameIsHandedOut) {
  GPUBeautyFace engine;
  engine.Init(kWidth, kHeight, kWidth, kHeight, nullptr, false);
  CallerFrame frame(NoiseFrame(kWidth, kHeight, 1));
  CallerFrame former(NoiseFrame(kWidth, kHeight, 2));
  ASSERT_EQ(1, engine.LoadPreviewFrameBuffer(former.luma()));
  ASSERT_EQ(1, engine.CopyMemYUVfromSrcTexture(former.luma(), former.chroma()));
  ASSERT_EQ(1, engine.LoadPreviewFrameBuffer(frame.luma()));
  ASSERT_EQ(1, engine.DrawRGBtoYY(-1));
  ASSERT_EQ(1, engine.DrawRGBtoUV(-1));
  glFlush();
  glFinish();
  leave();
  CallerPlanes planes(kWidth, kHeight);
  const Bytes untouched = planes.bytes();
  EXPECT_EQ(0, engine.MemcpyYUV(planes.luma(), planes.chroma()));
  EXPECT_EQ(0,
            engine.BlockCopyYUV(planes.luma(), planes.chroma(), kWidth, 0, 0, 0, kWidth, kHeight));
  EXPECT_TRUE(planes.bytes() == untouched);
  EXPECT_EQ(nullptr, engine.m_pYYYYImage->Lock());
  CallerFrame other(NoiseFrame(kWidth, kHeight, 3));
  EXPECT_EQ(0, engine.LoadPreviewFrameBuffer(other.luma()));
  come_back(engine);
  EXPECT_EQ(1, engine.MemcpyYUV(planes.luma(), planes.chroma()));
  EXPECT_TRUE(planes.bytes() == frame.bytes());
}

TEST_P(WithoutItsContext, NoBlockOfACaptureIsStored) {
  constexpr int kLargeWidth = 1400;
  constexpr int kLargeHeight = 900;
  CallerFrame frame(NoiseFrame(kLargeWidth, kLargeHeight, 5));
  std::vector<FACE_INFO_t> faces = RecordsFrom({PortraitFace(700, 450, 150)});
  GPUBeautyFace engine;
  engine.InitCapture(nullptr, nullptr, kLargeWidth, kLargeHeight, nullptr, true);
  leave();
  LogCapture log;
  EXPECT_EQ(1, engine.DoFaceWhiteningLarge(frame.luma(), frame.chroma(), faces.data(), 1, 40, 20,
                                           BEAUTYSHOT_EFFECT_BOTH));
  EXPECT_LE(1,
            log.count(Error("Lumora", "[%s] program or image is missing", "DoFaceWhiteningLarge")))
      << "told, as the result is always 1";
  come_back(engine);
  engine.DeInitCapture();
}

TEST_P(WithoutItsContext, NoConvertedFrameIsHandedOut) {
  GPUColorConverter converter;
  ASSERT_EQ(1, converter.Init(kWidth, kHeight, nullptr));
  const EGLDisplay display = eglGetCurrentDisplay();
  const EGLSurface surface = eglGetCurrentSurface(EGL_DRAW);
  const EGLContext context = eglGetCurrentContext();
  CallerFrame frame(NoiseFrame(kWidth, kHeight, 4));
  ASSERT_EQ(1, converter.ConvertYUV(frame.luma()));
  leave();
  EXPECT_EQ(nullptr, converter.GetRGB_Image());
  EXPECT_EQ(nullptr, converter.GetHSI_Image());
  converter.ConvertYUV(frame.luma());
  EXPECT_EQ(nullptr, converter.GetRGB_Image());
  ASSERT_EQ(EGL_TRUE, eglMakeCurrent(display, surface, surface, context));
  EXPECT_NE(nullptr, converter.GetRGB_Image());
  EXPECT_NE(nullptr, converter.GetHSI_Image());
  EXPECT_EQ(1, converter.ConvertYUV(frame.luma()));
}

}  // namespace
}  // namespace lumora::test
