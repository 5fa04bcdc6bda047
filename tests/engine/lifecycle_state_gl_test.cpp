// SPDX-License-Identifier: Apache-2.0
// An engine's members before, between and after set-ups.
#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "engine/engine_images.h"
#include "support/gl_objects.h"

namespace lumora::test {
namespace {

constexpr GLuint kNoName = static_cast<GLuint>(-1);

std::vector<GLuint> Framebuffers(const GPUBeautyFace& engine) {
  return {engine.m_hYYYYFbo,    engine.m_hUVUVFbo,    engine.m_hRGBFbo,
          engine.m_hWorkFbo[0], engine.m_hWorkFbo[1], engine.m_hWorkFbo[2]};
}

std::vector<SEGLImage*> Images(const GPUBeautyFace& engine) {
  return {engine.m_pRGBImage,     engine.m_pWorkImage[0], engine.m_pWorkImage[1],
          engine.m_pWorkImage[2], engine.m_pYYYYImage,    engine.m_pUVUVImage};
}

std::vector<GLProgram*> Programs(const GPUBeautyFace& engine) {
  return {engine.m_pProgRGBtoY,          engine.m_pProgRGBtoUV, engine.m_pProgCheekSlimmer,
          engine.m_pProgYUV2RGB,         engine.m_pProgRGB2HSI, engine.m_pProgHSI2YUV,
          engine.m_pProgFaceWhitening,   engine.m_pProgYUV2HSI, engine.m_pProgRectification,
          engine.m_pProgRadialDistortion};
}

void ExpectNothingHeld(const GPUBeautyFace& engine) {
  for (const GLuint framebuffer : Framebuffers(engine)) EXPECT_EQ(kNoName, framebuffer);
  for (const SEGLImage* image : Images(engine)) EXPECT_EQ(nullptr, image);
  for (const GLProgram* program : Programs(engine)) EXPECT_EQ(nullptr, program);
  EXPECT_EQ(kNoName, engine.m_hYTexture);
  EXPECT_EQ(kNoName, engine.m_hCbCrTexture);
  EXPECT_FALSE(engine.m_bIsInit);
  EXPECT_FALSE(engine.m_bLargeCapture);
}

// The GL names that an engine holds, and whether any of them still names something.
class HeldNames {
 public:
  explicit HeldNames(const GPUBeautyFace& engine) : framebuffers_(Framebuffers(engine)) {
    for (const SEGLImage* image : Images(engine)) {
      if (image != nullptr) textures_.push_back(image->m_hTexture);
    }
    textures_.push_back(engine.m_hYTexture);
    textures_.push_back(engine.m_hCbCrTexture);
    for (const GLProgram* program : Programs(engine)) {
      if (program != nullptr) programs_.push_back(program->m_hProgram);
    }
  }

  int alive() const {
    int count = 0;
    for (const GLuint name : framebuffers_) count += glIsFramebuffer(name) == GL_TRUE;
    for (const GLuint name : textures_) count += glIsTexture(name) == GL_TRUE;
    for (const GLuint name : programs_) count += glIsProgram(name) == GL_TRUE;
    return count;
  }

 private:
  std::vector<GLuint> framebuffers_, textures_, programs_;
};

TEST(LifecycleState, AFreshEngineIsReadyAndHoldsNothing) {
  const GPUBeautyFace engine;
  EXPECT_TRUE(engine.m_bEGLReady);
  EXPECT_NE(EGL_NO_DISPLAY, engine.m_eglDisplay);
  EXPECT_NE(nullptr, engine.m_eglConfig);
  EXPECT_NE(EGL_NO_SURFACE, engine.m_eglSurface);
  EXPECT_EQ(engine.m_eglContext, eglGetCurrentContext());
  EXPECT_EQ(engine.m_eglSurface, eglGetCurrentSurface(EGL_DRAW));
  for (const int size : {engine.m_nSrcWidth, engine.m_nSrcHeight, engine.m_nProcWidth,
                         engine.m_nProcHeight, engine.m_nYYYYWidth, engine.m_nYYYYHeight,
                         engine.m_nUVUVWidth, engine.m_nUVUVHeight, engine.m_nAlignedWidth,
                         engine.m_nAlignedHeight, engine.m_nFullWidth, engine.m_nFullHeight}) {
    EXPECT_EQ(-1, size);
  }
  ExpectNothingHeld(engine);
  EXPECT_FALSE(engine.m_spLargeBuffer);
  EXPECT_EQ(0, engine.m_nResultIdx);
  EXPECT_FALSE(engine.m_bColorCvtMode);
  EXPECT_TRUE(engine.m_bRotate);
  EXPECT_FALSE(engine.m_bShowMask);
  for (const auto& face : engine.m_rcFaceProcess) {
    EXPECT_EQ(-1, face.X);
    EXPECT_EQ(-1, face.Y);
    EXPECT_EQ(-1, face.Width);
    EXPECT_EQ(-1, face.Height);
    EXPECT_EQ(0, face.nFlag);
  }
}

TEST(LifecycleState, TheContextIsGoneWithTheEngine) {
  { const GPUBeautyFace engine; }
  EXPECT_EQ(EGL_NO_CONTEXT, eglGetCurrentContext());
}

TEST(LifecycleState, PreviewsHoldTheirPartsAndGiveAllBack) {
  for (const bool colour_convert : {false, true}) {
    GPUBeautyFace engine;
    EXPECT_EQ(1, engine.Init(64, 48, 64, 48, nullptr, colour_convert));
    EXPECT_TRUE(engine.m_bIsInit);
    EXPECT_EQ(2, engine.m_nResultIdx);
    EXPECT_EQ(colour_convert, engine.m_bColorCvtMode);
    EXPECT_FALSE(engine.m_bLargeCapture);
    const HeldNames held(engine);
    EXPECT_EQ(6 + 6 + (colour_convert ? 9 : 6), held.alive());

    EXPECT_EQ(1, engine.DeInit());
    ExpectNothingHeld(engine);
    EXPECT_EQ(0, held.alive());
    EXPECT_EQ(0u, BoundFramebuffer());
    EXPECT_EQ(1, engine.DeInit()) << "releasing nothing is safe";
    ExpectNothingHeld(engine);
    EXPECT_EQ(std::vector<GLenum>(), TakeGlErrors());
  }
}

TEST(LifecycleState, CapturesHoldTheirPartsAndGiveAllBack) {
  const struct {
    const char* name;
    int width, height;
    bool block_mode;
    int objects;  // framebuffers, textures, programs
  } kRows[] = {{"whole, blocks", 320, 240, true, 6 + 6 + 5},
               {"tiles, blocks", 1400, 900, true, 6 + 6 + 5},
               {"large, blocks", 4100, 40, true, 5 + 5 + 5},
               {"planes", 320, 240, false, 3 + 5 + 6}};
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    GPUBeautyFace engine;
    EXPECT_EQ(1,
              engine.InitCapture(nullptr, nullptr, row.width, row.height, nullptr, row.block_mode));
    EXPECT_TRUE(engine.m_bIsInit);
    EXPECT_EQ(row.block_mode, engine.m_bColorCvtMode);
    const HeldNames held(engine);
    EXPECT_EQ(row.objects, held.alive());
    EXPECT_EQ(row.block_mode, engine.m_pProgCheekSlimmer == nullptr);

    EXPECT_EQ(1, engine.DeInitCapture());
    ExpectNothingHeld(engine);
    EXPECT_FALSE(engine.m_bColorCvtMode);
    EXPECT_EQ(0, held.alive());
    EXPECT_EQ(0u, BoundFramebuffer());
    EXPECT_EQ(1, engine.DeInitCapture()) << "releasing nothing is safe";
    EXPECT_EQ(std::vector<GLenum>(), TakeGlErrors());
  }
}

TEST(LifecycleState, TheLargeStoreOutlivesItsCaptureAndIsReplacedByTheNext) {
  GPUBeautyFace engine;
  engine.InitCapture(nullptr, nullptr, 4100, 40, nullptr, true);
  ASSERT_TRUE(engine.m_spLargeBuffer);
  EXPECT_TRUE(engine.m_bLargeCapture);
  EXPECT_EQ(4128u, engine.m_spLargeBuffer->width());
  EXPECT_EQ(40u, engine.m_spLargeBuffer->height());
  EXPECT_EQ(0x133, engine.m_spLargeBuffer->handle().flags);
  EXPECT_EQ(nullptr, engine.m_pWorkImage[1]);
  EXPECT_EQ(kNoName, engine.m_hWorkFbo[1]);
  engine.DeInitCapture();
  ASSERT_TRUE(engine.m_spLargeBuffer);
  EXPECT_EQ(4128u, engine.m_spLargeBuffer->width());

  engine.InitCapture(nullptr, nullptr, 40, 4100, nullptr, true);
  EXPECT_EQ(64u, engine.m_spLargeBuffer->width());
  EXPECT_EQ(4100u, engine.m_spLargeBuffer->height());
  engine.DeInitCapture();
}

// A capture needs a preview to be released first. Where it was not, the capture's parts take the
// places of the preview's, which nobody releases any more.
TEST(LifecycleState, ACaptureOverAPreviewForgetsThePreviewsParts) {
  GPUBeautyFace engine;
  engine.Init(64, 48, 64, 48, nullptr, false);
  const HeldNames preview(engine);
  const std::vector<GLuint> framebuffers = {engine.m_hWorkFbo[0], engine.m_hYYYYFbo,
                                            engine.m_hUVUVFbo};
  // What is left over belongs to the test.
  std::vector<std::unique_ptr<SEGLImage>> images;
  for (SEGLImage* image : {engine.m_pWorkImage[0], engine.m_pYYYYImage, engine.m_pUVUVImage}) {
    images.emplace_back(image);
  }
  std::vector<std::unique_ptr<GLProgram>> programs;
  for (GLProgram* program : {engine.m_pProgRGBtoY, engine.m_pProgRGBtoUV,
                             engine.m_pProgCheekSlimmer, engine.m_pProgFaceWhitening}) {
    programs.emplace_back(program);
  }

  engine.InitCapture(nullptr, nullptr, 320, 240, nullptr, false);
  EXPECT_NE(images[0].get(), engine.m_pWorkImage[0]);
  engine.DeInitCapture();
  EXPECT_EQ(18, preview.alive()) << "the capture releases its own parts";
  engine.DeInit();
  EXPECT_EQ(10, preview.alive()) << "only what the capture left in its place is released";

  for (auto& image : images) image->Destroy();
  programs.clear();
  glDeleteFramebuffers(3, framebuffers.data());
  EXPECT_EQ(0, preview.alive());
}

TEST(LifecycleState, AStillBetweenPreviewsLeavesBothWorking) {
  GPUBeautyFace engine;
  for (int round = 0; round < 2; ++round) {
    engine.Init(64, 48, 64, 48, nullptr, false);
    engine.DeInit();
    engine.InitCapture(nullptr, nullptr, 320, 240, nullptr, round == 0);
    engine.DeInitCapture();
  }
  engine.Init(64, 48, 64, 48, nullptr, false);
  EXPECT_EQ(18, HeldNames(engine).alive());
}

TEST(LifecycleState, SetUpsMakeNoGlErrors) {
  GPUBeautyFace engine;
  engine.Init(64, 48, 64, 48, nullptr, true);
  EXPECT_EQ(std::vector<GLenum>(), TakeGlErrors());
  engine.DeInit();
  for (const bool block_mode : {false, true}) {
    engine.InitCapture(nullptr, nullptr, 1400, 900, nullptr, block_mode);
    EXPECT_EQ(std::vector<GLenum>(), TakeGlErrors());
    engine.DeInitCapture();
    EXPECT_EQ(std::vector<GLenum>(), TakeGlErrors());
  }
}

}  // namespace
}  // namespace lumora::test
