// SPDX-License-Identifier: Apache-2.0
// Frames that bilinear sampling and rounding change by little.
#ifndef LUMORA_TESTS_PIPELINE_SMOOTH_SAMPLES_H_
#define LUMORA_TESTS_PIPELINE_SMOOTH_SAMPLES_H_

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "pipeline/frames/frame_memory.h"

namespace lumora::test {

/// Broad waves in every plane.
inline Samples SmoothSamples(int width, int height) {
  Samples samples = NoiseSamples(width, height);
  const auto wave = [](int x, int y, double phase) {
    return static_cast<uint8_t>(
        std::lround(128 + 60 * std::sin(x * 0.21 + phase) + 50 * std::cos(y * 0.17 + phase)));
  };
  for (size_t i = 0; i < samples.y.size(); ++i) {
    const int at = static_cast<int>(i);
    samples.y[i] = wave(at % width, at / width, 0);
  }
  const int chroma_width = (width + 1) / 2;
  for (size_t i = 0; i < samples.cb.size(); ++i) {
    const int at = static_cast<int>(i);
    samples.cb[i] = wave(at % chroma_width, at / chroma_width, 1);
    samples.cr[i] = wave(at % chroma_width, at / chroma_width, 2);
  }
  return samples;
}

/// A plane at (x, y), pixel centres at halves, interpolated; its borders go on outwards.
inline double Interpolated(const std::vector<uint8_t>& plane, int width, int height, double x,
                           double y) {
  const double column = std::clamp(x - 0.5, 0.0, width - 1.0);
  const double row = std::clamp(y - 0.5, 0.0, height - 1.0);
  const int left = std::min(static_cast<int>(column), width - 2);
  const int top = std::min(static_cast<int>(row), height - 2);
  const double fx = column - left, fy = row - top;
  const auto at = static_cast<size_t>(top) * static_cast<size_t>(width) + static_cast<size_t>(left);
  const size_t below = at + static_cast<size_t>(width);
  return (plane[at] * (1 - fx) + plane[at + 1] * fx) * (1 - fy) +
         (plane[below] * (1 - fx) + plane[below + 1] * fx) * fy;
}

}  // namespace lumora::test

#endif  // LUMORA_TESTS_PIPELINE_SMOOTH_SAMPLES_H_
