// SPDX-License-Identifier: Apache-2.0
// Values that the beauty engine takes and keeps.
#ifndef LUMORA_ENGINE_ENGINE_TYPES_H_
#define LUMORA_ENGINE_ENGINE_TYPES_H_

#include <cstdint>

/// Which shifts whitening applies. Every value builds the same ellipses; values that are not named
/// here shift nothing.
enum BEAUTYSHOT_EFFECT_t : int32_t {
  BEAUTYSHOT_EFFECT_INTENSITY = 3,
  BEAUTYSHOT_EFFECT_SATURATION = 4,
  BEAUTYSHOT_EFFECT_BOTH = 8,
  BEAUTYSHOT_EFFECT_MASK = 15,  ///< no shift, the outer ellipse enlarged by a tenth
};

namespace android {

/// The block rectangle that was processed for one face, in pixels of the full frame; -1 when unset.
struct FaceProcessRect {
  int X = -1;
  int Y = -1;
  int Width = -1;
  int Height = -1;
  int nFlag = 0;
};

}  // namespace android

#endif  // LUMORA_ENGINE_ENGINE_TYPES_H_
