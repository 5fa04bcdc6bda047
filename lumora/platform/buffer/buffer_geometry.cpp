// SPDX-License-Identifier: Apache-2.0
#include "lumora/platform/buffer/buffer_geometry.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "lumora/geometry/rounding.h"

namespace lumora::platform {
namespace {

// The allocator's handle states sizes as int.
constexpr uint64_t kLargest = std::numeric_limits<int>::max();

}  // namespace

BufferGeometry LayOut(uint32_t width, uint32_t height) {
  const uint64_t columns = std::max<uint32_t>(width, 1);
  const uint64_t rows = RoundUpTo<uint64_t>(std::max<uint32_t>(height, 1), 2) + 2;
  const uint64_t row_bytes = RoundUpTo<uint64_t>(columns, 128) * kPixelBytes;
  const bool fits = row_bytes <= kLargest / rows;
  return {width, height, static_cast<uint32_t>(fits ? RoundUpTo<uint64_t>(columns, kRowStep) : 0),
          static_cast<size_t>(fits ? row_bytes * rows : 0)};
}

void CopyPart(const CpuImage& from, const CpuImage& to, const PixelRectangle& part) {
  const auto row_of = [&part](const CpuImage& image, int row) {
    const auto pixels = static_cast<size_t>(part.y + row) * static_cast<size_t>(image.stride);
    return image.pixels + (pixels + static_cast<size_t>(part.x)) * kPixelBytes;
  };
  const size_t row_bytes = static_cast<size_t>(part.width) * kPixelBytes;
  if (part.width == from.stride && part.width == to.stride) {
    std::memcpy(row_of(to, 0), row_of(from, 0), row_bytes * static_cast<size_t>(part.height));
    return;
  }
  for (int row = 0; row < part.height; ++row) {
    std::memcpy(row_of(to, row), row_of(from, row), row_bytes);
  }
}

}  // namespace lumora::platform
