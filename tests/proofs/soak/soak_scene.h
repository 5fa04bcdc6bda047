// SPDX-License-Identifier: Apache-2.0
// Frames of changing sizes, and engines that work on them.
#ifndef LUMORA_TESTS_SOAK_SOAK_SCENE_H_
#define LUMORA_TESTS_SOAK_SOAK_SCENE_H_

#include <cstdint>

#include "engine/engine_images.h"
#include "lumora/convert/gpu_color_converter.h"
#include "support/caller_memory.h"
#include "support/faces.h"
#include "support/pictures.h"

namespace lumora::test {

struct Size {
  int width, height;
};

/// Even sizes from 32 x 32 to 286 x 286, different for each number and always the same for one.
Size SizeOf(int number);

/// A smooth frame with skin colours, different for each number.
Frame SkinFrame(Size size, int number);

/// A face in the middle of a frame, a quarter of it wide.
FaceRecord FaceInTheMiddle(Size size);

// One frame through an engine that is set up for its size; the bytes that come back. A call that
// fails or leaves its memory fails the test.
Bytes Slimmed(GPUBeautyFace& engine, const Frame& frame);   ///< preview
Bytes Whitened(GPUBeautyFace& engine, const Frame& frame);  ///< preview in colour-convert mode
Bytes WhitenedCapture(GPUBeautyFace& engine, const Frame& frame);  ///< block mode
Bytes SlimmedCapture(GPUBeautyFace& engine, const Frame& frame);   ///< plane textures
/// The RGB image, then the HSI image.
Bytes Converted(android::GPUColorConverter& converter, const Frame& frame);

}  // namespace lumora::test

#endif  // LUMORA_TESTS_SOAK_SOAK_SCENE_H_
