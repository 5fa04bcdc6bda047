// SPDX-License-Identifier: Apache-2.0
// A short fingerprint of an image's pixels, to notice whether they were written.
#ifndef LUMORA_PLATFORM_BUFFER_PIXEL_DIGEST_H_
#define LUMORA_PLATFORM_BUFFER_PIXEL_DIGEST_H_

#include <cstddef>
#include <cstdint>

namespace lumora::platform {

/// Digest of `rows` rows of `row_bytes` bytes (a multiple of 4), `stride` bytes apart; bytes
/// between the rows do not count. Any single changed byte changes the digest.
uint64_t PixelDigest(const unsigned char* pixels, size_t row_bytes, size_t rows, size_t stride);

}  // namespace lumora::platform

#endif  // LUMORA_PLATFORM_BUFFER_PIXEL_DIGEST_H_
