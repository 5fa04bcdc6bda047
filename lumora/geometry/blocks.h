// SPDX-License-Identifier: Apache-2.0
// The blocks that a capture processes for one face.
#ifndef LUMORA_GEOMETRY_BLOCKS_H_
#define LUMORA_GEOMETRY_BLOCKS_H_

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "lumora/geometry/rectangle.h"
#include "lumora/geometry/rounding.h"

namespace lumora {

/// How many faces have a record of their blocks.
constexpr int kMaxFaceRecords = 10;

/// A whole number of blocks on each side of a face, as slimming takes them: enough for `size`, the
/// larger distance of its record.
inline PixelRectangle BlocksAroundFace(int loc_x, int loc_y, int size, int block_width,
                                       int block_height) {
  const auto reach = [size](int block) {
    const float blocks = static_cast<float>(size) / static_cast<float>(block);
    return static_cast<double>(std::ceil(blocks)) * block;
  };
  const double across = reach(block_width);
  const double down = reach(block_height);
  return {TruncateToInt(loc_x - across), TruncateToInt(loc_y - down), TruncateToInt(2 * across),
          TruncateToInt(2 * down)};
}

/// Whole blocks around a centre, as whitening takes them: half an extent on each side and half a
/// block more.
inline PixelRectangle BlocksAroundExtent(int centre_x, int centre_y, int half_width,
                                         int half_height, int block_width, int block_height) {
  const auto reach = [](int half, int block) {
    const float blocks = static_cast<float>(half) / static_cast<float>(block);
    return static_cast<int64_t>(std::ceil(static_cast<double>(blocks) + 0.5)) * block;
  };
  const int64_t across = reach(half_width, block_width);
  const int64_t down = reach(half_height, block_height);
  return {ClampToInt(centre_x - across), ClampToInt(centre_y - down), ClampToInt(2 * across),
          ClampToInt(2 * down)};
}

/// Whether a rectangle is at least a twentieth of a frame in each direction. A frame is 20 pixels
/// or more in both.
inline bool IsWorthwhile(const PixelRectangle& rectangle, int frame_width, int frame_height) {
  const unsigned least_width = static_cast<unsigned>(frame_width) / 20;
  const unsigned least_height = static_cast<unsigned>(frame_height) / 20;
  return static_cast<unsigned>(rectangle.width) / least_width != 0 &&
         static_cast<unsigned>(rectangle.height) / least_height != 0;
}

/// Whether a block corner lies strictly inside the rectangle in both directions. A block that
/// merely holds the rectangle, or shares an edge with it, does not count.
inline bool HoldsBlockCorner(const PixelRectangle& rectangle, const PixelRectangle& block) {
  const auto inside = [](int start, int length, int first, int extent) {
    const int64_t end = int64_t{start} + length;
    const int64_t last = int64_t{first} + extent;
    return (start < first && first < end) || (start < last && last < end);
  };
  return inside(rectangle.x, rectangle.width, block.x, block.width) &&
         inside(rectangle.y, rectangle.height, block.y, block.height);
}

/// The part of a rectangle that block walks cover: from even starts to exclusive ends. Even origins
/// keep chroma pairs and rows whole.
struct BlockRange {
  int x0, y0, x1, y1;
};

inline BlockRange ClipToFrame(const PixelRectangle& rectangle, int limit_x, int limit_y) {
  const auto start = [](int position, int limit) {
    return RoundUpToEven(std::clamp(position, 0, limit));
  };
  const auto end = [](int position, int length, int limit) {
    return static_cast<int>(std::clamp<int64_t>(int64_t{position} + length, 0, limit));
  };
  return {start(rectangle.x, limit_x), start(rectangle.y, limit_y),
          end(rectangle.x, rectangle.width, limit_x), end(rectangle.y, rectangle.height, limit_y)};
}

/// Calls visit(x, y) for the origin of each block of that size in the range, row by row, until it
/// returns false. Returns whether it never did.
template <typename Visit>
bool ForEachBlock(const BlockRange& range, int block_width, int block_height, Visit visit) {
  for (int64_t y = range.y0; y < range.y1; y += block_height) {
    for (int64_t x = range.x0; x < range.x1; x += block_width) {
      if (!visit(static_cast<int>(x), static_cast<int>(y))) return false;
    }
  }
  return true;
}

}  // namespace lumora

#endif  // LUMORA_GEOMETRY_BLOCKS_H_
