// SPDX-License-Identifier: Apache-2.0
#include "pipeline/faces/face_bounds.h"
#include "pipeline/faces/landmark_record.h"
#include "pipeline/plan/whitening_geometry.h"

namespace lumora {

std::array<Ellipse, 7> WhiteningEllipses(const Face& face) {
  if (!IsWithin(face, FarthestInAnyFrame())) return {};
  const FACE_INFO_t record = LandmarkRecord(face);
  return EllipsesOf(record, MeasureFace(record));
}

}  // namespace lumora
