// SPDX-License-Identifier: Apache-2.0
// The areas against every pixel of small images: none that a pass can change lies outside, and they
// are not larger than they have to be.
#include "lumora/geometry/changed_area.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <random>

#include "geometry/rectangles.h"

namespace lumora {
namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

// Calls visit(x, y) for the pixels that `is_changed` names by their centres, in texture
// coordinates; those of the image and of as much again on every side.
void ForEachChanged(int width, int height, const std::function<bool(double, double)>& is_changed,
                    const std::function<void(int, int)>& visit) {
  for (int y = -height; y < 2 * height; ++y) {
    for (int x = -width; x < 2 * width; ++x) {
      if (is_changed((x + 0.5) / width, (y + 0.5) / height)) visit(x, y);
    }
  }
}

bool Holds(const PixelRectangle& part, int x, int y) {
  return x >= part.x && y >= part.y && x < part.x + part.width && y < part.y + part.height;
}

// The area has every changed pixel of the image once, and none beside the image.
testing::AssertionResult HoldsAll(const ChangedArea& area, int width, int height,
                                  const std::function<bool(double, double)>& is_changed) {
  const PixelRectangle image{0, 0, width, height};
  if (!(Union(area.Box(), image) == image)) {
    return testing::AssertionFailure() << testing::PrintToString(area.Box()) << " is not inside";
  }
  testing::AssertionResult result = testing::AssertionSuccess();
  ForEachChanged(width, height, is_changed, [&](int x, int y) {
    const auto times = std::count_if(
        area.begin(), area.end(), [x, y](const PixelRectangle& part) { return Holds(part, x, y); });
    if (times == (Holds(image, x, y) ? 1 : 0) || !result) return;
    result = testing::AssertionFailure() << times << " times (" << x << ", " << y << ")";
  });
  return result;
}

// The box is at most that much larger than what has to be in it.
testing::AssertionResult IsClose(const PixelRectangle& box, int width, int height, int margin_y,
                                 const std::function<bool(double, double)>& is_changed) {
  constexpr int kMarginX = 4;
  PixelRectangle reach{};
  ForEachChanged(width, height, is_changed, [&reach](int x, int y) {
    reach = Union(reach, {x, y, 1, 1});
  });
  const PixelRectangle widest{reach.x - kMarginX, reach.y - margin_y, reach.width + 2 * kMarginX,
                              reach.height + 2 * margin_y};
  if (Union(box, widest) == widest) return testing::AssertionSuccess();
  return testing::AssertionFailure()
         << testing::PrintToString(box) << " is too large for " << testing::PrintToString(reach);
}

Warp WarpAt(float centre_x, float centre_y, float radius) {
  return {centre_x, centre_y, 1.2f, radius, 0.5f, 0.55f, 1.1f, 0.75f, 0.2f};
}

double FromCentre(const Warp& warp, double u, double v) {
  return std::hypot(
      u - static_cast<double>(warp.centre_x),
      (v - static_cast<double>(warp.centre_y)) * static_cast<double>(warp.aspect_ratio));
}

// Whether the warp moves a pixel, where its limiter holds nothing back.
bool IsMoved(const Warp& warp, double u, double v) {
  const double border = std::max(0.0, std::min({u, v, 1 - u, 1 - v}));
  const double fade = 2 - std::pow(border, static_cast<double>(warp.edge_fade));
  return FromCentre(warp, u, v) * fade < static_cast<double>(warp.radius);
}

TEST(WarpArea, HoldsWhatIsMovedWhereverItIs) {
  constexpr int kWidth = 96;
  constexpr int kHeight = 72;
  constexpr int kBandRows = 8;
  std::mt19937 random(1);
  std::uniform_real_distribution<float> place(-0.5f, 1.5f);
  std::uniform_real_distribution<float> size(0.01f, 0.4f);
  for (int i = 0; i < 200; ++i) {
    Warp warp = WarpAt(place(random), place(random), size(random));
    warp.edge_fade = 0.1f * static_cast<float>(i % 5);
    const auto moved = [&warp](double u, double v) { return IsMoved(warp, u, v); };
    const auto in_circle = [&warp](double u, double v) {
      return FromCentre(warp, u, v) < static_cast<double>(warp.radius);
    };
    const ChangedArea area = WarpArea(warp, kWidth, kHeight);
    ASSERT_TRUE(HoldsAll(area, kWidth, kHeight, moved)) << i;
    ASSERT_TRUE(IsClose(area.Box(), kWidth, kHeight, 4 + kBandRows, in_circle)) << i;
  }
}

TEST(WarpArea, IsLittleMoreThanWhatIsMoved) {
  constexpr int kWidth = 960;
  constexpr int kHeight = 720;
  for (const float radius : {0.1f, 0.2f, 0.3f}) {
    const Warp warp = WarpAt(0.45f, 0.5f, radius);
    const auto moved = [&warp](double u, double v) { return IsMoved(warp, u, v); };
    int64_t pixels = 0;
    ForEachChanged(kWidth, kHeight, moved, [&pixels](int, int) { ++pixels; });
    const ChangedArea area = WarpArea(warp, kWidth, kHeight);
    EXPECT_TRUE(HoldsAll(area, kWidth, kHeight, moved)) << radius;
    EXPECT_GT(pixels * 5 / 4, area.Pixels()) << radius;
  }
}

TEST(WarpArea, IsEmptyForACircleBesideTheImage) {
  for (const Warp& warp : {WarpAt(-0.5f, 0.5f, 0.2f), WarpAt(0.5f, 1.8f, 0.2f)}) {
    const ChangedArea area = WarpArea(warp, 640, 480);
    EXPECT_EQ(0, area.Pixels());
    EXPECT_EQ(1, area.end() - area.begin());  // drawing nothing is a draw
  }
}

TEST(WarpArea, IsTheImageWhereTheWarpIsNotKnown) {
  const auto changed = [](float Warp::*member, float value) {
    Warp warp = WarpAt(0.5f, 0.5f, 0.2f);
    warp.*member = value;
    return WarpArea(warp, 640, 480).Box();
  };
  const PixelRectangle whole{0, 0, 640, 480};
  for (const auto member :
       {&Warp::centre_x, &Warp::centre_y, &Warp::strength, &Warp::radius, &Warp::limiter_direction,
        &Warp::limiter_distance, &Warp::limiter_scale, &Warp::aspect_ratio, &Warp::edge_fade}) {
    for (const float value : {kNan, kInfinity, -kInfinity})
      EXPECT_EQ(whole, changed(member, value));
  }
  for (const float value : {0.0f, -0.1f}) {
    EXPECT_EQ(whole, changed(&Warp::radius, value));
    EXPECT_EQ(whole, changed(&Warp::aspect_ratio, value));
  }
  EXPECT_EQ(whole, changed(&Warp::edge_fade, -0.1f));
  // Numbers so large that what cancels out leaves more than nothing.
  EXPECT_EQ(whole, changed(&Warp::strength, 1000.0f));
  EXPECT_EQ(whole, changed(&Warp::strength, -1000.0f));
  EXPECT_EQ(whole, changed(&Warp::centre_x, 1e5f));
  EXPECT_EQ(whole, changed(&Warp::centre_y, -1e5f));
  EXPECT_FALSE(whole == changed(&Warp::strength, 3.0f));
}

TEST(EllipseBox, HoldsTheEllipseWhereverItIs) {
  constexpr int kWidth = 80;
  constexpr int kHeight = 60;
  std::mt19937 random(2);
  std::uniform_real_distribution<double> place(-0.3, 1.3);
  std::uniform_real_distribution<double> axis(0.03, 0.4);
  std::uniform_real_distribution<double> turn(0.0, 6.3);
  for (int i = 0; i < 200; ++i) {
    const double x = place(random), y = place(random), a = axis(random), b = axis(random);
    const double c = std::cos(turn(random)), s = std::sin(turn(random));
    const double m[6] = {c / a, s / b, -s / a, c / b, -(c * x - s * y) / a, -(s * x + c * y) / b};
    float matrix[9] = {};
    for (int column = 0; column < 3; ++column) {
      for (int row = 0; row < 2; ++row) {
        matrix[3 * column + row] = static_cast<float>(m[2 * column + row]);
      }
      matrix[3 * column + 2] = 123.0f;  // takes no part
    }
    const auto inside = [&m](double u, double v) {
      return std::hypot(m[0] * u + m[2] * v + m[4], m[1] * u + m[3] * v + m[5]) < 1.0;
    };
    const PixelRectangle box = EllipseBox(matrix, kWidth, kHeight);
    ASSERT_TRUE(HoldsAll(ChangedArea(box), kWidth, kHeight, inside)) << i;
    ASSERT_TRUE(IsClose(box, kWidth, kHeight, 4, inside)) << i;
  }
}

TEST(EllipseBox, IsTheImageWhereThereIsNoEllipse) {
  const PixelRectangle whole{0, 0, 640, 480};
  const float matrices[][9] = {{},
                               {4, 0, 0, 8, 0, 0, 0, 0, 1},
                               {kNan, 0, 0, 0, 4, 0, 0, 0, 1},
                               {4, 0, 0, 0, kInfinity, 0, 0, 0, 1},
                               {4, 0, 0, 0, 4, 0, kNan, 0, 1},
                               {4, 0, 0, 0, 4, 0, 0, -kInfinity, 1},
                               {1e-30f, 0, 0, 0, 1e-30f, 0, 0, 0, 1},
                               {4, 0, 0, 0, 4, 0, 1e9f, 0, 1}};
  for (const auto& matrix : matrices) EXPECT_EQ(whole, EllipseBox(matrix, 640, 480));
}

TEST(Areas, AreTheirParts) {
  ChangedArea area({4, 2, 3, 2});
  area.Add({0, 0, 9, 0});
  area.Add({6, 8, 5, 1});
  EXPECT_EQ(2, area.end() - area.begin());
  EXPECT_EQ((PixelRectangle{4, 2, 7, 7}), area.Box());
  EXPECT_EQ(11, area.Pixels());
}

TEST(Areas, LoseNothingBeyondTheirParts) {
  constexpr int kParts = 2 * ChangedArea::kMostParts;
  ChangedArea area;
  for (int i = 0; i < kParts; ++i) area.Add({0, i, 1, 1});
  EXPECT_EQ(ChangedArea::kMostParts, area.end() - area.begin());
  EXPECT_EQ((PixelRectangle{0, 0, 1, kParts}), area.Box());
}

TEST(Areas, OfNearlyTheWholeImageAreNotWorthIt) {
  const auto covers = [](const PixelRectangle& part) {
    return CoversMost(ChangedArea(part), 640, 480);
  };
  EXPECT_TRUE(covers({0, 0, 640, 480}));
  EXPECT_TRUE(covers({0, 0, 640, 420}));
  EXPECT_FALSE(covers({0, 0, 640, 419}));
  EXPECT_FALSE(covers({0, 0, 0, 0}));
}

}  // namespace
}  // namespace lumora
