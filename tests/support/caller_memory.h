// SPDX-License-Identifier: Apache-2.0
// The caller's side of the engine: frames in memory whose ends cannot be crossed unnoticed.
#ifndef LUMORA_TESTS_ENGINE_CALLER_MEMORY_H_
#define LUMORA_TESTS_ENGINE_CALLER_MEMORY_H_

#include <cstdint>
#include <string>
#include <vector>

#include "reference/frame.h"
#include "support/guarded_buffer.h"

namespace lumora::test {

using Bytes = std::vector<uint8_t>;

/// Bytes of a width x height frame's planes. Odd heights have no chroma for their last row.
constexpr size_t LumaSize(int width, int height) {
  return static_cast<size_t>(width) * static_cast<size_t>(height);
}
constexpr size_t ChromaSize(int width, int height) {
  return static_cast<size_t>(width) * static_cast<size_t>(height / 2);
}

/// A frame as one piece of guarded memory: luma, then chroma.
class CallerFrame {
 public:
  /// Any size, the bytes as they shall be: LumaSize + ChromaSize of them.
  CallerFrame(int width, int height, const Bytes& bytes);
  explicit CallerFrame(const reference::Frame& frame);

  uint8_t* luma() { return memory_.data(); }
  uint8_t* chroma() { return memory_.data() + LumaSize(width_, height_); }
  Bytes bytes() const;
  /// The bytes as a frame of a given size, of which they are enough.
  reference::Frame frame(int width, int height) const;
  bool intact() const { return memory_.intact(); }

 private:
  int width_;
  int height_;
  GuardedBuffer memory_;
};

/// A frame as two separate pieces of guarded memory.
class CallerPlanes {
 public:
  /// Both planes hold GuardedBuffer::kFill.
  CallerPlanes(int width, int height);
  CallerPlanes(int width, int height, const Bytes& bytes);

  uint8_t* luma() { return luma_.data(); }
  uint8_t* chroma() { return chroma_.data(); }
  /// Luma, then chroma.
  Bytes bytes() const;
  bool intact() const { return luma_.intact() && chroma_.intact(); }

 private:
  GuardedBuffer luma_;
  GuardedBuffer chroma_;
};

/// LumaSize + ChromaSize random bytes.
Bytes NoisePlanes(int width, int height, uint32_t seed);

/// The place of the first difference of two equally long planes, in words; "" when there is none.
std::string FirstDifference(const Bytes& expected, const Bytes& actual, int width, int height);

}  // namespace lumora::test

#endif  // LUMORA_TESTS_ENGINE_CALLER_MEMORY_H_
