// SPDX-License-Identifier: Apache-2.0
// The warp and its parameters against values worked out by hand.
#include <gtest/gtest.h>

#include <cmath>

#include "reference/slimmer.h"
#include "reference/warp_parameters.h"

namespace lumora::reference {
namespace {

// A face in the middle of a square frame; the limiter lies below the centre.
SlimmerUniforms CentredFace() {
  SlimmerUniforms u;
  u.centre = {0.5, 0.5};
  u.strength = 0.8;
  u.radius = 0.25;
  u.aspect_ratio = 1.0;
  u.limiter_direction = std::acos(0.0);
  u.limiter_distance = 0.5;
  u.limiter_scale = 1.0;
  u.edge_fix = 0.0;
  return u;
}

TEST(WarpModel, WithoutStrengthEveryPixelSamplesItself) {
  SlimmerUniforms u = CentredFace();
  u.strength = 0.0;
  for (const Vec2 p : {Vec2{0.5, 0.6}, Vec2{0.1, 0.9}, Vec2{0.45, 0.4}}) {
    EXPECT_NEAR(WarpFrame(p, u).coordinate.x, p.x, 1e-12);
    EXPECT_NEAR(WarpFrame(p, u).coordinate.y, p.y, 1e-12);
  }
}

TEST(WarpModel, OutsideTheRadiusNothingMoves) {
  const WarpPoint point = WarpFrame({0.5, 0.76}, CentredFace());
  EXPECT_EQ(point.ratio, 1.0);
  EXPECT_NEAR(point.coordinate.y, 0.76, 1e-12);
}

TEST(WarpModel, OppositeTheLimiterThePullGrowsWithTheDistance) {
  // 0.1 above the centre: distance 0.1, limiter 0.225 away, farther than its offset of 0.125, so
  // only the distance counts: ratio 0.4, sample at 0.1 * (1 + 0.08 * 0.6).
  const WarpPoint point = WarpFrame({0.5, 0.4}, CentredFace());
  EXPECT_NEAR(point.ratio, 0.4, 1e-12);
  EXPECT_NEAR(point.coordinate.x, 0.5, 1e-12);
  EXPECT_NEAR(point.coordinate.y, 0.5 - 0.1 * 1.048, 1e-12);
}

TEST(WarpModel, TheLimiterHoldsThePullBackNearItsCentre) {
  // 0.1 below the centre: 0.025 from the limiter's centre, a fifth of its offset: ratio 0.4 / 0.2.
  const WarpPoint point = WarpFrame({0.5, 0.6}, CentredFace());
  EXPECT_EQ(point.ratio, 1.0);
  EXPECT_NEAR(point.unclamped, 2.0, 1e-9);
}

TEST(WarpModel, TheLimiterScaleWidensItsEllipse) {
  SlimmerUniforms u = CentredFace();
  u.limiter_scale = 0.25;  // the same place now counts as 0.1 away: ratio 0.4 / 0.8
  EXPECT_NEAR(WarpFrame({0.5, 0.6}, u).ratio, 0.5, 1e-9);
}

TEST(WarpModel, TheAspectRatioMakesDistancesIsotropic) {
  SlimmerUniforms u = CentredFace();
  u.aspect_ratio = 0.5;
  // 0.2 above counts as 0.1; the limiter is now 0.1625 away, still beyond its offset.
  EXPECT_NEAR(WarpFrame({0.5, 0.3}, u).ratio, 0.4, 1e-12);
}

TEST(WarpModel, TheEdgeFadesTheWarp) {
  SlimmerUniforms u = CentredFace();
  u.edge_fix = 0.5;
  // Border distance 0.36 gives 2 - 0.6.
  EXPECT_NEAR(WarpFrame({0.5, 0.36}, u).ratio, 0.14 / 0.25 * 1.4, 1e-12);
}

TEST(WarpModel, ABlockWarpsLikeItsPartOfTheFrame) {
  // The frame's lower right quarter.
  SlimmerUniforms u = CentredFace();
  u.block_scale = {0.5, 0.5};
  u.block_shift = {0.5 - 0.5, 0.5 - 0.5};
  const WarpPoint block = WarpBlock({0.1, 0.04}, u);
  const WarpPoint frame = WarpFrame({0.55, 0.52}, u);
  EXPECT_NEAR(block.ratio, frame.ratio, 1e-12);
  EXPECT_NEAR(block.coordinate.x, frame.coordinate.x, 1e-12);
  EXPECT_NEAR(block.coordinate.y, frame.coordinate.y, 1e-12);
}

TEST(WarpModel, TheMaskMarksTheOuterRim) {
  const auto marked = [](double ratio) {
    WarpPoint point;
    point.ratio = ratio;
    return MaskMarks(point);
  };
  EXPECT_TRUE(marked(0.96));
  EXPECT_FALSE(marked(0.95));
  EXPECT_FALSE(marked(1.0));
}

WarpRequest Request() {
  WarpRequest r;
  r.loc_x = 100;
  r.loc_y = 60;
  r.dist = 40;
  r.chin_dist = 50;
  r.roll = 180;
  r.level = 4;
  r.frame_width = 400;
  r.frame_height = 200;
  return r;
}

TEST(WarpParameterModel, APreviewFace) {
  WarpMembers m;
  EXPECT_TRUE(SetParameters(Request(), &m));
  EXPECT_FLOAT_EQ(m.controller[0], 0.25f);
  EXPECT_FLOAT_EQ(m.controller[1], 0.3f);
  EXPECT_FLOAT_EQ(m.controller[3], 0.14375f);
  EXPECT_NEAR(m.controller[2], 1.5 * std::pow(0.14375, 0.3), 1e-6);
  EXPECT_NEAR(m.angle_limiter[0], 1.570797, 1e-6);
  EXPECT_FLOAT_EQ(m.angle_limiter[1], 0.55f);
  EXPECT_NEAR(m.angle_limiter[2], 0.88, 1e-6);
  EXPECT_FLOAT_EQ(m.aspect_ratio, 0.5f);
}

TEST(WarpParameterModel, ACaptureFaceIsSmallerAndTheHsiChainWeaker) {
  WarpRequest r = Request();
  r.large = true;
  WarpMembers m;
  SetParameters(r, &m);
  EXPECT_FLOAT_EQ(m.controller[3], 0.13125f);
  EXPECT_NEAR(m.angle_limiter[2], 1.04, 1e-6);
  EXPECT_EQ(m.aspect_ratio, 0.0f) << "the caller sets it";
  const float plain = m.controller[2];
  r.block_mode = true;
  SetParameters(r, &m);
  EXPECT_NEAR(m.controller[2], 0.8 * static_cast<double>(plain), 1e-6);
}

TEST(WarpParameterModel, ShapeTwoHalvesAndTheRadiusIsCapped) {
  WarpRequest r = Request();
  r.shape_type = 2;
  r.dist = 300;
  WarpMembers m;
  SetParameters(r, &m);
  EXPECT_FLOAT_EQ(m.controller[3], 0.4f);
  EXPECT_NEAR(m.controller[2], 0.5 * 1.5 * std::pow(0.4, 0.3), 1e-6);
}

TEST(WarpParameterModel, ARejectedFaceKeepsTheWarpButRefreshesTheAspectRatio) {
  WarpMembers m;
  SetParameters(Request(), &m);
  const WarpMembers before = m;
  for (int field = 0; field < 3; ++field) {
    WarpRequest r = Request();
    (field == 0 ? r.dist : field == 1 ? r.loc_x : r.loc_y) = 0;
    r.frame_height = 100;
    EXPECT_FALSE(SetParameters(r, &m));
    EXPECT_EQ(m.controller[2], before.controller[2]);
    EXPECT_EQ(m.angle_limiter[2], before.angle_limiter[2]);
    EXPECT_FLOAT_EQ(m.aspect_ratio, 0.25f);
  }
}

TEST(WarpParameterModel, UnsetMembersWarpNothing) {
  const WarpPoint point = WarpFrame({0.3, 0.7}, WarpMembers{}.uniforms(0.2));
  EXPECT_NEAR(point.coordinate.x, 0.3, 1e-12);
  EXPECT_NEAR(point.coordinate.y, 0.7, 1e-12);
}

TEST(FaceRecordModel, FieldsLieAtTheirOffsets) {
  const FaceRecord face = SlimmingFace(11, 22, 33, 44, 55, 0.5f);
  const auto* bytes = static_cast<const unsigned char*>(face.data());
  EXPECT_EQ(bytes[44], 1);
  EXPECT_EQ(bytes[76], 11);
  EXPECT_EQ(bytes[80], 22);
  EXPECT_EQ(bytes[92], 55);
  EXPECT_EQ(bytes[128], 33);
  EXPECT_EQ(bytes[144], 44);
  EXPECT_EQ(bytes[923], 0x3F);
  const WarpRequest r = RequestOf(face, 7, 640, 480);
  EXPECT_EQ(r.dist, 33);
  EXPECT_EQ(r.level, 7);
  EXPECT_EQ(r.ratio, 0.5f);
}

TEST(FaceRecordModel, WithoutValidDistancesBothAreMinusOne) {
  FaceRecord face = SlimmingFace(11, 22, 33, 44);
  face.set(FaceRecord::kDistValid, 0);
  const WarpRequest r = RequestOf(face, 0, 640, 480);
  EXPECT_EQ(r.dist, -1);
  EXPECT_EQ(r.chin_dist, -1);
}

}  // namespace
}  // namespace lumora::reference
