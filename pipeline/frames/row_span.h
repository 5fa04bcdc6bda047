// SPDX-License-Identifier: Apache-2.0
// Pixels of a row that belong to a shape.
#ifndef LUMORA_PIPELINE_FRAMES_ROW_SPAN_H_
#define LUMORA_PIPELINE_FRAMES_ROW_SPAN_H_

#include <algorithm>
#include <cmath>

namespace lumora {

/// The columns [begin, end) of a row; none where both are equal.
struct RowSpan {
  int begin = 0;
  int end = 0;
};

/// The columns of a row of `width` pixels whose centres lie within `reach`, which is not negative,
/// of `middle`.
inline RowSpan SpanAround(double middle, double reach, int width) {
  const auto column = [width](double value) {
    return static_cast<int>(std::clamp(value, 0.0, static_cast<double>(width)));
  };
  const int begin = column(std::ceil(middle - 0.5 - reach));
  return {begin, std::max(begin, column(std::floor(middle - 0.5 + reach) + 1))};
}

}  // namespace lumora

#endif  // LUMORA_PIPELINE_FRAMES_ROW_SPAN_H_
