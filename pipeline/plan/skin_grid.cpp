// SPDX-License-Identifier: Apache-2.0
#include "pipeline/plan/skin_grid.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "pipeline/faces/landmarks.h"
#include "pipeline/frames/row_span.h"
#include "pipeline/plan/smooth_step.h"
#include "pipeline/plan/whitening_geometry.h"

namespace lumora {
namespace {

constexpr float kRadiansPerDegree = 0.01745329f;

// The engine blends its result in by 1 - d, d the position in the outer ellipse. What is wanted is
// a plateau that ends softly; it stays below the engine's own blend everywhere.
constexpr float kPlateau = 0.55f;
constexpr float kPlateauEnd = 0.3f;

/// A part of the face that keeps its own colours: fully up to `inner` of its ellipse's position,
/// not at all from `outer` on.
struct Feature {
  Ellipse ellipse;
  float kept;  // share that is kept in the middle
  float inner;
  float outer;
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
  const float value = kPlateau * (1 - SmoothStep(kPlateauEnd, 1, position)) / (1 - position);
  return position >= 1 ? 0 : value;
}

float ShareOutside(const Feature& feature, float position) {
  return 1 - feature.kept * (1 - SmoothStep(feature.inner, feature.outer, position));
}

/// The ellipse up to that position, and a little more: no place outside of it comes to less than
/// `position` in single precision, whose error grows with the quotient of the axes.
Ellipse UpTo(float position, const Ellipse& ellipse) {
  const float longer = std::max(ellipse.half_along, ellipse.half_across);
  const float shorter = std::min(ellipse.half_along, ellipse.half_across);
  const float scale = position * (1.001f + 4e-6f * longer / shorter);
  Ellipse larger = ellipse;
  larger.half_along *= scale;
  larger.half_across *= scale;
  return larger;
}

/// Calls `visit` with each row of the grid, the columns of it that may lie below `position` in
/// `ellipse`, and a function from the column to that position.
template <typename Visit>
void ForEachRow(const SkinGrid& grid, const Ellipse& ellipse, float position, Visit visit) {
  const EllipseRows rows(UpTo(position, ellipse));
  const float cosine = std::cos(ellipse.angle_degrees * kRadiansPerDegree);
  const float sine = std::sin(ellipse.angle_degrees * kRadiansPerDegree);
  for (int row = 0; row < grid.rows; ++row) {
    const int y = grid.y + row * grid.step;
    const RowSpan pixels = rows.Row(y, grid.x + grid.columns * grid.step);
    const auto column = [&grid](int pixel) {  // the first one from the pixel on
      return std::max(0, pixel - grid.x + grid.step - 1) / grid.step;
    };
    const RowSpan columns = {column(pixels.begin), column(pixels.end)};
    const float first = static_cast<float>(grid.x) + 0.5f;
    const float down = static_cast<float>(y) + 0.5f - ellipse.centre.y;
    const float along_down = sine * down, across_down = cosine * down;
    visit(row, columns, [&, first, along_down, across_down](int column_at) {
      const float x = first + static_cast<float>(column_at * grid.step) - ellipse.centre.x;
      const float along = (cosine * x + along_down) / ellipse.half_along;
      const float across = (across_down - sine * x) / ellipse.half_across;
      return std::sqrt(along * along + across * across);
    });
  }
}

}  // namespace

void FillSkinGrid(const SkinGrid& grid, const Face& face, const Ellipse& outer, float* numbers) {
  const auto row_of = [&grid, numbers](int row) {
    return numbers + static_cast<size_t>(row) * static_cast<size_t>(grid.columns);
  };
  ForEachRow(grid, outer, 1, [&](int row, RowSpan columns, auto position) {
    float* const weights = row_of(row);
    std::fill(weights, weights + columns.begin, 0.f);
    for (int i = columns.begin; i < columns.end; ++i) weights[i] = Plateau(position(i));
    std::fill(weights + columns.end, weights + grid.columns, 0.f);
  });
  const FaceLandmarks& at = face.landmarks;
  const Feature features[] = {
      {EllipseIn(at.left_eye, 0.40f), 0.80f, 0.75f, 1.35f},
      {EllipseIn(at.right_eye, 0.40f), 0.80f, 0.75f, 1.35f},
      {EllipseIn(at.left_brow, 0.25f), 0.50f, 0.60f, 1.50f},
      {EllipseIn(at.right_brow, 0.25f), 0.50f, 0.60f, 1.50f},
      {EllipseIn(at.mouth, 0.30f), 0.80f, 0.80f, 1.35f},
  };
  for (const Feature& feature : features) {
    ForEachRow(grid, feature.ellipse, feature.outer, [&](int row, RowSpan columns, auto position) {
      float* const weights = row_of(row);
      for (int i = columns.begin; i < columns.end; ++i) {
        weights[i] *= ShareOutside(feature, position(i));
      }
    });
  }
}

}  // namespace lumora
