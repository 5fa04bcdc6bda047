// SPDX-License-Identifier: Apache-2.0
// Sizes, textures and packer offsets of each set-up.
#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "engine/engine_images.h"
#include "reference/expand.h"
#include "reference/quad.h"
#include "support/compare.h"
#include "support/gl_objects.h"
#include "support/pictures.h"

namespace lumora::test {
namespace {

// Whether level 0 of a texture is width x height: an empty update at the far corner fits, one a
// pixel further does not.
bool HasSize(GLuint texture, int width, int height) {
  TakeGlErrors();
  glBindTexture(GL_TEXTURE_2D, texture);
  glTexSubImage2D(GL_TEXTURE_2D, 0, width, height, 0, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
  const bool holds = TakeGlErrors().empty();
  glTexSubImage2D(GL_TEXTURE_2D, 0, width + 1, height, 0, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
  const bool wide = TakeGlErrors().empty();
  glTexSubImage2D(GL_TEXTURE_2D, 0, width, height + 1, 0, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
  const bool high = TakeGlErrors().empty();
  return holds && !wide && !high;
}

void ExpectSampling(GLuint texture, GLint wrap, GLint filter) {
  EXPECT_EQ(wrap, TextureParameter(texture, GL_TEXTURE_WRAP_S));
  EXPECT_EQ(wrap, TextureParameter(texture, GL_TEXTURE_WRAP_T));
  EXPECT_EQ(filter, TextureParameter(texture, GL_TEXTURE_MIN_FILTER));
  EXPECT_EQ(filter, TextureParameter(texture, GL_TEXTURE_MAG_FILTER));
}

void ExpectTarget(const char* name, const SEGLImage* image, GLuint framebuffer, int width,
                  int height, GLint wrap, GLint filter) {
  SCOPED_TRACE(name);
  ASSERT_NE(nullptr, image);
  EXPECT_TRUE(HasSize(image->m_hTexture, width, height)) << width << " x " << height;
  ExpectSampling(image->m_hTexture, wrap, filter);
  glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
  EXPECT_EQ(static_cast<GLenum>(GL_FRAMEBUFFER_COMPLETE), glCheckFramebufferStatus(GL_FRAMEBUFFER));
  GLint attached = 0;
  glGetFramebufferAttachmentParameteriv(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0,
                                        GL_FRAMEBUFFER_ATTACHMENT_OBJECT_NAME, &attached);
  EXPECT_EQ(static_cast<GLint>(image->m_hTexture), attached);
}

void ExpectPackedTargets(const GPUBeautyFace& engine, int packed_width, int height) {
  ExpectTarget("packed luma", engine.m_pYYYYImage, engine.m_hYYYYFbo, packed_width / 4, height,
               GL_CLAMP_TO_EDGE, GL_NEAREST);
  ExpectTarget("packed chroma", engine.m_pUVUVImage, engine.m_hUVUVFbo, packed_width / 4,
               height / 2, GL_CLAMP_TO_EDGE, GL_NEAREST);
}

// The numbers are worked out by hand from the rules of rows (multiples of 32 pixels) and of packed
// rows (four samples a texel, multiples of 32 texels).
struct PreviewRow {
  int src_width, src_height, proc_width, proc_height;
  int row;      // of the input and work images
  int packed;   // samples
  int aligned;  // viewport
  bool rotate;
};
constexpr PreviewRow kPreviews[] = {
    {640, 480, 640, 480, 640, 640, 640, false},   {480, 640, 640, 480, 480, 640, 640, true},
    {640, 480, 480, 640, 640, 512, 480, false},   {720, 480, 720, 480, 736, 768, 736, false},
    {20, 20, 20, 20, 32, 128, 32, false},         {1000, 563, 1000, 563, 1024, 1024, 1024, false},
    {1280, 720, 640, 360, 1280, 640, 640, false}, {176, 144, 352, 288, 192, 384, 352, false},
};

TEST(LifecycleSizes, PreviewsFollowTheFrame) {
  GPUBeautyFace engine;
  for (const PreviewRow& row : kPreviews) {
    SCOPED_TRACE(testing::Message() << row.src_width << "x" << row.src_height << " at "
                                    << row.proc_width << "x" << row.proc_height);
    engine.Init(row.src_width, row.src_height, row.proc_width, row.proc_height, nullptr, false);
    EXPECT_EQ(row.src_width, engine.m_nSrcWidth);
    EXPECT_EQ(row.src_height, engine.m_nSrcHeight);
    EXPECT_EQ(row.proc_width, engine.m_nProcWidth);
    EXPECT_EQ(row.proc_height, engine.m_nProcHeight);
    EXPECT_EQ(row.packed, engine.m_nYYYYWidth);
    EXPECT_EQ(row.proc_height, engine.m_nYYYYHeight);
    EXPECT_EQ(row.packed, engine.m_nUVUVWidth);
    EXPECT_EQ(row.proc_height / 2, engine.m_nUVUVHeight);
    EXPECT_EQ(row.aligned, engine.m_nAlignedWidth);
    EXPECT_EQ(row.proc_height, engine.m_nAlignedHeight);
    EXPECT_EQ(row.src_width, engine.m_nFullWidth);
    EXPECT_EQ(row.src_height, engine.m_nFullHeight);
    EXPECT_EQ(row.rotate, engine.m_bRotate);

    ExpectTarget("input", engine.m_pRGBImage, engine.m_hRGBFbo, row.row, row.src_height,
                 GL_MIRRORED_REPEAT, GL_LINEAR);
    for (int i = 0; i < 3; ++i) {
      ExpectTarget("work image", engine.m_pWorkImage[i], engine.m_hWorkFbo[i], row.row,
                   row.src_height, GL_CLAMP_TO_EDGE, GL_LINEAR);
    }
    ExpectPackedTargets(engine, row.packed, row.proc_height);
  }
}

struct CaptureRow {
  int width, height;
  int working_width, working_height;
  int block_row;  // of the input image
  int packed;
  bool large;
};
constexpr CaptureRow kCaptures[] = {
    {1280, 960, 1280, 960, 1280, 1280, false},   {1920, 1080, 384, 384, 384, 384, false},
    {1280, 2000, 1280, 1536, 1280, 1280, false}, {5000, 3000, 384, 384, 384, 384, true},
    {300, 5000, 300, 1536, 320, 384, true},      {20, 20, 20, 20, 32, 128, false},
    {4096, 100, 384, 384, 384, 384, false},      {1281, 961, 384, 384, 384, 384, false},
};

void ExpectCaptureSizes(const GPUBeautyFace& engine, const CaptureRow& row) {
  EXPECT_EQ(row.working_width, engine.m_nSrcWidth);
  EXPECT_EQ(row.working_height, engine.m_nSrcHeight);
  EXPECT_EQ(row.working_width, engine.m_nProcWidth);
  EXPECT_EQ(row.working_height, engine.m_nProcHeight);
  EXPECT_EQ(row.packed, engine.m_nYYYYWidth);
  EXPECT_EQ(row.working_height, engine.m_nYYYYHeight);
  EXPECT_EQ(row.packed, engine.m_nUVUVWidth);
  EXPECT_EQ(row.working_height / 2, engine.m_nUVUVHeight);
  EXPECT_EQ(row.working_width, engine.m_nAlignedWidth);
  EXPECT_EQ(row.working_height, engine.m_nAlignedHeight);
  EXPECT_EQ(row.width, engine.m_nFullWidth);
  EXPECT_EQ(row.height, engine.m_nFullHeight);
  EXPECT_EQ(row.large, engine.m_bLargeCapture);
  EXPECT_FALSE(engine.m_bRotate) << "a capture is never laid across";
  ExpectPackedTargets(engine, row.packed, row.working_height);
}

TEST(LifecycleSizes, BlockCapturesHaveBlocksAndAStoreOfTheWholeFrame) {
  GPUBeautyFace engine;
  for (const CaptureRow& row : kCaptures) {
    SCOPED_TRACE(testing::Message() << row.width << "x" << row.height);
    int stride = -5;
    engine.InitCapture(nullptr, nullptr, row.width, row.height, &stride, true);
    EXPECT_EQ(reference::RoundUp(row.width, 32), stride);
    ExpectCaptureSizes(engine, row);
    ExpectTarget("block", engine.m_pRGBImage, engine.m_hRGBFbo, row.block_row, row.working_height,
                 GL_MIRRORED_REPEAT, GL_NEAREST);
    ExpectTarget("work image 0", engine.m_pWorkImage[0], engine.m_hWorkFbo[0], row.working_width,
                 row.working_height, GL_CLAMP_TO_EDGE, GL_NEAREST);
    ExpectTarget("work image 2", engine.m_pWorkImage[2], engine.m_hWorkFbo[2], row.working_width,
                 row.working_height, GL_CLAMP_TO_EDGE, GL_NEAREST);
    if (row.large) {
      EXPECT_EQ(nullptr, engine.m_pWorkImage[1]);
      ASSERT_TRUE(engine.m_spLargeBuffer);
      EXPECT_EQ(reference::RoundUp(row.width, 32),
                static_cast<int>(engine.m_spLargeBuffer->width()));
      EXPECT_EQ(row.height, static_cast<int>(engine.m_spLargeBuffer->height()));
    } else {
      ExpectTarget("store", engine.m_pWorkImage[1], engine.m_hWorkFbo[1],
                   reference::RoundUp(row.width, 32), row.height, GL_CLAMP_TO_EDGE, GL_NEAREST);
    }
    engine.DeInitCapture();
  }
}

TEST(LifecycleSizes, PlaneCapturesHaveTwoTexturesAndAPlainTarget) {
  GPUBeautyFace engine;
  for (const CaptureRow& row : kCaptures) {
    SCOPED_TRACE(testing::Message() << row.width << "x" << row.height);
    int stride = -5;
    engine.InitCapture(nullptr, nullptr, row.width, row.height, &stride, false);
    EXPECT_EQ(-5, stride) << "only block mode tells a stride";
    ExpectCaptureSizes(engine, row);
    ExpectTarget("work image 0", engine.m_pWorkImage[0], engine.m_hWorkFbo[0], row.working_width,
                 row.working_height, GL_CLAMP_TO_EDGE, GL_NEAREST);
    EXPECT_EQ(0, engine.m_pWorkImage[0]->m_nFlag);
    EXPECT_EQ(nullptr, engine.m_pRGBImage);
    EXPECT_EQ(nullptr, engine.m_pWorkImage[1]);
    EXPECT_EQ(nullptr, engine.m_pWorkImage[2]);
    EXPECT_FALSE(engine.m_spLargeBuffer);
    ExpectSampling(engine.m_hYTexture, GL_MIRRORED_REPEAT, GL_NEAREST);
    ExpectSampling(engine.m_hCbCrTexture, GL_MIRRORED_REPEAT, GL_NEAREST);
    engine.DeInitCapture();
  }
}

// Rows of 34 bytes: a driver that takes rows of whole words would shear the picture.
TEST(LifecycleSizes, PlaneTexturesHoldTheFrame) {
  constexpr int kWidth = 34;
  constexpr int kHeight = 6;
  Frame frame = NoiseFrame(kWidth, kHeight, 3);
  const Image expected = reference::Expanded(frame);
  GPUBeautyFace engine;
  engine.InitCapture(frame.luma(), frame.chroma(), kWidth, kHeight, nullptr, false);
  frame.bytes.assign(frame.bytes.size(), 0);  // the planes are not needed any more

  auto* const warp = static_cast<GLProgCheekSlimmerLarge*>(engine.m_pProgCheekSlimmer);
  const float no_warp[4] = {0.5f, 0.5f, 0.0f, 0.4f};
  const float limiter[3] = {0.0f, 0.55f, 1.0f};
  std::copy(std::begin(no_warp), std::end(no_warp), warp->m_fvController);
  std::copy(std::begin(limiter), std::end(limiter), warp->m_fvAngleLimiter);
  warp->m_fAspectRatio = 1.0f;
  warp->m_fvScale[0] = warp->m_fvScale[1] = 1.0f;
  warp->m_fvShift[0] = warp->m_fvShift[1] = 0.5f;
  warp->SetTextures(0, static_cast<int>(engine.m_hYTexture));
  warp->SetTextures(1, static_cast<int>(engine.m_hCbCrTexture));
  glBindFramebuffer(GL_FRAMEBUFFER, engine.m_hWorkFbo[0]);
  glViewport(0, 0, kWidth, kHeight);
  const float positions[16] = {-1, 1, 1, 1, -1, -1, 1, 1, 1, -1, 1, 1, 1, 1, 1, 1};
  const float coordinates[8] = {0, 1, 0, 0, 1, 0, 1, 1};
  ASSERT_TRUE(warp->Use());
  warp->SetVertexCoord(4, positions);
  warp->SetTextureCoord(2, coordinates);
  warp->Draw();
  EXPECT_TRUE(SameImage(expected, ReadFramebuffer(engine.m_hWorkFbo[0], kWidth, kHeight)));
  engine.DeInitCapture();
}

TEST(LifecycleSizes, OnlyColourConvertPreviewsTellAStride) {
  GPUBeautyFace engine;
  int stride = -5;
  engine.Init(200, 48, 200, 48, &stride, false);
  EXPECT_EQ(-5, stride);
  engine.Init(200, 48, 200, 48, &stride, true);
  EXPECT_EQ(224, stride);
  EXPECT_EQ(1, engine.Init(200, 48, 200, 48, nullptr, true));
}

TEST(LifecycleSizes, PackersReachTheirPixels) {
  using Luma = std::array<float, 8>;
  using Chroma = std::array<float, 4>;
  const auto luma = [](const GPUBeautyFace& engine) {
    Luma shifts;
    const auto* program = static_cast<const GLProgRGBtoY*>(engine.m_pProgRGBtoY);
    std::copy(std::begin(program->m_fShift), std::end(program->m_fShift), shifts.begin());
    return shifts;
  };
  const auto chroma = [](const GPUBeautyFace& engine) {
    Chroma shifts;
    const auto* program = static_cast<const GLProgRGBtoUV*>(engine.m_pProgRGBtoUV);
    std::copy(std::begin(program->m_fShift), std::end(program->m_fShift), shifts.begin());
    return shifts;
  };
  GPUBeautyFace engine;
  engine.Init(720, 480, 720, 480, nullptr, false);  // rows of 736
  EXPECT_EQ((Luma{-1.5f / 736, 0, -0.5f / 736, 0, 0.5f / 736, 0, 1.5f / 736, 0}), luma(engine));
  EXPECT_EQ((Chroma{static_cast<float>(-1.0 / 736), 0, static_cast<float>(1.0 / 736), 0}),
            chroma(engine));
  // Laid across: along t, luma by the width all the same, chroma by the height.
  engine.Init(480, 640, 640, 480, nullptr, false);
  EXPECT_EQ((Luma{0, -1.5f / 640, 0, -0.5f / 640, 0, 0.5f / 640, 0, 1.5f / 640}), luma(engine));
  EXPECT_EQ((Chroma{0, static_cast<float>(-1.0 / 480), 0, static_cast<float>(1.0 / 480)}),
            chroma(engine));
  engine.DeInit();
  // Captures take the working size as it is.
  engine.InitCapture(nullptr, nullptr, 300, 200, nullptr, true);
  EXPECT_EQ((Luma{-1.5f / 300, 0, -0.5f / 300, 0, 0.5f / 300, 0, 1.5f / 300, 0}), luma(engine));
  EXPECT_EQ((Chroma{static_cast<float>(-1.0 / 300), 0, static_cast<float>(1.0 / 300), 0}),
            chroma(engine));
  engine.DeInitCapture();
}

}  // namespace
}  // namespace lumora::test
