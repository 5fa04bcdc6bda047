// SPDX-License-Identifier: Apache-2.0
// Small operations on points and on all landmarks of a face at once.
#ifndef LUMORA_PIPELINE_FACES_LANDMARKS_H_
#define LUMORA_PIPELINE_FACES_LANDMARKS_H_

#include <cmath>
#include <initializer_list>

#include "lumora/pipeline/face.h"

namespace lumora {

inline PointF operator+(PointF a, PointF b) {
  return {a.x + b.x, a.y + b.y};
}
inline PointF operator-(PointF a, PointF b) {
  return {a.x - b.x, a.y - b.y};
}
inline PointF Middle(PointF a, PointF b) {
  return {(a.x + b.x) / 2, (a.y + b.y) / 2};
}
inline float Length(PointF a) {
  return std::hypot(a.x, a.y);
}

/// The centre of a feature: the middle between the ends of its long axis.
inline PointF Centre(const FeatureBox& feature) {
  return Middle(feature.left, feature.right);
}

/// Calls `visit` with every point of `landmarks`, which may be const.
template <typename Landmarks, typename Visit>
void ForEachPoint(Landmarks& landmarks, Visit visit) {
  for (auto* feature : {&landmarks.left_eye, &landmarks.right_eye, &landmarks.left_brow,
                        &landmarks.right_brow, &landmarks.mouth}) {
    visit(feature->left);
    visit(feature->right);
    visit(feature->top);
    visit(feature->bottom);
  }
  for (auto* point :
       {&landmarks.nasion, &landmarks.nose_tip, &landmarks.chin, &landmarks.left_temple,
        &landmarks.right_temple, &landmarks.left_jaw, &landmarks.right_jaw}) {
    visit(*point);
  }
}

}  // namespace lumora

#endif  // LUMORA_PIPELINE_FACES_LANDMARKS_H_
