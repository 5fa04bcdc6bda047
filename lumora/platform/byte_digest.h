// SPDX-License-Identifier: Apache-2.0
// A short fingerprint of bytes and texts, strong enough to notice any damage.
#ifndef LUMORA_PLATFORM_BYTE_DIGEST_H_
#define LUMORA_PLATFORM_BYTE_DIGEST_H_

#include <cstddef>
#include <cstdint>

namespace lumora::platform {

/// SipHash-2-4 (Aumasson and Bernstein, "SipHash: a fast short-input PRF", 2012) of all that is
/// added, in order, with the key of that paper's example. It is no secret: the digest tells damage
/// and mix-ups, not forgery.
class ByteDigest {
 public:
  void Add(const void* bytes, size_t size);

  /// Adds a text with its terminator, so that texts never run into each other. Null counts as
  /// empty.
  void AddText(const char* text);

  /// The digest of what was added so far.
  uint64_t Value() const;

 private:
  struct State {
    uint64_t v[4];

    void Round();
    void Take(uint64_t word);
  };

  State state_ = {{0x7469686173716475, 0x6b617f6d656e6665, 0x6b7f62616d677361, 0x7b6b696e727e6c7b}};
  uint64_t pending_ = 0;  ///< the bytes behind the last whole word, the first one lowest
  uint64_t count_ = 0;    ///< of all bytes
};

}  // namespace lumora::platform

#endif  // LUMORA_PLATFORM_BYTE_DIGEST_H_
