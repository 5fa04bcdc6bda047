// SPDX-License-Identifier: Apache-2.0
#include "pipeline/faces/canonical_face.h"

namespace lumora {

const FaceLandmarks& CanonicalFace() {
  // Proportions of an average adult: the left half is written out, the right half mirrors it.
  static constexpr FaceLandmarks kFace = {
      // left, right, top, bottom
      /*left_eye=*/{{-0.735f, 0.f}, {-0.265f, 0.f}, {-0.5f, -0.09f}, {-0.5f, 0.09f}},
      /*right_eye=*/{{0.265f, 0.f}, {0.735f, 0.f}, {0.5f, -0.09f}, {0.5f, 0.09f}},
      /*left_brow=*/{{-0.86f, -0.33f}, {-0.20f, -0.33f}, {-0.53f, -0.43f}, {-0.53f, -0.29f}},
      /*right_brow=*/{{0.20f, -0.33f}, {0.86f, -0.33f}, {0.53f, -0.43f}, {0.53f, -0.29f}},
      /*mouth=*/{{-0.40f, 1.05f}, {0.40f, 1.05f}, {0.f, 0.92f}, {0.f, 1.20f}},
      /*nasion=*/{0.f, -0.05f},
      /*nose_tip=*/{0.f, 0.62f},
      /*chin=*/{0.f, 1.75f},
      /*left_temple=*/{-1.05f, 0.f},
      /*right_temple=*/{1.05f, 0.f},
      /*left_jaw=*/{-0.90f, 1.05f},
      /*right_jaw=*/{0.90f, 1.05f},
  };
  return kFace;
}

}  // namespace lumora
