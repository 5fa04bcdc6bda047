// SPDX-License-Identifier: Apache-2.0
#include "reference/face_record.h"

#include <cstring>

namespace lumora::reference {
namespace {

size_t LandmarkOffset(int index) {
  return 8 + 12 * static_cast<size_t>(index);
}

}  // namespace

FaceRecord FaceRecord::From(const void* record) {
  FaceRecord face;
  std::memcpy(face.bytes_.data(), record, kSize);
  return face;
}

int32_t FaceRecord::get(Field field) const {
  int32_t value;
  std::memcpy(&value, &bytes_[field], sizeof value);
  return value;
}

FaceRecord& FaceRecord::set(Field field, int32_t value) {
  std::memcpy(&bytes_[field], &value, sizeof value);
  return *this;
}

float FaceRecord::ratio() const {
  float value;
  std::memcpy(&value, &bytes_[kDistLevelRatio], sizeof value);
  return value;
}

FaceRecord& FaceRecord::set_ratio(float value) {
  std::memcpy(&bytes_[kDistLevelRatio], &value, sizeof value);
  return *this;
}

Point FaceRecord::landmark(int index) const {
  Point point;
  std::memcpy(&point, &bytes_[LandmarkOffset(index)], sizeof point);
  return point;
}

FaceRecord& FaceRecord::set_landmark(int index, Point point) {
  std::memcpy(&bytes_[LandmarkOffset(index)], &point, sizeof point);
  return *this;
}

FaceRecord SlimmingFace(int loc_x, int loc_y, int dist, int chin_dist, int roll, float ratio) {
  FaceRecord face;
  face.set(FaceRecord::kDistValid, 1)
      .set(FaceRecord::kLocX, loc_x)
      .set(FaceRecord::kLocY, loc_y)
      .set(FaceRecord::kDist, dist)
      .set(FaceRecord::kChinDist, chin_dist)
      .set(FaceRecord::kRoll, roll)
      .set_ratio(ratio);
  return face;
}

}  // namespace lumora::reference
