// SPDX-License-Identifier: Apache-2.0
#include "support/compare.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "support/pictures.h"
#include "support/scoped.h"

namespace lumora::test {
namespace {

TEST(CompareImages, FindsTheLargestDifferenceAndItsPlace) {
  const Image expected = NoiseImage(8, 6, 1);
  Image actual = expected;
  actual.pixel(3, 2)[1] = static_cast<uint8_t>(expected.pixel(3, 2)[1] ^ 0x80);
  const Difference d = Measure(expected, actual);
  EXPECT_EQ(d.largest, 128);
  EXPECT_EQ(d.above, 1);
  EXPECT_EQ(d.compared, 8 * 6 * 4);
  EXPECT_EQ(d.x, 3);
  EXPECT_EQ(d.y, 2);
  EXPECT_EQ(d.channel, "G");
  EXPECT_FALSE(SameImage(expected, actual));
  EXPECT_TRUE(SameImage(expected, actual, Compare().except(1, 128)));
  EXPECT_FALSE(SameImage(expected, actual, Compare().except(1, 127)));
}

TEST(CompareImages, ToleratesUpToTheToleranceOnly) {
  Image expected(2, 2);
  Image actual(2, 2);
  actual.fill(2, 2, 2, 2);
  EXPECT_TRUE(SameImage(expected, actual, Compare().within(2)));
  EXPECT_FALSE(SameImage(expected, actual, Compare().within(1)));
}

TEST(CompareImages, OtherSizesAndEmptyChoicesAreFailures) {
  EXPECT_FALSE(SameImage(Image(2, 2), Image(4, 1)));
  EXPECT_FALSE(SameImage(Image(2, 2), Image(2, 2), Compare().only([](int, int) { return false; })));
}

TEST(CompareFrames, LooksAtAPairWhenAllItsPixelsAreChosen) {
  const Frame expected(4, 4);
  Frame actual = expected;
  actual.cb(3, 3) = 200;
  EXPECT_FALSE(SameFrame(expected, actual));
  EXPECT_TRUE(SameFrame(expected, actual,
                        Compare().only([](int x, int y) { return !(x == 2 && y == 2); })));
  EXPECT_EQ(Measure(expected, actual).channel, "Cb");
}

TEST(CompareFrames, InsideARangeIsNoDifference) {
  FrameBounds range{Frame(2, 2, 10, 20, 30), Frame(2, 2, 12, 20, 30)};
  EXPECT_TRUE(WithinFrame(range, Frame(2, 2, 11, 20, 30)));
  EXPECT_EQ(Measure(range, Frame(2, 2, 15, 20, 30)).largest, 3);
  EXPECT_EQ(Measure(range, Frame(2, 2, 9, 20, 30)).largest, 1);
}

TEST(ComparePictures, FailuresAreWrittenForLooking) {
  const TempDirectory folder;
  const ScopedEnvironment output("LUMORA_TEST_OUTPUT", folder.file("shots"));
  EXPECT_FALSE(SameFrame(Frame(4, 2), Frame(4, 2, 99), Compare().named("my frame")));
  const std::string stem =
      folder.file("shots/ComparePictures.FailuresAreWrittenForLooking-my_frame-");
  for (const char* kind : {"expected.ppm", "actual.ppm", "difference.ppm"}) {
    const auto content = ReadFile(stem + kind);
    ASSERT_TRUE(content.has_value()) << kind;
    EXPECT_EQ(content->substr(0, 11), "P6\n4 2\n255\n");
    EXPECT_EQ(content->size(), 11u + 4 * 2 * 3);
  }
}

TEST(Pictures, ComeBackTheSameForASeed) {
  EXPECT_EQ(NoiseFrame(16, 8, 7).bytes, NoiseFrame(16, 8, 7).bytes);
  EXPECT_NE(NoiseFrame(16, 8, 7).bytes, NoiseFrame(16, 8, 8).bytes);
}

TEST(Pictures, TextureIsSmoothYetNeverFlat) {
  const Frame frame = TextureFrame(256, 256);
  int steepest = 0;
  int flat = 0;
  for (int y = 0; y < 256; ++y) {
    for (int x = 1; x < 256; ++x) {
      const int step = std::abs(frame.y(x, y) - frame.y(x - 1, y));
      steepest = std::max(steepest, step);
      flat += step == 0;
    }
  }
  EXPECT_LE(steepest, 10);
  EXPECT_LT(flat, 256 * 256 / 2);
}

}  // namespace
}  // namespace lumora::test
