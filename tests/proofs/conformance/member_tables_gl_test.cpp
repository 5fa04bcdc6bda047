// SPDX-License-Identifier: Apache-2.0
// Members after set-ups and settings, over many sizes. The rules are written here once more, in
// plain arithmetic; numbers worked out by hand stand in the tests of single set-ups.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "engine/engine_images.h"
#include "support/caller_memory.h"
#include "support/faces.h"

namespace lumora::test {
namespace {

using android::GPUColorConverter;

struct Size {
  int width, height;
};

int UpTo32(int value) {
  int rows = 0;
  while (rows < value) rows += 32;
  return rows;
}
/// Samples of a packed row: four a texel, rows of whole 32 texels.
int PackedRow(int width) {
  return 4 * UpTo32(width / 4);
}

/// The sizes of an engine, by name.
using Members = std::vector<std::pair<std::string, int>>;

Members SizesOf(const GPUBeautyFace& e) {
  return {{"m_nSrcWidth", e.m_nSrcWidth},
          {"m_nSrcHeight", e.m_nSrcHeight},
          {"m_nProcWidth", e.m_nProcWidth},
          {"m_nProcHeight", e.m_nProcHeight},
          {"m_nYYYYWidth", e.m_nYYYYWidth},
          {"m_nYYYYHeight", e.m_nYYYYHeight},
          {"m_nUVUVWidth", e.m_nUVUVWidth},
          {"m_nUVUVHeight", e.m_nUVUVHeight},
          {"m_nAlignedWidth", e.m_nAlignedWidth},
          {"m_nAlignedHeight", e.m_nAlignedHeight},
          {"m_nFullWidth", e.m_nFullWidth},
          {"m_nFullHeight", e.m_nFullHeight},
          {"m_bRotate", e.m_bRotate},
          {"m_bLargeCapture", e.m_bLargeCapture},
          {"m_bColorCvtMode", e.m_bColorCvtMode},
          {"m_bIsInit", e.m_bIsInit}};
}

Members Expected(const Size& src, const Size& proc, const Size& full, int aligned, bool rotate,
                 bool large, bool colour) {
  return {{"m_nSrcWidth", src.width},
          {"m_nSrcHeight", src.height},
          {"m_nProcWidth", proc.width},
          {"m_nProcHeight", proc.height},
          {"m_nYYYYWidth", PackedRow(proc.width)},
          {"m_nYYYYHeight", proc.height},
          {"m_nUVUVWidth", PackedRow(proc.width)},
          {"m_nUVUVHeight", proc.height / 2},
          {"m_nAlignedWidth", aligned},
          {"m_nAlignedHeight", proc.height},
          {"m_nFullWidth", full.width},
          {"m_nFullHeight", full.height},
          {"m_bRotate", rotate},
          {"m_bLargeCapture", large},
          {"m_bColorCvtMode", colour},
          {"m_bIsInit", true}};
}

constexpr Size kPreviewSizes[] = {{16, 2},    {18, 16},   {30, 30},    {32, 32},   {34, 20},
                                  {62, 46},   {64, 48},   {96, 64},    {120, 160}, {126, 90},
                                  {128, 96},  {130, 98},  {176, 144},  {240, 320}, {320, 240},
                                  {352, 288}, {400, 240}, {480, 640},  {640, 480}, {720, 480},
                                  {720, 576}, {800, 480}, {1000, 562}, {1280, 720}};

TEST(MemberTables, PreviewsAtTheirOwnSize) {
  GPUBeautyFace engine;
  for (const bool colour : {false, true}) {
    for (const Size& size : kPreviewSizes) {
      SCOPED_TRACE(testing::Message() << size.width << " x " << size.height);
      int stride = -5;
      ASSERT_EQ(1, engine.Init(size.width, size.height, size.width, size.height, &stride, colour));
      EXPECT_EQ(Expected(size, size, size, UpTo32(size.width), false, false, colour),
                SizesOf(engine));
      EXPECT_EQ(colour ? UpTo32(size.width) : -5, stride);
      EXPECT_EQ(2, engine.m_nResultIdx);
    }
  }
}

TEST(MemberTables, PreviewsOfAnotherSize) {
  constexpr Size kSources[] = {{64, 48}, {48, 64}, {96, 96}, {100, 40}, {130, 98}};
  GPUBeautyFace engine;
  for (const Size& src : kSources) {
    for (const Size& proc : kSources) {
      SCOPED_TRACE(testing::Message() << src.width << " x " << src.height << " at " << proc.width
                                      << " x " << proc.height);
      ASSERT_EQ(1, engine.Init(src.width, src.height, proc.width, proc.height, nullptr, false));
      // Narrower in shape than what it becomes: no fractions needed.
      const bool across = src.width * proc.height < proc.width * src.height;
      EXPECT_EQ(Expected(src, proc, src, UpTo32(proc.width), across, false, false),
                SizesOf(engine));
    }
  }
}

constexpr Size kCaptureSizes[] = {{16, 2},    {34, 20},   {320, 240},  {384, 384},   {640, 480},
                                  {1279, 20}, {1280, 20}, {1281, 20},  {1280, 960},  {1280, 1535},
                                  {40, 1536}, {40, 1537}, {40, 2048},  {1282, 1538}, {1408, 600},
                                  {2048, 40}, {4095, 20}, {4096, 20},  {4097, 20},   {20, 4095},
                                  {20, 4096}, {20, 4097}, {4097, 400}, {1920, 1080}};

TEST(MemberTables, Captures) {
  GPUBeautyFace engine;
  for (const bool block_mode : {true, false}) {
    for (const Size& size : kCaptureSizes) {
      SCOPED_TRACE(testing::Message() << size.width << " x " << size.height << ", " << block_mode);
      Size working = {384, 384};
      if (size.width <= 1280) working = {std::min(size.width, 2048), std::min(size.height, 1536)};
      const bool large = size.width > 4096 || size.height > 4096;
      int stride = -5;
      ASSERT_EQ(1,
                engine.InitCapture(nullptr, nullptr, size.width, size.height, &stride, block_mode));
      EXPECT_EQ(Expected(working, working, size, working.width, false, large, block_mode),
                SizesOf(engine));
      EXPECT_EQ(block_mode ? UpTo32(size.width) : -5, stride);
      EXPECT_EQ(block_mode && !large, engine.m_pWorkImage[1] != nullptr);
      ASSERT_EQ(1, engine.DeInitCapture());
      EXPECT_FALSE(engine.m_bIsInit || engine.m_bLargeCapture || engine.m_bColorCvtMode);
      engine.m_spLargeBuffer.clear();
    }
  }
}

TEST(MemberTables, Converters) {
  GPUColorConverter converter;
  for (const Size& size : kPreviewSizes) {
    SCOPED_TRACE(testing::Message() << size.width << " x " << size.height);
    int stride = 0;
    ASSERT_EQ(1, converter.Init(size.width, size.height, &stride));
    EXPECT_EQ(UpTo32(size.width), stride);
    const std::array<int, 10> expected = {
        size.width,  size.height,           size.width, size.height, PackedRow(size.width),
        size.height, PackedRow(size.width), -1,         size.width,  size.height};
    const std::array<int, 10> members = {converter.m_nSrcWidth,     converter.m_nSrcHeight,
                                         converter.m_nProcWidth,    converter.m_nProcHeight,
                                         converter.m_nYYYYWidth,    converter.m_nYYYYHeight,
                                         converter.m_nUVUVWidth,    converter.m_nUVUVHeight,
                                         converter.m_nAlignedWidth, converter.m_nAlignedHeight};
    EXPECT_EQ(expected, members);
    EXPECT_TRUE(converter.m_bIsInit);
    EXPECT_EQ(static_cast<uint32_t>(UpTo32(size.width)),
              converter.m_pInputImage->m_spBuffer->width());
  }
  converter.DeInit();
  EXPECT_FALSE(converter.m_bIsInit);
}

// ---- Settings -----------------------------------------------------------------------------------

/// A face of 100 pixels, chin 80, at a place of a frame.
struct WarpRow {
  int width, height;  // of the frame
  int x, y, dist, chin, roll, level, shape;
  bool capture;
  float cx, cy, radius;              // controller
  float direction, distance, scale;  // limiter
  float aspect;                      // previews only
  float factor;                      // of radius to the power of 0.3
};
// By hand: the radius is dist or chin, whichever is more, times 1.15 (captures: 1.05) over the
// width, at most 0.4; the scale is 1.1 (1.3) over chin / dist.
constexpr WarpRow kWarps[] = {
    {640, 480, 320, 240, 100, 80, 90, 5, 0, false, 0.5f, 0.5f, 0.1796875f, 0, 0.55f, 1.375f, 0.75f,
     1.6f},
    {640, 480, 160, 360, 100, 80, 180, 0, 2, false, 0.25f, 0.75f, 0.1796875f, 1.570797f, 0.55f,
     1.375f, 0.75f, 0.55f},
    {720, 480, 72, 48, 80, 160, 0, 10, 0, false, 0.1f, 0.1f, 0.2555556f, -1.570797f, 0.55f, 0.55f,
     0.6666667f, 2.1f},
    {64, 48, 32, 12, 40, 20, 100, 3, 1, false, 0.5f, 0.25f, 0.4f, 0.174533f, 0.55f, 2.2f, 0.75f,
     1.4f},
    {1280, 720, 640, 90, 128, 64, 45, 1, 2, false, 0.5f, 0.125f, 0.115f, -0.7853985f, 0.55f, 2.2f,
     0.5625f, 0.6f},
    {2000, 1000, 500, 750, 200, 160, 90, 5, 0, true, 0.25f, 0.75f, 0.105f, 0, 0.55f, 1.625f, 0,
     1.6f},
    {1600, 1200, 400, 300, 100, 400, 90, 0, 2, true, 0.25f, 0.25f, 0.2625f, 0, 0.55f, 0.325f, 0,
     0.55f},
};

TEST(MemberTables, WarpsOfFaces) {
  GPUBeautyFace engine;
  engine.Init(64, 48, 64, 48, nullptr, false);
  auto& warp = static_cast<GLProgWarp&>(*engine.m_pProgCheekSlimmer);
  for (const WarpRow& row : kWarps) {
    SCOPED_TRACE(testing::Message() << row.width << " x " << row.height << ", face at " << row.x);
    // Parameters are arithmetic over the sizes: no image of that size is needed.
    (row.capture ? engine.m_nFullWidth : engine.m_nSrcWidth) = row.width;
    (row.capture ? engine.m_nFullHeight : engine.m_nSrcHeight) = row.height;
    warp.m_fAspectRatio = 0;
    for (const float ratio : {1.0f, 0.5f, 0.0f}) {
      ASSERT_EQ(1, engine.SetParameters(row.x, row.y, row.dist, row.roll, row.chin, row.level,
                                        row.shape, row.capture, ratio));
      EXPECT_FLOAT_EQ(row.cx, warp.m_fvController[0]);
      EXPECT_FLOAT_EQ(row.cy, warp.m_fvController[1]);
      EXPECT_FLOAT_EQ(row.factor * std::pow(row.radius, 0.3f) * ratio, warp.m_fvController[2]);
      EXPECT_FLOAT_EQ(row.radius, warp.m_fvController[3]);
      EXPECT_FLOAT_EQ(row.direction, warp.m_fvAngleLimiter[0]);
      EXPECT_FLOAT_EQ(row.distance, warp.m_fvAngleLimiter[1]);
      EXPECT_FLOAT_EQ(row.scale, warp.m_fvAngleLimiter[2]);
      EXPECT_FLOAT_EQ(row.aspect, warp.m_fAspectRatio);
    }
  }
}

struct WhiteRow {
  Size frame;
  int x, y, half_width;  // of the portrait
  int centre_x, centre_y, across, down, radius;
  int rect_x, rect_y, rect_width, rect_height;
};
// By hand: a portrait reaches 1.01 half widths above its middle and 1.2 below it. The rectangle has
// whole blocks on each side of the centre that hold half the extent and half a block.
constexpr WhiteRow kWhites[] = {
    {{1400, 900}, 700, 450, 150, 700, 464, 150, 166, 166, 316, 80, 768, 768},
    {{1920, 1080}, 300, 300, 40, 300, 303, 40, 44, 44, -84, -81, 768, 768},
    {{1400, 900}, 700, 450, 300, 700, 478, 300, 331, 331, -68, -290, 1536, 1536},
    {{320, 240}, 160, 110, 50, 160, 114, 50, 55, 55, -160, -126, 640, 480},
    {{320, 240}, 10, 230, 20, 10, 231, 20, 22, 22, -310, -9, 640, 480},
};

TEST(MemberTables, MeasuresAndRectanglesOfWhitening) {
  for (const WhiteRow& row : kWhites) {
    SCOPED_TRACE(testing::Message()
                 << row.frame.width << " x " << row.frame.height << ", " << row.half_width);
    GPUBeautyFace engine;
    engine.InitCapture(nullptr, nullptr, row.frame.width, row.frame.height, nullptr, true);
    CallerFrame frame(reference::Frame(row.frame.width, row.frame.height, 150, 128, 128));
    FACE_INFO_t face = PortraitFace(row.x, row.y, row.half_width).as<FACE_INFO_t>();
    engine.m_rcFaceProcess[0].nFlag = 7;
    ASSERT_EQ(1, engine.DoFaceWhiteningLarge(frame.luma(), frame.chroma(), &face, 1, 0, 0,
                                             BEAUTYSHOT_EFFECT_BOTH));
    EXPECT_EQ(row.centre_x, engine.m_nFaceWhiteCenterX);
    EXPECT_EQ(row.centre_y, engine.m_nFaceWhiteCenterY);
    EXPECT_EQ(row.across, engine.m_nFaceWhiteHalfWidth);
    EXPECT_EQ(row.down, engine.m_nFaceWhiteHalfHeight);
    EXPECT_EQ(row.radius, engine.m_nFaceWhiteRadius);
    const android::FaceProcessRect& rect = engine.m_rcFaceProcess[0];
    EXPECT_EQ(row.rect_x, rect.X);
    EXPECT_EQ(row.rect_y, rect.Y);
    EXPECT_EQ(row.rect_width, rect.Width);
    EXPECT_EQ(row.rect_height, rect.Height);
    EXPECT_EQ(0, rect.nFlag);
    EXPECT_EQ(-1, engine.m_rcFaceProcess[1].Width) << "only the faces of the call";
    EXPECT_EQ(1, engine.m_nResultIdx);
    engine.DeInitCapture();
  }
}

}  // namespace
}  // namespace lumora::test
