// SPDX-License-Identifier: Apache-2.0
// The chunks in which PNG files keep metadata.
#ifndef LUMORA_TOOLS_PICTURE_PNG_METADATA_H_
#define LUMORA_TOOLS_PICTURE_PNG_METADATA_H_

#include "tools/lumora/picture/picture_metadata.h"

namespace lumora::tools {

/// EXIF, XMP and IPTC may also come as texts of hexadecimal digits, as older programs write them.
PictureMetadata ReadPngMetadata(const Bytes& file);

/// Puts metadata into a whole PNG file without any.
void AddPngMetadata(const PictureMetadata& metadata, Bytes& file);

/// `to`, without metadata, with the chunks of `from` (both are whole PNG files), but EXIF and XMP
/// as `metadata` has them.
void AddPngMetadata(const PictureMetadata& metadata, const Bytes& from, Bytes& to);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_PICTURE_PNG_METADATA_H_
