// SPDX-License-Identifier: Apache-2.0
// The face that stands in for one of which only the eyes are known.
#ifndef LUMORA_PIPELINE_FACES_CANONICAL_FACE_H_
#define LUMORA_PIPELINE_FACES_CANONICAL_FACE_H_

#include "lumora/pipeline/face.h"

namespace lumora {

/// The landmarks of an upright adult face, looking straight ahead. Unit: the distance between the
/// centres of the eyes; origin: the middle between them; x to the right, y down.
const FaceLandmarks& CanonicalFace();

/// Where the eyes lie in a box as face detectors give it, as fractions of its width and height.
constexpr float kBoxLeftEyeX = 0.29f;
constexpr float kBoxRightEyeX = 0.71f;
constexpr float kBoxEyesY = 0.36f;

}  // namespace lumora

#endif  // LUMORA_PIPELINE_FACES_CANONICAL_FACE_H_
