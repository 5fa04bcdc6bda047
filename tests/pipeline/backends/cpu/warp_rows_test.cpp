// SPDX-License-Identifier: Apache-2.0
// Rows of slimmed faces: both forms of the kernel, what they must not touch, and the formula.
#include "pipeline/backends/cpu/kernels/warp_rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include "pipeline/backends/cpu/every_target.h"
#include "support/guarded_buffer.h"

namespace lumora::test {
namespace {

using cpu::WarpRows;
using cpu::WarpShape;
using cpu::WarpSource;

class WarpKernel : public EveryTarget {};

INSTANTIATE_TEST_SUITE_P(Targets, WarpKernel, AllTargets(), TargetName);

/// Two rows of a face, with everything that drawing them takes.
class WarpScene {
 public:
  explicit WarpScene(unsigned seed) : random_(seed) {
    columns_ = cpu::kWarpColumns * Whole(1, 4);
    rows_ = 2 * Whole(2, 40);
    stride_ = columns_ + 2 * Whole(0, 5);
    const auto plane = [this](int rows) {
      auto memory = std::make_unique<GuardedBuffer>(
          static_cast<size_t>((rows + 1) * stride_ + cpu::kWarpSlack));
      for (size_t i = 0; i < memory->size(); ++i) {
        memory->data()[i] = static_cast<uint8_t>(random_());
      }
      memory->protect_from_writing();
      return memory;
    };
    luma_ = plane(rows_);
    chroma_ = plane(rows_ / 2);
    const float radius = Between(2, 120);
    shape = {Between(0, 1.2f) / radius,
             1 / radius,
             Between(-radius, radius),
             Between(-radius, radius),
             1 / Between(0.1f * radius, 2 * radius),
             Whole(0, 1) == 1};
    const float left = static_cast<float>(Whole(-columns_, 0));
    const float top = static_cast<float>(Whole(-rows_, 0));
    source = {luma_->data(), chroma_->data(), stride_, columns_, rows_, left + 0.5f, top + 0.5f};
    first_row_ = 2 * Whole(0, rows_ / 2 - 1);
    first_column_ = 2 * Whole(0, 8);
    if (first_column_ + cpu::kWarpColumns > columns_) first_column_ = 0;
    drawn_ = (columns_ - first_column_) / cpu::kWarpColumns * cpu::kWarpColumns;
    borders_.resize(static_cast<size_t>(drawn_));
    for (float& border : borders_) border = Between(0, 1);
  }

  /// The rows as `draw` makes them: luma, luma, chroma.
  template <typename Draw>
  std::vector<uint8_t> Draw2(const Draw& draw) {
    GuardedBuffer out(3 * static_cast<size_t>(drawn_));
    WarpRows rows{};
    rows.x = source.x + static_cast<float>(first_column_);
    rows.y = source.y + static_cast<float>(first_row_);
    rows.columns = drawn_;
    rows.column_borders = borders_.data();
    rows.row_borders[0] = 0.7f;
    rows.row_borders[1] = 0.71f;
    rows.luma[0] = out.data();
    rows.luma[1] = out.data() + drawn_;
    rows.chroma = out.data() + 2 * drawn_;
    draw(shape, source, rows);
    EXPECT_TRUE(out.intact());
    return {out.data(), out.data() + out.size()};
  }

  /// The luma of a row's column, computed with many digits.
  double Exact(int column, int row) const {
    const double x = static_cast<double>(source.x) + first_column_ + column;
    const double y = static_cast<double>(source.y) + first_row_ + row;
    const double distance = std::hypot(x, y);
    const double held = std::min(std::hypot(x - static_cast<double>(shape.limiter_x),
                                            y - static_cast<double>(shape.limiter_y)) *
                                     static_cast<double>(shape.inverse_reach),
                                 1.0);
    const double share =
        std::min(distance * static_cast<double>(shape.inverse_radius) / std::max(held, 1e-6), 1.0);
    const double border = std::min(static_cast<double>(borders_[static_cast<size_t>(column)]),
                                   static_cast<double>(row == 0 ? 0.7f : 0.71f));
    const double weight = std::min(share * (2 - border), 1.0);
    const double scale = 1 + static_cast<double>(shape.strength) * distance * (1 - weight);
    const auto inside = [](double position, int samples) {
      return std::clamp(position, 0.0, samples - 1.0);
    };
    const double across = inside(x * scale - static_cast<double>(source.x), columns_);
    const double down = inside(y * scale - static_cast<double>(source.y), rows_);
    const int left = std::min(static_cast<int>(across), columns_ - 2);
    const int top = std::min(static_cast<int>(down), rows_ - 2);
    const auto at = [&](int dx, int dy) {
      return static_cast<double>(luma_->data()[(top + dy) * stride_ + left + dx]);
    };
    const double fx = across - left, fy = down - top;
    return (at(0, 0) * (1 - fx) + at(1, 0) * fx) * (1 - fy) +
           (at(0, 1) * (1 - fx) + at(1, 1) * fx) * fy;
  }

  int columns() const { return drawn_; }

  WarpShape shape{};
  WarpSource source{};

 private:
  int Whole(int least, int most) { return std::uniform_int_distribution<>(least, most)(random_); }
  float Between(float least, float most) {
    return std::uniform_real_distribution<float>(least, most)(random_);
  }

  std::mt19937 random_;
  int columns_, rows_, stride_, first_row_, first_column_, drawn_;
  std::unique_ptr<GuardedBuffer> luma_, chroma_;
  std::vector<float> borders_;
};

TEST_P(WarpKernel, GivesTheBytesOfItsDefinitionAndReadsNothingElse) {
  for (unsigned seed = 0; seed < 400; ++seed) {
    WarpScene scene(seed);
    ASSERT_EQ(scene.Draw2(cpu::scalar::DrawWarp), scene.Draw2(cpu::DrawWarp)) << seed;
  }
}

// Weights of neighbours have 1/256 as their step: noise of full contrast shows a half of it on each
// axis, and places of single precision move a pixel by less.
TEST(WarpKernelFormula, HoldsToTheStepsOfItsWeights) {
  double sum = 0;
  int count = 0;
  for (unsigned seed = 0; seed < 200; ++seed) {
    WarpScene scene(seed);
    const std::vector<uint8_t> drawn = scene.Draw2(cpu::scalar::DrawWarp);
    for (int row = 0; row < 2; ++row) {
      for (int column = 0; column < scene.columns(); ++column) {
        const double exact = scene.Exact(column, row);
        const double difference =
            drawn[static_cast<size_t>(row * scene.columns() + column)] - exact;
        ASSERT_NEAR(0, difference, 0.5 + 2 * 255.0 / 512 + 0.1) << seed << " column " << column;
        sum += difference;
        ++count;
      }
    }
  }
  EXPECT_NEAR(0, sum / count, 0.02) << "results are darker or brighter than their sources";
}

TEST(WarpKernelFormula, LeavesEverythingInItsPlaceWithoutStrength) {
  WarpScene scene(7);
  scene.shape.strength = 0;
  scene.shape.smooth_chroma = false;
  const std::vector<uint8_t> drawn = scene.Draw2(cpu::DrawWarp);
  const std::vector<uint8_t> unmoved =
      scene.Draw2([](const auto&, const WarpSource& from, const WarpRows& rows) {
        const auto x = static_cast<int>(rows.x - from.x), y = static_cast<int>(rows.y - from.y);
        const auto bytes = static_cast<size_t>(rows.columns);
        std::memcpy(rows.luma[0], from.luma + y * from.stride + x, bytes);
        std::memcpy(rows.luma[1], from.luma + (y + 1) * from.stride + x, bytes);
        std::memcpy(rows.chroma, from.chroma + y / 2 * from.stride + x, bytes);
      });
  EXPECT_EQ(unmoved, drawn);
}

}  // namespace
}  // namespace lumora::test
