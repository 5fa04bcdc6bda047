// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/video/sample_range.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

#include "tools/lumora/images/colours.h"

namespace lumora::tools {
namespace {

using Table = std::array<uint8_t, 256>;

constexpr size_t kRun = 64;  // samples that are compared at once

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

/// The tables of luma and chroma.
struct Tables {
  Table luma, chroma;
};

const Tables kStretch = {Straight(kZero, kFullSteps / kLumaSteps, 0),
                         Straight(kNoColour, kFullSteps / kChromaSteps, kNoColour)};
const Tables kShrink = {Straight(0, kLumaSteps / kFullSteps, kZero),
                        Straight(kNoColour, kChromaSteps / kFullSteps, kNoColour)};

size_t LumaSamples(const ClipFrame& frame) {
  const ConstFrameView view = frame.View();
  return static_cast<size_t>(view.width) * static_cast<size_t>(view.height);
}

/// Calls `work(table, from, to)` for the samples of luma and those of chroma, which end at `end`.
template <typename Work>
void ForBoth(const Tables& tables, const ClipFrame& frame, size_t end, const Work& work) {
  const size_t luma = std::min(LumaSamples(frame), end);
  work(tables.luma, size_t{0}, luma);
  work(tables.chroma, luma, end);
}

}  // namespace

void StretchToFull(const ClipFrame& limited, ClipFrame& full) {
  const uint8_t* const source = limited.bytes().data();
  uint8_t* const target = full.bytes().data();
  ForBoth(kStretch, limited, limited.bytes().size(), [&](const Table& table, size_t i, size_t end) {
    for (; i < end; ++i) target[i] = table[source[i]];
  });
}

void MergeFromFull(const ClipFrame& before, const ClipFrame& after, ClipFrame& limited) {
  const uint8_t* const old = before.bytes().data();
  const uint8_t* const now = after.bytes().data();
  uint8_t* const target = limited.bytes().data();
  ForBoth(kShrink, limited, limited.stored(), [&](const Table& table, size_t i, size_t end) {
    while (i < end) {
      const size_t run = std::min(kRun, end - i);  // most of a frame is as it was
      if (std::memcmp(old + i, now + i, run) == 0) {
        i += run;
        continue;
      }
      for (const size_t stop = i + run; i < stop; ++i) {
        if (now[i] != old[i]) target[i] = table[now[i]];
      }
    }
  });
}

}  // namespace lumora::tools
