// SPDX-License-Identifier: Apache-2.0
#include "pipeline/backends/gl/merge.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "pipeline/plan/circle_spans.h"

namespace lumora {
namespace {

uint8_t Mix(uint8_t from, uint8_t to, float weight) {
  const float moved = static_cast<float>(from) + weight * static_cast<float>(to - from);
  return static_cast<uint8_t>(std::lround(moved));
}

/// The start of a row in both planes of a padded frame.
size_t RowStart(const PaddedFrame& frame, int row) {
  return static_cast<size_t>(row) * static_cast<size_t>(frame.width());
}

}  // namespace

void Blend(const PaddedFrame& processed, FramePlace place, const SkinMask& mask, PaddedFrame* frame,
           std::vector<float>* memory) {
  const PixelRectangle& bounds = mask.bounds();
  if (IsEmpty(bounds)) return;
  const auto columns = static_cast<size_t>(bounds.width);
  memory->resize(2 * columns);
  float* const upper = memory->data();
  float* const lower = upper + columns;
  const auto first_column = static_cast<size_t>(bounds.x);
  const auto first_processed = static_cast<size_t>(bounds.x - place.left);
  const auto blend_luma = [&](int y, float* weights) {
    mask.Row(y, weights);
    uint8_t* const to = frame->luma() + RowStart(*frame, y) + first_column;
    const uint8_t* const from =
        processed.luma() + RowStart(processed, y - place.top) + first_processed;
    for (size_t x = 0; x < columns; ++x) {
      weights[x] *= mask.ShareOf(to[x]);
      to[x] = Mix(to[x], from[x], weights[x]);
    }
  };
  for (int y = bounds.y; y < bounds.y + bounds.height; y += 2) {
    blend_luma(y, upper);
    blend_luma(y + 1, lower);
    uint8_t* const to = frame->chroma() + RowStart(*frame, y / 2) + first_column;
    const uint8_t* const from =
        processed.chroma() + RowStart(processed, (y - place.top) / 2) + first_processed;
    for (size_t x = 0; x < columns; x += 2) {
      const float weight = (upper[x] + upper[x + 1] + lower[x] + lower[x + 1]) / 4;
      to[x] = Mix(to[x], from[x], weight);
      to[x + 1] = Mix(to[x + 1], from[x + 1], weight);
    }
  }
}

void CopyCircle(const PaddedFrame& processed, const FacePlan& face, PaddedFrame* frame) {
  const auto copy = [](const uint8_t* from, uint8_t* to, size_t start, RowSpan span) {
    const size_t at = start + static_cast<size_t>(span.begin);
    std::memcpy(to + at, from + at, static_cast<size_t>(span.end - span.begin));
  };
  ForEachCircleSpan(
      face, frame->width(), frame->height(),
      [&](int y, RowSpan span) {
        copy(processed.luma(), frame->luma(), RowStart(*frame, y), span);
      },
      [&](int y, RowSpan span) {
        const RowSpan bytes = {2 * span.begin, 2 * span.end};
        copy(processed.chroma(), frame->chroma(), RowStart(*frame, y), bytes);
      });
}

void StoreCircle(const PaddedFrame& processed, const FacePlan& face, const FrameView& out) {
  ForEachCircleSpan(
      face, out.width, out.height, [&](int y, RowSpan span) { processed.StoreLuma(y, span, out); },
      [&](int y, RowSpan span) { processed.StoreChroma(y, span, out); });
}

}  // namespace lumora
