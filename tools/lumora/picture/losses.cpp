// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/picture/losses.h"

#include <algorithm>

#include "tools/lumora/picture/jpeg_markers.h"
#include "tools/lumora/picture/png_chunks.h"

namespace lumora::tools {
namespace {

/// Bytes behind the picture, 0 where they only fill the file up.
size_t BytesBehind(const Bytes& file) {
  const size_t end = StartsLikePng(file) ? PngEnd(file) : ReadJpegMarkers(file).end;
  const bool something = std::any_of(file.begin() + static_cast<std::ptrdiff_t>(end), file.end(),
                                     [](uint8_t byte) { return byte != 0 && byte != 0xff; });
  return something ? file.size() - end : 0;
}

}  // namespace

Notes LossesOf(const Bytes& file, const Picture& picture, bool keeps_alpha) {
  Notes notes;
  if (StartsLikePng(file) && IsAnimatedPng(file)) {
    notes.emplace_back("the animation is lost; only its first picture is kept");
  }
  if (const size_t bytes = BytesBehind(file); bytes > 0) {
    notes.push_back("the " + std::to_string(bytes) +
                    " bytes behind the picture (a motion photo's clip or further pictures) are "
                    "lost");
  }
  if (!keeps_alpha && picture.IsTransparent()) {
    notes.emplace_back("the transparency is lost; the colours behind it show");
  }
  return notes;
}

}  // namespace lumora::tools
