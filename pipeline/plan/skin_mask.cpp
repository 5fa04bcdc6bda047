// SPDX-License-Identifier: Apache-2.0
#include "pipeline/plan/skin_mask.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "pipeline/faces/landmarks.h"

namespace lumora {
namespace {

constexpr float kRadiansPerDegree = 0.01745329f;

// The engine blends its result in by 1 - d, d the position in the outer ellipse. What is wanted is
// a plateau that ends softly; it stays below the engine's own blend everywhere.
constexpr float kPlateau = 0.55f;
constexpr float kPlateauEnd = 0.3f;

// Luma, as a share of the skin's, below which nothing is whitened and above which everything is.
constexpr float kDark = 0.30f;
constexpr float kLit = 0.72f;

// The weights are smooth: so many numbers across a face are enough.
constexpr int kGridSteps = 160;

float SmoothStep(float low, float high, float value) {
  const float t = std::clamp((value - low) / (high - low), 0.f, 1.f);
  return t * t * (3 - 2 * t);
}

/// An ellipse with its direction at hand.
struct Region {
  explicit Region(const Ellipse& shape)
      : ellipse(shape),
        cos_angle(std::cos(shape.angle_degrees * kRadiansPerDegree)),
        sin_angle(std::sin(shape.angle_degrees * kRadiansPerDegree)) {}

  float Position(PointF at) const { return PositionIn(ellipse, cos_angle, sin_angle, at); }

  Ellipse ellipse;
  float cos_angle;
  float sin_angle;
};

/// A part of the face that keeps its own colours: fully up to `inner` of its region's position, not
/// at all from `outer` on.
struct Feature {
  Region region;
  float kept;  // share that is kept in the middle
  float inner;
  float outer;

  float WeightAt(PointF at) const {
    return 1 - kept * (1 - SmoothStep(inner, outer, region.Position(at)));
  }
};

/// The ellipse in a box of landmarks, at least `least_shape` as high as wide.
Ellipse EllipseIn(const FeatureBox& box, float least_shape) {
  const PointF across = box.right - box.left;
  Ellipse ellipse;
  ellipse.centre = Middle(Middle(box.left, box.right), Middle(box.top, box.bottom));
  ellipse.half_along = std::max(1.f, Length(across) / 2);
  ellipse.half_across =
      std::max(least_shape * ellipse.half_along, Length(box.bottom - box.top) / 2);
  ellipse.angle_degrees = std::atan2(across.y, across.x) / kRadiansPerDegree;
  return ellipse;
}

float Plateau(float position) {
  if (position >= 1) return 0;
  return kPlateau * (1 - SmoothStep(kPlateauEnd, 1, position)) / (1 - position);
}

int RoundDownToEven(float value) {
  return static_cast<int>(std::floor(value / 2)) * 2;
}

}  // namespace

void SkinMask::Make(const Face& face, const Ellipse& outer, int skin_luma, int width, int height) {
  const auto skin = static_cast<float>(std::max(1, skin_luma));
  for (size_t i = 0; i < luma_share_.size(); ++i) {
    luma_share_[i] = SmoothStep(kDark * skin, kLit * skin, static_cast<float>(i));
  }
  // The box of a turned ellipse.
  const Region region(outer);
  const float half_x =
      std::hypot(outer.half_along * region.cos_angle, outer.half_across * region.sin_angle);
  const float half_y =
      std::hypot(outer.half_along * region.sin_angle, outer.half_across * region.cos_angle);
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
  const Region region(outer);
  const FaceLandmarks& at = face.landmarks;
  const Feature features[] = {
      {Region(EllipseIn(at.left_eye, 0.40f)), 0.80f, 0.75f, 1.35f},
      {Region(EllipseIn(at.right_eye, 0.40f)), 0.80f, 0.75f, 1.35f},
      {Region(EllipseIn(at.left_brow, 0.25f)), 0.50f, 0.60f, 1.50f},
      {Region(EllipseIn(at.right_brow, 0.25f)), 0.50f, 0.60f, 1.50f},
      {Region(EllipseIn(at.mouth, 0.30f)), 0.80f, 0.80f, 1.35f},
  };
  step_ = std::max(1, std::max(bounds_.width, bounds_.height) / kGridSteps);
  columns_ = bounds_.width / step_ + 2;
  const int rows = bounds_.height / step_ + 2;
  grid_.resize(static_cast<size_t>(columns_) * static_cast<size_t>(rows));
  auto number = grid_.begin();
  for (int row = 0; row < rows; ++row) {
    for (int column = 0; column < columns_; ++column, ++number) {
      const PointF point = {static_cast<float>(bounds_.x + column * step_) + 0.5f,
                            static_cast<float>(bounds_.y + row * step_) + 0.5f};
      *number = Plateau(region.Position(point));
      if (*number == 0) continue;
      for (const Feature& feature : features) *number *= feature.WeightAt(point);
    }
  }
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
    const int column = x / row.step;
    const float right = static_cast<float>(x % row.step) / static_cast<float>(row.step);
    const auto along = [column, right](const float* numbers) {
      return numbers[column] + right * (numbers[column + 1] - numbers[column]);
    };
    const float top = along(row.above);
    weights[x] = top + row.down * (along(row.below) - top);
  }
  const int beyond = width_ - bounds_.x;
  if (beyond > 0 && beyond < bounds_.width) weights[beyond] = weights[beyond - 1];
}

}  // namespace lumora
