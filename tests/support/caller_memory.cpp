// SPDX-License-Identifier: Apache-2.0
#include "support/caller_memory.h"

#include <algorithm>
#include <sstream>

#include "support/pictures.h"

namespace lumora::test {

CallerFrame::CallerFrame(int width, int height, const Bytes& bytes)
    : width_(width), height_(height), memory_(LumaSize(width, height) + ChromaSize(width, height)) {
  std::copy_n(bytes.begin(), memory_.size(), memory_.data());
}

CallerFrame::CallerFrame(const reference::Frame& frame)
    : CallerFrame(frame.width, frame.height, frame.bytes) {}

Bytes CallerFrame::bytes() const {
  return Bytes(memory_.data(), memory_.data() + memory_.size());
}

reference::Frame CallerFrame::frame(int width, int height) const {
  reference::Frame frame(width, height);
  std::copy_n(memory_.data(), frame.bytes.size(), frame.bytes.begin());
  return frame;
}

CallerPlanes::CallerPlanes(int width, int height)
    : luma_(LumaSize(width, height)), chroma_(ChromaSize(width, height)) {}

CallerPlanes::CallerPlanes(int width, int height, const Bytes& bytes)
    : CallerPlanes(width, height) {
  std::copy_n(bytes.begin(), luma_.size(), luma_.data());
  std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(luma_.size()), chroma_.size(),
              chroma_.data());
}

Bytes CallerPlanes::bytes() const {
  Bytes bytes(luma_.data(), luma_.data() + luma_.size());
  bytes.insert(bytes.end(), chroma_.data(), chroma_.data() + chroma_.size());
  return bytes;
}

Bytes NoisePlanes(int width, int height, uint32_t seed) {
  return NoiseBytes(LumaSize(width, height) + ChromaSize(width, height), seed);
}

std::string FirstDifference(const Bytes& expected, const Bytes& actual, int width, int height) {
  if (expected.size() != actual.size()) return "the planes differ in size";
  const auto difference = std::mismatch(expected.begin(), expected.end(), actual.begin());
  if (difference.first == expected.end()) return "";
  const size_t at = static_cast<size_t>(difference.first - expected.begin());
  const size_t luma = LumaSize(width, height);
  const size_t place = at < luma ? at : at - luma;
  std::ostringstream words;
  words << (at < luma ? "luma" : "chroma") << " row " << place / static_cast<size_t>(width)
        << ", byte " << place % static_cast<size_t>(width) << ": expected "
        << int{*difference.first} << ", is " << int{*difference.second};
  return words.str();
}

}  // namespace lumora::test
