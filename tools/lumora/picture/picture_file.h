// SPDX-License-Identifier: Apache-2.0
// Picture files as the commands read them.
#ifndef LUMORA_TOOLS_PICTURE_PICTURE_FILE_H_
#define LUMORA_TOOLS_PICTURE_PICTURE_FILE_H_

#include <string>

#include "tools/lumora/picture/appetite.h"
#include "tools/lumora/picture/decode_picture.h"
#include "tools/lumora/picture/picture.h"
#include "tools/lumora/support/files.h"

namespace lumora::tools {

struct PictureFile {
  Bytes content;
  DecodedPicture loaded;
};

/// Reads and decodes a picture. Throws Failure (Unreadable) as early as it can: a file that is not
/// a picture or needs too much memory is not read to its end.
PictureFile ReadPicture(const std::string& path, const Appetite& appetite);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_PICTURE_PICTURE_FILE_H_
