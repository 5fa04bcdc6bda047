// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/faces/face_geometry.h"

#include <cmath>

namespace lumora::tools {
namespace {

constexpr double kRadiansPerDegree = 3.14159265358979323846 / 180;

PointF Turned(PointF point, PointF about, double degrees) {
  const float cosine = static_cast<float>(std::cos(degrees * kRadiansPerDegree));
  const float sine = static_cast<float>(std::sin(degrees * kRadiansPerDegree));
  const float x = point.x - about.x, y = point.y - about.y;
  return {about.x + x * cosine - y * sine, about.y + x * sine + y * cosine};
}

}  // namespace

PointF Middle(const FeatureBox& feature) {
  return {(feature.left.x + feature.right.x + feature.top.x + feature.bottom.x) / 4,
          (feature.left.y + feature.right.y + feature.top.y + feature.bottom.y) / 4};
}

PointF FaceCentre(const Face& face) {
  const PointF left = Middle(face.landmarks.left_eye), right = Middle(face.landmarks.right_eye);
  const PointF mouth = Middle(face.landmarks.mouth);
  return {(left.x + right.x) / 4 + mouth.x / 2, (left.y + right.y) / 4 + mouth.y / 2};
}

Face FaceFromTurnedBox(const RectF& box, float roll_degrees) {
  const Face upright = FaceFromBox(box);
  if (roll_degrees == 0) return upright;
  const PointF middle = {box.x + box.width / 2, box.y + box.height / 2};
  return FaceFromEyes(Turned(Middle(upright.landmarks.left_eye), middle, roll_degrees),
                      Turned(Middle(upright.landmarks.right_eye), middle, roll_degrees));
}

std::vector<NamedPoint> NamedLandmarks(const FaceLandmarks& landmarks) {
  std::vector<NamedPoint> points;
  ForEachLandmark(landmarks, [&points](const std::string& name, PointF at) {
    points.push_back({name, at});
  });
  return points;
}

bool LooksExchanged(const Face& face) {
  constexpr double kMostUsual = 120, kWholeTurn = 360;  // degrees
  return std::abs(std::remainder(face.roll_degrees, kWholeTurn)) > kMostUsual;
}

}  // namespace lumora::tools
