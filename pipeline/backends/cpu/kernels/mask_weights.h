// SPDX-License-Identifier: Apache-2.0
// The weights of a skin mask, a row at a time.
#ifndef LUMORA_PIPELINE_BACKENDS_CPU_KERNELS_MASK_WEIGHTS_H_
#define LUMORA_PIPELINE_BACKENDS_CPU_KERNELS_MASK_WEIGHTS_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "pipeline/plan/skin_mask.h"

namespace lumora::cpu {

/// Columns are processed in groups of so many.
constexpr int kMaskColumns = 16;

/// Where the columns of a mask lie in its grid.
class MaskTaps {
 public:
  void Reserve(size_t columns);
  /// For columns from the mask's first on, each `step` of which share a number. Asks for no memory
  /// for as many as were reserved.
  void Set(int step, size_t columns);

  const int32_t* numbers() const { return numbers_.data(); }  ///< to the left of each column
  const float* shares() const { return shares_.data(); }      ///< of the way to the next number

 private:
  std::vector<int32_t> numbers_;
  std::vector<float> shares_;
};

/// The weights of a row, as SkinMask::Row tells them, for columns counted from those of its bounds;
/// a whole number of groups, of which those beyond the bounds weigh nothing. `taps` are for the
/// mask's step and all of the columns.
void MaskWeights(const MaskRow& row, const MaskTaps& taps, const RowSpan& columns, float* weights);

namespace scalar {
/// The same bits, column by column.
void MaskWeights(const MaskRow& row, const MaskTaps& taps, const RowSpan& columns, float* weights);
}  // namespace scalar

}  // namespace lumora::cpu

#endif  // LUMORA_PIPELINE_BACKENDS_CPU_KERNELS_MASK_WEIGHTS_H_
