// SPDX-License-Identifier: Apache-2.0
// Rectangles of whole pixels.
#include "lumora/geometry/rectangle.h"

#include <gtest/gtest.h>

#include <climits>

#include "geometry/rectangles.h"

namespace lumora {
namespace {

TEST(Rectangles, JoinToTheSmallestThatHoldsBoth) {
  EXPECT_EQ((PixelRectangle{2, 3, 10, 9}), Union({2, 5, 4, 7}, {10, 3, 2, 2}));
  EXPECT_EQ((PixelRectangle{2, 5, 4, 7}), Union({2, 5, 4, 7}, {0, 0, 0, 9}));
  EXPECT_EQ((PixelRectangle{2, 5, 4, 7}), Union({0, 0, 9, 0}, {2, 5, 4, 7}));
}

TEST(Rectangles, AreMeasuredInStepsOutwards) {
  EXPECT_EQ((PixelRectangle{1, 2, 2, 2}), InSteps({7, 5, 2, 3}, 4, 2));
  EXPECT_EQ((PixelRectangle{1, 3, 1, 2}), InSteps({4, 6, 4, 4}, 4, 2));
  EXPECT_EQ((PixelRectangle{}), InSteps({7, 5, 0, 3}, 4, 2));
}

TEST(Rectangles, AreEmptyWithoutPixelsInOneDirection) {
  EXPECT_TRUE(IsEmpty({}));
  EXPECT_TRUE(IsEmpty({1, 2, 0, 5}));
  EXPECT_TRUE(IsEmpty({1, 2, 5, -1}));
  EXPECT_FALSE(IsEmpty({-1, -2, 1, 1}));
}

// Cut by asking of every pixel whether it lies in both.
TEST(Rectangles, AreCutToTheImage) {
  constexpr int kWidth = 5, kHeight = 4;
  for (int x = -3; x <= 7; ++x) {
    for (int width = -2; width <= 11; ++width) {
      const PixelRectangle part{x, 1, width, 2};
      const PixelRectangle cut = CutToImage(part, kWidth, kHeight);
      int left = 0;
      for (int column = 0; column < kWidth; ++column) {
        const bool kept = column >= cut.x && column < cut.x + cut.width;
        EXPECT_EQ(column >= x && column < x + width, kept) << x << ", " << width;
        left += kept ? 1 : 0;
      }
      EXPECT_EQ(left, cut.width);
      EXPECT_EQ(1, cut.y);
      EXPECT_EQ(2, cut.height);
    }
  }
  const PixelRectangle all{0, 0, kWidth, kHeight};
  EXPECT_TRUE(IsEmpty(CutToImage({INT_MIN, -1, INT_MAX, INT_MAX}, kWidth, kHeight)));
  EXPECT_EQ(all, CutToImage({-7, -1, INT_MAX, INT_MAX}, kWidth, kHeight));
  EXPECT_TRUE(IsEmpty(CutToImage({INT_MAX, INT_MAX, INT_MAX, INT_MAX}, kWidth, kHeight)));
}

}  // namespace
}  // namespace lumora
