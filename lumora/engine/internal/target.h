// SPDX-License-Identifier: Apache-2.0
// The engine's images, each with the framebuffer that draws into it.
#ifndef LUMORA_ENGINE_INTERNAL_TARGET_H_
#define LUMORA_ENGINE_INTERNAL_TARGET_H_

#include "lumora/engine/gpu_beauty_face.h"
#include "lumora/gl/no_name.h"

namespace lumora::engine {

/// An image and its framebuffer. Either may be missing: null, or kNoName.
struct Target {
  SEGLImage* image = nullptr;
  GLuint framebuffer = kNoName;
};

inline Target InputTarget(const android::GPUBeautyFace& engine) {
  return {engine.m_pRGBImage, engine.m_hRGBFbo};
}

/// Work image 0 .. 2.
inline Target WorkTarget(const android::GPUBeautyFace& engine, int index) {
  return {engine.m_pWorkImage[index], engine.m_hWorkFbo[index]};
}

inline Target LumaTarget(const android::GPUBeautyFace& engine) {
  return {engine.m_pYYYYImage, engine.m_hYYYYFbo};
}

inline Target ChromaTarget(const android::GPUBeautyFace& engine) {
  return {engine.m_pUVUVImage, engine.m_hUVUVFbo};
}

/// The four images as `m_nResultIdx` numbers them: the work images, then the input image. Any other
/// number has none.
inline Target NumberedTarget(const android::GPUBeautyFace& engine, int number) {
  if (number == 3) return InputTarget(engine);
  return number >= 0 && number < 3 ? WorkTarget(engine, number) : Target{};
}

/// What is there after that many passes of slimming, which alternate between two work images.
inline Target TargetAfter(const android::GPUBeautyFace& engine, int passes) {
  return passes < 1 ? InputTarget(engine) : WorkTarget(engine, (passes - 1) % 2);
}

/// The texture of an image; kNoName without one.
inline GLuint TextureOf(const SEGLImage* image) {
  return image != nullptr ? image->m_hTexture : kNoName;
}

}  // namespace lumora::engine

#endif  // LUMORA_ENGINE_INTERNAL_TARGET_H_
