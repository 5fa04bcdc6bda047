// SPDX-License-Identifier: Apache-2.0
// Our arithmetic of images against OpenCV's, sample by sample.
#include <gtest/gtest.h>

#include <algorithm>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "tools/lumora/images/colours.h"
#include "tools/lumora/images/resample.h"
#include "tools/lumora/modules/opencv.h"

namespace lumora::test {
namespace {

using tools::Image;
using tools::ImageOf;
using tools::MatOf;
using tools::Size;

cv::Mat Noise(int columns, int rows, int channels, int seed) {
  cv::Mat noise(rows, columns, CV_8UC(channels));
  cv::RNG(static_cast<uint64_t>(seed)).fill(noise, cv::RNG::UNIFORM, 0, 256);
  return noise;
}

bool Same(const Image& image, const cv::Mat& expected) {
  return image.size() == Size{expected.cols, expected.rows} &&
         image.channels() == expected.channels() && image.bytes() == ImageOf(expected).bytes();
}

TEST(Colours, AllOfThemAreConvertedThereAndBack) {
  constexpr int kBits = 12, kSide = 1 << kBits;
  Image all({kSide, kSide}, 3);
  for (size_t i = 0; i < size_t{kSide} * kSide; ++i) {
    for (size_t c = 0; c < 3; ++c) all.bytes()[3 * i + c] = static_cast<uint8_t>(i >> 8 * c);
  }
  cv::Mat converted;
  cv::cvtColor(MatOf(all), converted, cv::COLOR_BGR2YCrCb);
  std::vector<cv::Mat> planes;
  cv::split(converted, planes);
  const tools::ColourPlanes ours = tools::PlanesOf(all);
  EXPECT_TRUE(Same(ours.y, planes[0]));
  EXPECT_TRUE(Same(ours.cr, planes[1]));
  EXPECT_TRUE(Same(ours.cb, planes[2]));
  cv::split(MatOf(all), planes);
  cv::cvtColor(MatOf(all), converted, cv::COLOR_YCrCb2BGR);
  EXPECT_TRUE(
      Same(tools::BgrOf(ImageOf(planes[0]), ImageOf(planes[2]), ImageOf(planes[1])), converted));
}

TEST(Colours, OtherChannelsBecomeThree) {
  cv::Mat expected;
  const cv::Mat gray = Noise(37, 23, 1, 1), bgr = Noise(37, 23, 3, 2), bgra = Noise(37, 23, 4, 3);
  cv::cvtColor(gray, expected, cv::COLOR_GRAY2BGR);
  EXPECT_TRUE(Same(tools::BgrOf(ImageOf(gray)), expected));
  cv::cvtColor(bgra, expected, cv::COLOR_BGRA2BGR);
  EXPECT_TRUE(Same(tools::BgrOf(ImageOf(bgra)), expected));
  EXPECT_TRUE(Same(tools::BgrOf(ImageOf(bgr)), bgr));
  cv::cvtColor(bgr, expected, cv::COLOR_BGR2RGB);
  EXPECT_TRUE(Same(tools::WithRedAndBlueSwapped(ImageOf(bgr)), expected));
}

TEST(Images, AreTurnedCroppedAndExtended) {
  for (const int channels : {1, 3, 4}) {
    for (const auto& [width, height] : {std::pair(1, 1), std::pair(70, 33), std::pair(33, 70)}) {
      const cv::Mat noise = Noise(width, height, channels, 4);
      const Image image = ImageOf(noise);
      cv::Mat expected;
      cv::transpose(noise, expected);
      EXPECT_TRUE(Same(tools::Transposed(image), expected));
      cv::flip(noise, expected, 1);
      EXPECT_TRUE(Same(tools::FlippedAcross(image), expected));
      cv::flip(noise, expected, 0);
      EXPECT_TRUE(Same(tools::FlippedDown(image), expected));
      cv::copyMakeBorder(noise, expected, 0, 3, 0, 5, cv::BORDER_REPLICATE);
      EXPECT_TRUE(Same(tools::Fitted(image, {width + 5, height + 3}), expected));
      EXPECT_TRUE(Same(tools::Fitted(image, {(width + 1) / 2, height}),
                       noise(cv::Rect(0, 0, (width + 1) / 2, height))));
    }
  }
}

/// New samples for old ones.
struct Ratio {
  int now, before;

  bool Divides(int side) const { return side * now % before == 0; }
  int Of(int side) const { return side * now / before; }
};

// Chroma of JPEGs has one, two, three or four pixels a sample; of the engine's frames, two.
constexpr Ratio kRatios[] = {{1, 1}, {2, 1}, {3, 1}, {4, 1}, {3, 2},
                             {1, 2}, {1, 3}, {1, 4}, {2, 3}};

TEST(Resampling, EveryRatioOfJpegs) {
  cv::RNG random(5);
  for (int seed = 0; seed < 40; ++seed) {
    // One is wide enough for places to be rounded.
    const int width = seed == 0 ? 24000 : random.uniform(12, 90);
    const cv::Mat noise = Noise(width, random.uniform(12, 90), 1, seed);
    const Image plane = ImageOf(noise);
    for (const Ratio& across : kRatios) {
      for (const Ratio& down : kRatios) {
        if (!across.Divides(noise.cols) || !down.Divides(noise.rows)) continue;
        const Size size = {across.Of(noise.cols), down.Of(noise.rows)};
        SCOPED_TRACE(testing::Message()
                     << noise.size() << " to " << size.width << " x " << size.height);
        const auto resized = [&](int interpolation) {
          cv::Mat result;
          cv::resize(noise, result, {size.width, size.height}, 0, 0, interpolation);
          return result;
        };
        ASSERT_TRUE(Same(tools::Nearest(plane, size), resized(cv::INTER_NEAREST)));
        ASSERT_TRUE(Same(tools::Averaged(plane, size), resized(cv::INTER_AREA)));
        if (size.width < noise.cols || size.height < noise.rows) continue;
        ASSERT_TRUE(Same(tools::Interpolated(plane, size), resized(cv::INTER_LINEAR)));
      }
    }
  }
}

}  // namespace
}  // namespace lumora::test
