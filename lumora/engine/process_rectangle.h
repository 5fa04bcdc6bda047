// The blocks that a capture processes for one face.
#ifndef LUMORA_ENGINE_PROCESS_RECTANGLE_H_
#define LUMORA_ENGINE_PROCESS_RECTANGLE_H_

#include <algorithm>
#include <cstdint>

#include "lumora/engine/gpu_beauty_face.h"
#include "lumora/gl/row_sizes.h"

namespace lumora {

/// The part of a rectangle that block walks cover: from even starts to exclusive ends. Even origins
/// keep chroma pairs and rows whole.
struct BlockRange {
  int x0, y0, x1, y1;
};

inline BlockRange ClipToFrame(const android::FaceProcessRect& rect, int limit_x, int limit_y) {
  const auto start = [](int position, int limit) {
    return RoundUpToEven(std::clamp(position, 0, limit));
  };
  const auto end = [](int position, int length, int limit) {
    return static_cast<int>(std::clamp<int64_t>(int64_t{position} + length, 0, limit));
  };
  return {start(rect.X, limit_x), start(rect.Y, limit_y), end(rect.X, rect.Width, limit_x),
          end(rect.Y, rect.Height, limit_y)};
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

/// A number as an int: beyond its range the nearest one that it has.
inline int ClampToInt(int64_t value) {
  return static_cast<int>(std::clamp<int64_t>(value, INT32_MIN, INT32_MAX));
}

/// How many faces have a record in the engine.
constexpr int kMaxFaceRecords = 10;

}  // namespace lumora

#endif  // LUMORA_ENGINE_PROCESS_RECTANGLE_H_
