// SPDX-License-Identifier: Apache-2.0
// The colour-convert mode of previews: YUV to RGB, RGB to HSI, HSI to YUV.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>

#include "engine/engine_images.h"
#include "reference/bounds.h"
#include "reference/colour.h"
#include "reference/expand.h"
#include "reference/quad.h"
#include "support/caller_memory.h"
#include "support/compare.h"
#include "support/log_capture.h"
#include "support/pictures.h"

namespace lumora::test {
namespace {

constexpr int kWidth = 176;  // rows of 192
constexpr int kHeight = 90;

// One pass of the model over the stored pixels of the pass before: each pass is checked by itself.
template <typename Shader>
Image Drawn(Shader shader, const Image& source) {
  shader.input.image = &source;
  Image target(source.width, source.height);
  reference::DrawFullQuad(shader, target.width, target.height, &target);
  return target;
}

// What a driver may make of HSI. The programs compute with mediump, which may be half floats: six
// times the hue then has steps of 2^-8, and colours are as good. An error of the colours is divided
// by six times the difference of the largest and smallest channel in hue, and by the intensity in
// saturation, so pale and dark pixels are loose.
reference::ImageBounds HsiOf(
    const Image& source, const std::function<reference::Texel(const reference::Texel&)>& to_rgb =
                             [](const reference::Texel& rgb) { return rgb; }) {
  constexpr double kPrecision = 1.0 / 256;
  constexpr double kHalfByte = 0.5 / 255;
  reference::ImageBounds bounds(source.width, source.height);
  for (int y = 0; y < source.height; ++y) {
    for (int x = 0; x < source.width; ++x) {
      const reference::Texel hsi = reference::RgbToHsi(to_rgb(source.at(x, y)));
      const double delta = hsi.g * hsi.b;
      const double hue = kPrecision * (1 + 1 / (6 * std::max(delta, 1e-9)));
      const double saturation = kPrecision * (1 + 1 / std::max(std::abs(hsi.b), 1e-9));
      const double slack[4] = {hue, saturation, kPrecision, 0};
      reference::Texel low;
      reference::Texel high;
      for (int channel = 0; channel < 4; ++channel) {
        low[channel] = hsi[channel] - slack[channel];
        high[channel] = hsi[channel] + slack[channel];
      }
      // Hues 0 and 1 are the same colour.
      if (low.r < kHalfByte || high.r > 1 - kHalfByte) {
        low.r = 0;
        high.r = 1;
      }
      bounds.low.set(x, y, low);
      bounds.high.set(x, y, high);
    }
  }
  return bounds;
}

class ColourPasses : public testing::Test {
 protected:
  ColourPasses() {
    engine_.Init(kWidth, kHeight, kWidth, kHeight, &stride_, true);
    ClearImages(engine_);
  }

  void load(const Frame& frame) {
    CallerFrame caller(frame);
    ASSERT_EQ(1, engine_.LoadPreviewFrameBuffer(caller.luma()));
    EXPECT_EQ(frame.bytes, caller.bytes());
  }

  int stride_ = 0;
  GPUBeautyFace engine_;
  LogCapture log_;
};

// Stored bytes are the model's; a value between two bytes may be rounded either way by the driver.
const Compare kRounding = Compare().within(1);

TEST_F(ColourPasses, TheStrideToldIsTheRowOfTheInputImage) {
  EXPECT_EQ(192, stride_);
}

TEST_F(ColourPasses, FramesAreLoadedAsTexels) {
  const Frame frame = NoiseFrame(kWidth, kHeight, 1);
  load(frame);
  EXPECT_TRUE(SameImage(reference::Expanded(frame, 192), PixelsOf(*engine_.m_pRGBImage)));
}

TEST_F(ColourPasses, ConvertYuvMakesRgbThenHsi) {
  for (const Frame& frame : {TextureFrame(kWidth, kHeight), NoiseFrame(kWidth, kHeight, 2)}) {
    load(frame);
    log_.take();
    ASSERT_EQ(1, engine_.ConvertYUV());
    EXPECT_TRUE(LogIs(log_, {Info("Lumora", "ConvertYUV+"), Info("Lumora", "ConvertYUV-")}));
    const Image yuv = PixelsOf(*engine_.m_pRGBImage);
    const Image rgb = PixelsOf(*engine_.m_pWorkImage[0]);
    const Image hsi = PixelsOf(*engine_.m_pWorkImage[1]);
    EXPECT_TRUE(SameImage(reference::Expanded(frame, 192), yuv)) << "the input is only read";
    EXPECT_TRUE(SameImage(Drawn(reference::Yuv2Rgb(), yuv), rgb, Compare(kRounding).named("rgb")));
    EXPECT_TRUE(WithinImage(HsiOf(rgb), hsi));
  }
}

TEST_F(ColourPasses, ConvertHsiToYuvTakesTheResultImage) {
  for (const int result : {0, 1, 2}) {
    const Image hsi = NoiseImage(192, kHeight, static_cast<uint32_t>(result + 1));
    SetPixels(*engine_.m_pWorkImage[result], hsi);
    engine_.m_nResultIdx = result;
    log_.take();
    ASSERT_EQ(1, engine_.ConvertHSItoYUV());
    EXPECT_TRUE(LogIs(log_, {Info("Lumora", "ConvertYUV+"), Info("Lumora", "ConvertYUV-")}));
    EXPECT_TRUE(
        SameImage(Drawn(reference::Hsi2Yuv(), hsi), PixelsOf(*engine_.m_pRGBImage), kRounding));
    EXPECT_TRUE(SameImage(hsi, PixelsOf(*engine_.m_pWorkImage[result]))) << "only read";
  }
}

// Colours well inside the RGB cube. A byte of hue is six of the steepest channel, so hue,
// saturation, intensity and RGB, rounded each, move a channel by at most 3 + 1/2 + 1/2 + 1/2 bytes;
// the coefficients of the two directions differ by less than a byte here.
TEST_F(ColourPasses, ThereAndBackIsNearTheFrame) {
  Frame frame = TextureFrame(kWidth, kHeight);
  for (size_t i = 0; i < frame.bytes.size(); ++i) {
    const int byte = frame.bytes[i];
    frame.bytes[i] = static_cast<uint8_t>(i < frame.luma_size() ? 90 + byte / 4 : 108 + byte / 6);
  }
  load(frame);
  ASSERT_EQ(1, engine_.ConvertYUV());
  engine_.m_nResultIdx = 1;
  ASSERT_EQ(1, engine_.ConvertHSItoYUV());
  CallerPlanes planes(kWidth, kHeight);
  ASSERT_EQ(1, engine_.CopyMemYUVfromSrcTexture(planes.luma(), planes.chroma()));
  Frame actual(kWidth, kHeight);
  actual.bytes = planes.bytes();
  EXPECT_TRUE(SameFrame(frame, actual, Compare().within(5)));
}

TEST_F(ColourPasses, SinglePassesWriteTheImagesTheyAreDefinedFor) {
  const Frame frame = NoiseFrame(kWidth, kHeight, 5);
  load(frame);
  const Image yuv = PixelsOf(*engine_.m_pRGBImage);
  ASSERT_EQ(1, engine_.DrawColorConvertYUV2RGB());
  const Image rgb = PixelsOf(*engine_.m_pWorkImage[0]);
  EXPECT_TRUE(SameImage(Drawn(reference::Yuv2Rgb(), yuv), rgb, kRounding));
  ASSERT_EQ(1, engine_.DrawColorConvertRGB2HSI());
  const Image hsi = PixelsOf(*engine_.m_pWorkImage[1]);
  EXPECT_TRUE(WithinImage(HsiOf(rgb), hsi));
  engine_.m_nResultIdx = 1;
  ASSERT_EQ(1, engine_.DrawColorConvertHSI2YUV());
  EXPECT_TRUE(
      SameImage(Drawn(reference::Hsi2Yuv(), hsi), PixelsOf(*engine_.m_pRGBImage), kRounding));
}

// Captures have the direct pass to HSI instead of the two.
TEST(CaptureColourPasses, YuvBecomesHsiInOnePass) {
  GPUBeautyFace engine;
  engine.InitCapture(nullptr, nullptr, 320, 200, nullptr, true);
  const Image yuv = reference::Expanded(NoiseFrame(320, 200, 6));
  SetPixels(*engine.m_pRGBImage, yuv);
  ASSERT_EQ(1, engine.DrawColorConvertYUV2HSI());
  const reference::Matrix4 matrix = reference::YuvToRgbMatrix();
  EXPECT_TRUE(WithinImage(
      HsiOf(yuv, [&](const reference::Texel& texel) { return reference::Multiply(matrix, texel); }),
      PixelsOf(*engine.m_pWorkImage[0])));
  engine.DeInitCapture();
}

TEST(ColourPassFailures, WithoutImagesTheTextsTellWhichCallItWas) {
  GPUBeautyFace engine;
  LogCapture log;
  EXPECT_EQ(0, engine.ConvertYUV());
  EXPECT_EQ(0, engine.ConvertHSItoYUV());
  unsigned char byte = 0;
  EXPECT_EQ(0, engine.CopyMemYUVfromSrcTexture(&byte, &byte));
  EXPECT_TRUE(LogIs(
      log,
      {Info("Lumora", "ConvertYUV+"), Error("Lumora", "[SetSrcImage]g_pEGLRGB is not initiated"),
       Info("Lumora", "ConvertYUV+"), Error("Lumora", "[SetSrcImage]g_pEGLRGB is not initiated"),
       Error("Lumora", "[SetSrcImage]g_pSrcTexture is not initiated")}));
}

}  // namespace
}  // namespace lumora::test
