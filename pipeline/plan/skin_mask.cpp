// SPDX-License-Identifier: Apache-2.0
#include "pipeline/plan/skin_mask.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "pipeline/plan/skin_grid.h"
#include "pipeline/plan/smooth_step.h"

namespace lumora {
namespace {

constexpr float kRadiansPerDegree = 0.01745329f;

// Luma, as a share of the skin's, below which nothing is whitened and above which everything is.
constexpr float kDark = 0.30f;
constexpr float kLit = 0.72f;

// The weights are smooth: so many numbers across a face are enough.
constexpr int kGridSteps = 160;

int RoundDownToEven(float value) {
  return static_cast<int>(std::floor(value / 2)) * 2;
}

}  // namespace

void SkinMask::Make(const Face& face, const Ellipse& outer, int skin_luma, int width, int height) {
  const auto skin = static_cast<float>(std::max(1, skin_luma));
  darkest_ = kDark * skin;
  lit_ = kLit * skin;
  for (size_t i = 0; i < luma_share_.size(); ++i) {
    luma_share_[i] = SmoothStep(darkest_, lit_, static_cast<float>(i));
  }
  // The box of a turned ellipse.
  const float cosine = std::cos(outer.angle_degrees * kRadiansPerDegree);
  const float sine = std::sin(outer.angle_degrees * kRadiansPerDegree);
  const float half_x = std::hypot(outer.half_along * cosine, outer.half_across * sine);
  const float half_y = std::hypot(outer.half_along * sine, outer.half_across * cosine);
  const auto clip = [](float value, int limit) {
    return RoundDownToEven(std::clamp(value, 0.f, static_cast<float>(limit + limit % 2)));
  };
  width_ = width;
  height_ = height;
  outer_ = EllipseRows(outer);
  bounds_.x = clip(outer.centre.x - half_x, width);
  bounds_.y = clip(outer.centre.y - half_y, height);
  bounds_.width = clip(outer.centre.x + half_x + 2, width) - bounds_.x;
  bounds_.height = clip(outer.centre.y + half_y + 2, height) - bounds_.y;
  if (!IsEmpty(bounds_)) MakeGrid(face, outer);
}

void SkinMask::MakeGrid(const Face& face, const Ellipse& outer) {
  step_ = std::max(1, std::max(bounds_.width, bounds_.height) / kGridSteps);
  columns_ = bounds_.width / step_ + 2;
  const int rows = bounds_.height / step_ + 2;
  grid_.resize(static_cast<size_t>(columns_) * static_cast<size_t>(rows) + MaskRow::kBeyond);
  FillSkinGrid({bounds_.x, bounds_.y, step_, columns_, rows}, face, outer, grid_.data());
}

MaskRow SkinMask::RowAt(int y) const {
  y = std::min(y, height_ - 1);
  const int row = (y - bounds_.y) / step_;
  MaskRow numbers;
  numbers.above = grid_.data() + static_cast<size_t>(row) * static_cast<size_t>(columns_);
  numbers.below = numbers.above + columns_;
  numbers.down = static_cast<float>((y - bounds_.y) % step_) / static_cast<float>(step_);
  numbers.step = step_;
  // The grid's numbers alone would end up to a step of it beyond the ellipse.
  const RowSpan held = outer_.Row(y, width_);
  numbers.held.begin = std::clamp(held.begin - bounds_.x, 0, bounds_.width);
  numbers.held.end = std::clamp(held.end - bounds_.x, numbers.held.begin, bounds_.width);
  return numbers;
}

void SkinMask::Row(int y, float* weights) const {
  const MaskRow row = RowAt(y);
  std::fill_n(weights, bounds_.width, 0.f);
  for (int x = row.held.begin; x < row.held.end; ++x) {
    weights[x] =
        row.Between(x / row.step, static_cast<float>(x % row.step) / static_cast<float>(row.step));
  }
  const int beyond = width_ - bounds_.x;
  if (beyond > 0 && beyond < bounds_.width) weights[beyond] = weights[beyond - 1];
}

}  // namespace lumora
