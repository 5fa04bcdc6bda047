// SPDX-License-Identifier: Apache-2.0
#include "pipeline/backends/cpu/kernels/mask_weights.h"

namespace lumora::cpu {

void MaskTaps::Reserve(size_t columns) {
  numbers_.reserve(columns);
  shares_.reserve(columns);
}

void MaskTaps::Set(int step, size_t columns) {
  numbers_.resize(columns);
  shares_.resize(columns);
  for (size_t column = 0; column < columns; ++column) {
    const int at = static_cast<int>(column);
    numbers_[column] = at / step;
    shares_[column] = static_cast<float>(at % step) / static_cast<float>(step);
  }
}

namespace scalar {

void MaskWeights(const MaskRow& row, const MaskTaps& taps, const RowSpan& columns, float* weights) {
  for (int column = columns.begin; column < columns.end; ++column) {
    const bool held = column >= row.held.begin && column < row.held.end;
    *weights++ = held ? row.Between(taps.numbers()[column], taps.shares()[column]) : 0;
  }
}

}  // namespace scalar
}  // namespace lumora::cpu
