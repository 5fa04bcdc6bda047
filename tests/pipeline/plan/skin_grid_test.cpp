// SPDX-License-Identifier: Apache-2.0
// The grid's numbers are those of its formula at every place, to the last bit.
#include "pipeline/plan/skin_grid.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <vector>

#include "pipeline/faces/landmarks.h"
#include "pipeline/faces/random_faces.h"
#include "pipeline/plan/whitening_geometry.h"

namespace lumora::test {
namespace {

constexpr float kRadian = 0.01745329f;

float Step(float low, float high, float value) {
  const float t = std::clamp((value - low) / (high - low), 0.f, 1.f);
  return t * t * (3 - 2 * t);
}

float PositionAt(const Ellipse& ellipse, PointF at) {
  return PositionIn(ellipse, std::cos(ellipse.angle_degrees * kRadian),
                    std::sin(ellipse.angle_degrees * kRadian), at);
}

/// What is left of the plateau on a feature.
float Left(const FeatureBox& box, float shape, float kept, float inner, float outer, PointF at) {
  const PointF across = box.right - box.left;
  Ellipse ellipse;
  ellipse.centre = Middle(Middle(box.left, box.right), Middle(box.top, box.bottom));
  ellipse.half_along = std::max(1.f, Length(across) / 2);
  ellipse.half_across = std::max(shape * ellipse.half_along, Length(box.bottom - box.top) / 2);
  ellipse.angle_degrees = std::atan2(across.y, across.x) / kRadian;
  return 1 - kept * (1 - Step(inner, outer, PositionAt(ellipse, at)));
}

/// The weight at a place: every feature and the ellipse looked at, wherever it lies.
float WeightAt(const Face& face, const Ellipse& outer, PointF at) {
  const FaceLandmarks& marks = face.landmarks;
  const float position = PositionAt(outer, at);
  if (position >= 1) return 0;
  float weight = 0.55f * (1 - Step(0.3f, 1, position)) / (1 - position);
  for (const FeatureBox* eye : {&marks.left_eye, &marks.right_eye}) {
    weight *= Left(*eye, 0.40f, 0.80f, 0.75f, 1.35f, at);
  }
  for (const FeatureBox* brow : {&marks.left_brow, &marks.right_brow}) {
    weight *= Left(*brow, 0.25f, 0.50f, 0.60f, 1.50f, at);
  }
  return weight * Left(marks.mouth, 0.30f, 0.80f, 0.80f, 1.35f, at);
}

/// Numbers of a grid that are not those of the formula.
size_t CountDifferent(const SkinGrid& grid, const Face& face, const Ellipse& outer) {
  std::vector<float> numbers(static_cast<size_t>(grid.columns * grid.rows), -1.f);
  FillSkinGrid(grid, face, outer, numbers.data());
  size_t different = 0;
  for (int row = 0; row < grid.rows; ++row) {
    for (int column = 0; column < grid.columns; ++column) {
      const float expected = WeightAt(face, outer,
                                      {static_cast<float>(grid.x + column * grid.step) + 0.5f,
                                       static_cast<float>(grid.y + row * grid.step) + 0.5f});
      const float number = numbers[static_cast<size_t>(row * grid.columns + column)];
      different += std::memcmp(&number, &expected, sizeof(number)) != 0;
    }
  }
  return different;
}

TEST(SkinGrid, HoldsTheFormulasNumbersForFacesOfEveryKind) {
  RandomFaces random(17);
  int faces = 0;
  for (int i = 0; i < 2500; ++i) {
    const int width = random.WholeBetween(16, 4000), height = random.WholeBetween(16, 3000);
    const Face face = random.In(width, height);
    const Ellipse outer = WhiteningEllipses(face)[kFaceEllipse];
    if (outer.half_along == 0) continue;
    // Over the frame at large, so that features lie wherever they like, then close to the face.
    SkinGrid grid;
    grid.step = std::max(1, width / 40);
    grid.columns = width / grid.step + 2;
    grid.rows = height / grid.step + 2;
    ASSERT_EQ(CountDifferent(grid, face, outer), 0U) << "of face " << i;
    const PointF corner = outer.centre - PointF{outer.half_along, outer.half_along};
    grid.x = static_cast<int>(std::clamp(corner.x, 0.f, 5000.f));
    grid.y = static_cast<int>(std::clamp(corner.y, 0.f, 5000.f));
    grid.step = std::clamp(static_cast<int>(outer.half_along / 20), 1, 300);
    grid.columns = grid.rows = random.WholeBetween(1, 45);
    ASSERT_EQ(CountDifferent(grid, face, outer), 0U) << "around face " << i;
    ++faces;
  }
  EXPECT_GT(faces, 1000);
}

TEST(SkinGrid, HoldsTheFormulasNumbersOfAFaceAtEveryTurn) {
  for (int degrees = 0; degrees < 360; degrees += 7) {
    const float angle = static_cast<float>(degrees) * kRadian;
    const PointF half = {40 * std::cos(angle), 40 * std::sin(angle)};
    const Face face = FaceFromEyes(PointF{200, 190} - half, PointF{200, 190} + half);
    const Ellipse outer = WhiteningEllipses(face)[kFaceEllipse];
    ASSERT_EQ(CountDifferent({0, 0, 1, 400, 400}, face, outer), 0U) << degrees;
  }
}

}  // namespace
}  // namespace lumora::test
