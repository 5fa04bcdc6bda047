// SPDX-License-Identifier: Apache-2.0
// The caller's record of one detected face: FACE_INFO_t and fpf_point.
#ifndef LUMORA_ENGINE_FACE_INFO_H_
#define LUMORA_ENGINE_FACE_INFO_H_

#include "lumora/geometry/face_record.h"

#endif  // LUMORA_ENGINE_FACE_INFO_H_
