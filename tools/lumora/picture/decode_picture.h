// SPDX-License-Identifier: Apache-2.0
// Pictures from the content of files, whatever their format.
#ifndef LUMORA_TOOLS_PICTURE_DECODE_PICTURE_H_
#define LUMORA_TOOLS_PICTURE_DECODE_PICTURE_H_

#include <memory>
#include <string>

#include "tools/lumora/picture/picture.h"
#include "tools/lumora/picture/picture_metadata.h"

namespace lumora::tools {

/// What a file holds.
struct DecodedPicture {
  std::unique_ptr<Picture> picture;
  FileFormat format = FileFormat::Png;
  int orientation = 1;  ///< EXIF's 1..8, as the file had it
  PictureMetadata metadata;
  Notes notes;
};

/// The picture of a file's content. `name` is used in messages. Throws Failure (Unreadable) unless
/// it is a whole JPEG or PNG of at least kSmallestSide and at most kMostPixels.
DecodedPicture DecodePicture(const Bytes& file, const std::string& name);

/// The size that the header of a file states, of which `start` are the first bytes; 0 x 0 when they
/// do not reach that far. Throws Failure (Unreadable) when DecodePicture would refuse the file for
/// its kind or size.
Size StatedSize(const Bytes& start, const std::string& name);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_PICTURE_DECODE_PICTURE_H_
