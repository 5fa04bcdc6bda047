// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/video/sample_range.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "tools/lumora/images/colours.h"

namespace lumora::tools {
namespace {

using Table = std::array<uint8_t, 256>;

constexpr double kZero = 16;  // of luma
constexpr double kLumaSteps = 219, kChromaSteps = 224, kFullSteps = 255;

uint8_t Sample(double value) {
  return static_cast<uint8_t>(std::clamp(std::lround(value), 0L, 255L));
}

/// A table of `(sample - from) * factor + to`.
Table Straight(double from, double factor, double to) {
  Table table = {};
  for (size_t i = 0; i < table.size(); ++i) {
    table[i] = Sample((static_cast<double>(i) - from) * factor + to);
  }
  return table;
}

/// The tables of luma and chroma, each for its part of an I420 frame.
struct Tables {
  Table luma, chroma;

  const Table& At(size_t place, size_t luma_samples) const {
    return place < luma_samples ? luma : chroma;
  }
};

const Tables kStretch = {Straight(kZero, kFullSteps / kLumaSteps, 0),
                         Straight(kNoColour, kFullSteps / kChromaSteps, kNoColour)};
const Tables kShrink = {Straight(0, kLumaSteps / kFullSteps, kZero),
                        Straight(kNoColour, kChromaSteps / kFullSteps, kNoColour)};

size_t LumaSamples(const ClipFrame& frame) {
  const ConstFrameView view = frame.View();
  return static_cast<size_t>(view.width) * static_cast<size_t>(view.height);
}

}  // namespace

void StretchToFull(const ClipFrame& limited, ClipFrame& full) {
  const size_t luma = LumaSamples(limited);
  for (size_t i = 0; i < limited.bytes().size(); ++i) {
    full.bytes()[i] = kStretch.At(i, luma)[limited.bytes()[i]];
  }
}

void MergeFromFull(const ClipFrame& before, const ClipFrame& after, ClipFrame& limited) {
  const size_t luma = LumaSamples(limited);
  for (size_t i = 0; i < limited.stored(); ++i) {
    const uint8_t sample = after.bytes()[i];
    if (sample != before.bytes()[i]) limited.bytes()[i] = kShrink.At(i, luma)[sample];
  }
}

}  // namespace lumora::tools
