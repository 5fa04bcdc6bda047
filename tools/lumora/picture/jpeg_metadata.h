// SPDX-License-Identifier: Apache-2.0
// The segments in which JPEG files keep metadata.
#ifndef LUMORA_TOOLS_PICTURE_JPEG_METADATA_H_
#define LUMORA_TOOLS_PICTURE_JPEG_METADATA_H_

#include <string>

#include "tools/lumora/picture/picture_metadata.h"

namespace lumora::tools {

PictureMetadata ReadJpegMetadata(const Bytes& file);

/// Puts metadata into a whole JPEG file without any. Returns the names of those that are too large
/// for it.
std::string AddJpegMetadata(const PictureMetadata& metadata, Bytes& file);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_PICTURE_JPEG_METADATA_H_
