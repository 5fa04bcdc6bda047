// SPDX-License-Identifier: Apache-2.0
// The weights that make skin retouching of the engine's whitening.
#include "pipeline/plan/skin_mask.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "pipeline/faces/landmarks.h"
#include "pipeline/faces/random_faces.h"
#include "pipeline/frames/touched_area.h"
#include "pipeline/plan/masked_portrait.h"
#include "pipeline/plan/whitening_geometry.h"

namespace lumora::test {
namespace {

TEST(SkinMask, WhitensCheeksAndForeheadMoreThanEyesBrowsAndLips) {
  const Portrait portrait;
  const FaceLandmarks& at = portrait.face.landmarks;
  const float skin = portrait.WeightAt(at.nose_tip);
  EXPECT_GT(skin, 0.4f);
  EXPECT_GT(portrait.WeightAt({at.nasion.x, at.left_brow.top.y - 10}), 0.3f);
  EXPECT_LT(portrait.WeightAt(Centre(at.left_eye)), skin / 2);
  EXPECT_LT(portrait.WeightAt(Centre(at.right_eye)), skin / 2);
  EXPECT_LT(portrait.WeightAt(Middle(at.mouth.top, at.mouth.bottom)), skin / 2);
  EXPECT_LT(portrait.WeightAt(Centre(at.left_brow)), 0.7f * skin);
}

TEST(SkinMask, EndsWithoutALine) {
  const Portrait portrait;
  const PixelRectangle& bounds = portrait.mask.bounds();
  std::vector<float> above(static_cast<size_t>(bounds.width), 0.f), row(above);
  for (int y = bounds.y; y < bounds.y + bounds.height; ++y) {
    portrait.mask.Row(y, row.data());
    for (size_t x = 0; x < row.size(); ++x) {
      ASSERT_GE(row[x], 0.f);
      ASSERT_LE(row[x], 1.f);
      const float before = x == 0 ? 0 : row[x - 1];
      // The steepest slopes are those of the eyes, which are 15 pixels high here.
      ASSERT_LT(std::abs(row[x] - before), 0.25f) << x + static_cast<size_t>(bounds.x) << "," << y;
      ASSERT_LT(std::abs(row[x] - above[x]), 0.25f) << x << "," << y;
      const float position =
          PositionIn(portrait.outer, 1, 0,
                     {static_cast<float>(bounds.x) + static_cast<float>(x) + 0.5f,
                      static_cast<float>(y) + 0.5f});
      if (position > 0.97f) {
        ASSERT_LT(row[x], 0.12f) << position;
      }
      if (position > 1.05f) {
        ASSERT_EQ(row[x], 0.f) << position;
      }
    }
    above = row;
  }
}

TEST(SkinMask, NeverAsksForMoreThanTheEnginesOwnBlend) {
  // The engine blends by 1 - position; a plateau above that would have to be invented.
  const Portrait portrait;
  const float centre = portrait.WeightAt(portrait.outer.centre);
  EXPECT_LE(centre, 0.56f);
}

TEST(SkinMask, LeavesHairAndShadowsAsDarkAsTheyAre) {
  const Portrait portrait;
  EXPECT_EQ(portrait.mask.ShareOf(0), 0);
  EXPECT_EQ(portrait.mask.ShareOf(40), 0);
  EXPECT_EQ(portrait.mask.ShareOf(kSkin), 1);
  EXPECT_EQ(portrait.mask.ShareOf(255), 1);
  for (int luma = 1; luma < 256; ++luma) {
    EXPECT_GE(portrait.mask.ShareOf(static_cast<uint8_t>(luma)),
              portrait.mask.ShareOf(static_cast<uint8_t>(luma - 1)));
  }
}

TEST(SkinMask, StaysInTheFrameForFacesAtEveryEdge) {
  for (const float x : {-10.f, 0.f, 200.f, 415.f, 430.f}) {
    for (const float y : {-10.f, 0.f, 200.f, 383.f, 420.f}) {
      const Portrait portrait({x - 20, y}, {x + 20, y});
      const PixelRectangle& bounds = portrait.mask.bounds();
      EXPECT_GE(bounds.x, 0);
      EXPECT_GE(bounds.y, 0);
      EXPECT_LE(bounds.x + bounds.width, kWidth);
      EXPECT_LE(bounds.y + bounds.height, kHeight);
      for (const int number : {bounds.x, bounds.y, bounds.width, bounds.height}) {
        EXPECT_EQ(number % 2, 0);
      }
    }
  }
}

TEST(SkinMask, WeighsNothingOutsideTheEllipseThatIsTold) {
  RandomFaces random(3);
  const int width = 1281, height = 959;
  SkinMask mask;
  std::vector<float> row;
  int64_t inside = 0;
  for (int i = 0; i < 1500; ++i) {
    const Face face = random.In(width, height);
    const Ellipse outer = WhiteningEllipses(face)[kFaceEllipse];
    if (outer.half_along == 0) continue;
    mask.Make(face, outer, kSkin, width, height);
    const PixelRectangle& bounds = mask.bounds();
    if (bounds.width == 0 || bounds.height == 0) continue;
    row.resize(static_cast<size_t>(bounds.width));
    for (int sample = 0; sample < 8; ++sample) {
      const int y = std::min(bounds.y + random.WholeBetween(0, bounds.height - 1), height - 1);
      mask.Row(y, row.data());
      for (int x = bounds.x; x < std::min(bounds.x + bounds.width, width); ++x) {
        const float weight = row[static_cast<size_t>(x - bounds.x)];
        if (weight == 0) continue;
        ASSERT_TRUE(weight > 0 && weight <= 1) << weight << " of face " << i;
        ASSERT_TRUE(Holds(outer, x + 0.5, y + 0.5))
            << weight << " at " << x << ", " << y << " of face " << i;
        ++inside;
      }
    }
  }
  EXPECT_GT(inside, 100000);
}

TEST(SkinMask, WeighsEveryPixelOfTheEllipseButItsOutermostOnes) {
  const Portrait portrait({60, 150}, {310, 170});
  const PixelRectangle& bounds = portrait.mask.bounds();
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      Ellipse inner = portrait.outer;
      inner.half_along *= 0.95f;
      inner.half_across *= 0.95f;
      if (!Holds(inner, x + 0.5, y + 0.5)) continue;
      ASSERT_GT(portrait.WeightAt({static_cast<float>(x), static_cast<float>(y)}), 0)
          << x << ", " << y;
    }
  }
  EXPECT_GT(bounds.width, 160) << "no grid was interpolated";
}

TEST(SkinMask, GivesKernelsTheNumbersOfEachRow) {
  for (const int width : {kWidth, kWidth - 117}) {
    const Face face = FaceFromEyes({130, 150}, {310, 170});
    const SkinMask mask(face, WhiteningEllipses(face)[kFaceEllipse], kSkin, width, kHeight);
    const PixelRectangle& bounds = mask.bounds();
    std::vector<float> weights(static_cast<size_t>(bounds.width));
    int held = 0;
    for (int y = bounds.y; y < bounds.y + bounds.height; ++y) {
      mask.Row(y, weights.data());
      const MaskRow row = mask.RowAt(y);
      ASSERT_GE(row.held.begin, 0);
      ASSERT_LE(row.held.end, std::min(bounds.width, width - bounds.x));
      for (int x = 0; x < std::min(bounds.width, width - bounds.x); ++x) {
        float expected = 0;
        if (x >= row.held.begin && x < row.held.end) {
          const int i = x / row.step;
          const float right = static_cast<float>(x % row.step) / static_cast<float>(row.step);
          const float top = row.above[i] + right * (row.above[i + 1] - row.above[i]);
          const float bottom = row.below[i] + right * (row.below[i + 1] - row.below[i]);
          expected = top + row.down * (bottom - top);
          ++held;
        }
        ASSERT_EQ(weights[static_cast<size_t>(x)], expected) << x << ", " << y;
      }
    }
    EXPECT_GT(held, 10000);
  }
}

}  // namespace
}  // namespace lumora::test
