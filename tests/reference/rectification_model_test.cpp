// SPDX-License-Identifier: Apache-2.0
// Remaps against values worked out by hand.
#include <gtest/gtest.h>

#include <cmath>

#include "reference/rectification.h"

namespace lumora::reference {
namespace {

void ExpectNear(Vec2 actual, Vec2 expected, double tolerance = 1e-6) {
  EXPECT_NEAR(actual.x, expected.x, tolerance);
  EXPECT_NEAR(actual.y, expected.y, tolerance);
}

TEST(QuadRemapModel, DegreeZeroIsTheIdentity) {
  const RectificationQuad quad = QuadOfDegree(0);
  for (const Vec2 p : {Vec2{0, 0}, Vec2{1, 0.25}, Vec2{0.3, 0.9}}) ExpectNear(QuadMap(p, quad), p);
}

TEST(QuadRemapModel, CornersGoToTheQuadsCorners) {
  // Ten hundredths: the left edge is taken from x = 0.05, shortened by 0.1 at both ends.
  const RectificationQuad right = QuadOfDegree(10);
  ExpectNear(QuadMap({0, 0}, right), {0.05, 0.1});
  ExpectNear(QuadMap({1, 0}, right), {0.95, 0.0});
  ExpectNear(QuadMap({0, 1}, right), {0.05, 0.9});
  ExpectNear(QuadMap({1, 1}, right), {0.95, 1.0});
  const RectificationQuad left = QuadOfDegree(-10);
  ExpectNear(QuadMap({0, 0}, left), {0.05, 0.0});
  ExpectNear(QuadMap({1, 0}, left), {0.95, 0.1});
  ExpectNear(QuadMap({0, 1}, left), {0.05, 1.0});
  ExpectNear(QuadMap({1, 1}, left), {0.95, 0.9});
}

TEST(QuadRemapModel, InsideIsBilinear) {
  const RectificationQuad quad = {{{0, 0}, {1, 0}, {0, 1}, {0.5, 0.5}}};
  ExpectNear(QuadMap({0.5, 0.5}, quad), {0.375, 0.375});
}

TEST(QuadRemapModel, ShownDegreeIsLimited) {
  EXPECT_EQ(DegreeShown(500), 3.0);
  EXPECT_EQ(DegreeShown(-500), -3.0);
  EXPECT_EQ(DegreeShown(2), 2.0);
}

TEST(QuadRemapModel, DotShowsTheDegree) {
  EXPECT_NEAR(DistanceFromDot({0.1, 0.1}, 1.0), -0.03, 1e-12);
  EXPECT_NEAR(DistanceFromDot({0.1, 0.9}, -1.0), -0.03, 1e-12);
  EXPECT_NEAR(DistanceFromDot({-0.3, 0.5}, 0.0), -0.03, 1e-12);
  EXPECT_NEAR(DistanceFromDot({0.14, 0.1}, 1.0), 0.01, 1e-12);
}

TEST(RadialModel, UnitCoefficientIsTheIdentity) {
  ExpectNear(RadialMap({0.2, 0.9}, {1, 0, 0, 0}), {0.2, 0.9});
}

TEST(RadialModel, CoefficientsMultiplyPowersOfTheSquaredRadius) {
  // A corner has radius 1, the middle of an edge squared radius one half.
  ExpectNear(RadialMap({0, 0}, {0.5, 0.25, 0.125, 0.125}), {0, 0});
  ExpectNear(RadialMap({1, 0.5}, {1, 0, 0, 0.8}), {0.5 + 0.5 * 1.1, 0.5});
  ExpectNear(RadialMap({1, 0.5}, {1, 0, 0.8, 0}), {0.5 + 0.5 * 1.2, 0.5});
  ExpectNear(RadialMap({1, 0.5}, {1, 0.8, 0, 0}), {0.5 + 0.5 * 1.4, 0.5});
}

TEST(RadialModel, CroppedCornersMoveInward) {
  const Corners corners = CroppedCorners();
  ExpectNear(corners[1], {0.01066, 0.01066}, 1e-5);
  ExpectNear(corners[3], {0.98934, 0.98934}, 1e-5);
  ExpectNear(corners[0], {0.01066, 0.98934}, 1e-5);
}

}  // namespace
}  // namespace lumora::reference
