// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <cmath>

#include "pipeline/backends/cpu/kernels/remap_row_maps.h"
#include "pipeline/backends/cpu/kernels/remap_rows.h"

namespace lumora::cpu::scalar {
namespace {

struct Place {
  float x, y;
};

Place PlaceOf(const QuadRow& row, float x) {
  return {row.x + row.step_x * x, row.y + row.step_y * x};
}

Place PlaceOf(const LensRow& row, float x) {
  const LensMap& map = row.map;
  const float* const k = map.k;
  const float dx = x - map.centre_x;
  const float s = dx * dx * map.share_x + row.share;
  const float factor = k[0] + (k[1] + (k[2] + k[3] * s) * s) * s;
  return {map.middle_x + dx * factor, map.middle_y + row.dy * factor};
}

/// Two neighbours, and the weight of the second in 1/256.
struct Taps {
  int first, second;
  int weight;
};

/// A position within the longer line, at which others are mirrored.
float Mirrored(const RemapAxis& axis, float position) {
  if (position >= 0 && position <= axis.length) return position;
  const float period = 2 * axis.length;
  const float rest = position - std::floor(position * (1 / period)) * period;
  const float inside = std::min(std::max(rest, 0.f), period);
  return std::min(inside, period - inside);
}

Taps TapsAt(const RemapAxis& axis, float position) {
  // Seen from the centre of the pixel before the longer line, in 1/256.
  const float lifted = Mirrored(axis, position) * 256 + kNoFractions;
  const int steps = static_cast<int>(lifted - kNoFractions) + 128;
  const int next = steps / 256 - axis.first;
  return {std::clamp(next - 1, 0, axis.last), std::clamp(next, 0, axis.last), steps % 256};
}

uint8_t Mix(const Taps& across, const Taps& down, const uint8_t* upper, const uint8_t* lower,
            int first, int second) {
  // 15 bits, so that differences have a sign in 16.
  const auto mix = [&](const uint8_t* row) {
    return (row[first] * (256 - across.weight) + row[second] * across.weight) >> 1;
  };
  const int top = mix(upper);
  const int mixed = top + (((mix(lower) - top) * down.weight + 128) >> 8);
  return static_cast<uint8_t>((mixed + 64) >> 7);
}

template <typename RowMap>
void Draw(const Remap& remap, const RemapSource& source, const RowMap& map, int begin, int end,
          uint8_t* out) {
  const bool luma = source.kind == RemapSource::Kind::Luma;
  const int shift = luma ? 0 : 1;
  const int unit = source.kind == RemapSource::Kind::Pairs ? 2 : 1;
  for (int i = begin; i < end; ++i) {
    const int pixel = luma ? i : PixelOfChroma(i, remap.width);
    const Place from = PlaceOf(map, static_cast<float>(pixel) + 0.5f);
    const Taps across = TapsAt(remap.columns, from.x);
    const Taps down = TapsAt(remap.rows, from.y);
    const uint8_t* const upper = source.samples + (down.first >> shift) * source.stride;
    const uint8_t* const lower = source.samples + (down.second >> shift) * source.stride;
    for (int channel = 0; channel < unit; ++channel) {
      const int at = unit == 2 && source.swapped ? 1 - channel : channel;
      *out++ = Mix(across, down, upper, lower, (across.first >> shift) * unit + at,
                   (across.second >> shift) * unit + at);
    }
  }
}

}  // namespace

void RemapRow(const Remap& remap, const RemapSource& source, int row, int begin, int end,
              uint8_t* out) {
  const float y = RowCentre(remap, source.kind, row);
  if (remap.kind == Remap::Kind::Quad) {
    Draw(remap, source, RowOf(remap.quad, y), begin, end, out);
  } else {
    Draw(remap, source, RowOf(remap.lens, y), begin, end, out);
  }
}

}  // namespace lumora::cpu::scalar
