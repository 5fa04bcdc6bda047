// SPDX-License-Identifier: Apache-2.0
#include "pipeline/backends/cpu/kernels/mask_weights.h"

// Highway compiles the rest of this file once per instruction set.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pipeline/backends/cpu/kernels/mask_weights.cpp"
#include "hwy/foreach_target.h"  // must precede highway.h
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace lumora::cpu {
namespace HWY_NAMESPACE {

// Without vectors the definition itself is as quick.
#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128

void MaskWeights(const MaskRow& row, const MaskTaps& taps, const RowSpan& columns, float* weights) {
  scalar::MaskWeights(row, taps, columns, weights);
}

#else

namespace hn = hwy::HWY_NAMESPACE;

using Floats = hn::CappedTag<float, kMaskColumns>;
using Ints = hn::RebindToSigned<Floats>;
using F = hn::Vec<Floats>;

void MaskWeights(const MaskRow& row, const MaskTaps& taps, const RowSpan& columns, float* weights) {
  const Floats d;
  const Ints whole;
  const auto lanes = static_cast<int>(hn::Lanes(d));
  const F down = hn::Set(d, row.down);
  const auto lane = hn::Iota(whole, 0);  // once: it goes by memory
  const auto begin = hn::Set(whole, row.held.begin), end = hn::Set(whole, row.held.end);
  for (int column = columns.begin; column < columns.end; column += lanes, weights += lanes) {
    if (column + lanes <= row.held.begin || column >= row.held.end) {
      hn::StoreU(hn::Zero(d), d, weights);
      continue;
    }
    const auto at = hn::Add(hn::Set(whole, column), lane);
    const auto held = hn::AndNot(hn::Lt(at, begin), hn::Lt(at, end));
    // A vector's columns lie between no more numbers than it has lanes.
    const int first = taps.numbers()[column];
    const auto number = hn::IndicesFromVec(
        d, hn::Sub(hn::LoadU(whole, taps.numbers() + column), hn::Set(whole, first)));
    const F right = hn::LoadU(d, taps.shares() + column);
    const auto along = [&](const float* numbers) HWY_ATTR {
      const F left = hn::TableLookupLanes(hn::LoadU(d, numbers + first), number);
      const F next = hn::TableLookupLanes(hn::LoadU(d, numbers + first + 1), number);
      return hn::Add(left, hn::Mul(right, hn::Sub(next, left)));
    };
    const F top = along(row.above);
    const F weight = hn::Add(top, hn::Mul(down, hn::Sub(along(row.below), top)));
    hn::StoreU(hn::IfThenElseZero(hn::RebindMask(d, held), weight), d, weights);
  }
}

#endif

}  // namespace HWY_NAMESPACE
}  // namespace lumora::cpu
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace lumora::cpu {

HWY_EXPORT(MaskWeights);

void MaskWeights(const MaskRow& row, const MaskTaps& taps, const RowSpan& columns, float* weights) {
  HWY_DYNAMIC_DISPATCH(MaskWeights)(row, taps, columns, weights);
}

}  // namespace lumora::cpu
#endif  // HWY_ONCE
