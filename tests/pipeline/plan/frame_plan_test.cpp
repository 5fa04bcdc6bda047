// SPDX-License-Identifier: Apache-2.0
// What a look does to the faces of a frame, before anything is drawn.
#include "pipeline/plan/frame_plan.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "pipeline/frames/frame_memory.h"

namespace lumora::test {
namespace {

constexpr int kPlanWidth = 640, kPlanHeight = 480;
constexpr Look kBoth = {50, 60, 30};

Face FaceAt(float x, float y) {
  return FaceFromEyes({x - 20, y}, {x + 20, y});
}

/// A grey frame, brighter from the left to the right half.
class FramePlanTest : public ::testing::Test {
 protected:
  FramePlanTest() {
    Samples samples = NoiseSamples(kPlanWidth, kPlanHeight);
    for (size_t i = 0; i < samples.y.size(); ++i) {
      samples.y[i] = i % kPlanWidth < kPlanWidth / 2 ? 100 : 180;
    }
    std::fill(samples.cr.begin(), samples.cr.end(), uint8_t{150});
    std::fill(samples.cb.begin(), samples.cb.end(), uint8_t{110});
    frame_.Fill(samples);
  }

  FramePlan PlanOf(FaceSpan faces, const Look& look, Chain chain = Chain::Auto) {
    FramePlan plan;
    PlanFrame(frame_.const_view(), faces, look, chain, &plan);
    return plan;
  }

  FrameMemory frame_{PixelFormat::I420, kPlanWidth, kPlanHeight};
  // Dark, bright, dark, bright, and one that lies outside.
  const std::vector<Face> faces_ = {FaceAt(100, 150), FaceAt(400, 150), FaceAt(5000, 150),
                                    FaceAt(220, 330), FaceAt(520, 330)};
};

TEST_F(FramePlanTest, HoldsNoFacesWhereThereIsNothingToDo) {
  EXPECT_TRUE(PlanOf(faces_, Look{}).faces.empty());
  EXPECT_TRUE(PlanOf({}, kBoth).faces.empty());
  EXPECT_TRUE(PlanOf(faces_[2], kBoth).faces.empty());
}

TEST_F(FramePlanTest, TakesTheFacesThatCanBeProcessedInTheirOrder) {
  const FramePlan plan = PlanOf(faces_, Look{50});
  EXPECT_EQ(plan.chain, Chain::Preview);
  EXPECT_TRUE(plan.slims);
  EXPECT_FALSE(plan.whitens);
  ASSERT_EQ(plan.faces.size(), 4u);
  const size_t expected[] = {0, 1, 3, 4};
  for (size_t i = 0; i < 4; ++i) {
    const FacePlan& face = plan.faces[i];
    EXPECT_EQ(face.index, expected[i]);
    const WarpCircle told = SlimmingCircle(faces_[expected[i]], kPlanWidth, kPlanHeight);
    EXPECT_EQ(face.centre.x, told.centre.x);
    EXPECT_EQ(face.centre.y, told.centre.y);
    EXPECT_EQ(face.radius, static_cast<double>(told.radius));
    EXPECT_LE(face.bounds.x, std::ceil(static_cast<double>(told.centre.x) - face.radius));
    EXPECT_GE(face.bounds.x + face.bounds.width,
              std::floor(static_cast<double>(told.centre.x) + face.radius));
  }
}

TEST_F(FramePlanTest, PutsFacesThatAPreviewDrawsAtOnceTogether) {
  const auto order = [](const FramePlan& plan) {
    std::vector<size_t> faces;
    for (const WhiteningJob& job : plan.whitening.jobs) faces.push_back(job.face);
    return faces;
  };
  const FramePlan preview = PlanOf(faces_, kBoth, Chain::Preview);
  const FramePlan capture = PlanOf(faces_, kBoth, Chain::Capture);
  EXPECT_EQ(order(preview), (std::vector<size_t>{0, 2, 1, 3}));
  EXPECT_EQ(order(capture), (std::vector<size_t>{0, 1, 2, 3}));
  for (const FramePlan* plan : {&preview, &capture}) {
    ASSERT_EQ(plan->whitening.tones.size(), 4u);
    EXPECT_EQ(plan->whitening.tones[2].face, 3);
    EXPECT_EQ(plan->whitening.effect, Effect::Both);
  }
  EXPECT_EQ(preview.whitening.jobs[0].intensity_level, preview.whitening.jobs[1].intensity_level);
  EXPECT_NE(preview.whitening.jobs[1].intensity_level, preview.whitening.jobs[2].intensity_level);
}

TEST_F(FramePlanTest, ComesToTheSameInMemoryThatHeldAnother) {
  FramePlan plan;
  PlanFrame(frame_.const_view(), faces_, kBoth, Chain::Auto, &plan);
  PlanFrame(frame_.const_view(), faces_[0], Look{0, 50, 0}, Chain::Capture, &plan);
  ASSERT_EQ(plan.faces.size(), 1u);
  ASSERT_EQ(plan.whitening.jobs.size(), 1u);
  const FramePlan fresh = PlanOf(faces_[0], Look{0, 50, 0}, Chain::Capture);
  EXPECT_EQ(plan.whitening.jobs[0].intensity_level, fresh.whitening.jobs[0].intensity_level);
  const PixelRectangle& bounds = fresh.whitening.jobs[0].mask.bounds();
  std::vector<float> weights(static_cast<size_t>(bounds.width)), expected = weights;
  for (int y = bounds.y; y < bounds.y + bounds.height; ++y) {
    plan.whitening.jobs[0].mask.Row(y, weights.data());
    fresh.whitening.jobs[0].mask.Row(y, expected.data());
    ASSERT_EQ(weights, expected) << y;
  }
}

}  // namespace
}  // namespace lumora::test
