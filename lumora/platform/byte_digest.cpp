// SPDX-License-Identifier: Apache-2.0
#include "lumora/platform/byte_digest.h"

#include <cstring>

namespace lumora::platform {
namespace {

constexpr uint64_t RotateLeft(uint64_t word, unsigned bits) {
  return word << bits | word >> (64 - bits);
}

}  // namespace

void ByteDigest::State::Round() {
  v[0] += v[1];
  v[2] += v[3];
  v[1] = RotateLeft(v[1], 13) ^ v[0];
  v[3] = RotateLeft(v[3], 16) ^ v[2];
  v[0] = RotateLeft(v[0], 32);
  v[2] += v[1];
  v[0] += v[3];
  v[1] = RotateLeft(v[1], 17) ^ v[2];
  v[3] = RotateLeft(v[3], 21) ^ v[0];
  v[2] = RotateLeft(v[2], 32);
}

void ByteDigest::State::Take(uint64_t word) {
  v[3] ^= word;
  Round();
  Round();
  v[0] ^= word;
}

void ByteDigest::Add(const void* bytes, size_t size) {
  const auto* const data = static_cast<const unsigned char*>(bytes);
  for (size_t i = 0; i < size; ++i) {
    pending_ |= uint64_t{data[i]} << (count_ % 8 * 8);
    if (++count_ % 8 != 0) continue;
    state_.Take(pending_);
    pending_ = 0;
  }
}

void ByteDigest::AddText(const char* text) {
  if (text == nullptr) text = "";
  Add(text, std::strlen(text) + 1);
}

uint64_t ByteDigest::Value() const {
  State state = state_;
  state.Take(pending_ | count_ << 56);
  state.v[2] ^= 0xFF;
  for (int round = 0; round < 4; ++round) state.Round();
  return state.v[0] ^ state.v[1] ^ state.v[2] ^ state.v[3];
}

}  // namespace lumora::platform
