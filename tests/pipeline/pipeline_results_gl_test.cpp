// SPDX-License-Identifier: Apache-2.0
// What the pipeline makes of frames, on whatever display there is.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "pipeline/frames/touched_area.h"
#include "pipeline/pipeline_fixture.h"
#include "pipeline/plan/warp_geometry.h"
#include "pipeline/plan/warp_model.h"
#include "pipeline/smooth_samples.h"

namespace lumora::test {
namespace {

constexpr std::pair<int, int> kFrameSizes[] = {{64, 64}, {97, 133}, {160, 120}, {201, 99}};

TEST_F(PipelineTest, SlimZeroIsAnExactCopyInEveryFormat) {
  for (const auto& [width, height] : kFrameSizes) {
    const Samples samples = NoiseSamples(width, height);
    for (const PixelFormat from : kAllFormats) {
      for (const PixelFormat to : kAllFormats) {
        FrameMemory in(from, width, height, 3);
        FrameMemory out(to, width, height, 11);
        in.Fill(samples);
        const Face face = FaceIn(width, height);
        Report report;
        ASSERT_TRUE(pipeline_->Process({in.const_view(), out.view(), face, kOff}, &report).ok());
        EXPECT_TRUE(out.Read() == samples);
        EXPECT_TRUE(out.GuardsIntact());
        EXPECT_EQ(report.chain, ChainUsed::None);
        EXPECT_EQ(report.faces, 0);
      }
    }
  }
}

TEST_F(PipelineTest, AFrameWithoutFacesIsAnExactCopy) {
  const Samples samples = NoiseSamples(97, 133);
  Report report;
  EXPECT_TRUE(Through(*pipeline_, samples, 97, 133, {}, kFull, &report) == samples);
  EXPECT_EQ(report.chain, ChainUsed::None);
}

TEST_F(PipelineTest, ChangesPixelsInsideTheCircleOnlyInEveryFormat) {
  for (const auto& [width, height] : kFrameSizes) {
    const Samples samples = NoiseSamples(width, height);
    const std::vector<Face> faces = {FaceIn(width, height)};
    for (const PixelFormat from : kAllFormats) {
      for (const PixelFormat to : kAllFormats) {
        FrameMemory in(from, width, height, 5);
        FrameMemory out(to, width, height, 13);
        in.Fill(samples);
        Report report;
        const Status status =
            pipeline_->Process({in.const_view(), out.view(), faces, kFull}, &report);
        ASSERT_TRUE(status.ok()) << status.message;
        const TouchedArea area({}, faces, width, height);
        const AreaChanges changes = CountChanges(samples, out.Read(), width, height, area);
        EXPECT_EQ(changes.outside, 0) << width << " x " << height;
        EXPECT_GT(changes.inside, width * height / 50) << width << " x " << height;
        EXPECT_TRUE(out.GuardsIntact());
        EXPECT_TRUE(in.Read() == samples);
        EXPECT_EQ(report.chain, ChainUsed::Preview);
        EXPECT_EQ(report.faces, 1);
      }
    }
  }
}

TEST_F(PipelineTest, TakesEveryPixelFromWhereTheWarpSays) {
  const int width = 192, height = 160;
  const Samples samples = SmoothSamples(width, height);
  for (const float roll : {0.f, 30.f, -90.f}) {
    const float along_x = std::cos(roll * 0.0174533f), along_y = std::sin(roll * 0.0174533f);
    const Face face = FaceFromEyes({100 - 14 * along_x, 78 - 14 * along_y},
                                   {100 + 14 * along_x, 78 + 14 * along_y});
    const Samples result = Through(*pipeline_, samples, width, height, {face}, kFull);
    const WarpModel warp(*MakeFaceRecord(face, width, height, 100), width, height, kBeautyLevel);
    double largest_move = 0;
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x) {
        const Vector from = warp.Source({x + 0.5, y + 0.5});
        largest_move = std::max(largest_move, std::hypot(from.x - x - 0.5, from.y - y - 0.5));
        const double expected = Interpolated(samples.y, width, height, from.x, from.y);
        // One for the texture unit's weights of 1/256, one for rounding.
        ASSERT_NEAR(result.y[static_cast<size_t>(y * width + x)], expected, 2)
            << x << ", " << y << " roll " << roll;
      }
    }
    EXPECT_GT(largest_move, 2.0) << "the warp hardly moves anything";
  }
}

TEST_F(PipelineTest, AFramesResultDoesNotDependOnTheFramesBefore) {
  const Samples samples = NoiseSamples(160, 120);
  const std::vector<Face> one = {FaceIn(160, 120)};
  const std::vector<Face> two = {FaceIn(160, 120, 0.3f), FaceIn(160, 120, 0.7f)};
  const Samples first = Through(*pipeline_, samples, 160, 120, one, kFull);
  const Samples first_of_two = Through(*pipeline_, samples, 160, 120, two, kFull);
  Through(*pipeline_, NoiseSamples(64, 64, 2), 64, 64, {FaceIn(64, 64)}, kFull);
  for (int i = 0; i < 3; ++i) {
    EXPECT_TRUE(Through(*pipeline_, samples, 160, 120, one, kFull) == first) << i;
    EXPECT_TRUE(Through(*pipeline_, samples, 160, 120, two, kFull) == first_of_two) << i;
  }
}

TEST_F(PipelineTest, SlimsFacesThatAreApartAsIfEachWereAlone) {
  const int width = 256, height = 128;
  const Samples samples = NoiseSamples(width, height);
  const Face left = FaceIn(width, height, 0.25f), right = FaceIn(width, height, 0.75f);
  const Samples left_only = Through(*pipeline_, samples, width, height, {left}, kFull);
  const Samples right_only = Through(*pipeline_, samples, width, height, {right}, kFull);
  Report report;
  const Samples both = Through(*pipeline_, samples, width, height, {left, right}, kFull, &report);
  EXPECT_EQ(report.faces, 2);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const auto i = static_cast<size_t>(y * width + x);
      const Samples& alone = x < width / 2 ? left_only : right_only;
      // The second face is sampled from an image with another wrap mode, whose arithmetic may move
      // the texture unit's weights by one step of 1/256.
      ASSERT_NEAR(both.y[i], alone.y[i], 1) << x << ", " << y;
    }
  }
}

TEST_F(PipelineTest, ProcessesAFrameInPlace) {
  for (const PixelFormat format : kAllFormats) {
    const Samples samples = NoiseSamples(97, 133);
    const std::vector<Face> faces = {FaceIn(97, 133)};
    FrameMemory frame(format, 97, 133, 6);
    frame.Fill(samples);
    const Status status = pipeline_->Process({frame.const_view(), frame.view(), faces, kFull});
    ASSERT_TRUE(status.ok()) << status.message;
    EXPECT_TRUE(frame.Read() == Through(*pipeline_, samples, 97, 133, faces, kFull));
    EXPECT_TRUE(frame.GuardsIntact());
  }
}

TEST_F(PipelineTest, ALostFaceDoesNotGoOnWarpingItsOldPlace) {
  const Samples samples = NoiseSamples(160, 120);
  const Face found = FaceIn(160, 120);
  const Face lost = FaceFromEyes({-300, 20}, {-280, 20});
  const Samples slimmed = Through(*pipeline_, samples, 160, 120, {found}, kFull);
  ASSERT_FALSE(slimmed == samples);

  Report report;
  EXPECT_TRUE(Through(*pipeline_, samples, 160, 120, {lost}, kFull, &report) == samples);
  EXPECT_EQ(report.faces, 0);
  // A second warp of the same place would go twice as far.
  EXPECT_TRUE(Through(*pipeline_, samples, 160, 120, {found, lost, Face{}}, kFull, &report) ==
              slimmed);
  EXPECT_EQ(report.faces, 1);
}

}  // namespace
}  // namespace lumora::test
