// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/picture/png_pixels.h"

#include <gtest/gtest.h>
#include <png.h>

#include <opencv2/imgproc.hpp>

#include "tests/tools/png_files.h"
#include "tools/lumora/modules/opencv.h"

namespace lumora::test {
namespace {

using tools::ReadPngPixels;

/// The samples as another decoder gives them, in 8 bits.
cv::Mat Expected(const Bytes& file, const PngKind& kind) {
  cv::Mat pixels = Decode(file);
  if (pixels.depth() == CV_16U) pixels.convertTo(pixels, CV_8U, 1.0 / 257);
  const bool gray = (kind.colours & PNG_COLOR_MASK_COLOR) == 0;
  if (gray && kind.transparent_colour && pixels.channels() == 1) {
    cv::cvtColor(pixels, pixels, cv::COLOR_GRAY2BGRA);  // without the transparency
  }
  return pixels;
}

TEST(PngPixels, EveryKindIsReadAs8BitGrayBgrOrBgra) {
  const struct {
    PngKind kind;
    int type;
  } kKinds[] = {{{PNG_COLOR_TYPE_GRAY, 1}, CV_8UC1},
                {{PNG_COLOR_TYPE_GRAY, 2}, CV_8UC1},
                {{PNG_COLOR_TYPE_GRAY, 4}, CV_8UC1},
                {{PNG_COLOR_TYPE_GRAY, 8}, CV_8UC1},
                {{PNG_COLOR_TYPE_GRAY, 16}, CV_8UC1},
                {{PNG_COLOR_TYPE_RGB, 8}, CV_8UC3},
                {{PNG_COLOR_TYPE_RGB, 16}, CV_8UC3},
                {{PNG_COLOR_TYPE_PALETTE, 1}, CV_8UC3},
                {{PNG_COLOR_TYPE_PALETTE, 4}, CV_8UC3},
                {{PNG_COLOR_TYPE_PALETTE, 8}, CV_8UC3},
                {{PNG_COLOR_TYPE_GRAY_ALPHA, 8}, CV_8UC4},
                {{PNG_COLOR_TYPE_GRAY_ALPHA, 16}, CV_8UC4},
                {{PNG_COLOR_TYPE_RGB_ALPHA, 8}, CV_8UC4},
                {{PNG_COLOR_TYPE_RGB_ALPHA, 16}, CV_8UC4},
                {{PNG_COLOR_TYPE_GRAY, 2, false, true}, CV_8UC4},
                {{PNG_COLOR_TYPE_GRAY, 8, false, true}, CV_8UC4},
                {{PNG_COLOR_TYPE_RGB, 8, false, true}, CV_8UC4},
                {{PNG_COLOR_TYPE_PALETTE, 4, false, true}, CV_8UC4}};
  for (const auto& test : kKinds) {
    for (const bool interlaced : {false, true}) {
      PngKind kind = test.kind;
      kind.interlaced = interlaced;
      SCOPED_TRACE(testing::Message() << "kind " << kind.colours << ", " << kind.bits << " bits, "
                                      << interlaced << ", " << kind.transparent_colour);
      const Bytes file = PngOf({61, 47}, kind);
      const tools::PngPixels read = ReadPngPixels(file);
      EXPECT_EQ(read.reduced, kind.bits == 16);
      cv::Mat expected = Expected(file, kind), got = tools::MatOf(read.pixels);
      ASSERT_EQ(got.type(), test.type);
      ASSERT_EQ(expected.size(), got.size());
      ASSERT_EQ(expected.type(), got.type());
      if (got.channels() == 4) {
        EXPECT_LT(cv::norm(got, expected, cv::NORM_INF), 256);
        cv::cvtColor(got, got, cv::COLOR_BGRA2BGR);
        cv::cvtColor(expected, expected, cv::COLOR_BGRA2BGR);
      }
      EXPECT_EQ(cv::norm(got, expected, cv::NORM_INF), 0);
    }
  }
}

TEST(PngPixels, TransparentColoursAreTransparent) {
  for (const PngKind& kind : {PngKind{PNG_COLOR_TYPE_GRAY, 2, false, true},
                              PngKind{PNG_COLOR_TYPE_PALETTE, 1, false, true}}) {
    const tools::Image read = ReadPngPixels(PngOf({61, 47}, kind)).pixels;
    const cv::Mat pixels = tools::MatOf(read);
    ASSERT_EQ(pixels.channels(), 4);
    cv::Mat alpha;
    cv::extractChannel(pixels, alpha, 3);
    double least = 0, most = 0;
    cv::minMaxLoc(alpha, &least, &most);
    const bool palette = kind.colours == PNG_COLOR_TYPE_PALETTE;
    EXPECT_EQ(least, palette ? 10 : 0);
    EXPECT_EQ(most, palette ? 200 : 255);
  }
}

TEST(PngPixels, DamageIsAnErrorAndPrintsNothing) {
  const Bytes file = PngOf({61, 47}, PngKind{PNG_COLOR_TYPE_PALETTE, 8});
  testing::internal::CaptureStderr();
  constexpr size_t kBitsAt = 8, kKindAt = 9;  // in the header
  EXPECT_THROW(ReadPngPixels(WithChangedByte(file, "IHDR", kBitsAt, 7)), tools::PngError);
  EXPECT_THROW(ReadPngPixels(WithChangedByte(file, "IHDR", kKindAt, 5)), tools::PngError);
  EXPECT_THROW(ReadPngPixels(WithChangedByte(file, "IDAT", 0, 0xff)), tools::PngError);
  EXPECT_THROW(ReadPngPixels(Bytes(file.begin(), file.end() - 200)), tools::PngError);
  EXPECT_THROW(ReadPngPixels(Bytes(file.begin(), file.begin() + 20)), tools::PngError);
  // Every single damaged byte of the coded samples is either survived or an error.
  for (size_t at = 0; at < 64; ++at) {
    try {
      EXPECT_EQ(ReadPngPixels(WithChangedByte(file, "IDAT", at, 0x55)).pixels.size(),
                (tools::Size{61, 47}));
    } catch (const tools::PngError&) {
      continue;
    }
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

}  // namespace
}  // namespace lumora::test
