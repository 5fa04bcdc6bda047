// SPDX-License-Identifier: Apache-2.0
// The pixels of a JPEG file, in colour.
#ifndef LUMORA_TOOLS_PICTURE_JPEG_PIXELS_H_
#define LUMORA_TOOLS_PICTURE_JPEG_PIXELS_H_

#include "tools/lumora/images/image.h"

namespace lumora::tools {

/// The pixels of a file of any kind that libjpeg knows, as 8-bit BGR, in the file's own
/// orientation. Throws JpegError.
Image ReadJpegBgr(const Bytes& file);

/// A file of 8-bit gray, BGR, or BGRA (whose transparency is left out), 4:2:0, of quality 1 to 100.
/// Throws JpegError for sides that JPEGs cannot have.
Bytes WriteJpegPixels(const Image& pixels, int quality);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_PICTURE_JPEG_PIXELS_H_
