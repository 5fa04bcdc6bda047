// SPDX-License-Identifier: Apache-2.0
// What a picture file says about its picture, apart from the file's format.
#ifndef LUMORA_TOOLS_PICTURE_PICTURE_METADATA_H_
#define LUMORA_TOOLS_PICTURE_PICTURE_METADATA_H_

#include <vector>

#include "tools/lumora/support/files.h"

namespace lumora::tools {

/// Members that a file lacks are empty.
struct PictureMetadata {
  Bytes exif;                         ///< a block in the form of a TIFF file
  Bytes xmp;                          ///< the packet
  std::vector<Bytes> xmp_extensions;  ///< JPEG segments with what did not fit into the packet
  Bytes iptc;                         ///< IIM records
  Bytes profile;                      ///< an ICC colour profile
  std::vector<Bytes> comments;
};

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_PICTURE_PICTURE_METADATA_H_
