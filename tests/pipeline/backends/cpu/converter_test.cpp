// SPDX-License-Identifier: Apache-2.0
// Colours of whole frames on the processor, against the reference.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <random>
#include <thread>
#include <vector>

#include "pipeline/backends/backend.h"
#include "pipeline/frames/frame_memory.h"
#include "pipeline/image_memory.h"
#include "reference/colour.h"

namespace lumora::test {
namespace {

class CpuConverterTest : public testing::Test {
 protected:
  CpuConverterTest() { EXPECT_TRUE(MakeCpuConverter(&converter_).ok()); }

  /// Red, green and blue of every pixel are those of the reference; so are the tones, of these.
  static void ExpectColours(const Samples& samples, const ImageMemory& rgb,
                            const ImageMemory& hsi) {
    for (int y = 0; y < rgb.height; ++y) {
      for (int x = 0; x < rgb.width; ++x) {
        const auto chroma = static_cast<size_t>(y / 2 * ((rgb.width + 1) / 2) + x / 2);
        const reference::Texel colour =
            reference::Multiply(reference::YuvToRgbMatrix(),
                                {samples.y[static_cast<size_t>(y * rgb.width + x)] / 255.0,
                                 samples.cr[chroma] / 255.0, samples.cb[chroma] / 255.0, 1.0});
        const uint8_t* const got = rgb.at(x, y);
        const reference::Texel tone =
            reference::RgbToHsi({got[0] / 255.0, got[1] / 255.0, got[2] / 255.0, 1.0});
        for (int channel = 0; channel < 3; ++channel) {
          ASSERT_EQ(got[channel], reference::ToByte(colour[channel])) << x << ", " << y;
          ASSERT_NEAR(hsi.at(x, y)[channel], 255 * tone[channel], 0.5 + 1e-9) << x << ", " << y;
        }
        ASSERT_TRUE(rgb.channels == 3 || got[3] == 255);
        ASSERT_TRUE(hsi.channels == 3 || hsi.at(x, y)[3] == 255);
      }
    }
  }

  std::unique_ptr<ConverterBackend> converter_;
};

TEST_F(CpuConverterTest, GivesTheColoursOfEveryPixelForEverySizeAndFormat) {
  std::mt19937 random(1);
  for (int round = 0; round < 60; ++round) {
    const int width = std::uniform_int_distribution<>(32, 210)(random);
    const int height = std::uniform_int_distribution<>(32, 90)(random);
    const Samples samples = NoiseSamples(width, height, static_cast<uint32_t>(round));
    FrameMemory in(kAllFormats[round % 3], width, height, static_cast<int>(random() % 20));
    in.Fill(samples);
    ImageMemory rgb(width, height, 3 + round % 2), hsi(width, height, 3 + round / 2 % 2);
    Report report;
    ASSERT_TRUE(converter_->Convert(in.const_view(), rgb.view(), hsi.view(), &report).ok());
    ExpectColours(samples, rgb, hsi);
    EXPECT_TRUE(rgb.RowEndsIntact());
    EXPECT_TRUE(hsi.RowEndsIntact());
    EXPECT_GT(report.engine_ms, 0);
    EXPECT_EQ(report.upload_ms, 0);
  }
}

TEST_F(CpuConverterTest, LeavesOutAnImageThatIsNotWanted) {
  FrameMemory in(PixelFormat::NV21, 65, 47);
  in.Fill(NoiseSamples(65, 47));
  ImageMemory both_rgb(65, 47, 3), both_hsi(65, 47, 3), rgb(65, 47, 3), hsi(65, 47, 3);
  ASSERT_TRUE(converter_->Convert(in.const_view(), both_rgb.view(), both_hsi.view(), nullptr).ok());
  ASSERT_TRUE(converter_->Convert(in.const_view(), rgb.view(), {}, nullptr).ok());
  ASSERT_TRUE(converter_->Convert(in.const_view(), {}, hsi.view(), nullptr).ok());
  EXPECT_EQ(rgb.bytes, both_rgb.bytes);
  EXPECT_EQ(hsi.bytes, both_hsi.bytes);
}

TEST_F(CpuConverterTest, AnImageMayLieOverItsFrame) {
  constexpr int kWidth = 64, kHeight = 48;
  const Samples samples = NoiseSamples(kWidth, kHeight);
  FrameMemory in(PixelFormat::NV12, kWidth, kHeight);
  in.Fill(samples);
  ImageMemory rgb(kWidth, kHeight, 3), hsi(kWidth, kHeight, 3);
  ASSERT_TRUE(converter_->Convert(in.const_view(), rgb.view(), hsi.view(), nullptr).ok());

  for (const bool over_chroma : {false, true}) {
    ImageMemory shared(kWidth, kHeight, 3);
    ConstFrameView frame = in.const_view();
    const size_t plane = over_chroma ? 1 : 0;
    const auto bytes = static_cast<size_t>(kWidth * kHeight / (over_chroma ? 2 : 1));
    std::memcpy(shared.bytes.data() + 100, frame.planes[plane], bytes);
    frame.planes[plane] = shared.bytes.data() + 100;
    Report report;
    ImageMemory other(kWidth, kHeight, 3);
    ASSERT_TRUE(converter_->Convert(frame, other.view(), shared.view(), &report).ok());
    EXPECT_GT(report.upload_ms, 0);
    EXPECT_EQ(other.bytes, rgb.bytes);
    for (int y = 0; y < kHeight; ++y) {
      ASSERT_EQ(0, std::memcmp(shared.at(0, y), hsi.at(0, y), 3 * kWidth)) << y;
    }
  }
}

TEST_F(CpuConverterTest, ServesManyThreadsAtOnce) {
  FrameMemory in(PixelFormat::I420, 97, 64);
  in.Fill(NoiseSamples(97, 64));
  ImageMemory expected(97, 64, 3);
  ASSERT_TRUE(converter_->Convert(in.const_view(), expected.view(), {}, nullptr).ok());
  std::vector<int> wrong(4, 0);
  std::vector<std::thread> threads;
  for (int& count : wrong) {
    threads.emplace_back([&] {
      for (int frame = 0; frame < 20; ++frame) {
        ImageMemory rgb(97, 64, 3);
        const bool done = converter_->Convert(in.const_view(), rgb.view(), {}, nullptr).ok();
        if (!done || rgb.bytes != expected.bytes) ++count;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_THAT(wrong, testing::Each(0));
}

TEST_F(CpuConverterTest, TellsWhatItRunsOn) {
  const DeviceInfo info = converter_->Device();
  EXPECT_EQ(info.device, Device::Cpu);
  EXPECT_FALSE(info.simd.empty());
  EXPECT_EQ(info.threads, 1);
}

}  // namespace
}  // namespace lumora::test
