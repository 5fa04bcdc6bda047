// SPDX-License-Identifier: Apache-2.0
// Which blocks a capture processes, against counting in whole numbers.
#include "lumora/geometry/blocks.h"

#include <gtest/gtest.h>

#include <climits>
#include <utility>
#include <vector>

#include "geometry/rectangles.h"

namespace lumora {
namespace {

TEST(Blocks, SlimmingTakesAsManyOnEachSideAsTheFaceNeeds) {
  for (const int block : {1, 3, 384, 1280, 2048}) {
    for (int size = 0; size <= 70000; size += size < 3000 ? 1 : 97) {
      int reach = size / block * block;
      if (reach < size) reach += block;
      const PixelRectangle area = BlocksAroundFace(500, 40, size, block, 2 * block);
      ASSERT_EQ(500 - reach, area.x) << size << " by " << block;
      ASSERT_EQ(2 * reach, area.width) << size << " by " << block;
      ASSERT_EQ(40 - area.height / 2, area.y);
      ASSERT_EQ(0, area.height % (4 * block));
      ASSERT_GE(area.height, area.width);
    }
  }
}

TEST(Blocks, WhiteningTakesHalfABlockMore) {
  for (const int block : {2, 384, 1536}) {
    for (int half = 0; half <= 6000; half += 7) {
      // The smallest number of blocks whose reach is at least the extent and half a block.
      int blocks = 0;
      while (2 * blocks * block < 2 * half + block) ++blocks;
      const PixelRectangle area = BlocksAroundExtent(100, 200, half, 0, block, block);
      ASSERT_EQ(100 - blocks * block, area.x) << half << " by " << block;
      ASSERT_EQ(2 * blocks * block, area.width) << half << " by " << block;
      ASSERT_EQ((PixelRectangle{area.x, 200 - block, area.width, 2 * block}), area);
    }
  }
}

TEST(Blocks, AnyNumbersStayInts) {
  for (const int place : {INT_MIN, 0, INT_MAX}) {
    for (const int size : {0, 1, INT_MAX}) {
      const PixelRectangle slimmed = BlocksAroundFace(place, place, size, 384, 384);
      EXPECT_GE(slimmed.width, 0);
      EXPECT_LE(slimmed.x, place);
      const PixelRectangle whitened = BlocksAroundExtent(place, place, size, size, 384, 384);
      EXPECT_GT(whitened.width, 0);
      EXPECT_LE(whitened.x, place);
    }
  }
}

TEST(Blocks, WalksStartEvenAndEndWithTheFrame) {
  const auto walk = [](const PixelRectangle& area, int width, int height) {
    std::vector<std::pair<int, int>> origins;
    ForEachBlock(ClipToFrame(area, width, height), 10, 20, [&](int x, int y) {
      origins.emplace_back(x, y);
      return true;
    });
    return origins;
  };
  using Origins = std::vector<std::pair<int, int>>;
  EXPECT_EQ((Origins{{4, 6}, {14, 6}, {4, 26}, {14, 26}}), walk({3, 5, 20, 40}, 100, 100));
  EXPECT_EQ((Origins{{0, 0}, {10, 0}}), walk({-15, -3, 40, 40}, 12, 20));
  EXPECT_EQ(Origins{}, walk({100, 0, 10, 10}, 100, 100));
  EXPECT_EQ(Origins{}, walk({INT_MIN, 0, INT_MAX, 10}, 100, 100));
  EXPECT_EQ((Origins{{98, 98}}), walk({97, 98, INT_MAX, INT_MAX}, 100, 100));
}

TEST(Blocks, WalksStopWhereTheVisitorSaysSo) {
  int visits = 0;
  EXPECT_FALSE(ForEachBlock({0, 0, 30, 30}, 10, 10, [&](int, int) { return ++visits < 4; }));
  EXPECT_EQ(4, visits);
  EXPECT_TRUE(ForEachBlock({0, 0, 30, 30}, 10, 10, [](int, int) { return true; }));
}

TEST(Blocks, FacesAreWorthwhileFromATwentiethInEachDirection) {
  EXPECT_TRUE(IsWorthwhile({-5, 9, 64, 48}, 1280, 960));
  EXPECT_TRUE(IsWorthwhile({0, 0, 64, 48}, 1299, 979)) << "a twentieth is cut to whole pixels";
  EXPECT_FALSE(IsWorthwhile({0, 0, 63, 48}, 1280, 960));
  EXPECT_FALSE(IsWorthwhile({0, 0, 64, 47}, 1280, 960));
}

TEST(Blocks, CornersCountStrictlyInsideOnly) {
  const PixelRectangle face{10, 10, 20, 20};
  EXPECT_TRUE(HoldsBlockCorner(face, {15, 15, 100, 100}));
  EXPECT_TRUE(HoldsBlockCorner(face, {0, 0, 15, 15}));
  EXPECT_FALSE(HoldsBlockCorner(face, {0, 0, 10, 10})) << "an edge is shared";
  EXPECT_FALSE(HoldsBlockCorner(face, {10, 10, 20, 20})) << "both edges are shared";
  EXPECT_FALSE(HoldsBlockCorner(face, {0, 0, 100, 100})) << "the block holds the rectangle";
  EXPECT_FALSE(HoldsBlockCorner(face, {15, 0, 5, 5}));
}

}  // namespace
}  // namespace lumora
