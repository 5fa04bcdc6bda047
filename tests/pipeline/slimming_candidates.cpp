// SPDX-License-Identifier: Apache-2.0
#include "pipeline/slimming_candidates.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <optional>

#include "pipeline/plan/warp_geometry.h"
#include "pipeline/plan/warp_model.h"

namespace lumora::test {
namespace {

int UpTo32(int side) {
  return (side + 31) / 32 * 32;
}

/// A plane as the engine has it: the frame's outermost samples go on to its end.
struct Plane {
  int width, height;
  std::vector<uint8_t> bytes;

  Plane(const std::vector<uint8_t>& from, int from_width, int from_height, int repeat, int to_width,
        int to_height)
      : width(to_width), height(to_height) {
    bytes.reserve(static_cast<size_t>(width) * static_cast<size_t>(height));
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x) {
        const int column = std::min(x / repeat, from_width - 1);
        const int row = std::min(y / repeat, from_height - 1);
        bytes.push_back(from[static_cast<size_t>(row * from_width + column)]);
      }
    }
  }

  uint8_t& At(int x, int y) { return bytes[static_cast<size_t>(y * width + x)]; }
  uint8_t Texel(int x, int y, Beyond beyond) const {
    const auto place = [beyond](int at, int size) {
      if (beyond == Beyond::Repeat) return std::clamp(at, 0, size - 1);
      const int period = ((at % (2 * size)) + 2 * size) % (2 * size);
      return period < size ? period : 2 * size - 1 - period;
    };
    return bytes[static_cast<size_t>(place(y, height) * width + place(x, width))];
  }
  /// The plane between its samples, whose centres are at halves.
  uint8_t Smooth(Vector at, Beyond beyond) const {
    const double x = std::floor(at.x - 0.5), y = std::floor(at.y - 0.5);
    const double fx = at.x - 0.5 - x, fy = at.y - 0.5 - y;
    const int left = static_cast<int>(x), top = static_cast<int>(y);
    const auto row = [&](int line) {
      return Texel(left, line, beyond) * (1 - fx) + Texel(left + 1, line, beyond) * fx;
    };
    return static_cast<uint8_t>(std::lround(row(top) * (1 - fy) + row(top + 1) * fy));
  }
};

struct Chroma {
  Plane cb, cr;
};

/// Draws a face's warp from one pair of planes to another, at full size. `scale`: pixels a sample
/// of `from`.
void Draw(const WarpModel& warp, const Chroma& from, int scale, Beyond beyond, Chroma* to) {
  const Vector centre = warp.centre_pixels();
  const double radius = warp.radius_pixels();
  const auto whole = [](double value, int size) {
    return static_cast<int>(std::clamp(value, 0.0, static_cast<double>(size)));
  };
  const int right = whole(centre.x + radius + 2, to->cb.width);
  const int bottom = whole(centre.y + radius + 2, to->cb.height);
  for (int y = whole(centre.y - radius - 2, bottom); y < bottom; ++y) {
    for (int x = whole(centre.x - radius - 2, right); x < right; ++x) {
      const Vector source = warp.Source({x + 0.5, y + 0.5});
      const Vector at = {source.x / scale, source.y / scale};
      to->cb.At(x, y) = from.cb.Smooth(at, beyond);
      to->cr.At(x, y) = from.cr.Smooth(at, beyond);
    }
  }
}

/// Whether the circle holds one of the pixels that a chroma sample stands for.
bool Holds(const WarpModel& warp, int column, int row, int width, int height) {
  const Vector centre = warp.centre_pixels();
  for (int i = 0; i < 4; ++i) {
    const int x = 2 * column + i % 2, y = 2 * row + i / 2;
    const double distance = std::hypot(x + 0.5 - centre.x, y + 0.5 - centre.y);
    if (x < width && y < height && distance <= warp.radius_pixels()) return true;
  }
  return false;
}

}  // namespace

int SlimmingCandidates::Distance(const std::array<std::vector<uint8_t>, 4>& candidates,
                                 size_t sample, uint8_t value) {
  int nearest = 255;
  for (const std::vector<uint8_t>& candidate : candidates) {
    nearest = std::min(nearest, std::abs(candidate[sample] - value));
  }
  return nearest;
}

int SlimmingCandidates::LargestDistance(const Samples& result) const {
  int largest = 0;
  for (size_t i = 0; i < result.cb.size(); ++i) {
    largest = std::max({largest, Distance(cb, i, result.cb[i]), Distance(cr, i, result.cr[i])});
  }
  return largest;
}

SlimmingCandidates CandidatesOf(const Samples& in, int width, int height, const Face& face,
                                int slim, Chain chain, Beyond beyond) {
  SlimmingCandidates candidates = {{in.cb, in.cb, in.cb, in.cb}, {in.cr, in.cr, in.cr, in.cr}};
  const std::optional<FACE_INFO_t> record = MakeFaceRecord(face, width, height, slim, chain);
  if (!record) return candidates;
  const bool capture = chain == Chain::Capture;
  const int columns = (width + 1) / 2, rows = (height + 1) / 2;
  const int wide = UpTo32(width), high = UpTo32(height);
  const WarpModel warp(*record, wide, high, kBeautyLevel, capture);
  const auto planes = [&](int repeat, int to_width, int to_height) {
    return Chroma{{in.cb, columns, rows, repeat, to_width, to_height},
                  {in.cr, columns, rows, repeat, to_width, to_height}};
  };
  Chroma drawn = planes(2, wide, high);
  if (capture) {
    Draw(warp, planes(1, wide / 2, high / 2), 2, beyond, &drawn);
  } else {
    Draw(warp, planes(2, wide, high), 1, beyond, &drawn);
  }
  // What the circle does not hold stays as it was.
  for (size_t sample = 0; sample < in.cb.size(); ++sample) {
    const int column = static_cast<int>(sample) % columns;
    const int row = static_cast<int>(sample) / columns;
    if (!Holds(warp, column, row, width, height)) continue;
    for (int i = 0; i < 4; ++i) {
      const int x = 2 * column + i % 2, y = 2 * row + i / 2;
      candidates.cb[static_cast<size_t>(i)][sample] = drawn.cb.At(x, y);
      candidates.cr[static_cast<size_t>(i)][sample] = drawn.cr.At(x, y);
    }
  }
  return candidates;
}

}  // namespace lumora::test
