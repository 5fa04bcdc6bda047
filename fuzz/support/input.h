// SPDX-License-Identifier: Apache-2.0
// The bytes of a fuzz input, read as values. Past its end everything is zero, so any input will do.
#ifndef LUMORA_FUZZ_SUPPORT_INPUT_H_
#define LUMORA_FUZZ_SUPPORT_INPUT_H_

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <string>
#include <vector>

namespace lumora::fuzz {

class Input {
 public:
  Input(const uint8_t* data, size_t size) : at_(data), left_(size) {}

  bool empty() const { return left_ == 0; }

  /// The next bytes as a number of the machine's own order.
  template <typename Number>
  Number take() {
    Number number{};
    if (left_ == 0) return number;  // memcpy takes no null pointer, not even for nothing
    const size_t count = std::min(sizeof(number), left_);
    std::memcpy(&number, at_, count);
    skip(count);
    return number;
  }

  bool flag() { return take<uint8_t>() % 2 != 0; }
  /// A number from a range of at most 65536, both ends included.
  int between(int least, int most) {
    const int count = most - least + 1;
    return least + (count <= 256 ? take<uint8_t>() : take<uint16_t>()) % count;
  }
  /// One of an array's values.
  template <typename Values>
  const auto& pick(const Values& values) {
    return values[take<uint8_t>() % std::size(values)];
  }

  /// Any int; those at which arithmetic goes wrong and those of a frame's size are likely.
  int32_t any_int() {
    constexpr int32_t kExtremes[] = {INT_MIN, INT_MIN + 1, -65536, -2, -1, 0, 1, 2, 255, 256, 360,
                                     100000,  INT_MAX - 1, INT_MAX};
    const auto kind = take<uint8_t>();
    if (kind < 0x60) return kExtremes[kind % std::size(kExtremes)];
    return kind < 0xC0 ? take<int16_t>() : take<int32_t>();
  }

  /// Bytes after a two-byte length.
  std::vector<uint8_t> block() { return bytes(take<uint16_t>()); }
  std::vector<uint8_t> rest() { return bytes(left_); }

 private:
  std::vector<uint8_t> bytes(size_t count) {
    count = std::min(count, left_);
    std::vector<uint8_t> some(at_, at_ + count);
    skip(count);
    return some;
  }
  void skip(size_t count) {
    at_ += count;
    left_ -= count;
  }

  const uint8_t* at_;
  size_t left_;
};

}  // namespace lumora::fuzz

#endif  // LUMORA_FUZZ_SUPPORT_INPUT_H_
