// SPDX-License-Identifier: Apache-2.0
// The landmarks of a face in the record that the engine reads.
#ifndef LUMORA_PIPELINE_FACES_LANDMARK_RECORD_H_
#define LUMORA_PIPELINE_FACES_LANDMARK_RECORD_H_

#include "lumora/geometry/face_record.h"
#include "lumora/pipeline/face.h"

namespace lumora {

/// A record with nothing but the landmarks of `face`, whose numbers suit some frame.
FACE_INFO_t LandmarkRecord(const Face& face);

}  // namespace lumora

#endif  // LUMORA_PIPELINE_FACES_LANDMARK_RECORD_H_
