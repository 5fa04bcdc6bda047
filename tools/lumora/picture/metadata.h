// What picture files say about themselves: EXIF, IPTC, XMP, colour profile and comment.
#ifndef LUMORA_TOOLS_PICTURE_METADATA_H_
#define LUMORA_TOOLS_PICTURE_METADATA_H_

#include <opencv2/core/types.hpp>
#include <string>

#include "tools/lumora/support/files.h"

namespace lumora::tools {

/// EXIF's orientation 1..8; 1 where the file says nothing sensible.
int ReadOrientation(const Bytes& file);

/// Gives `to` (a JPEG or PNG file of `size` pixels, upright) the metadata of `from`, with the
/// orientation set to upright, the stated size corrected and the thumbnail, which shows the picture
/// as it was, dropped. Returns a sentence when something could not be kept, else an empty string.
std::string CopyMetadata(const Bytes& from, cv::Size size, Bytes& to);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_PICTURE_METADATA_H_
