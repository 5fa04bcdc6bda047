// SPDX-License-Identifier: Apache-2.0
// Whole frames: cases whose result is known without a GPU.
#include <gtest/gtest.h>

#include "reference/engine_model.h"
#include "reference/expand.h"
#include "support/compare.h"
#include "support/pictures.h"

namespace lumora::reference {
namespace {

using test::Compare;
using test::NoiseFrame;
using test::SameFrame;
using test::TextureFrame;
using test::WithinFrame;

// A face record without valid distances: never warps.
FaceRecord NoFace() {
  return FaceRecord();
}

// Whether the model says that exactly this frame comes out.
void ExpectExactly(const FrameBounds& out, const Frame& frame, const Compare& how = {}) {
  EXPECT_TRUE(SameFrame(frame, out.low, how));
  EXPECT_TRUE(SameFrame(frame, out.high, how));
}

TEST(PreviewModelFrames, WithoutAWarpNoiseComesBack) {
  PreviewModel model(96, 64);
  const Frame in = NoiseFrame(96, 64, 1);
  EXPECT_TRUE(WithinFrame(model.face_process(in, 5, NoFace()), in));
  ExpectExactly(model.face_process(in, 5, NoFace()), in);  // nearest filtering leaves no doubt
}

TEST(PreviewModelFrames, RowsAreRoundedUpAndTheFrameStaysWhole) {
  PreviewModel model(48, 32);
  const Frame in = NoiseFrame(48, 32, 2);
  ExpectExactly(model.round_trip(in), in);
}

TEST(PreviewModelFrames, TheInputIsLinearInTheFirstFrameOnly) {
  PreviewModel model(64, 64);
  EXPECT_EQ(model.input_filter(), Filter::Linear);
  model.face_process(TextureFrame(64, 64), 5, SlimmingFace(32, 30, 16, 16));
  EXPECT_EQ(model.input_filter(), Filter::Nearest);
}

TEST(PreviewModelFrames, TwoFacesLeaveTheInputLinear) {
  // The packing passes meet the first work image bound: it was the second face's source.
  PreviewModel model(64, 64);
  const FaceRecord face = SlimmingFace(32, 30, 16, 16);
  model.face_process_multiface(TextureFrame(64, 64), 5, {face, face});
  EXPECT_EQ(model.input_filter(), Filter::Linear);
}

TEST(PreviewModelFrames, AFaceChangesItsSurroundingsOnly) {
  PreviewModel model(128, 128);
  const Frame in = TextureFrame(128, 128);
  model.round_trip(in);
  const FrameBounds out = model.face_process(in, 10, SlimmingFace(64, 64, 24, 24));
  const auto outside = [](int x, int y) {
    return (x - 64) * (x - 64) + (y - 64) * (y - 64) > 30 * 30;
  };
  ExpectExactly(out, in, Compare().only(outside));
  EXPECT_FALSE(WithinFrame(out, in)) << "something must have moved";
}

TEST(PreviewModelFrames, TwoFacesAreTwoWarpsInARow) {
  const Frame in = TextureFrame(128, 96);
  const FaceRecord left = SlimmingFace(36, 40, 20, 22);
  const FaceRecord right = SlimmingFace(92, 44, 20, 22);
  PreviewModel both(128, 96);
  PreviewModel single(128, 96);
  const FrameBounds together = both.face_process_multiface(in, 5, {left, right});
  const FrameBounds first = single.face_process(in, 5, left);
  const auto left_half = [](int x, int) { return x < 60; };
  EXPECT_TRUE(SameFrame(first.low, together.low, Compare().within(3).only(left_half)));
  EXPECT_FALSE(SameFrame(first.low, together.low, Compare().within(3)));
}

TEST(PreviewModelFrames, WithoutFacesTheFrameComesBack) {
  PreviewModel model(64, 32);
  const Frame in = NoiseFrame(64, 32, 3);
  ExpectExactly(model.face_process_multiface(in, 5, {}), in);
}

TEST(PreviewModelFrames, DegreeZeroKeepsTheFrame) {
  PreviewModel model(96, 64);
  const Frame in = NoiseFrame(96, 64, 4);
  model.rectification(in, 0);
  ExpectExactly(model.rectification(in, 0), in);
}

TEST(PreviewModelFrames, ARoundTripLeavesTheInputToTheRectificationsLinearFilter) {
  PreviewModel model(96, 64);
  model.round_trip(NoiseFrame(96, 64, 4));
  EXPECT_EQ(model.input_filter(), Filter::Nearest);
  const FrameBounds out = model.rectification(NoiseFrame(96, 64, 4), 0);
  EXPECT_NE(out.low.bytes, out.high.bytes);
}

TEST(PreviewModelFrames, AMaskPaintsTheRimRed) {
  PreviewModel::Options options;
  options.show_mask = true;
  PreviewModel model(128, 128, options);
  const FrameBounds out =
      model.face_process(Frame(128, 128, 60, 100, 90), 5, SlimmingFace(64, 64, 30, 30));
  int red = 0;
  for (int y = 0; y < 128; ++y) {
    for (int x = 0; x < 128; ++x) red += out.low.y(x, y) == 255;
  }
  EXPECT_GT(red, 100);
  EXPECT_LT(red, 2000);
  EXPECT_EQ(out.high.y(2, 2), 61) << "one step of doubt from linear filtering, no red";
  EXPECT_EQ(out.high.y(64, 44), 61) << "inside the rim";
}

TEST(PreviewModelFrames, ANarrowerSourceIsTurned) {
  EXPECT_TRUE(PreviewModel(480, 640, 640, 480, {}).rotated());
  EXPECT_FALSE(PreviewModel(640, 480).rotated());
  EXPECT_FALSE(PreviewModel(1280, 720, 640, 480, {}).rotated());
}

}  // namespace
}  // namespace lumora::reference
