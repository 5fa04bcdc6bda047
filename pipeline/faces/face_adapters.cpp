// SPDX-License-Identifier: Apache-2.0
#include "lumora/pipeline/face.h"

#include <algorithm>
#include <cmath>

#include "pipeline/faces/canonical_face.h"
#include "pipeline/faces/landmarks.h"
#include "pipeline/support/angles.h"

namespace lumora {
namespace {

RectF Bounds(const FaceLandmarks& landmarks) {
  PointF low = landmarks.chin;
  PointF high = landmarks.chin;
  ForEachPoint(landmarks, [&](const PointF& point) {
    low = {std::min(low.x, point.x), std::min(low.y, point.y)};
    high = {std::max(high.x, point.x), std::max(high.y, point.y)};
  });
  return {low.x, low.y, high.x - low.x, high.y - low.y};
}

/// Completes a face whose landmarks are known: roll from the line through the eyes, box around all.
Face FromLandmarks(const FaceLandmarks& landmarks) {
  const PointF across = Centre(landmarks.right_eye) - Centre(landmarks.left_eye);
  Face face;
  face.landmarks = landmarks;
  face.box = Bounds(landmarks);
  face.roll_degrees = static_cast<float>(
      std::atan2(static_cast<double>(across.y), static_cast<double>(across.x)) * kDegreesPerRadian);
  return face;
}

}  // namespace

Face FaceFromEyes(PointF left_eye, PointF right_eye) {
  // The similarity that takes the template's unit between the eyes to the vector `across`: a turn
  // and a scale, then a move to the middle of the eyes.
  const PointF across = right_eye - left_eye;
  const PointF middle = Middle(left_eye, right_eye);
  FaceLandmarks landmarks = CanonicalFace();
  ForEachPoint(landmarks, [&](PointF& point) {
    point = middle + PointF{across.x * point.x - across.y * point.y,
                            across.y * point.x + across.x * point.y};
  });
  return FromLandmarks(landmarks);
}

Face FaceFromBox(const RectF& box) {
  const float eyes_y = box.y + kBoxEyesY * box.height;
  Face face = FaceFromEyes({box.x + kBoxLeftEyeX * box.width, eyes_y},
                           {box.x + kBoxRightEyeX * box.width, eyes_y});
  face.box = box;
  return face;
}

Face FaceFromIbug68(const PointF (&points)[68]) {
  const auto eye = [&](int left, int right, int top, int bottom) {
    // The lids are marked by two points each, left and right of their middle.
    return FeatureBox{points[left], points[right], Middle(points[top], points[top + 1]),
                      Middle(points[bottom], points[bottom + 1])};
  };
  const auto brow = [&](int left, int top, int right) {
    // Only the upper edge of a brow is marked; the chord between its ends stands for the lower one.
    return FeatureBox{points[left], points[right], points[top],
                      Middle(points[left], points[right])};
  };
  FaceLandmarks landmarks;
  landmarks.left_eye = eye(36, 39, 37, 40);
  landmarks.right_eye = eye(42, 45, 43, 46);
  landmarks.left_brow = brow(17, 19, 21);
  landmarks.right_brow = brow(22, 24, 26);
  landmarks.mouth = {points[48], points[54], points[51], points[57]};
  landmarks.nasion = points[27];
  landmarks.nose_tip = points[30];
  landmarks.chin = points[8];
  landmarks.left_temple = points[0];
  landmarks.right_temple = points[16];
  landmarks.left_jaw = points[4];
  landmarks.right_jaw = points[12];
  return FromLandmarks(landmarks);
}

Face FaceFromMesh468(const PointF (&points)[468]) {
  const auto between = [&](int a, int b) { return Middle(points[a], points[b]); };
  FaceLandmarks landmarks;
  landmarks.left_eye = {points[33], points[133], points[159], points[145]};
  landmarks.right_eye = {points[362], points[263], points[386], points[374]};
  // A brow is a band of two rows of points: its ends lie between the rows.
  landmarks.left_brow = {between(70, 46), between(107, 55), points[105], points[52]};
  landmarks.right_brow = {between(336, 285), between(300, 276), points[334], points[282]};
  landmarks.mouth = {points[61], points[291], points[0], points[17]};
  landmarks.nasion = points[168];
  landmarks.nose_tip = points[1];
  landmarks.chin = points[152];
  landmarks.left_temple = points[127];
  landmarks.right_temple = points[356];
  landmarks.left_jaw = points[58];
  landmarks.right_jaw = points[288];
  return FromLandmarks(landmarks);
}

}  // namespace lumora
