// SPDX-License-Identifier: Apache-2.0
// The samples of a frame that slimming a face may change.
#ifndef LUMORA_PIPELINE_PLAN_CIRCLE_SPANS_H_
#define LUMORA_PIPELINE_PLAN_CIRCLE_SPANS_H_

#include <algorithm>
#include <cmath>

#include "pipeline/frames/row_span.h"
#include "pipeline/plan/face_plan.h"

namespace lumora {

/// The part of a face's circle in two rows of pixels, and the row of chroma samples that stand for
/// any pixel of it.
struct CircleSpans {
  RowSpan upper;
  RowSpan lower;
  RowSpan chroma;  ///< in samples
};

/// The columns of a row whose pixel centres lie in a face's circle.
inline RowSpan CircleSpan(const FacePlan& face, int y, int width) {
  const double dy = y + 0.5 - static_cast<double>(face.centre.y);
  const double left = face.radius * face.radius - dy * dy;
  if (left < 0) return {};
  return SpanAround(static_cast<double>(face.centre.x), std::sqrt(left), width);
}

/// Those of the rows `y`, an even number, and y + 1 in a frame of width x height pixels.
inline CircleSpans CircleSpansAt(const FacePlan& face, int y, int width, int height) {
  CircleSpans spans;
  spans.upper = CircleSpan(face, y, width);
  if (y + 1 < height) spans.lower = CircleSpan(face, y + 1, width);
  // The longer one holds the other: both are symmetric to the same column.
  const bool upper_holds =
      spans.upper.end - spans.upper.begin > spans.lower.end - spans.lower.begin;
  const RowSpan& longer = upper_holds ? spans.upper : spans.lower;
  if (longer.begin < longer.end) spans.chroma = {longer.begin / 2, (longer.end + 1) / 2};
  return spans;
}

/// Calls `luma` with each row of a frame and the columns of it that lie in a face's circle,
/// `chroma` with each row of chroma samples and those for which any pixel lies in it. None are
/// empty.
template <typename Luma, typename Chroma>
void ForEachCircleSpan(const FacePlan& face, int width, int height, Luma luma, Chroma chroma) {
  const int bottom = std::min(face.bounds.y + face.bounds.height, height);
  for (int y = face.bounds.y; y < bottom; y += 2) {
    const CircleSpans spans = CircleSpansAt(face, y, width, height);
    if (spans.upper.begin < spans.upper.end) luma(y, spans.upper);
    if (spans.lower.begin < spans.lower.end) luma(y + 1, spans.lower);
    if (spans.chroma.begin < spans.chroma.end) chroma(y / 2, spans.chroma);
  }
}

}  // namespace lumora

#endif  // LUMORA_PIPELINE_PLAN_CIRCLE_SPANS_H_
