// SPDX-License-Identifier: Apache-2.0
#include "bench/scene.h"

#include <sys/mman.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <new>
#include <random>

#include "bench/counters.h"
#include "pipeline/plan/warp_geometry.h"

namespace lumora::bench {
namespace {

/// Fills luma by (column, row) and chroma by (byte, row).
template <typename Luma, typename Chroma>
Buffer MakeFrame(Size size, Luma luma, Chroma chroma) {
  Buffer frame(size.FrameBytes());
  uint8_t* at = frame.data();
  for (int y = 0; y < size.height; ++y) {
    for (int x = 0; x < size.width; ++x) *at++ = static_cast<uint8_t>(luma(x, y));
  }
  for (int y = 0; y < size.height / 2; ++y) {
    for (int x = 0; x < size.width; ++x) *at++ = static_cast<uint8_t>(chroma(x, y));
  }
  return frame;
}

}  // namespace

std::string Size::Text() const {
  return std::to_string(width) + "x" + std::to_string(height);
}

Buffer::Buffer(size_t bytes) : size_(bytes) {
  constexpr size_t kHugePage = size_t{2} << 20;
  const size_t whole = (bytes + kHugePage - 1) / kHugePage * kHugePage;
  void* const memory = std::aligned_alloc(kHugePage, whole);
  if (memory == nullptr) throw std::bad_alloc();
  madvise(memory, whole, MADV_HUGEPAGE);
  std::memset(memory, 0, whole);
  memory_.reset(static_cast<uint8_t*>(memory));
}

void Buffer::Free::operator()(uint8_t* memory) const {
  std::free(memory);
}

Buffer RandomFrame(Size size) {
  std::mt19937 random(1);
  Buffer frame(size.FrameBytes());
  uint8_t* const bytes = frame.data();
  for (size_t i = 0; i + 4 <= frame.size(); i += 4) {
    const auto word = static_cast<uint32_t>(random());
    std::memcpy(bytes + i, &word, sizeof(word));
  }
  return frame;
}

Buffer SmoothFrame(Size size) {
  const auto wave = [](int place, double period, double amplitude) {
    return amplitude * std::sin(place * 2 * 3.14159265358979 / period);
  };
  return MakeFrame(
      size, [&](int x, int y) { return 128 + wave(x, 96, 30) + wave(y, 96, 30); },
      [&](int x, int y) {
        const double value = wave(x / 2, 192, 10) + wave(y, 192, 10);
        return x % 2 == 0 ? 128 + value : 128 - value;
      });
}

Buffer SkinFrame(Size size) {
  std::mt19937 random(1);
  const auto noisy = [&random](int middle) { return middle + static_cast<int>(random() % 17) - 8; };
  return MakeFrame(
      size, [&](int, int) { return noisy(130); },
      [&](int x, int) { return noisy(x % 2 == 0 ? 155 : 105); });
}

Face CentredFace(Size size, double eye_distance) {
  const auto x = static_cast<float>(size.width) / 2;
  const auto y = static_cast<float>(size.height) * 0.45f;
  const auto half = static_cast<float>(size.height * eye_distance / 2);
  return FaceFromEyes({x - half, y}, {x + half, y});
}

Face PreviewFace(Size size) {
  return CentredFace(size, 0.17);
}

FACE_INFO_t RecordOf(const Face& face, Size size, Chain chain) {
  const auto record = MakeFaceRecord(face, size.width, size.height, kSlim, chain);
  Require(record.has_value(), "the face has no record");
  return *record;
}

}  // namespace lumora::bench
