// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/picture/jpeg_markers.h"

#include <algorithm>

namespace lumora::tools {
namespace {

constexpr uint8_t kMarker = 0xff, kStartOfScan = 0xda, kEndOfImage = 0xd9;

/// Markers that nothing belongs to: restarts inside a scan, and the image's start.
bool StandsAlone(uint8_t code) {
  return code == 0x01 || (code >= 0xd0 && code <= 0xd8);
}

}  // namespace

bool StartsLikeJpeg(const Bytes& file) {
  return file.size() >= 3 && file[0] == kMarker && file[1] == 0xd8 && file[2] == kMarker;
}

JpegMarkers ReadJpegMarkers(const Bytes& file) {
  JpegMarkers markers;
  size_t at = 0;
  while (at + 1 < file.size()) {
    const uint8_t code = file[at + 1];
    // Coded samples lie between segments; there, 0 behind a marker's first byte makes it a sample.
    if (file[at] != kMarker || code == 0 || code == kMarker) {
      ++at;
      continue;
    }
    at += 2;
    if (code == kEndOfImage) {
      markers.end = at;
      return markers;
    }
    if (StandsAlone(code)) continue;
    if (code == kStartOfScan) ++markers.scans;
    if (at + 1 >= file.size()) break;
    at += static_cast<size_t>(file[at] << 8 | file[at + 1]);
  }
  markers.end = file.size();
  return markers;
}

std::vector<JpegSegment> JpegHeaderSegments(const Bytes& file) {
  std::vector<JpegSegment> segments;
  size_t at = StartsLikeJpeg(file) ? 2 : file.size();
  while (at + 4 <= file.size() && file[at] == kMarker) {
    const uint8_t code = file[at + 1];
    if (code == kMarker) {  // filling
      ++at;
      continue;
    }
    if (code == 0 || code == kStartOfScan || code == kEndOfImage || StandsAlone(code)) break;
    const size_t length = static_cast<size_t>(file[at + 2] << 8 | file[at + 3]);
    if (length < 2 || length > file.size() - at - 2) break;
    segments.push_back({code, file.data() + at + 4, length - 2});
    at += 2 + length;
  }
  return segments;
}

}  // namespace lumora::tools
