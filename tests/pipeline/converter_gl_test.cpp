// SPDX-License-Identifier: Apache-2.0
// Frames to RGB and HSI images.
#include "lumora/pipeline/converter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

#include "pipeline/backends/gl/driver_faults.h"
#include "pipeline/image_memory.h"
#include "pipeline/pipeline_fixture.h"
#include "reference/colour.h"

namespace lumora::test {
namespace {

class ConverterTest : public ::testing::Test {
 protected:
  void SetUp() override {
    Status status;
    converter_ = Converter::Create(TestedDevice(), &status);
    ASSERT_NE(converter_, nullptr) << status.message;
  }
  std::unique_ptr<Converter> converter_;
};

TEST_F(ConverterTest, GivesTheColoursOfEveryPixelForEverySizeAndFormat) {
  const std::pair<int, int> sizes[] = {{33, 47}, {96, 64}, {128, 32}, {176, 144}, {257, 34}};
  for (const auto& [width, height] : sizes) {
    const Samples samples = NoiseSamples(width, height);
    for (const PixelFormat format : kAllFormats) {
      FrameMemory in(format, width, height, 3);
      in.Fill(samples);
      ImageMemory rgb(width, height, 3), hsi(width, height, 4);
      Report report;
      const Status status = converter_->Convert(in.const_view(), rgb.view(), hsi.view(), &report);
      ASSERT_TRUE(status.ok()) << status.message;
      EXPECT_EQ(report.chain, ChainUsed::Convert);
      const int chroma_width = (width + 1) / 2;
      for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
          const auto luma = samples.y[static_cast<size_t>(y * width + x)];
          const auto chroma = static_cast<size_t>(y / 2 * chroma_width + x / 2);
          const reference::Texel colour = reference::Multiply(
              reference::YuvToRgbMatrix(),
              {luma / 255.0, samples.cr[chroma] / 255.0, samples.cb[chroma] / 255.0, 1.0});
          const uint8_t* const got = rgb.at(x, y);
          for (int channel = 0; channel < 3; ++channel) {
            ASSERT_NEAR(got[channel], 255 * std::clamp(colour[channel], 0.0, 1.0), 1.01)
                << width << " x " << height << " at " << x << ", " << y;
          }
          // Saturation and intensity of the image's own colour; grey has no hue to compare.
          const reference::Texel expected =
              reference::RgbToHsi({got[0] / 255.0, got[1] / 255.0, got[2] / 255.0, 1.0}, 1.0);
          const uint8_t* const values = hsi.at(x, y);
          const double turn = std::abs(values[0] - 255 * expected.r);
          ASSERT_LT(std::min(turn, 255 - turn), 1.5) << x << ", " << y;
          ASSERT_NEAR(values[1], 255 * expected.g, 1.01) << x << ", " << y;
          ASSERT_NEAR(values[2], 255 * expected.b, 1.01) << x << ", " << y;
          ASSERT_EQ(values[3], 255);
        }
      }
      EXPECT_TRUE(rgb.RowEndsIntact());
      EXPECT_TRUE(hsi.RowEndsIntact());
    }
  }
}

TEST_F(ConverterTest, LeavesOutAnImageThatIsNotWanted) {
  const Samples samples = NoiseSamples(64, 48);
  FrameMemory in(PixelFormat::NV21, 64, 48);
  in.Fill(samples);
  ImageMemory both_rgb(64, 48, 3), both_hsi(64, 48, 3), rgb(64, 48, 3), hsi(64, 48, 3);
  ASSERT_TRUE(converter_->Convert(in.const_view(), both_rgb.view(), both_hsi.view()).ok());
  ASSERT_TRUE(converter_->Convert(in.const_view(), rgb.view(), {}).ok());
  ASSERT_TRUE(converter_->Convert(in.const_view(), {}, hsi.view()).ok());
  EXPECT_EQ(rgb.bytes, both_rgb.bytes);
  EXPECT_EQ(hsi.bytes, both_hsi.bytes);
}

TEST_F(ConverterTest, RefusesWrongArgumentsAndTouchesNothing) {
  FrameMemory in(PixelFormat::NV21, 64, 48);
  ImageMemory image(64, 48, 3);
  const auto refused = [&](ImageView rgb, ImageView hsi, const char* words) {
    const Status status = converter_->Convert(in.const_view(), rgb, hsi);
    EXPECT_EQ(status.code, StatusCode::InvalidArgument) << words;
    EXPECT_THAT(status.message, testing::HasSubstr(words));
  };
  refused({}, {}, "no image");
  ImageView wrong = image.view();
  wrong.width = 63;
  refused(wrong, {}, "RGB");
  wrong = image.view();
  wrong.channels = 2;
  refused({}, wrong, "channels");
  wrong = image.view();
  wrong.stride = 64 * 3 - 1;
  refused({}, wrong, "HSI");
  EXPECT_THAT(image.bytes, testing::Each(kUntouched));
}

TEST_F(ConverterTest, AConverterThatCannotDrawFailsWithASentenceAndRecovers) {
  FrameMemory in(PixelFormat::NV21, 64, 48);
  in.Fill(NoiseSamples(64, 48));
  ImageMemory rgb(64, 48, 3);
  {
    const FramebuffersIncomplete fault;
    const Status status = converter_->Convert(in.const_view(), rgb.view(), {});
    EXPECT_EQ(status.code, StatusCode::EngineFailed);
    EXPECT_FALSE(status.message.empty());
    EXPECT_THAT(rgb.bytes, testing::Each(kUntouched));
  }
  EXPECT_TRUE(converter_->Convert(in.const_view(), rgb.view(), {}).ok());
}

// What a driver that failed has left behind is not known: the next frame finds everything new.
TEST_F(ConverterTest, SetsTheEngineUpAnewAfterAFrameThatFailed) {
  FrameMemory in(PixelFormat::NV21, 64, 48);
  FrameMemory grey(PixelFormat::NV21, 64, 48);  // so that nothing left over looks right
  in.Fill(NoiseSamples(64, 48));
  ImageMemory good(64, 48, 3);
  ImageMemory rgb(64, 48, 3);
  ASSERT_TRUE(converter_->Convert(in.const_view(), good.view(), {}).ok());
  ASSERT_TRUE(converter_->Convert(grey.const_view(), rgb.view(), {}).ok());
  const std::vector<uint8_t> before = rgb.bytes;
  {
    const ProgramsLost fault;
    EXPECT_EQ(converter_->Convert(in.const_view(), rgb.view(), {}).code, StatusCode::EngineFailed);
  }
  EXPECT_EQ(rgb.bytes, before);
  EXPECT_TRUE(converter_->Convert(in.const_view(), rgb.view(), {}).ok());
  EXPECT_EQ(rgb.bytes, good.bytes);
}

TEST_F(ConverterTest, LivesBesidePipelinesAndOtherConverters) {
  const Samples samples = NoiseSamples(96, 64);
  FrameMemory in(PixelFormat::NV21, 96, 64);
  in.Fill(samples);
  ImageMemory expected(96, 64, 3);
  ASSERT_TRUE(converter_->Convert(in.const_view(), expected.view(), {}).ok());
  std::vector<int> wrong(3, 0);
  std::vector<std::thread> threads;
  for (size_t i = 0; i < wrong.size(); ++i) {
    threads.emplace_back([&, i] {
      const auto pipeline = Pipeline::Create({TestedDevice()}, nullptr);
      const auto converter = Converter::Create(TestedDevice(), nullptr);
      FrameMemory mine(PixelFormat::NV21, 96, 64), out(PixelFormat::NV21, 96, 64);
      mine.Fill(samples);
      const Face face = FaceIn(96, 64);
      for (int frame = 0; frame < 3; ++frame) {
        ImageMemory rgb(96, 64, 3);
        if (!pipeline->Process({mine.const_view(), out.view(), face, kFull}).ok() ||
            !converter->Convert(mine.const_view(), rgb.view(), {}).ok() ||
            rgb.bytes != expected.bytes) {
          ++wrong[i];
        }
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_THAT(wrong, testing::Each(0));
}

TEST(ConverterCreate, WithoutAContextGivesNullAndASentence) {
  const NoContexts fault;
  Status status;
  EXPECT_EQ(Converter::Create(Device::Gl, &status), nullptr);
  EXPECT_EQ(status.code, StatusCode::NoDisplay);
}

}  // namespace
}  // namespace lumora::test
