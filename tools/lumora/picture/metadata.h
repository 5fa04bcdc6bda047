// SPDX-License-Identifier: Apache-2.0
// What picture files say about themselves: EXIF, IPTC, XMP, colour profile and comment.
#ifndef LUMORA_TOOLS_PICTURE_METADATA_H_
#define LUMORA_TOOLS_PICTURE_METADATA_H_

#include <string>

#include "tools/lumora/images/image.h"
#include "tools/lumora/picture/picture_metadata.h"

namespace lumora::tools {

/// What a JPEG or PNG file says.
PictureMetadata ReadMetadata(const Bytes& file);

/// Gives `to` (a JPEG or PNG file of `size` pixels, upright) the metadata of `from`, with the
/// orientation set to upright, the stated size corrected and the thumbnail, which shows the picture
/// as it was, dropped. `metadata` is what ReadMetadata found in `from`. Returns a sentence when
/// something could not be kept, else an empty string.
std::string CopyMetadata(PictureMetadata metadata, const Bytes& from, Size size, Bytes& to);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_PICTURE_METADATA_H_
