// SPDX-License-Identifier: Apache-2.0
#include "support/faces.h"

#include <climits>
#include <cmath>
#include <cstring>

namespace lumora::test {
namespace {

struct Place {
  int landmark;
  double x, y;  ///< in half widths from the centre
};

const Place kPlaces[] = {
    // mouth, brows
    {12, -0.35, 0.7},
    {13, 0.35, 0.7},
    {14, 0.0, 0.58},
    {15, 0.0, 0.82},
    {34, -0.7, -0.55},
    {33, -0.2, -0.6},
    {35, -0.45, -0.65},
    {36, -0.45, -0.5},
    {39, 0.2, -0.6},
    {38, 0.7, -0.55},
    {40, 0.45, -0.65},
    {41, 0.45, -0.5},
    // long axis, tip of the nose
    {42, 0.0, -0.1},
    {65, 0.0, 1.2},
    {43, 0.0, 0.4},
    // eyes
    {57, -0.42, -0.4},
    {58, -0.42, -0.2},
    {59, -0.2, -0.3},
    {60, -0.64, -0.3},
    {61, 0.42, -0.4},
    {62, 0.42, -0.2},
    {63, 0.2, -0.3},
    {64, 0.64, -0.3},
    // ears
    {68, -1.0, -0.1},
    {70, -1.0, 0.15},
    {69, 1.0, -0.1},
    {71, 1.0, 0.15}};

}  // namespace

FaceRecord PortraitFace(int x, int y, int half_width, double turn) {
  FaceRecord face = reference::SlimmingFace(x, y, half_width, half_width, 180);
  const double angle = turn * 3.14159265358979 / 180.0;
  for (const Place& place : kPlaces) {
    const double across = place.x * std::cos(angle) - place.y * std::sin(angle);
    const double down = place.x * std::sin(angle) + place.y * std::cos(angle);
    face.set_landmark(place.landmark, {x + static_cast<int>(std::lround(across * half_width)),
                                       y + static_cast<int>(std::lround(down * half_width))});
  }
  return face;
}

std::vector<FACE_INFO_t> RecordsFrom(const std::vector<FaceRecord>& faces) {
  std::vector<FACE_INFO_t> records;
  for (const FaceRecord& face : faces) records.push_back(face.as<FACE_INFO_t>());
  return records;
}

FACE_INFO_t GarbageRecord(std::mt19937& random) {
  const auto any = [&random] { return static_cast<int32_t>(random()); };
  int32_t words[FaceRecord::kSize / 4];
  const unsigned style = random() % 4;
  for (int32_t& word : words) {
    constexpr int32_t kExtremes[] = {INT_MIN, INT_MIN + 1, -1, 0, 1, INT_MAX - 1, INT_MAX};
    switch (style == 3 ? random() % 3 : style) {
      case 0:
        word = any();
        break;
      case 1:
        word = any() % 3000;
        break;
      default:
        word = kExtremes[random() % 7];
    }
  }
  FACE_INFO_t record;
  std::memcpy(&record, words, sizeof(record));
  return record;
}

}  // namespace lumora::test
