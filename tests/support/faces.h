// SPDX-License-Identifier: Apache-2.0
// Face records for whitening and slimming.
#ifndef LUMORA_TESTS_EFFECTS_FACES_H_
#define LUMORA_TESTS_EFFECTS_FACES_H_

#include <cstdint>
#include <random>
#include <vector>

#include "lumora/engine/face_info.h"
#include "reference/face_record.h"

namespace lumora::test {

using reference::FaceRecord;
using reference::Point;

/// A record with all landmarks of a face: its ears are `half_width` pixels left and right of
/// (x, y), its chin a little further below. `turn` rotates it clockwise, in degrees. It can be
/// slimmed as well.
FaceRecord PortraitFace(int x, int y, int half_width, double turn = 0.0);

/// The records as the engine takes them.
std::vector<FACE_INFO_t> RecordsFrom(const std::vector<FaceRecord>& faces);

/// A record in which any number may stand anywhere: each word is random, small, a pixel place or an
/// extreme.
FACE_INFO_t GarbageRecord(std::mt19937& random);

}  // namespace lumora::test

#endif  // LUMORA_TESTS_EFFECTS_FACES_H_
