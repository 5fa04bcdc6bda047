// The weights that make skin retouching of the engine's whitening.
#include "pipeline/plan/skin_mask.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "pipeline/backends/gl/merge.h"
#include "pipeline/faces/landmarks.h"
#include "pipeline/faces/random_faces.h"
#include "pipeline/frames/touched_area.h"
#include "pipeline/plan/whitening_geometry.h"

namespace lumora::test {
namespace {

constexpr int kWidth = 416;
constexpr int kHeight = 384;
constexpr int kSkin = 150;

struct Portrait {
  explicit Portrait(PointF left_eye = {170, 150}, PointF right_eye = {250, 150})
      : face(FaceFromEyes(left_eye, right_eye)),
        outer(WhiteningEllipses(face)[kFaceEllipse]),
        mask(face, outer, kSkin, kWidth, kHeight) {}

  float WeightAt(PointF at) const {
    const PixelRectangle& bounds = mask.bounds();
    const int x = static_cast<int>(at.x), y = static_cast<int>(at.y);
    if (x < bounds.x || y < bounds.y || x >= bounds.x + bounds.width ||
        y >= bounds.y + bounds.height) {
      return 0;
    }
    std::vector<float> row(static_cast<size_t>(bounds.width));
    mask.Row(y, row.data());
    return row[static_cast<size_t>(x - bounds.x)];
  }

  Face face;
  Ellipse outer;
  SkinMask mask;
};

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

class MergeTest : public ::testing::Test {
 protected:
  MergeTest() : frame_(Filled(60, 100)), processed_(Filled(160, 140)) {}

  static PaddedFrame Filled(uint8_t luma, uint8_t chroma) {
    std::vector<uint8_t> y(kWidth * kHeight, luma), c(kWidth * kHeight / 2, chroma);
    PaddedFrame frame;
    frame.Load(
        {PixelFormat::NV21, kWidth, kHeight, {y.data(), c.data(), nullptr}, {kWidth, kWidth, 0}});
    return frame;
  }

  PaddedFrame frame_, processed_;
};

TEST_F(MergeTest, ACircleIsCopiedWithEveryChromaSampleThatItTouchesAndNothingElse) {
  struct Circle {
    PointF centre;
    double radius;
  };
  for (const Circle& circle : {Circle{{200, 180}, 50}, Circle{{3, 2}, 40}, Circle{{410, 380}, 33.3},
                               Circle{{101, 99}, 0.8}, Circle{{200, 180}, 1000}}) {
    PaddedFrame frame = Filled(60, 100);
    FacePlan face;
    face.centre = circle.centre;
    face.radius = circle.radius;
    face.bounds = CircleBounds(circle.centre, circle.radius, kWidth, kHeight);
    CopyCircle(processed_, face, &frame);
    const auto inside = [&circle](int x, int y) {
      return std::hypot(x + 0.5 - static_cast<double>(circle.centre.x),
                        y + 0.5 - static_cast<double>(circle.centre.y)) <= circle.radius;
    };
    for (int y = 0; y < kHeight; ++y) {
      for (int x = 0; x < kWidth; ++x) {
        ASSERT_EQ(frame.luma()[y * kWidth + x], inside(x, y) ? 160 : 60) << x << ", " << y;
        const int left = x / 2 * 2, top = y / 2 * 2;
        const bool touched = inside(left, top) || inside(left + 1, top) || inside(left, top + 1) ||
                             inside(left + 1, top + 1);
        ASSERT_EQ(frame.chroma()[y / 2 * kWidth + x], touched ? 140 : 100) << x << ", " << y;
      }
    }
  }
}

TEST_F(MergeTest, BlendingMovesEachPixelByItsWeight) {
  const Portrait portrait;
  std::vector<float> memory;
  Blend(processed_, portrait.mask, &frame_, &memory);
  const float share = portrait.mask.ShareOf(60);
  for (int y = 0; y < kHeight; y += 3) {
    for (int x = 0; x < kWidth; x += 3) {
      const float weight =
          share * portrait.WeightAt({static_cast<float>(x), static_cast<float>(y)});
      ASSERT_NEAR(frame_.luma()[y * kWidth + x], 60 + weight * 100, 0.51) << x << ", " << y;
    }
  }
}

TEST(Blend, KeepsEverySampleOutsideTheEllipseInFramesOfOddSides) {
  RandomFaces random(4);
  const int width = 701, height = 503, chroma_width = (width + 1) / 2;
  const std::vector<uint8_t> luma(static_cast<size_t>(width * height), 200);
  const std::vector<uint8_t> chroma(static_cast<size_t>(chroma_width * (height + 1)), 200);
  const ConstFrameView view = {PixelFormat::NV21,
                               width,
                               height,
                               {luma.data(), chroma.data(), nullptr},
                               {width, 2 * chroma_width, 0}};
  PaddedFrame before, processed, frame;
  before.Load(view);
  processed.Load(view);
  std::fill_n(processed.luma(), processed.width() * processed.height() * 3 / 2, uint8_t{0});
  std::vector<float> memory;
  int changed = 0;
  for (int i = 0; i < 60; ++i) {
    const std::vector<Face> faces = {random.In(width, height)};
    const SkinMask mask(faces[0], WhiteningEllipses(faces[0])[kFaceEllipse], kSkin, width, height);
    frame.Copy(before);
    Blend(processed, mask, &frame, &memory);
    const TouchedArea area(faces, {}, width, height);
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x) {
        const int row_start = frame.width() * y;
        if (frame.luma()[row_start + x] != 200) {
          ++changed;
          ASSERT_TRUE(area.HoldsPixel(x, y)) << x << ", " << y << " of face " << i;
        }
        const int chroma_start = frame.width() * (y / 2);
        if (frame.chroma()[chroma_start + x] != 200) {
          ASSERT_TRUE(area.HoldsChroma(x / 2, y / 2)) << x << ", " << y << " of face " << i;
        }
      }
    }
  }
  EXPECT_GT(changed, 100000);
}

TEST_F(MergeTest, BlendingMovesChromaByTheMeanWeightOfItsFourPixels) {
  const Portrait portrait({171, 151}, {249, 163});
  // Luma of every kind, so that the share differs from pixel to pixel.
  for (int i = 0; i < kWidth * kHeight; ++i) {
    frame_.luma()[i] = static_cast<uint8_t>(40 + i * 37 % 120);
  }
  const std::vector<uint8_t> before(frame_.luma(), frame_.luma() + kWidth * kHeight);
  for (int i = 0; i < kWidth * kHeight / 2; i += 2) {
    processed_.chroma()[i] = 200;  // Cr up, Cb down
    processed_.chroma()[i + 1] = 20;
  }
  std::vector<float> memory;
  Blend(processed_, portrait.mask, &frame_, &memory);
  const auto weight = [&](int x, int y) {
    return portrait.mask.ShareOf(before[static_cast<size_t>(y * kWidth + x)]) *
           portrait.WeightAt({static_cast<float>(x), static_cast<float>(y)});
  };
  for (int y = 0; y < kHeight; y += 2) {
    for (int x = 0; x < kWidth; x += 2) {
      const float mean =
          (weight(x, y) + weight(x + 1, y) + weight(x, y + 1) + weight(x + 1, y + 1)) / 4;
      const uint8_t* const pair = frame_.chroma() + y / 2 * kWidth + x;
      ASSERT_NEAR(pair[0], 100 + mean * 100, 0.51) << x << ", " << y;
      ASSERT_NEAR(pair[1], 100 - mean * 80, 0.51) << x << ", " << y;
    }
  }
}

}  // namespace
}  // namespace lumora::test
