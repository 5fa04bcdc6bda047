// SPDX-License-Identifier: Apache-2.0
// EXIF blocks: TIFF directories, of which only what depends on the pixels is understood. Whatever
// offsets and counts a block states, nothing outside of it is read or written.
#ifndef LUMORA_TOOLS_PICTURE_EXIF_H_
#define LUMORA_TOOLS_PICTURE_EXIF_H_

#include "tools/lumora/images/image.h"
#include "tools/lumora/support/files.h"

namespace lumora::tools {

/// The orientation 1..8; 1 where the block says nothing sensible.
int ExifOrientation(const Bytes& exif);

/// Corrects in place what is no longer true of an upright picture of that size: orientation, size
/// and thumbnail. All other bytes stay, since maker notes refer to places in the block. Returns
/// whether it is a block with anything in it; others are better left out.
bool CorrectExif(Bytes& exif, Size size);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_PICTURE_EXIF_H_
