// SPDX-License-Identifier: Apache-2.0
// Slimming through the engine's capture chain.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <utility>
#include <vector>

#include "pipeline/frames/touched_area.h"
#include "pipeline/pipeline_fixture.h"
#include "pipeline/plan/warp_geometry.h"
#include "pipeline/plan/warp_model.h"
#include "pipeline/smooth_samples.h"

namespace lumora::test {
namespace {

class SlimmingCaptureTest : public PipelineTest {
 protected:
  static Samples Slimmed(const Samples& samples, int width, int height,
                         const std::vector<Face>& faces, Chain chain, Report* report = nullptr) {
    FrameMemory in(PixelFormat::I420, width, height);
    FrameMemory out(PixelFormat::I420, width, height);
    in.Fill(samples);
    const Status status =
        pipeline_->Process({in.const_view(), out.view(), faces, kFull, chain}, report);
    EXPECT_TRUE(status.ok()) << status.message;
    return out.Read();
  }
};

TEST_F(SlimmingCaptureTest, TakesEveryPixelSmoothlyFromWhereTheWarpSays) {
  // One frame as a single block, one in blocks of 384 pixels that split the face.
  for (const auto& [width, height] : {std::pair(192, 160), std::pair(1312, 800)}) {
    const Samples samples = SmoothSamples(width, height);
    const float x = 0.5f * static_cast<float>(width), y = 0.45f * static_cast<float>(height);
    const Face face = FaceFromEyes({x - 0.08f * static_cast<float>(width), y},
                                   {x + 0.08f * static_cast<float>(width), y});
    const Samples result = Slimmed(samples, width, height, {face}, Chain::Capture);
    const WarpModel warp(*MakeFaceRecord(face, width, height, 100, Chain::Capture), width, height,
                         kBeautyLevel, true);
    double largest_move = 0;
    for (int row = 0; row < height; ++row) {
      for (int column = 0; column < width; ++column) {
        const Vector from = warp.Source({column + 0.5, row + 0.5});
        largest_move =
            std::max(largest_move, std::hypot(from.x - column - 0.5, from.y - row - 0.5));
        ASSERT_NEAR(result.y[static_cast<size_t>(row * width + column)],
                    Interpolated(samples.y, width, height, from.x, from.y), 3)
            << width << " x " << height << " at " << column << ", " << row;
      }
    }
    EXPECT_GT(largest_move, 2);
    // Chroma is sampled smoothly in every block alike, from one of the pixels of each sample.
    const int chroma_width = width / 2;
    for (int row = 0; row < height / 2; ++row) {
      for (int column = 0; column < chroma_width; ++column) {
        const Vector from = warp.Source({2.0 * column + 1, 2.0 * row + 1});
        ASSERT_NEAR(result.cr[static_cast<size_t>(row * chroma_width + column)],
                    Interpolated(samples.cr, chroma_width, height / 2, from.x / 2, from.y / 2), 16)
            << width << " x " << height << " at " << column << ", " << row;
      }
    }
  }
}

TEST_F(SlimmingCaptureTest, FacesThatOverlapAreSlimmedOneAfterTheOther) {
  const int width = 1312, height = 700;
  const Samples samples = SmoothSamples(width, height);
  const std::vector<Face> faces = {FaceFromEyes({500, 300}, {600, 300}),
                                   FaceFromEyes({640, 330}, {740, 330})};
  const Samples both = Slimmed(samples, width, height, faces, Chain::Capture);
  const Samples first = Slimmed(samples, width, height, {faces[0]}, Chain::Capture);
  EXPECT_TRUE(Slimmed(first, width, height, {faces[1]}, Chain::Capture) == both);
  EXPECT_FALSE(both == first);
}

TEST_F(SlimmingCaptureTest, KeepsEverythingOutsideTheCirclesForFacesAtEveryBorder) {
  const int width = 1312, height = 420;
  const Samples samples = NoiseSamples(width, height);
  for (const float x : {1.f, 655.f, 1310.f}) {
    for (const float y : {1.f, 200.f, 418.f}) {
      const std::vector<Face> faces = {FaceFromEyes({x - 25, y}, {x + 25, y})};
      Report report;
      const Samples result = Slimmed(samples, width, height, faces, Chain::Capture, &report);
      const AreaChanges changes =
          CountChanges(samples, result, width, height, TouchedArea({}, faces, width, height));
      EXPECT_EQ(changes.outside, 0) << x << ", " << y;
      if (report.faces > 0) {
        EXPECT_GT(changes.inside, 100) << x << ", " << y;
      }
    }
  }
}

TEST_F(SlimmingCaptureTest, DiffersLittleFromThePreviewChain) {
  const int width = 1312, height = 1000;
  const Samples samples = SmoothSamples(width, height);
  const std::vector<Face> faces = {FaceFromEyes({580, 400}, {720, 400})};
  const Samples preview = Slimmed(samples, width, height, faces, Chain::Preview);
  const Samples capture = Slimmed(samples, width, height, faces, Chain::Capture);
  double apart = 0, moved = 0;
  for (size_t i = 0; i < samples.y.size(); ++i) {
    apart += std::abs(preview.y[i] - capture.y[i]);
    moved += std::abs(preview.y[i] - samples.y[i]);
  }
  EXPECT_LT(apart, 0.25 * moved);
}

}  // namespace
}  // namespace lumora::test
