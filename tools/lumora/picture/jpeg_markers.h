// SPDX-License-Identifier: Apache-2.0
// JPEG files as marker segments, before they are decoded.
#ifndef LUMORA_TOOLS_PICTURE_JPEG_MARKERS_H_
#define LUMORA_TOOLS_PICTURE_JPEG_MARKERS_H_

#include <vector>

#include "tools/lumora/support/files.h"

namespace lumora::tools {

bool StartsLikeJpeg(const Bytes& file);

/// The first picture in a JPEG file.
struct JpegMarkers {
  int scans = 0;   ///< parts that its samples come in; one, or many in a progressive file
  size_t end = 0;  ///< where it ends; further pictures or a clip may follow
};
JpegMarkers ReadJpegMarkers(const Bytes& file);

/// A segment of a file.
struct JpegSegment {
  uint8_t code;            ///< its marker's second byte
  const uint8_t* content;  ///< behind the length; in the file
  size_t size;
};

/// Those before the samples; what is cut short ends the list.
std::vector<JpegSegment> JpegHeaderSegments(const Bytes& file);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_PICTURE_JPEG_MARKERS_H_
