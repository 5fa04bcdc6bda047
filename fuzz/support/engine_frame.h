// SPDX-License-Identifier: Apache-2.0
// A caller's frame as engine targets hand it over.
#ifndef LUMORA_FUZZ_SUPPORT_ENGINE_FRAME_H_
#define LUMORA_FUZZ_SUPPORT_ENGINE_FRAME_H_

#include <GLES2/gl2.h>

#include "fuzz/support/input.h"
#include "fuzz/support/require.h"
#include "lumora/engine/gpu_beauty_face.h"
#include "support/caller_memory.h"

namespace lumora::fuzz {

/// Effects of any number, named ones among them.
inline BEAUTYSHOT_EFFECT_t TakeEffect(Input& input) {
  constexpr int32_t kEffects[] = {-1, 0, 3, 4, 8, 15, 16};
  return static_cast<BEAUTYSHOT_EFFECT_t>(input.pick(kEffects));
}

/// Every call of the engine says 0 or 1.
inline void RequireResult(int result) {
  Require(result == 0 || result == 1, "results are 0 or 1");
}
inline void RequireDone(int result) {
  Require(result == 1, "the call succeeds");
}

/// A pass sets filters that the pass after it sees, so what a frame comes to depends on the calls
/// before. This makes the same start for every clean frame.
inline void ResetFilters(const android::GPUBeautyFace& engine) {
  const auto reset = [](GLuint texture) {
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
  };
  for (const SEGLImage* image : {engine.m_pWorkImage[2], engine.m_pWorkImage[1],
                                 engine.m_pWorkImage[0], engine.m_pRGBImage}) {
    if (image != nullptr) reset(image->m_hTexture);
  }
}

}  // namespace lumora::fuzz

#endif  // LUMORA_FUZZ_SUPPORT_ENGINE_FRAME_H_
