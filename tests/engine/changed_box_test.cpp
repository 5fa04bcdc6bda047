// The boxes against every pixel of small images: none that a pass can change lies outside, and they
// are not larger than they have to be.
#include "lumora/engine/changed_box.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <random>

namespace lumora::platform {

static bool operator==(const PixelRectangle& a, const PixelRectangle& b) {
  return a.x == b.x && a.y == b.y && a.width == b.width && a.height == b.height;
}

static void PrintTo(const PixelRectangle& r, std::ostream* out) {
  *out << r.width << " x " << r.height << " at (" << r.x << ", " << r.y << ")";
}

}  // namespace lumora::platform

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

testing::AssertionResult Fits(const PixelRectangle& box, int width, int height,
                              const std::function<bool(double, double)>& is_changed) {
  if (box.x < 0 || box.y < 0 || box.x + box.width > width || box.y + box.height > height) {
    return testing::AssertionFailure() << testing::PrintToString(box) << " leaves the image";
  }
  bool held = true;
  PixelRectangle reach{};
  ForEachChanged(width, height, is_changed, [&](int x, int y) {
    reach = Union(reach, {x, y, 1, 1});
    const bool in_image = x >= 0 && y >= 0 && x < width && y < height;
    const bool in_box = x >= box.x && y >= box.y && x < box.x + box.width && y < box.y + box.height;
    held = held && (in_box || !in_image);
  });
  if (!held) return testing::AssertionFailure() << testing::PrintToString(box) << " is too small";
  constexpr int kMargin = 4;
  const PixelRectangle widest{reach.x - kMargin, reach.y - kMargin, reach.width + 2 * kMargin,
                              reach.height + 2 * kMargin};
  if (!(Union(box, widest) == widest)) {
    return testing::AssertionFailure()
           << testing::PrintToString(box) << " is too large for " << testing::PrintToString(reach);
  }
  return testing::AssertionSuccess();
}

WarpUniforms Warp(float centre_x, float centre_y, float radius) {
  return {centre_x, centre_y, 1.2f, radius, 0.5f, 0.55f, 1.1f, 0.75f};
}

TEST(WarpBox, HoldsTheCircleWhereverItIs) {
  constexpr int kWidth = 96;
  constexpr int kHeight = 72;
  std::mt19937 random(1);
  std::uniform_real_distribution<float> place(-0.5f, 1.5f);
  std::uniform_real_distribution<float> size(0.01f, 0.4f);
  for (int i = 0; i < 200; ++i) {
    const WarpUniforms warp = Warp(place(random), place(random), size(random));
    const auto in_circle = [&warp](double u, double v) {
      const double across = u - static_cast<double>(warp.centre_x);
      const double down = (v - static_cast<double>(warp.centre_y)) * 0.75;
      return std::hypot(across, down) < static_cast<double>(warp.radius);
    };
    ASSERT_TRUE(Fits(WarpBox(warp, kWidth, kHeight), kWidth, kHeight, in_circle))
        << warp.centre_x << ", " << warp.centre_y << ", " << warp.radius;
  }
}

TEST(WarpBox, IsEmptyForACircleBesideTheImage) {
  for (const WarpUniforms& warp : {Warp(-0.5f, 0.5f, 0.2f), Warp(0.5f, 1.8f, 0.2f)}) {
    const PixelRectangle box = WarpBox(warp, 640, 480);
    EXPECT_EQ(0, box.width * box.height);
  }
}

TEST(WarpBox, IsTheImageWhereTheWarpIsNotKnown) {
  const auto changed = [](float WarpUniforms::*member, float value) {
    WarpUniforms warp = Warp(0.5f, 0.5f, 0.2f);
    warp.*member = value;
    return WarpBox(warp, 640, 480);
  };
  const PixelRectangle whole{0, 0, 640, 480};
  for (const auto member :
       {&WarpUniforms::centre_x, &WarpUniforms::centre_y, &WarpUniforms::strength,
        &WarpUniforms::radius, &WarpUniforms::limiter_direction, &WarpUniforms::limiter_distance,
        &WarpUniforms::limiter_scale, &WarpUniforms::aspect_ratio}) {
    for (const float value : {kNan, kInfinity, -kInfinity})
      EXPECT_EQ(whole, changed(member, value));
  }
  for (const float value : {0.0f, -0.1f}) {
    EXPECT_EQ(whole, changed(&WarpUniforms::radius, value));
    EXPECT_EQ(whole, changed(&WarpUniforms::aspect_ratio, value));
  }
  // Numbers so large that what cancels out leaves more than nothing.
  EXPECT_EQ(whole, changed(&WarpUniforms::strength, 1000.0f));
  EXPECT_EQ(whole, changed(&WarpUniforms::strength, -1000.0f));
  EXPECT_EQ(whole, changed(&WarpUniforms::centre_x, 1e5f));
  EXPECT_EQ(whole, changed(&WarpUniforms::centre_y, -1e5f));
  EXPECT_FALSE(whole == changed(&WarpUniforms::strength, 3.0f));
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
    ASSERT_TRUE(Fits(EllipseBox(matrix, kWidth, kHeight), kWidth, kHeight, inside)) << i;
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

TEST(Boxes, JoinToTheSmallestThatHoldsBoth) {
  EXPECT_EQ((PixelRectangle{2, 3, 10, 9}), Union({2, 5, 4, 7}, {10, 3, 2, 2}));
  EXPECT_EQ((PixelRectangle{2, 5, 4, 7}), Union({2, 5, 4, 7}, {0, 0, 0, 9}));
  EXPECT_EQ((PixelRectangle{2, 5, 4, 7}), Union({0, 0, 9, 0}, {2, 5, 4, 7}));
}

TEST(Boxes, AreMeasuredInStepsOutwards) {
  EXPECT_EQ((PixelRectangle{1, 2, 2, 2}), InSteps({7, 5, 2, 3}, 4, 2));
  EXPECT_EQ((PixelRectangle{1, 3, 1, 2}), InSteps({4, 6, 4, 4}, 4, 2));
  EXPECT_EQ((PixelRectangle{}), InSteps({7, 5, 0, 3}, 4, 2));
}

// Each pixel of the image is in the box or in exactly one part around it.
TEST(Boxes, AndWhatIsAroundThemMakeTheImage) {
  constexpr int kWidth = 7;
  constexpr int kHeight = 6;
  for (const PixelRectangle& box : {PixelRectangle{2, 1, 3, 2}, PixelRectangle{0, 0, 7, 6},
                                    PixelRectangle{0, 0, 0, 0}, PixelRectangle{4, 3, 3, 3}}) {
    int times[kHeight][kWidth] = {};
    const auto count = [&times](const PixelRectangle& part) {
      for (int y = part.y; y < part.y + part.height; ++y) {
        for (int x = part.x; x < part.x + part.width; ++x) ++times[y][x];
      }
    };
    count(box);
    for (const PixelRectangle& part : Around(box, kWidth, kHeight)) count(part);
    for (const auto& row : times) {
      for (const int pixel : row) EXPECT_EQ(1, pixel) << testing::PrintToString(box);
    }
  }
}

TEST(Boxes, OfNearlyTheWholeImageAreNotWorthIt) {
  EXPECT_TRUE(CoversMost({0, 0, 640, 480}, 640, 480));
  EXPECT_TRUE(CoversMost({0, 0, 640, 420}, 640, 480));
  EXPECT_FALSE(CoversMost({0, 0, 640, 419}, 640, 480));
  EXPECT_FALSE(CoversMost({0, 0, 0, 0}, 640, 480));
}

}  // namespace
}  // namespace lumora
