// SPDX-License-Identifier: Apache-2.0
#include "reference/capture_blocks.h"

#include <algorithm>
#include <cmath>

namespace lumora::reference {

CaptureSize::CaptureSize(int capture_width, int capture_height)
    : width(capture_width),
      height(capture_height),
      block_width(capture_width > 1280 ? 384 : capture_width),
      block_height(capture_width > 1280 ? 384 : std::min(capture_height, 1536)),
      row((capture_width + 31) / 32 * 32) {}

std::vector<Rectangle> BlocksOf(const CaptureSize& capture, const Rectangle& rectangle,
                                int limit_x) {
  const auto first = [](int place) {
    const int inside = std::max(place, 0);
    return int64_t{inside} + inside % 2;
  };
  const int64_t right = std::min(int64_t{rectangle.x} + rectangle.width, int64_t{limit_x});
  const int64_t bottom = std::min(int64_t{rectangle.y} + rectangle.height, int64_t{capture.height});
  std::vector<Rectangle> blocks;
  for (int64_t y = first(rectangle.y); y < bottom; y += capture.block_height) {
    for (int64_t x = first(rectangle.x); x < right; x += capture.block_width) {
      const int left = static_cast<int>(x);
      const int top = static_cast<int>(y);
      blocks.push_back({left, top, std::min(capture.block_width, capture.width - left),
                        std::min(capture.block_height, capture.height - top)});
    }
  }
  return blocks;
}

PlaneBounds::PlaneBounds(int plane_width, int plane_height, const std::vector<uint8_t>& bytes)
    : width(plane_width), height(plane_height), low(bytes), high(bytes) {}

void PlaneBounds::put(const Rectangle& block, const ImageBounds& drawn) {
  const auto at = [this](int column, int row) {
    return static_cast<size_t>(row) * static_cast<size_t>(width) + static_cast<size_t>(column);
  };
  const size_t chroma = at(0, height);
  const int chroma_rows = drawn.low.height / 2;
  for (int row = 0; row < block.height; ++row) {
    for (int column = 0; column < block.width; ++column) {
      const size_t luma_at = at(block.x + column, block.y + row);
      low[luma_at] = drawn.low.pixel(column, row)[0];
      high[luma_at] = drawn.high.pixel(column, row)[0];
      const int y = block.y + row;
      if (y % 2 != 0 || y / 2 >= height / 2) continue;
      // The line between two rows; where the block has an odd number of rows it lies a little off.
      const double between = (row / 2 + 0.5) / chroma_rows * drawn.low.height;
      const int last_row = drawn.low.height - 1;
      const int rows[2] = {std::clamp(static_cast<int>(std::floor(between - 0.01)), 0, last_row),
                           std::clamp(static_cast<int>(std::floor(between + 0.01)), 0, last_row)};
      const int left = column / 2 * 2;
      const int columns[2] = {left, std::min(left + 1, drawn.low.width - 1)};
      const int channel = column % 2 == 0 ? 1 : 2;
      uint8_t least = 255;
      uint8_t most = 0;
      for (const int r : rows) {
        for (const int c : columns) {
          least = std::min(least, drawn.low.pixel(c, r)[channel]);
          most = std::max(most, drawn.high.pixel(c, r)[channel]);
        }
      }
      const size_t chroma_at = chroma + at(block.x + column, y / 2);
      low[chroma_at] = least;
      high[chroma_at] = most;
    }
  }
}

}  // namespace lumora::reference
