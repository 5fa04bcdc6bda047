// SPDX-License-Identifier: Apache-2.0
// What a row of a remapped frame has in common, the same for both forms of the kernel.
#ifndef LUMORA_PIPELINE_BACKENDS_CPU_KERNELS_REMAP_ROW_MAPS_H_
#define LUMORA_PIPELINE_BACKENDS_CPU_KERNELS_REMAP_ROW_MAPS_H_

#include "pipeline/backends/cpu/kernels/remap_rows.h"

namespace lumora::cpu {

/// Floats from here on have no fractions: a sum with it is rounded to the nearest whole number, to
/// the even one of two.
constexpr float kNoFractions = 8388608;

/// Positions along a row of a QuadMap: straight and even.
struct QuadRow {
  float x, step_x;
  float y, step_y;
};

inline QuadRow RowOf(const QuadMap& map, float y) {
  return {map.x.from + map.x.from_y * y, map.x.from_x + map.x.from_xy * y,
          map.y.from + map.y.from_y * y, map.y.from_x + map.y.from_xy * y};
}

/// The part of a LensMap's distances that a row tells.
struct LensRow {
  const LensMap& map;
  float dy;
  float share;  ///< of dy in the squared distance
};

inline LensRow RowOf(const LensMap& map, float y) {
  const float dy = y - map.centre_y;
  return {map, dy, dy * dy * map.share_y};
}

/// Which pixel of the two that a chroma sample stands for, in one direction, is the nearest to the
/// middle of `pixels`: the second one before it, the first one behind it.
inline int PixelOfChroma(int sample, int pixels) {
  return 2 * sample + (4 * sample + 2 < pixels ? 1 : 0);
}

/// The centre of the pixels that a row of samples is drawn for.
inline float RowCentre(const Remap& remap, RemapSource::Kind kind, int row) {
  const int pixel = kind == RemapSource::Kind::Luma ? row : PixelOfChroma(row, remap.height);
  return static_cast<float>(pixel) + 0.5f;
}

}  // namespace lumora::cpu

#endif  // LUMORA_PIPELINE_BACKENDS_CPU_KERNELS_REMAP_ROW_MAPS_H_
