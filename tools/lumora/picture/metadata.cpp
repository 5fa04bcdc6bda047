// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/picture/metadata.h"

#include "tools/lumora/picture/exif.h"
#include "tools/lumora/picture/jpeg_metadata.h"
#include "tools/lumora/picture/png_chunks.h"
#include "tools/lumora/picture/png_metadata.h"
#include "tools/lumora/picture/xmp.h"

namespace lumora::tools {

PictureMetadata ReadMetadata(const Bytes& file) {
  return StartsLikePng(file) ? ReadPngMetadata(file) : ReadJpegMetadata(file);
}

std::string CopyMetadata(PictureMetadata metadata, const Bytes& from, Size size, Bytes& to) {
  if (!CorrectExif(metadata.exif, size)) metadata.exif.clear();
  CorrectXmp(metadata.xmp);
  if (StartsLikePng(to)) {
    if (StartsLikePng(from)) {
      AddPngMetadata(metadata, from, to);
    } else {
      AddPngMetadata(metadata, to);
    }
    return {};
  }
  const std::string refused = AddJpegMetadata(metadata, to);
  return refused.empty() ? std::string()
                         : "metadata could not be kept: too large for a JPEG: " + refused;
}

}  // namespace lumora::tools
