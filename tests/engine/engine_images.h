// SPDX-License-Identifier: Apache-2.0
// Looking into an engine's images, and filling them.
#ifndef LUMORA_TESTS_ENGINE_ENGINE_IMAGES_H_
#define LUMORA_TESTS_ENGINE_ENGINE_IMAGES_H_

#include "lumora/lumora.h"
#include "reference/image.h"

namespace lumora::test {

using android::GPUBeautyFace;

/// The pixels as the CPU sees them, row padding left out.
reference::Image PixelsOf(SEGLImage& image);
/// Writes the pixels through the CPU; rows of the two are equally long. Padding is not touched.
void SetPixels(SEGLImage& image, const reference::Image& pixels);
/// Fills the memory of every image that exists with zero, so that what no pass draws is known.
void ClearImages(GPUBeautyFace& engine);

}  // namespace lumora::test

#endif  // LUMORA_TESTS_ENGINE_ENGINE_IMAGES_H_
