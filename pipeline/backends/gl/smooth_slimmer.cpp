// SPDX-License-Identifier: Apache-2.0
#include "pipeline/backends/gl/smooth_slimmer.h"

#include "lumora/platform/gl_api.h"

namespace lumora {

bool SmoothSlimmer::Use() {
  if (!GLProgCheekSlimmerLarge::Use()) return false;
  // At every use: the engine's packing passes take the filters of a plane back in between.
  for (int unit = 0; unit < 2; ++unit) {
    glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(unit));
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
  }
  return true;
}

}  // namespace lumora
