// SPDX-License-Identifier: Apache-2.0
// Sizes that follow from a frame's size.
#include "lumora/geometry/frame_sizes.h"

#include <gtest/gtest.h>

namespace {

TEST(FrameSizes, PackedTargetsHoldFourSamplesATexelInRowsOf32Texels) {
  const struct {
    int frame, packed;
  } kRows[] = {{16, 128},  {20, 128},  {128, 128}, {131, 128},   {132, 256},   {384, 384},
               {480, 512}, {640, 640}, {720, 768}, {1000, 1024}, {1024, 1024}, {1280, 1280}};
  for (const auto& row : kRows) EXPECT_EQ(row.packed, lumora::PackedWidth(row.frame)) << row.frame;
  // Whatever the width: no packed row is shorter than the frame's, apart from up to three samples
  // that the whole texels of a width that is no multiple of four leave out.
  for (int width = 1; width <= 600; ++width) {
    EXPECT_GE(lumora::PackedWidth(width), width / 4 * 4) << width;
    EXPECT_EQ(0, lumora::PackedWidth(width) % 128) << width;
  }
}

TEST(FrameSizes, WideCapturesGoInBlocksAndOthersAtOnce) {
  const struct {
    int width, height, working_width, working_height;
  } kRows[] = {{1280, 960, 1280, 960},   {1281, 960, 384, 384},    {1920, 1080, 384, 384},
               {1280, 2000, 1280, 1536}, {1280, 1536, 1280, 1536}, {640, 480, 640, 480},
               {5000, 3000, 384, 384},   {1281, 16, 384, 384},     {20, 20, 20, 20}};
  for (const auto& row : kRows) {
    const lumora::WorkingSize size = lumora::CaptureWorkingSize(row.width, row.height);
    EXPECT_EQ(row.working_width, size.width) << row.width << " x " << row.height;
    EXPECT_EQ(row.working_height, size.height) << row.width << " x " << row.height;
  }
}

TEST(FrameSizes, CapturesAreLargeAbove4096InEitherDirection) {
  EXPECT_FALSE(lumora::IsLargeCapture(4096, 4096));
  EXPECT_TRUE(lumora::IsLargeCapture(4097, 100));
  EXPECT_TRUE(lumora::IsLargeCapture(100, 4097));
  EXPECT_TRUE(lumora::IsLargeCapture(5000, 3000));
  EXPECT_FALSE(lumora::IsLargeCapture(0, 0));
  EXPECT_TRUE(lumora::IsLargeCapture(-1, 10)) << "sizes count as unsigned";
}

TEST(FrameSizes, FramesLieAcrossWhenTheSourceIsNarrowerInShape) {
  EXPECT_TRUE(lumora::LiesAcross(480, 640, 640, 480));
  EXPECT_FALSE(lumora::LiesAcross(640, 480, 640, 480));
  EXPECT_FALSE(lumora::LiesAcross(640, 480, 480, 640));
  EXPECT_FALSE(lumora::LiesAcross(1280, 960, 640, 480)) << "the same shape in another size";
  EXPECT_TRUE(lumora::LiesAcross(640, 480, 642, 480));
}

}  // namespace
