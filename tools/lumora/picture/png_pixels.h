// SPDX-License-Identifier: Apache-2.0
// The pixels of a PNG file.
#ifndef LUMORA_TOOLS_PICTURE_PNG_PIXELS_H_
#define LUMORA_TOOLS_PICTURE_PNG_PIXELS_H_

#include <stdexcept>

#include "tools/lumora/images/image.h"

namespace lumora::tools {

/// What libpng says about a file that it cannot read or write.
class PngError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct PngPixels {
  Image pixels;          ///< 8-bit gray, BGR, or BGRA where something is transparent
  bool reduced = false;  ///< the file has 16 bits a channel
};

/// Throws PngError, and std::bad_alloc where memory is short. Prints nothing.
PngPixels ReadPngPixels(const Bytes& file);

/// A file of 8-bit gray, BGR or BGRA. Throws PngError for sides that libpng does not write, and
/// std::bad_alloc where memory is short.
Bytes WritePngPixels(const Image& pixels);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_PICTURE_PNG_PIXELS_H_
