// SPDX-License-Identifier: Apache-2.0
// What is taken back of the engine's result, and what stays as it was.
#include "pipeline/backends/gl/merge.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "pipeline/faces/random_faces.h"
#include "pipeline/frames/frame_memory.h"
#include "pipeline/frames/touched_area.h"
#include "pipeline/plan/masked_portrait.h"

namespace lumora::test {
namespace {

/// The plan of a face with that circle, in a padded frame of that size.
FacePlan CirclePlan(PointF centre, double radius, int width, int height) {
  FacePlan face;
  face.centre = centre;
  face.radius = radius;
  face.bounds = CircleBounds(centre, radius, width, height);
  return face;
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
    CopyCircle(processed_, CirclePlan(circle.centre, circle.radius, kWidth, kHeight), &frame);
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
  Blend(processed_, {}, portrait.mask, &frame_, &memory);
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
    Blend(processed, {}, mask, &frame, &memory);
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
  Blend(processed_, {}, portrait.mask, &frame_, &memory);
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

TEST(StoreCircle, GivesFramesOfEveryFormatTheSamplesOfTheCircleAndNothingElse) {
  constexpr int kOddWidth = 121, kOddHeight = 75;
  const Samples before = NoiseSamples(kOddWidth, kOddHeight);
  Samples processed = before;
  for (std::vector<uint8_t>* plane : {&processed.y, &processed.cb, &processed.cr}) {
    for (uint8_t& sample : *plane) sample ^= 0xFF;
  }
  FrameMemory result(PixelFormat::NV21, kOddWidth, kOddHeight);
  result.Fill(processed);
  PaddedFrame padded;
  padded.Load(result.const_view());
  const PointF centres[] = {{60, 40}, {118, 73}, {2, 1}};
  for (const PointF& centre : centres) {
    const FacePlan face = CirclePlan(centre, 21.5, padded.width(), padded.height());
    for (const PixelFormat format : kAllFormats) {
      FrameMemory out(format, kOddWidth, kOddHeight, 3);
      out.Fill(before);
      StoreCircle(padded, face, out.view());
      EXPECT_TRUE(out.GuardsIntact());
      // The same by way of a padded frame.
      FrameMemory expected(format, kOddWidth, kOddHeight, 3);
      expected.Fill(before);
      PaddedFrame whole;
      whole.Load(expected.const_view());
      CopyCircle(padded, face, &whole);
      whole.Store(expected.view());
      EXPECT_TRUE(out.Read() == expected.Read());
      EXPECT_FALSE(out.Read() == before);
    }
  }
}

}  // namespace
}  // namespace lumora::test
