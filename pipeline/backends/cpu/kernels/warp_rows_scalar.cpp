// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <cmath>
#include <cstddef>

#include "pipeline/backends/cpu/kernels/round_half_up.h"
#include "pipeline/backends/cpu/kernels/warp_rows.h"

namespace lumora::cpu::scalar {
namespace {

// Weights of neighbours are whole numbers of 1/256.
constexpr int kOne = 256;

struct Place {
  float x, y;
};

/// Where a pixel comes from.
Place SourceOf(const WarpShape& shape, Place at, float border) {
  const float distance = std::sqrt(at.x * at.x + at.y * at.y);
  const float limiter_x = at.x - shape.limiter_x;
  const float limiter_y = at.y - shape.limiter_y;
  const float reached =
      (limiter_x * limiter_x + limiter_y * limiter_y) * (shape.inverse_reach * shape.inverse_reach);
  // A limiter in the pixel itself holds it; the least number keeps the quotient one.
  const float hold = std::sqrt(std::min(std::max(reached, 1e-12f), 1.f));
  const float share = std::min(distance * shape.inverse_radius / hold, 1.f);
  const float weight = std::min(share * (2.f - border), 1.f);
  const float pull = shape.strength * distance * (1.f - weight);
  return {at.x + at.x * pull, at.y + at.y * pull};
}

/// A sample of an axis and the weight of the next one, in 1/kOne.
struct Tap {
  int first;
  int weight;
};

Tap TapAt(float position, int samples) {
  const float inside = std::min(std::max(position, 0.f), static_cast<float>(samples - 1));
  const int first = std::min(static_cast<int>(inside), samples - 2);
  return {first, RoundHalfUp((inside - static_cast<float>(first)) * kOne)};
}

/// The tap of chroma samples, each of which stands for two pixels.
Tap ChromaTapAt(float position, int pixels, bool smooth) {
  if (smooth) return TapAt(position * 0.5f - 0.25f, pixels / 2);
  const Tap pixel = TapAt(position, pixels);
  return {pixel.first / 2, pixel.first % 2 * pixel.weight};
}

uint8_t Sample(const uint8_t* plane, int stride, int unit, const Tap& across, const Tap& down) {
  const uint8_t* const upper = plane + std::ptrdiff_t{down.first} * stride + across.first * unit;
  const auto mix = [&](const uint8_t* row) {
    return row[0] * (kOne - across.weight) + row[unit] * across.weight;
  };
  const int top = mix(upper);
  const int bottom = mix(upper + stride);
  return static_cast<uint8_t>((top * kOne + (bottom - top) * down.weight + kOne * kOne / 2) /
                              (kOne * kOne));
}

}  // namespace

void DrawWarp(const WarpShape& shape, const WarpSource& source, const WarpRows& rows) {
  const auto source_of = [&](int column, int row) {
    const Place at = {rows.x + static_cast<float>(column), rows.y + static_cast<float>(row)};
    const Place from =
        SourceOf(shape, at, std::min(rows.column_borders[column], rows.row_borders[row]));
    return Place{from.x - source.x, from.y - source.y};
  };
  for (int row = 0; row < 2; ++row) {
    for (int column = 0; column < rows.columns; ++column) {
      const Place from = source_of(column, row);
      rows.luma[row][column] = Sample(source.luma, source.stride, 1, TapAt(from.x, source.columns),
                                      TapAt(from.y, source.rows));
    }
  }
  const int row = rows.y + 0.5f >= 0 ? 0 : 1;
  for (int column = 0; column < rows.columns; column += 2) {
    const bool right = rows.x + static_cast<float>(column) + 0.5f >= 0;
    const Place from = source_of(right ? column : column + 1, row);
    const Tap across = ChromaTapAt(from.x, source.columns, shape.smooth_chroma);
    const Tap down = ChromaTapAt(from.y, source.rows, shape.smooth_chroma);
    for (int i = 0; i < 2; ++i) {
      rows.chroma[column + i] = Sample(source.chroma + i, source.stride, 2, across, down);
    }
  }
}

}  // namespace lumora::cpu::scalar
