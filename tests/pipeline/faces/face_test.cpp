// SPDX-License-Identifier: Apache-2.0
// Faces from eyes, boxes and the usual landmark sets.
#include "lumora/pipeline/face.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "pipeline/faces/canonical_face.h"
#include "pipeline/faces/landmarks.h"

namespace lumora::test {
namespace {

constexpr float kTolerance = 1e-3f;

std::vector<PointF> PointsOf(const FaceLandmarks& landmarks) {
  std::vector<PointF> points;
  ForEachPoint(landmarks, [&points](const PointF& point) { points.push_back(point); });
  return points;
}

void ExpectSame(const FaceLandmarks& expected, const FaceLandmarks& actual) {
  const std::vector<PointF> e = PointsOf(expected);
  const std::vector<PointF> a = PointsOf(actual);
  ASSERT_EQ(e.size(), 27u);
  for (size_t i = 0; i < e.size(); ++i) {
    EXPECT_NEAR(e[i].x, a[i].x, kTolerance) << "point " << i;
    EXPECT_NEAR(e[i].y, a[i].y, kTolerance) << "point " << i;
  }
}

TEST(CanonicalFace, HasTheProportionsOfAFace) {
  const FaceLandmarks& face = CanonicalFace();
  EXPECT_FLOAT_EQ(Length(Centre(face.right_eye) - Centre(face.left_eye)), 1.f);
  // From the top down.
  const float heights[] = {face.left_brow.top.y, face.left_brow.bottom.y, face.left_eye.top.y,
                           face.left_eye.left.y, face.left_eye.bottom.y,  face.nose_tip.y,
                           face.mouth.top.y,     face.mouth.left.y,       face.mouth.bottom.y,
                           face.chin.y};
  for (size_t i = 1; i < std::size(heights); ++i) EXPECT_LT(heights[i - 1], heights[i]) << i;
  // From the left edge inward.
  const float columns[] = {face.left_temple.x,    face.left_jaw.x,        face.left_brow.left.x,
                           face.left_eye.left.x,  face.left_eye.top.x,    face.mouth.left.x,
                           face.left_eye.right.x, face.left_brow.right.x, face.nose_tip.x};
  for (size_t i = 1; i < std::size(columns); ++i) EXPECT_LT(columns[i - 1], columns[i]) << i;
}

TEST(CanonicalFace, IsSymmetric) {
  const FaceLandmarks& face = CanonicalFace();
  const std::pair<PointF, PointF> pairs[] = {{face.left_eye.left, face.right_eye.right},
                                             {face.left_eye.right, face.right_eye.left},
                                             {face.left_eye.top, face.right_eye.top},
                                             {face.left_eye.bottom, face.right_eye.bottom},
                                             {face.left_brow.left, face.right_brow.right},
                                             {face.left_brow.right, face.right_brow.left},
                                             {face.left_brow.top, face.right_brow.top},
                                             {face.left_brow.bottom, face.right_brow.bottom},
                                             {face.left_temple, face.right_temple},
                                             {face.left_jaw, face.right_jaw},
                                             {face.mouth.left, face.mouth.right},
                                             {face.chin, face.chin},
                                             {face.nasion, face.nasion},
                                             {face.nose_tip, face.nose_tip}};
  for (const auto& [left, right] : pairs) {
    EXPECT_FLOAT_EQ(left.x, -right.x);
    EXPECT_FLOAT_EQ(left.y, right.y);
  }
}

TEST(FaceFromEyes, PutsTheEyesOnTheGivenPoints) {
  const std::pair<PointF, PointF> cases[] = {
      {{203, 99}, {246, 99}}, {{10, 20}, {40, 60}}, {{100, 100}, {60, 100}}, {{0, 50}, {0, 90}}};
  for (const auto& [left, right] : cases) {
    const Face face = FaceFromEyes(left, right);
    EXPECT_LT(Length(Centre(face.landmarks.left_eye) - left), kTolerance);
    EXPECT_LT(Length(Centre(face.landmarks.right_eye) - right), kTolerance);
  }
}

TEST(FaceFromEyes, TurnsClockwiseWithTheEyes) {
  // Clockwise as seen: the right eye goes down, the chin to the left.
  const Face face = FaceFromEyes({100, 100}, {100, 140});
  EXPECT_FLOAT_EQ(face.roll_degrees, 90.f);
  EXPECT_NEAR(face.landmarks.chin.x, 100 - 1.75 * 40, kTolerance);
  EXPECT_NEAR(face.landmarks.chin.y, 120, kTolerance);
  EXPECT_FLOAT_EQ(FaceFromEyes({0, 0}, {10, 0}).roll_degrees, 0.f);
  EXPECT_FLOAT_EQ(FaceFromEyes({0, 0}, {10, -10}).roll_degrees, -45.f);
}

TEST(FaceFromEyes, BoxHoldsAllLandmarksTightly) {
  const Face face = FaceFromEyes({100, 100}, {140, 120});
  bool touches_left = false, touches_top = false, touches_right = false, touches_bottom = false;
  for (const PointF& point : PointsOf(face.landmarks)) {
    const float x = point.x - face.box.x;
    const float y = point.y - face.box.y;
    EXPECT_GE(x, -kTolerance);
    EXPECT_GE(y, -kTolerance);
    EXPECT_LE(x, face.box.width + kTolerance);
    EXPECT_LE(y, face.box.height + kTolerance);
    touches_left |= x < kTolerance;
    touches_top |= y < kTolerance;
    touches_right |= x > face.box.width - kTolerance;
    touches_bottom |= y > face.box.height - kTolerance;
  }
  EXPECT_TRUE(touches_left && touches_top && touches_right && touches_bottom);
}

TEST(FaceFromBox, KeepsTheBoxAndPutsAnUprightFaceInside) {
  const RectF box = {170, 66, 110, 110};
  const Face face = FaceFromBox(box);
  EXPECT_FLOAT_EQ(face.box.x, box.x);
  EXPECT_FLOAT_EQ(face.box.height, box.height);
  EXPECT_FLOAT_EQ(face.roll_degrees, 0.f);
  for (const FeatureBox& feature : {face.landmarks.left_eye, face.landmarks.right_eye,
                                    face.landmarks.mouth, face.landmarks.left_brow}) {
    for (const PointF& point : {feature.left, feature.right, feature.top, feature.bottom}) {
      EXPECT_GT(point.x, box.x);
      EXPECT_LT(point.x, box.x + box.width);
      EXPECT_GT(point.y, box.y);
      EXPECT_LT(point.y, box.y + box.height);
    }
  }
  EXPECT_NEAR(face.landmarks.chin.y, box.y + box.height, 0.15f * box.height);
}

/// Moves the template somewhere else, turned and scaled.
FaceLandmarks SomeFace() {
  return FaceFromEyes({220, 180}, {300, 210}).landmarks;
}

TEST(FaceFromIbug68, FindsEveryLandmarkInItsPlace) {
  FaceLandmarks face = SomeFace();
  // Only the upper edge of a brow is in this set: its lower end is the middle of the chord.
  face.left_brow.bottom = Middle(face.left_brow.left, face.left_brow.right);
  face.right_brow.bottom = Middle(face.right_brow.left, face.right_brow.right);
  const PointF lid = {3, 1};  // a lid is marked left and right of its middle

  PointF points[68];
  for (PointF& point : points) point = face.nose_tip;
  points[0] = face.left_temple;
  points[4] = face.left_jaw;
  points[8] = face.chin;
  points[12] = face.right_jaw;
  points[16] = face.right_temple;
  points[17] = face.left_brow.left;
  points[19] = face.left_brow.top;
  points[21] = face.left_brow.right;
  points[22] = face.right_brow.left;
  points[24] = face.right_brow.top;
  points[26] = face.right_brow.right;
  points[27] = face.nasion;
  points[36] = face.left_eye.left;
  points[37] = face.left_eye.top - lid;
  points[38] = face.left_eye.top + lid;
  points[39] = face.left_eye.right;
  points[40] = face.left_eye.bottom + lid;
  points[41] = face.left_eye.bottom - lid;
  points[42] = face.right_eye.left;
  points[43] = face.right_eye.top - lid;
  points[44] = face.right_eye.top + lid;
  points[45] = face.right_eye.right;
  points[46] = face.right_eye.bottom + lid;
  points[47] = face.right_eye.bottom - lid;
  points[48] = face.mouth.left;
  points[51] = face.mouth.top;
  points[54] = face.mouth.right;
  points[57] = face.mouth.bottom;

  const Face found = FaceFromIbug68(points);
  ExpectSame(face, found.landmarks);
  EXPECT_NEAR(found.roll_degrees, FaceFromEyes({220, 180}, {300, 210}).roll_degrees, kTolerance);
}

TEST(FaceFromMesh468, FindsEveryLandmarkInItsPlace) {
  const FaceLandmarks face = SomeFace();
  const PointF half_brow = {-1, 4};  // ends of a brow lie between an upper and a lower point

  std::vector<PointF> all(468, face.nose_tip);
  const std::pair<int, PointF> marks[] = {{33, face.left_eye.left},
                                          {133, face.left_eye.right},
                                          {159, face.left_eye.top},
                                          {145, face.left_eye.bottom},
                                          {362, face.right_eye.left},
                                          {263, face.right_eye.right},
                                          {386, face.right_eye.top},
                                          {374, face.right_eye.bottom},
                                          {70, face.left_brow.left - half_brow},
                                          {46, face.left_brow.left + half_brow},
                                          {107, face.left_brow.right - half_brow},
                                          {55, face.left_brow.right + half_brow},
                                          {105, face.left_brow.top},
                                          {52, face.left_brow.bottom},
                                          {336, face.right_brow.left - half_brow},
                                          {285, face.right_brow.left + half_brow},
                                          {300, face.right_brow.right - half_brow},
                                          {276, face.right_brow.right + half_brow},
                                          {334, face.right_brow.top},
                                          {282, face.right_brow.bottom},
                                          {61, face.mouth.left},
                                          {291, face.mouth.right},
                                          {0, face.mouth.top},
                                          {17, face.mouth.bottom},
                                          {168, face.nasion},
                                          {152, face.chin},
                                          {127, face.left_temple},
                                          {356, face.right_temple},
                                          {58, face.left_jaw},
                                          {288, face.right_jaw}};
  PointF points[468];
  std::copy(all.begin(), all.end(), points);
  for (const auto& [index, point] : marks) points[index] = point;

  const Face found = FaceFromMesh468(points);
  ExpectSame(face, found.landmarks);
  EXPECT_NEAR(found.roll_degrees, FaceFromEyes({220, 180}, {300, 210}).roll_degrees, kTolerance);
}

}  // namespace
}  // namespace lumora::test
