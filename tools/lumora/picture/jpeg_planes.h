// SPDX-License-Identifier: Apache-2.0
// JPEG files as planes of samples and as DCT blocks, without any colour conversion.
#ifndef LUMORA_TOOLS_PICTURE_JPEG_PLANES_H_
#define LUMORA_TOOLS_PICTURE_JPEG_PLANES_H_

#include <vector>

#include "tools/lumora/images/image.h"
#include "tools/lumora/picture/planes.h"
#include "tools/lumora/support/files.h"

namespace lumora::tools {

struct JpegLayout {
  Size size;
  /// Whether the file holds gray, or luma at full resolution with two chroma planes of one
  /// sampling. The functions that give or take planes work for such files only.
  bool planar = false;
  std::vector<SampleArea> areas;  ///< one a plane
};

/// Reads the header only.
JpegLayout ReadJpegLayout(const Bytes& file);

/// The planes of a file: Y, or Y, Cb and Cr. A file that ends early is an error.
std::vector<Image> ReadJpegPlanes(const Bytes& file);

/// A JPEG file of the planes with the quantisation, sampling and progression of `like`, without its
/// metadata. With `transposed`, width and height of everything are exchanged.
Bytes WriteJpegPlanes(const std::vector<Image>& planes, const Bytes& like, bool transposed);

/// `original` with those 8 x 8 blocks of `recoded` (a file of the same size, sampling and
/// quantisation) in which a sample of `changed` (one 8-bit mask a plane) is not zero. All other
/// blocks keep their coefficients, and so lose nothing. Metadata are left out.
Bytes ReplaceJpegBlocks(const Bytes& original, const Bytes& recoded,
                        const std::vector<Image>& changed);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_PICTURE_JPEG_PLANES_H_
