// SPDX-License-Identifier: Apache-2.0
// Where whitening acts, against the arithmetic of the engine's shaders.
#include "pipeline/plan/whitening_geometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "pipeline/faces/landmark_record.h"
#include "reference/whitening_parameters.h"

namespace lumora::test {
namespace {

constexpr int kFrameWidth = 640;
constexpr int kFrameHeight = 480;
constexpr double kRadians = 3.14159265358979323846 / 180;

Face TurnedFace(float x, float y, float eye_distance, double roll_degrees) {
  const auto dx = static_cast<float>(std::cos(roll_degrees * kRadians) * eye_distance / 2);
  const auto dy = static_cast<float>(std::sin(roll_degrees * kRadians) * eye_distance / 2);
  return FaceFromEyes({x - dx, y - dy}, {x + dx, y + dy});
}

TEST(WhiteningEllipses, AreTheUnitCirclesOfTheEnginesMatrices) {
  std::mt19937 random(11);
  std::uniform_real_distribution<float> unit(0, 1);
  for (int i = 0; i < 200; ++i) {
    const Face face = TurnedFace(unit(random) * kFrameWidth, unit(random) * kFrameHeight,
                                 6 + 120 * unit(random), 360 * static_cast<double>(unit(random)));
    const FACE_INFO_t record = LandmarkRecord(face);
    const auto expected =
        reference::MeasureFace(reference::FaceRecord::From(&record), 0, 0, 8, kFrameWidth,
                               kFrameHeight, [](int, int) { return reference::HsiSample{}; });
    const auto ellipses = WhiteningEllipses(face);
    for (size_t e = 0; e < ellipses.size(); ++e) {
      const Ellipse& ellipse = ellipses[e];
      const auto& matrix = expected.uniforms.ellipses[e];
      const auto position = [&matrix](double x, double y) {
        const double u = x / kFrameWidth, v = y / kFrameHeight;
        return std::hypot(static_cast<double>(matrix[0]) * u + static_cast<double>(matrix[3]) * v +
                              static_cast<double>(matrix[6]),
                          static_cast<double>(matrix[1]) * u + static_cast<double>(matrix[4]) * v +
                              static_cast<double>(matrix[7]));
      };
      if (ellipse.half_along == 0) {
        EXPECT_EQ(static_cast<double>(matrix[0]), 99) << "ellipse " << e;
        continue;
      }
      const double angle = static_cast<double>(ellipse.angle_degrees) * kRadians;
      for (double t = 0; t < 6.3; t += 0.5) {
        const double along = static_cast<double>(ellipse.half_along) * std::cos(t);
        const double across = static_cast<double>(ellipse.half_across) * std::sin(t);
        const double x = static_cast<double>(ellipse.centre.x) + along * std::cos(angle) -
                         across * std::sin(angle);
        const double y = static_cast<double>(ellipse.centre.y) + along * std::sin(angle) +
                         across * std::cos(angle);
        ASSERT_NEAR(position(x, y), 1, 1e-3) << "ellipse " << e << " of face " << i;
      }
    }
  }
}

TEST(WhiteningEllipses, OfAFaceBeyondEveryFrameHoldNothing) {
  Face face = FaceFromEyes({300, 200}, {360, 200});
  ASSERT_GT(WhiteningEllipses(face)[kFaceEllipse].half_along, 0);
  for (const float far : {1e38f, -1e38f, 6e5f}) {
    face.landmarks.chin.y = far;
    for (const Ellipse& ellipse : WhiteningEllipses(face)) EXPECT_EQ(ellipse.half_along, 0);
  }
}

TEST(WhiteningEllipses, OfATinyFaceHoldNothing) {
  const auto ellipses = WhiteningEllipses(TurnedFace(100, 100, 1.5f, 0));
  EXPECT_EQ(ellipses[kFaceEllipse].half_along, 0);
  EXPECT_EQ(ellipses[kMouthEllipse].half_across, 0);
}

TEST(WhiteningEllipses, LieOnTheFace) {
  const Face face = TurnedFace(320, 200, 80, 0);
  const auto ellipses = WhiteningEllipses(face);
  const Ellipse& outer = ellipses[kFaceEllipse];
  const auto inside = [&outer](PointF at) { return PositionIn(outer, 1, 0, at) < 1; };
  EXPECT_TRUE(inside(face.landmarks.nose_tip));
  EXPECT_TRUE(inside(face.landmarks.mouth.bottom));
  EXPECT_TRUE(inside(face.landmarks.left_eye.left));
  EXPECT_FALSE(inside({face.landmarks.chin.x, face.landmarks.chin.y + 3}));
  EXPECT_LT(ellipses[kLeftEyeEllipse].centre.x, ellipses[kRightEyeEllipse].centre.x);
  EXPECT_LT(ellipses[kLeftBrowEllipse].centre.y, ellipses[kLeftEyeEllipse].centre.y);
}

}  // namespace
}  // namespace lumora::test
