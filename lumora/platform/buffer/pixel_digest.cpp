// SPDX-License-Identifier: Apache-2.0
#include "lumora/platform/buffer/pixel_digest.h"

#include <array>
#include <cstring>

namespace lumora::platform {
namespace {

constexpr size_t kLanes = 4;
constexpr size_t kWord = sizeof(uint64_t);

// Multiplication by an odd number and a rotation are both reversible, so a step never merges two
// different states.
constexpr uint64_t kOdd = 0x9e3779b97f4a7c15u;

uint64_t Mix(uint64_t state, uint64_t word) {
  const uint64_t product = (state ^ word) * kOdd;
  return (product << 29) | (product >> 35);
}

template <typename Word>
uint64_t Load(const unsigned char* bytes) {
  Word word;
  std::memcpy(&word, bytes, sizeof(word));
  return word;
}

}  // namespace

uint64_t PixelDigest(const unsigned char* pixels, size_t row_bytes, size_t rows, size_t stride) {
  std::array<uint64_t, kLanes> lanes = {1, 2, 3, 4};  // independent, so that they overlap in time
  for (size_t row = 0; row < rows; ++row) {
    const unsigned char* at = pixels + row * stride;
    const unsigned char* const end = at + row_bytes;
    for (; at + kLanes * kWord <= end; at += kLanes * kWord) {
      for (size_t lane = 0; lane < kLanes; ++lane) {
        lanes[lane] = Mix(lanes[lane], Load<uint64_t>(at + lane * kWord));
      }
    }
    for (; at < end; at += sizeof(uint32_t)) lanes[0] = Mix(lanes[0], Load<uint32_t>(at));
  }
  uint64_t digest = 0;
  for (const uint64_t lane : lanes) digest = Mix(digest, lane);
  return digest;
}

}  // namespace lumora::platform
