// SPDX-License-Identifier: Apache-2.0
// PNG files as chunks, before they are decoded.
#ifndef LUMORA_TOOLS_PICTURE_PNG_CHUNKS_H_
#define LUMORA_TOOLS_PICTURE_PNG_CHUNKS_H_

#include <functional>
#include <optional>
#include <vector>

#include "tools/lumora/images/image.h"
#include "tools/lumora/support/files.h"

namespace lumora::tools {

bool StartsLikePng(const Bytes& file);

/// The size that the header states; 0 x 0 without a header, and sides past 2^31 - 1 end there.
Size PngSize(const Bytes& file);

/// The chunks that make the picture, without those that only say something about it (decoders may
/// print complaints about them). Nothing unless all chunks up to the end marker are there, with
/// correct checksums.
std::optional<Bytes> EssentialPng(const Bytes& file);

/// Where the first picture ends: behind the end marker. The file is whole.
size_t PngEnd(const Bytes& file);

/// Whether a whole file holds further frames, which decoders that do not know them leave out.
bool IsAnimatedPng(const Bytes& file);

/// A chunk of a file.
struct PngChunk {
  const uint8_t* type;     ///< four letters
  const uint8_t* content;  ///< in the file
  size_t size;
};

/// Whether four letters are those of that type.
bool IsType(const uint8_t* letters, const char* type);

/// The chunks up to the end marker; what is cut short ends the list.
std::vector<PngChunk> PngChunks(const Bytes& file);

/// `to` with what `from` says about its colours, its resolution and itself (texts and EXIF), apart
/// from chunks that are to be left out. Both are whole PNG files.
Bytes WithChunksOf(
    const Bytes& from, const Bytes& to,
    const std::function<bool(const PngChunk&)>& left_out = [](const PngChunk&) { return false; });

/// A chunk with its checksum.
Bytes ChunkOf(const char* type, const Bytes& content);

/// The chunk of an ICC colour profile.
Bytes ProfileChunk(const Bytes& profile);

/// A whole PNG file with further chunks about its picture.
Bytes WithChunks(const Bytes& chunks, const Bytes& file);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_PICTURE_PNG_CHUNKS_H_
