// SPDX-License-Identifier: Apache-2.0
// Slimmed frames of the processor against the warp in double precision.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <vector>

#include "pipeline/backends/backend.h"
#include "pipeline/faces/random_faces.h"
#include "pipeline/frames/frame_memory.h"
#include "pipeline/plan/frame_plan.h"
#include "pipeline/plan/warp_model.h"

namespace lumora::test {
namespace {

/// A plane of a frame as the engine's textures hold it: its outermost samples go on until both
/// sides of the frame are multiples of 32, where everything is seen in a mirror.
struct SeenPlane {
  const std::vector<uint8_t>& samples;
  int width, height;  // of the plane
  int padded_width, padded_height;

  double at(int x, int y) const {
    const auto seen = [](int position, int size, int padded) {
      while (position < 0 || position >= padded) {
        position = position < 0 ? -1 - position : 2 * padded - 1 - position;
      }
      return std::min(position, size - 1);
    };
    return samples[static_cast<size_t>(seen(y, height, padded_height) * width +
                                       seen(x, width, padded_width))];
  }

  /// Between the samples, whose centres lie at whole numbers and a half.
  double Between(double x, double y) const {
    const double left = std::floor(x - 0.5), top = std::floor(y - 0.5);
    const double fx = x - 0.5 - left, fy = y - 0.5 - top;
    const int column = static_cast<int>(left), row = static_cast<int>(top);
    return (at(column, row) * (1 - fx) + at(column + 1, row) * fx) * (1 - fy) +
           (at(column, row + 1) * (1 - fx) + at(column + 1, row + 1) * fx) * fy;
  }

  /// The same where every sample stands for two columns and rows: `x` and `y` are in pixels.
  double BetweenPixels(double x, double y) const {
    const double left = std::floor(x - 0.5), top = std::floor(y - 0.5);
    const double fx = x - 0.5 - left, fy = y - 0.5 - top;
    const auto sample = [&](double column, double row) {
      return at(static_cast<int>(std::floor(column / 2)), static_cast<int>(std::floor(row / 2)));
    };
    return (sample(left, top) * (1 - fx) + sample(left + 1, top) * fx) * (1 - fy) +
           (sample(left, top + 1) * (1 - fx) + sample(left + 1, top + 1) * fx) * fy;
  }
};

SeenPlane PlaneOf(const std::vector<uint8_t>& samples, int width, int height, int part) {
  const auto padded = [part](int size) { return (size + 31) / 32 * 32 / part; };
  return {samples, (width + part - 1) / part, (height + part - 1) / part, padded(width),
          padded(height)};
}

struct Differences {
  double most = 0, sum = 0;
  int count = 0;

  void Add(double difference) {
    most = std::max(most, std::abs(difference));
    sum += difference;
    ++count;
  }
};

/// One face in one frame of noise, drawn and computed.
void Compare(RandomFaces& random, Chain chain, Differences* luma, Differences* chroma) {
  const int width = random.WholeBetween(32, 260), height = random.WholeBetween(32, 220);
  const float x = random.Between(0, static_cast<float>(width));
  const float y = random.Between(0, static_cast<float>(height));
  const float eyes = random.Between(6, static_cast<float>(std::max(width, height)) / 3);
  Face face = FaceFromEyes({x - eyes / 2, y}, {x + eyes / 2, y + random.Between(-5, 5)});
  const std::vector<Face> faces = {face};
  FramePlan plan;
  FrameMemory in(PixelFormat::NV21, width, height), out(PixelFormat::I420, width, height, 5);
  const Samples before =
      NoiseSamples(width, height, static_cast<uint32_t>(random.WholeBetween(1, 99)));
  in.Fill(before);
  PlanFrame(in.const_view(), faces, Look{random.WholeBetween(1, 100)}, chain, &plan);
  if (plan.faces.empty()) return;
  std::unique_ptr<Backend> cpu;
  ASSERT_TRUE(MakeCpuBackend(1, &cpu).ok());
  ASSERT_TRUE(cpu->Apply(plan, in.const_view(), out.view(), nullptr).ok());
  ASSERT_TRUE(out.GuardsIntact());
  const Samples after = out.Read();

  const FacePlan& drawn = plan.faces.front();
  const WarpModel warp(drawn.record, (width + 31) / 32 * 32, (height + 31) / 32 * 32, 0,
                       chain == Chain::Capture);
  const auto inside = [&](int column, int row) {
    return column < width && row < height &&
           std::hypot(column + 0.5 - static_cast<double>(drawn.centre.x),
                      row + 0.5 - static_cast<double>(drawn.centre.y)) < drawn.radius - 1e-3;
  };
  const SeenPlane plane = PlaneOf(before.y, width, height, 1);
  for (int row = 0; row < height; ++row) {
    for (int column = 0; column < width; ++column) {
      if (!inside(column, row)) continue;
      const Vector from = warp.Source({column + 0.5, row + 0.5});
      luma->Add(after.y[static_cast<size_t>(row * width + column)] - plane.Between(from.x, from.y));
    }
  }
  const std::vector<uint8_t>* const planes[2][2] = {{&before.cb, &after.cb},
                                                    {&before.cr, &after.cr}};
  const int chroma_width = (width + 1) / 2;
  for (const auto& [source, result] : planes) {
    const SeenPlane seen = PlaneOf(*source, width, height, 2);
    for (int row = 0; row < (height + 1) / 2; ++row) {
      for (int column = 0; column < chroma_width; ++column) {
        // The pixel next to the circle's centre of those that the sample stands for.
        const int x_at = 2 * column + (2 * column + 1 >= static_cast<int>(drawn.centre.x) ? 0 : 1);
        const int y_at = 2 * row + (2 * row + 1 >= static_cast<int>(drawn.centre.y) ? 0 : 1);
        if (!inside(x_at, y_at)) continue;
        const Vector from = warp.Source({x_at + 0.5, y_at + 0.5});
        const double exact = chain == Chain::Capture ? seen.Between(from.x / 2, from.y / 2)
                                                     : seen.BetweenPixels(from.x, from.y);
        chroma->Add((*result)[static_cast<size_t>(row * chroma_width + column)] - exact);
      }
    }
  }
}

// Noise of full contrast shows the steps of the weights, 1/512 of it on each axis, and half a step
// of the samples.
constexpr double kSteps = 0.5 + 2 * 255.0 / 512 + 0.3;

class CpuSlimming : public testing::TestWithParam<Chain> {};

INSTANTIATE_TEST_SUITE_P(Chains, CpuSlimming, testing::Values(Chain::Preview, Chain::Capture),
                         [](const auto& chain) {
                           return chain.param == Chain::Preview ? "Preview" : "Capture";
                         });

TEST_P(CpuSlimming, DrawsTheWarpOfTheModel) {
  RandomFaces random(5);
  Differences luma, chroma;
  for (int i = 0; i < 150; ++i)
    ASSERT_NO_FATAL_FAILURE(Compare(random, GetParam(), &luma, &chroma));
  EXPECT_GT(luma.count, 300000);
  EXPECT_LE(luma.most, kSteps);
  EXPECT_LE(chroma.most, kSteps);
  EXPECT_NEAR(0, luma.sum / luma.count, 0.02);
  EXPECT_NEAR(0, chroma.sum / chroma.count, 0.05);
}

}  // namespace
}  // namespace lumora::test
