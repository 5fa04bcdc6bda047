// SPDX-License-Identifier: Apache-2.0
// The warps of the engine's two chains, and what the pipeline tells of them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "pipeline/plan/warp_geometry.h"
#include "pipeline/plan/warp_model.h"

namespace lumora::test {
namespace {

struct Case {
  int width, height;
  double eye_distance;  // share of the width
  double x, y;          // shares
};

Face FaceOf(const Case& c) {
  const double half = c.eye_distance * c.width / 2;
  const auto y = static_cast<float>(c.y * c.height);
  return FaceFromEyes({static_cast<float>(c.x * c.width - half), y},
                      {static_cast<float>(c.x * c.width + half), y});
}

std::vector<Case> Cases() {
  std::vector<Case> cases;
  for (const auto& [width, height] : {std::pair(2048, 2048), std::pair(1920, 1088),
                                      std::pair(4000, 3008), std::pair(3008, 4000)}) {
    for (const double eyes : {0.03, 0.07, 0.1}) {
      for (const double x : {0.35, 0.5}) {
        for (const double y : {0.35, 0.5}) cases.push_back({width, height, eyes, x, y});
      }
    }
  }
  return cases;
}

std::string Describe(const Case& c) {
  return std::to_string(c.width) + " x " + std::to_string(c.height) + ", eyes " +
         std::to_string(c.eye_distance) + " at " + std::to_string(c.x) + ", " + std::to_string(c.y);
}

Vector Minus(Vector a, Vector b) {
  return {a.x - b.x, a.y - b.y};
}
double Size(Vector a) {
  return std::hypot(a.x, a.y);
}

TEST(WarpChains, MoveAFaceByAboutTheSame) {
  for (const Case& c : Cases()) {
    const Face face = FaceOf(c);
    const auto preview_record = MakeFaceRecord(face, c.width, c.height, 100, Chain::Preview);
    const auto capture_record = MakeFaceRecord(face, c.width, c.height, 100, Chain::Capture);
    ASSERT_TRUE(preview_record && capture_record) << Describe(c);
    const WarpModel preview(*preview_record, c.width, c.height, kBeautyLevel);
    const WarpModel capture(*capture_record, c.width, c.height, kBeautyLevel, true);
    const double eyes = c.eye_distance * c.width;
    const double radius = preview.radius_pixels();
    double largest = 0, sum = 0, moved = 0;
    int count = 0;
    for (double dy = -radius; dy <= radius; dy += radius / 40) {
      for (double dx = -radius; dx <= radius; dx += radius / 40) {
        const Vector at = {preview.centre_pixels().x + dx, preview.centre_pixels().y + dy};
        const double apart = Size(Minus(preview.Source(at), capture.Source(at)));
        largest = std::max(largest, apart);
        moved = std::max(moved, Size(Minus(capture.Source(at), at)));
        sum += apart;
        ++count;
      }
    }
    EXPECT_LT(largest, 0.11 * eyes) << Describe(c);
    EXPECT_LT(sum / count, 0.01 * eyes) << Describe(c);
    EXPECT_GT(moved, 0.09 * eyes) << Describe(c);
  }
}

TEST(WarpChains, CapturesStayWithinTheCircleAndWithinTheirBlocks) {
  for (int pixels = 20; pixels < 900; pixels += 7) {
    const Case c = {4000, 3008, pixels / 4000.0, 0.5, 0.45};
    const Face face = FaceOf(c);
    const auto record = MakeFaceRecord(face, c.width, c.height, 100, Chain::Capture);
    ASSERT_TRUE(record.has_value());
    const double radius = WarpRadius(*record, c.width, Chain::Capture);
    EXPECT_LE(radius, static_cast<double>(SlimmingCircle(face, c.width, c.height).radius));
    const int measure = std::max(record->dist, record->chin_dist);
    const int blocks = (measure + 383) / 384;
    EXPECT_LE(radius, blocks * 384) << pixels;
  }
}

TEST(WarpChains, CapturesNeverFoldTheImage) {
  for (const Case& c : Cases()) {
    const auto record = MakeFaceRecord(FaceOf(c), c.width, c.height, 100, Chain::Capture);
    ASSERT_TRUE(record.has_value());
    const WarpModel warp(*record, c.width, c.height, kBeautyLevel, true);
    const Vector centre = warp.centre_pixels();
    for (int direction = 0; direction < 72; ++direction) {
      const Vector outward = {std::cos(direction * 0.0872665), std::sin(direction * 0.0872665)};
      double before = 0;
      for (double distance = 1; distance <= warp.radius_pixels() + 2; distance += 1) {
        const Vector source =
            warp.Source({centre.x + outward.x * distance, centre.y + outward.y * distance});
        const double along = (source.x - centre.x) * outward.x + (source.y - centre.y) * outward.y;
        EXPECT_GT(along, before) << Describe(c) << " direction " << direction;
        before = along;
      }
    }
  }
}

TEST(SlimmingWarp, IsTheWarpThatTheEngineDraws) {
  for (const Case& c : Cases()) {
    for (const int slim : {30, 100}) {
      const Face face = FaceOf(c);
      const FaceWarp warp = SlimmingWarp(face, slim, c.width, c.height);
      const WarpModel model(*MakeFaceRecord(face, c.width, c.height, slim), warp.frame_width,
                            warp.frame_height, kBeautyLevel);
      const auto wide = [](float value) { return static_cast<double>(value); };
      for (double dy = -1.1; dy <= 1.1; dy += 0.1) {
        for (double dx = -1.1; dx <= 1.1; dx += 0.1) {
          const Vector at = {wide(warp.centre.x) + dx * wide(warp.radius),
                             wide(warp.centre.y) + dy * wide(warp.radius)};
          if (at.x < 0 || at.y < 0 || at.x > c.width || at.y > c.height) continue;
          // The formula of the header, term by term.
          const Vector d = {at.x - wide(warp.centre.x), at.y - wide(warp.centre.y)};
          const double hold =
              std::min(1.0, std::hypot(at.x - wide(warp.limiter.x), at.y - wide(warp.limiter.y)) /
                                (wide(warp.limiter_scale) * wide(warp.reach)));
          const double u = at.x / warp.frame_width, v = at.y / warp.frame_height;
          const double border = std::min({u, 1 - u, v, 1 - v});
          const double weight =
              std::min(1.0, Size(d) / wide(warp.radius) / hold *
                                (2 - std::pow(border, wide(warp.border_exponent))));
          const double pull = wide(warp.strength) * Size(d) * (1 - weight);
          const Vector expected = model.Source(at);
          ASSERT_NEAR(at.x + d.x * pull, expected.x, 0.02 + 1e-4 * wide(warp.radius));
          ASSERT_NEAR(at.y + d.y * pull, expected.y, 0.02 + 1e-4 * wide(warp.radius));
        }
      }
    }
  }
}

TEST(SlimmingWarp, OfAFaceThatCannotBeSlimmedHasNoRadius) {
  EXPECT_EQ(SlimmingWarp(Face{}, 50, 640, 480).radius, 0);
  EXPECT_EQ(SlimmingWarp(FaceFromEyes({-300, 0}, {-200, 0}), 50, 640, 480).radius, 0);
}

}  // namespace
}  // namespace lumora::test
