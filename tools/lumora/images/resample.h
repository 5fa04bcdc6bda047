// SPDX-License-Identifier: Apache-2.0
// Planes in other sizes. Samples lie in the middle of the pixels that they stand for.
#ifndef LUMORA_TOOLS_IMAGES_RESAMPLE_H_
#define LUMORA_TOOLS_IMAGES_RESAMPLE_H_

#include "tools/lumora/images/image.h"

namespace lumora::tools {

/// Each sample is that of the place where its pixel begins.
Image Nearest(const Image& plane, Size size);

/// Each sample is a mix of the two by two around its middle. For planes that grow.
Image Interpolated(const Image& plane, Size size);

/// Each sample is the mean of what its pixel covers. Where one side grows, its samples are mixed as
/// far as pixels cover several.
Image Averaged(const Image& plane, Size size);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_IMAGES_RESAMPLE_H_
