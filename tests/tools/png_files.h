// SPDX-License-Identifier: Apache-2.0
// PNG files of every kind, and damaged ones whose checksums are right.
#ifndef LUMORA_TESTS_TOOLS_PNG_FILES_H_
#define LUMORA_TESTS_TOOLS_PNG_FILES_H_

#include <string>

#include "tests/tools/pictures.h"

namespace lumora::test {

/// How a test PNG is stored.
struct PngKind {
  int colours;   ///< libpng's PNG_COLOR_TYPE_...
  int bits = 8;  ///< a channel
  bool interlaced = false;
  bool transparent_colour = false;  ///< a tRNS chunk
};

/// A PNG of pseudo-random samples.
Bytes PngOf(cv::Size size, const PngKind& kind);

/// A chunk, with its checksum.
Bytes PngChunk(const std::string& type, const Bytes& content);

/// The file with a chunk right behind its header.
Bytes WithChunk(const Bytes& file, const Bytes& chunk);

/// The file with one changed byte of its first chunk of that type, whose checksum is right again.
Bytes WithChangedByte(Bytes file, const std::string& type, size_t at, uint8_t value);

}  // namespace lumora::test

#endif  // LUMORA_TESTS_TOOLS_PNG_FILES_H_
