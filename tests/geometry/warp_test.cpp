// SPDX-License-Identifier: Apache-2.0
// From face measures to the slimming warp.
#include "lumora/geometry/warp.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>
#include <random>

#include "reference/warp_parameters.h"

namespace {

using lumora::ComputeWarp;
using lumora::FaceMeasures;
using lumora::FaceWarpParameters;
using lumora::WarpRequest;

constexpr FaceMeasures kFace{320, 240, 100, 80, 180, 0};
constexpr WarpRequest kPreview{640, 480, 4, 1.0f, false, false};

WarpRequest Capture(bool hsi_chain) {
  WarpRequest request = kPreview;
  request.capture = true;
  request.hsi_chain = hsi_chain;
  return request;
}

TEST(WarpParameters, PlacesThePreviewWarp) {
  const FaceWarpParameters warp = ComputeWarp(kFace, kPreview);
  EXPECT_TRUE(warp.valid);
  EXPECT_EQ(0.5f, warp.centre_x);
  EXPECT_EQ(0.5f, warp.centre_y);
  EXPECT_FLOAT_EQ(115.0f / 640.0f, warp.radius);  // 1.15 times the larger measure
  // (1.1 + 0.1 * 4) * (115 / 640)^0.3 = 1.5 * 0.59744...
  EXPECT_NEAR(1.5 * std::exp(0.3 * std::log(115.0 / 640.0)), static_cast<double>(warp.strength),
              1e-6);
  EXPECT_NEAR(1.570797, static_cast<double>(warp.limiter_direction), 1e-6);  // 90 degrees
  EXPECT_EQ(0.55f, warp.limiter_distance);
  EXPECT_FLOAT_EQ(1.375f, warp.limiter_scale);  // 1.1 / (80 / 100)
  EXPECT_EQ(warp.strength, warp.told_strength);
}

TEST(WarpParameters, CapturesAreTighterWithAWiderLimiter) {
  const FaceWarpParameters warp = ComputeWarp(kFace, Capture(false));
  EXPECT_FLOAT_EQ(105.0f / 640.0f, warp.radius);
  EXPECT_FLOAT_EQ(1.625f, warp.limiter_scale);  // 1.3 / 0.8
  EXPECT_EQ(warp.strength, warp.told_strength);
}

TEST(WarpParameters, TheHsiChainIsSlimmedLessButTellsTheFullStrength) {
  const FaceWarpParameters whole = ComputeWarp(kFace, Capture(false));
  const FaceWarpParameters chain = ComputeWarp(kFace, Capture(true));
  EXPECT_EQ(whole.told_strength, chain.told_strength);
  EXPECT_FLOAT_EQ(whole.strength * 0.8f, chain.strength);
  EXPECT_EQ(whole.radius, chain.radius);
}

TEST(WarpParameters, TheHsiChainOfPreviewsChangesNothing) {
  WarpRequest request = kPreview;
  request.hsi_chain = true;
  EXPECT_EQ(ComputeWarp(kFace, kPreview).strength, ComputeWarp(kFace, request).strength);
}

TEST(WarpParameters, TheRadiusIsCappedAndTheStrengthFollowsTheCap) {
  FaceMeasures face = kFace;
  face.dist = 222;  // 255.3 / 640 = 0.3989
  EXPECT_LT(ComputeWarp(face, kPreview).radius, 0.4f);
  face.dist = 223;  // 256.45 / 640 = 0.4007
  const FaceWarpParameters capped = ComputeWarp(face, kPreview);
  EXPECT_EQ(0.4f, capped.radius);
  // 1.5 * 0.4^0.3 = 1.5 * 0.759661...
  EXPECT_NEAR(1.139492, static_cast<double>(capped.strength), 1e-5);
  face.dist = 60000;
  EXPECT_EQ(0.4f, ComputeWarp(face, kPreview).radius);
}

TEST(WarpParameters, TheLargerOfTheTwoMeasuresSetsTheRadius) {
  FaceMeasures face = kFace;
  face.chin_dist = 150;
  EXPECT_FLOAT_EQ(172.5f / 640.0f, ComputeWarp(face, kPreview).radius);
}

TEST(WarpParameters, ShapeTwoHalvesTheStrengthAndNoOtherShapeDoes) {
  const float full = ComputeWarp(kFace, kPreview).strength;
  for (const int shape : {-1, 0, 1, 2, 3, 4}) {
    FaceMeasures face = kFace;
    face.shape_type = shape;
    EXPECT_FLOAT_EQ(shape == 2 ? full / 2 : full, ComputeWarp(face, kPreview).strength) << shape;
  }
}

TEST(WarpParameters, EachLevelAddsATenthOfTheBase) {
  const auto strength = [](int level) {
    WarpRequest request = kPreview;
    request.beauty_level = level;
    return static_cast<double>(ComputeWarp(kFace, request).strength);
  };
  const double unit = strength(0) / 1.1;
  for (const int level : {0, 1, 5, 10, -11, 100}) {
    EXPECT_NEAR((1.1 + 0.1 * level) * unit, strength(level), 1e-5) << level;
  }
}

TEST(WarpParameters, TheRatioScalesTheStrengthDownToNone) {
  WarpRequest request = kPreview;
  request.level_ratio = 0.5f;
  EXPECT_FLOAT_EQ(ComputeWarp(kFace, kPreview).strength / 2, ComputeWarp(kFace, request).strength);
  request.level_ratio = 0.0f;
  const FaceWarpParameters none = ComputeWarp(kFace, request);
  EXPECT_TRUE(none.valid);
  EXPECT_EQ(0.0f, none.strength);
}

TEST(WarpParameters, NoChinDistanceGivesAnInfiniteLimiter) {
  FaceMeasures face = kFace;
  face.chin_dist = 0;
  const FaceWarpParameters warp = ComputeWarp(face, kPreview);
  EXPECT_TRUE(warp.valid);
  EXPECT_EQ(std::numeric_limits<float>::infinity(), warp.limiter_scale);
  EXPECT_FLOAT_EQ(115.0f / 640.0f, warp.radius);
}

TEST(WarpParameters, AFaceWithoutSizeOrPlaceIsNotValid) {
  const auto valid = [](int x, int y, int dist) {
    return ComputeWarp({x, y, dist, 80, 180, 0}, kPreview).valid;
  };
  EXPECT_TRUE(valid(1, 1, 1));
  EXPECT_FALSE(valid(0, 1, 1));
  EXPECT_FALSE(valid(1, 0, 1));
  EXPECT_FALSE(valid(1, 1, 0));
  EXPECT_FALSE(valid(-5, 1, 1));
  EXPECT_FALSE(valid(1, -5, 1));
  EXPECT_FALSE(valid(1, 1, -1));
  EXPECT_TRUE(valid(100000, 100000, 1)) << "a centre outside the frame is a place";
}

TEST(WarpParameters, RollTurnsTheLimiter) {
  const struct {
    int roll;
    double radians;
  } kRows[] = {{90, 0.0}, {180, 1.570797}, {0, -1.570797}, {-90, -3.141594}, {450, 6.283188}};
  for (const auto& row : kRows) {
    FaceMeasures face = kFace;
    face.roll = row.roll;
    EXPECT_NEAR(row.radians, static_cast<double>(ComputeWarp(face, kPreview).limiter_direction),
                2e-6);
  }
}

TEST(WarpParameters, AgreesWithTheModelForAnyFace) {
  std::mt19937 random(7);
  const auto among = [&](int low, int high) {
    return low + static_cast<int>(random() % static_cast<unsigned>(high - low + 1));
  };
  for (int i = 0; i < 5000; ++i) {
    lumora::reference::WarpRequest r;
    r.loc_x = among(-20, 2000);
    r.loc_y = among(-20, 2000);
    r.dist = among(-20, 900);
    r.chin_dist = among(-20, 900);
    r.roll = among(-400, 400);
    r.level = among(-20, 40);
    r.shape_type = among(0, 3);
    r.large = among(0, 1) == 1;
    r.block_mode = among(0, 1) == 1;
    r.ratio = static_cast<float>(among(0, 300)) / 100.0f;
    r.frame_width = among(16, 5000);
    r.frame_height = among(2, 5000);
    lumora::reference::WarpMembers expected;
    const bool valid = lumora::reference::SetParameters(r, &expected);
    const FaceWarpParameters actual =
        ComputeWarp({r.loc_x, r.loc_y, r.dist, r.chin_dist, r.roll, r.shape_type},
                    {r.frame_width, r.frame_height, r.level, r.ratio, r.large, r.block_mode});
    ASSERT_EQ(valid, actual.valid);
    if (!valid) continue;
    ASSERT_FLOAT_EQ(expected.controller[0], actual.centre_x);
    ASSERT_FLOAT_EQ(expected.controller[1], actual.centre_y);
    ASSERT_FLOAT_EQ(expected.controller[2], actual.strength);
    ASSERT_FLOAT_EQ(expected.controller[3], actual.radius);
    ASSERT_FLOAT_EQ(expected.angle_limiter[0], actual.limiter_direction);
    ASSERT_FLOAT_EQ(expected.angle_limiter[1], actual.limiter_distance);
    ASSERT_FLOAT_EQ(expected.angle_limiter[2], actual.limiter_scale);
    ASSERT_FLOAT_EQ(lumora::reference::WarpStrength(r), actual.told_strength);
  }
}

// Whatever a caller leaves in its record, no arithmetic may overflow; sanitizer builds watch.
TEST(WarpParameters, AnyIntegersAreArithmeticallySafe) {
  constexpr int kExtremes[] = {INT_MIN, INT_MIN + 1, -1, 0, 1, INT_MAX};
  for (const int a : kExtremes) {
    for (const int b : kExtremes) {
      for (const bool capture : {false, true}) {
        const FaceWarpParameters warp = ComputeWarp(
            {b, a, a, b, a, b}, {640, 480, b, std::numeric_limits<float>::max(), capture, capture});
        EXPECT_EQ(a > 0 && b > 0, warp.valid);
        EXPECT_FALSE(warp.radius > 0.4f);
      }
    }
  }
}

}  // namespace
