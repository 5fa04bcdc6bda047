// SPDX-License-Identifier: Apache-2.0
#include "pipeline/faces/landmark_record.h"

#include <cmath>

#include "pipeline/faces/landmarks.h"

namespace lumora {
namespace {

void SetLandmarks(const FaceLandmarks& at, FACE_INFO_t* record) {
  const auto set = [record](int index, const PointF& point) {
    record->landmark(index) = {static_cast<int32_t>(std::lround(point.x)),
                               static_cast<int32_t>(std::lround(point.y)), 0};
  };
  const auto set_feature = [&set](const FeatureBox& feature, int left, int right, int top,
                                  int bottom) {
    set(left, feature.left);
    set(right, feature.right);
    set(top, feature.top);
    set(bottom, feature.bottom);
  };
  // Landmarks without a role lie on the nose, inside every face.
  for (int i = FACE_INFO_t::kFirstLandmark; i <= FACE_INFO_t::kLastLandmark; ++i) {
    set(i, at.nose_tip);
  }
  set_feature(at.mouth, 12, 13, 14, 15);
  set_feature(at.left_brow, 34, 33, 35, 36);
  set_feature(at.right_brow, 39, 38, 40, 41);
  set_feature(at.left_eye, 60, 59, 57, 58);
  set_feature(at.right_eye, 64, 63, 61, 62);
  set(42, at.nasion);
  set(43, Middle(at.mouth.bottom, at.chin));
  set(65, at.chin);
  set(68, at.left_temple);
  set(69, at.right_temple);
  set(70, at.left_jaw);
  set(71, at.right_jaw);
}

}  // namespace

FACE_INFO_t LandmarkRecord(const Face& face) {
  FACE_INFO_t record{};
  SetLandmarks(face.landmarks, &record);
  return record;
}

}  // namespace lumora
