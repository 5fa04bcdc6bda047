// SPDX-License-Identifier: Apache-2.0
// What slimming does to one face, and what it is known by.
#ifndef LUMORA_PIPELINE_PLAN_FACE_PLAN_H_
#define LUMORA_PIPELINE_PLAN_FACE_PLAN_H_

#include <cstddef>

#include "lumora/geometry/face_record.h"
#include "lumora/geometry/rectangle.h"
#include "lumora/pipeline/face.h"

namespace lumora {

/// A face that can be processed.
struct FacePlan {
  size_t index = 0;       ///< among the faces of the request
  FACE_INFO_t record{};   ///< as the engine reads it, for the plan's chain
  PointF centre;          ///< of the circle in which slimming moves pixels
  double radius = 0;      ///< of the circle, in pixels
  PixelRectangle bounds;  ///< around the circle as far as it lies in the padded frame: whole chroma
                          ///< samples
};

/// The rectangle around a circle as far as it lies in a frame: whole chroma samples.
PixelRectangle CircleBounds(PointF centre, double radius, int width, int height);

}  // namespace lumora

#endif  // LUMORA_PIPELINE_PLAN_FACE_PLAN_H_
