// SPDX-License-Identifier: Apache-2.0
// The lens polynomial that moves quad corners inward.
#include "lumora/geometry/lens.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>

#include "reference/rectification.h"

namespace {

using Pair = std::array<float, 2>;

Pair Crop(float u, float v) {
  Pair out{-9.0f, -9.0f};
  lumora::CropCorner(u, v, out.data());
  return out;
}

void ExpectPair(double u, double v, const Pair& actual) {
  EXPECT_NEAR(u, static_cast<double>(actual[0]), 1e-6);
  EXPECT_NEAR(v, static_cast<double>(actual[1]), 1e-6);
}

// At a corner s is 1: the factor is 1.00453 - 0.0214308 + 0.00571108 + 0.032517 = 1.02132728, and a
// half times it lies 0.01066364 beyond the edge.
TEST(LensPolynomial, CornersMoveInwardByTheBendOfTheCorner) {
  constexpr double kBend = 0.01066364;
  ExpectPair(kBend, kBend, Crop(0, 0));
  ExpectPair(1 - kBend, kBend, Crop(1, 0));
  ExpectPair(kBend, 1 - kBend, Crop(0, 1));
  ExpectPair(1 - kBend, 1 - kBend, Crop(1, 1));
}

// In the middle of an edge s is 0.5: the factor is 1.00453 - 0.0107154 + 0.00142777 + 0.004064625 =
// 0.999306995. The edge is bent inward there, and the upper end mirrors to the other side.
TEST(LensPolynomial, EdgeMiddlesMoveByTheBendOfTheEdge) {
  constexpr double kBend = 0.0003465025;
  ExpectPair(0.5, kBend, Crop(0.5f, 0));
  ExpectPair(0.5, 1 + kBend, Crop(0.5f, 1));
  ExpectPair(kBend, 0.5, Crop(0, 0.5f));
  ExpectPair(1 + kBend, 0.5, Crop(1, 0.5f));
}

TEST(LensPolynomial, CoordinatesThatAreNotExactlyZeroOrOnePassUnchanged) {
  const float inside = std::nextafter(1.0f, 0.0f);
  const float above = std::nextafter(0.0f, 1.0f);
  EXPECT_EQ((Pair{0.25f, 0.75f}), Crop(0.25f, 0.75f));
  EXPECT_EQ((Pair{inside, above}), Crop(inside, above));
  EXPECT_EQ((Pair{-0.5f, 2.0f}), Crop(-0.5f, 2.0f));
}

TEST(LensPolynomial, AgreesWithTheModelOfTheRadialDraw) {
  const lumora::reference::Corners corners = lumora::reference::CroppedCorners();
  for (size_t i = 0; i < corners.size(); ++i) {
    const lumora::reference::Vec2 whole = lumora::reference::kWholeTexture[i];
    const Pair moved = Crop(static_cast<float>(whole.x), static_cast<float>(whole.y));
    ExpectPair(corners[i].x, corners[i].y, moved);
  }
}

}  // namespace
