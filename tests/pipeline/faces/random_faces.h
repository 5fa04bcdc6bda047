// SPDX-License-Identifier: Apache-2.0
// Faces of every size, turn and shape.
#ifndef LUMORA_TESTS_PIPELINE_RANDOM_FACES_H_
#define LUMORA_TESTS_PIPELINE_RANDOM_FACES_H_

#include <algorithm>
#include <cmath>
#include <random>

#include <vector>

#include "lumora/pipeline/face.h"
#include "pipeline/faces/landmarks.h"

namespace lumora::test {

/// Every number of a face.
inline std::vector<float*> NumbersOf(Face& face) {
  std::vector<float*> numbers = {&face.box.x, &face.box.y, &face.box.width, &face.box.height,
                                 &face.roll_degrees};
  ForEachPoint(face.landmarks, [&numbers](PointF& point) {
    numbers.push_back(&point.x);
    numbers.push_back(&point.y);
  });
  return numbers;
}

class RandomFaces {
 public:
  explicit RandomFaces(uint32_t seed) : random_(seed) {}

  float Between(float low, float high) {
    return std::uniform_real_distribution<float>(low, high)(random_);
  }
  int WholeBetween(int low, int high) {
    return std::uniform_int_distribution<int>(low, high)(random_);
  }

  /// In or a little beside a frame, its eyes from one pixel to the frame's width apart, more often
  /// close together. Every other face has landmarks that no face has, some of them as far away as
  /// may be.
  Face In(int width, int height) {
    const float distance = std::exp(Between(0, std::log(static_cast<float>(width))));
    const float turn = Between(-3.15f, 3.15f);
    const PointF middle = {Between(-0.1f, 1.1f) * static_cast<float>(width),
                           Between(-0.1f, 1.1f) * static_cast<float>(height)};
    const PointF half = {std::cos(turn) * distance / 2, std::sin(turn) * distance / 2};
    Face face = FaceFromEyes(middle - half, middle + half);
    if (WholeBetween(0, 1) == 0) return face;
    // Stretched along one axis, then every point shaken.
    const PointF stretch = {std::exp(Between(-1.5f, 1.5f)), std::exp(Between(-1.5f, 1.5f))};
    const float shake = Between(0, 0.5f) * distance;
    ForEachPoint(face.landmarks, [&](PointF& point) {
      const PointF from_middle = point - middle;
      point = {middle.x + from_middle.x * stretch.x + Between(-shake, shake),
               middle.y + from_middle.y * stretch.y + Between(-shake, shake)};
    });
    if (WholeBetween(0, 2) == 0) {
      const float farthest = kFarthestInSides * static_cast<float>(std::max(width, height));
      ForEachPoint(face.landmarks, [&](PointF& point) {
        if (WholeBetween(0, 15) == 0) point.x = WholeBetween(0, 1) == 0 ? farthest : -farthest;
        if (WholeBetween(0, 15) == 0) point.y = WholeBetween(0, 1) == 0 ? farthest : -farthest;
      });
    }
    return face;
  }

 private:
  std::mt19937 random_;
};

}  // namespace lumora::test

#endif  // LUMORA_TESTS_PIPELINE_RANDOM_FACES_H_
