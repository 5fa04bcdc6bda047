// SPDX-License-Identifier: Apache-2.0
// A video in which people walk by: faces come in, meet, cross the borders and leave.
#ifndef LUMORA_TESTS_SOAK_STREET_SCENE_H_
#define LUMORA_TESTS_SOAK_STREET_SCENE_H_

#include <vector>

#include "lumora/pipeline/face.h"
#include "pipeline/frames/frame_memory.h"

namespace lumora::test {

struct StreetFrame {
  Samples samples;
  std::vector<Face> faces;  ///< in the order of their coming; centres may lie outside the frame
};

constexpr int kStreetWidth = 160;
constexpr int kStreetHeight = 120;

/// The frames of one round; the last ones are empty, so that rounds follow each other smoothly.
std::vector<StreetFrame> DrawStreet();

}  // namespace lumora::test

#endif  // LUMORA_TESTS_SOAK_STREET_SCENE_H_
