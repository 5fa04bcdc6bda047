// SPDX-License-Identifier: Apache-2.0
// What captures of unusual widths look like after whitening.
#include <gtest/gtest.h>

#include <vector>

#include "engine/capture_scene.h"

namespace lumora::test {
namespace {

constexpr int kNoEffect = 0;  // shifts nothing, but takes every block through the store
constexpr WhiteningRequest kThroughTheStore{0, 0, kNoEffect};

/// Intensity in the store, left of and right of the edge: 60 and 200.
bool IsBright(const Image& store, int x, int y) {
  return store.pixel(x, y)[2] > 130;
}

/// The first column of a row in which dark turns into bright.
int EdgeOf(const Image& store, int y, int width) {
  for (int x = 1; x < width; ++x) {
    if (!IsBright(store, x - 1, y) && IsBright(store, x, y)) return x;
  }
  return -1;
}

/// The edges in rows of the store after a capture with an upright edge in the middle went through.
std::vector<int> EdgesOf(int width, int height, const std::vector<int>& rows) {
  Bytes capture(LumaSize(width, height) + ChromaSize(width, height), 128);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      capture[LumaSize(width, y) + static_cast<size_t>(x)] = x < width / 2 ? 60 : 200;
    }
  }
  CaptureScene scene(width, height);
  EXPECT_TRUE(scene.whiten(capture, {PortraitFace(width / 2, height / 2, 60)}, kThroughTheStore));
  const Image store = scene.store();
  std::vector<int> edges;
  for (const int row : rows) edges.push_back(EdgeOf(store, row, width));
  return edges;
}

// Such a block is expanded with rows of its own width, into an image whose rows are padded: each
// row starts 16 pixels further on than the one above, here 1008 in rows of 1024.
TEST(CaptureQuirks, WidthsBetweenMultiplesOf32AreSheared) {
  const std::vector<int> rows = {0, 6, 12, 24};
  const std::vector<int> sheared = EdgesOf(1008, 200, rows);
  for (size_t i = 0; i < rows.size(); ++i) {
    // The padded image is then drawn onto one of the true width.
    const double expected = (504 - 16 * rows[i]) * 1008.0 / 1024.0;
    EXPECT_NEAR(expected, sheared[i], 2) << "row " << rows[i];
  }
  for (const int edge : EdgesOf(1024, 200, rows)) EXPECT_EQ(512, edge);
}

// The widened block starts on an odd column, that is with the second sample of a pair.
TEST(CaptureQuirks, OddWidthsExchangeChromaAtTheRightEdge) {
  constexpr int kWidth = 1537;
  constexpr int kHeight = 500;
  Bytes capture(LumaSize(kWidth, kHeight) + ChromaSize(kWidth, kHeight), 120);
  for (size_t y = 0; y < kHeight / 2; ++y) {
    unsigned char* row = capture.data() + LumaSize(kWidth, kHeight) + y * kWidth;
    for (size_t x = 0; x < kWidth; ++x) row[x] = x % 2 == 0 ? 170 : 90;  // Cr, Cb
  }
  CaptureScene scene(kWidth, kHeight);
  ASSERT_TRUE(scene.whiten(capture, {PortraitFace(1480, 250, 60)}, kThroughTheStore));
  const Image store = scene.store();
  // Blocks start at 1096 and at 1480; the second has 57 columns and becomes one of 64 from 1473 on.
  // Of (Y, Cr, Cb) = (120, 170, 90) the colour is (179, 103, 53), exchanged it is (67, 133, 194).
  constexpr int kOrange = 255 * 50 / 126 / 6;
  constexpr int kBlue = 255 * (4 * 127 - 66) / 127 / 6;
  for (const int y : {10, 200, 490}) {
    EXPECT_NEAR(kOrange, store.pixel(1300, y)[0], 2) << y;
    EXPECT_NEAR(kBlue, store.pixel(1500, y)[0], 2) << y;
    EXPECT_NEAR(kBlue, store.pixel(1536, y)[0], 2) << y;
  }
}

}  // namespace
}  // namespace lumora::test
