// PNG files as chunks, before they are decoded.
#ifndef LUMORA_TOOLS_PICTURE_PNG_CHUNKS_H_
#define LUMORA_TOOLS_PICTURE_PNG_CHUNKS_H_

#include <opencv2/core/types.hpp>
#include <optional>

#include "tools/lumora/support/files.h"

namespace lumora::tools {

bool StartsLikePng(const Bytes& file);

/// The size that the header states; 0 x 0 without a header, and sides past 2^31 - 1 end there.
cv::Size PngSize(const Bytes& file);

/// The chunks that make the picture, without those that only say something about it (decoders may
/// print complaints about them). Nothing unless all chunks up to the end marker are there, with
/// correct checksums.
std::optional<Bytes> EssentialPng(const Bytes& file);

/// Where the first picture ends: behind the end marker. The file is whole.
size_t PngEnd(const Bytes& file);

/// Whether a whole file holds further frames, which decoders that do not know them leave out.
bool IsAnimatedPng(const Bytes& file);

/// `to` with what `from` says about its colours, its resolution and itself (texts and EXIF). Both
/// are whole PNG files.
Bytes WithChunksOf(const Bytes& from, const Bytes& to);

/// `to`, a whole PNG file, with an ICC colour profile.
Bytes WithProfile(const uint8_t* profile, size_t size, const Bytes& to);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_PICTURE_PNG_CHUNKS_H_
