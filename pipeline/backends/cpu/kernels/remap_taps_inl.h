// SPDX-License-Identifier: Apache-2.0
// Where rows of remapped frames take their samples from: places, and taps of the axes. Part of
// remap_rows.cpp, once for every instruction set.
#if defined(LUMORA_PIPELINE_BACKENDS_CPU_KERNELS_REMAP_TAPS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef LUMORA_PIPELINE_BACKENDS_CPU_KERNELS_REMAP_TAPS_INL_H_
#undef LUMORA_PIPELINE_BACKENDS_CPU_KERNELS_REMAP_TAPS_INL_H_
#else
#define LUMORA_PIPELINE_BACKENDS_CPU_KERNELS_REMAP_TAPS_INL_H_
#endif

#include "hwy/highway.h"
#include "pipeline/backends/cpu/kernels/remap_row_maps.h"
#include "pipeline/backends/cpu/kernels/remap_rows.h"

HWY_BEFORE_NAMESPACE();
namespace lumora::cpu {
namespace HWY_NAMESPACE {

#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128

namespace hn = hwy::HWY_NAMESPACE;

using Floats = hn::CappedTag<float, 16>;
using Ints = hn::RebindToSigned<Floats>;
using Words = hn::RebindToUnsigned<Floats>;
using Halves = hn::Repartition<uint16_t, Floats>;
using Shorts = hn::RebindToSigned<Halves>;
using Bytes = hn::Repartition<uint8_t, Floats>;
using F = hn::Vec<Floats>;
using W = hn::Vec<Words>;
using H = hn::Vec<Halves>;

constexpr size_t kHalves = hn::MaxLanes(Halves());
constexpr size_t kWindowBytes = 16;
/// Beyond so many rows the plain form is as quick.
constexpr int kMostRows = 24;

HWY_INLINE F Number(float value) {
  return hn::Set(Floats(), value);
}

HWY_INLINE H Half(int value) {
  return hn::Set(Halves(), static_cast<uint16_t>(value));
}

struct Places {
  F x, y;
};

// What a row has in common, in vectors: what is stored in between may be anything, so the compiler
// would load and spread the numbers for every vector anew.

struct QuadPlaces {
  explicit QuadPlaces(const QuadRow& row)
      : x(Number(row.x)),
        step_x(Number(row.step_x)),
        y(Number(row.y)),
        step_y(Number(row.step_y)) {}

  HWY_INLINE Places At(F column) const {
    return {hn::Add(x, hn::Mul(step_x, column)), hn::Add(y, hn::Mul(step_y, column))};
  }

  F x, step_x, y, step_y;
};

struct LensPlaces {
  explicit LensPlaces(const LensRow& row)
      : centre_x(Number(row.map.centre_x)),
        share_x(Number(row.map.share_x)),
        dy(Number(row.dy)),
        share(Number(row.share)),
        middle_x(Number(row.map.middle_x)),
        middle_y(Number(row.map.middle_y)),
        k0(Number(row.map.k[0])),
        k1(Number(row.map.k[1])),
        k2(Number(row.map.k[2])),
        k3(Number(row.map.k[3])) {}

  HWY_INLINE Places At(F column) const {
    const F dx = hn::Sub(column, centre_x);
    const F s = hn::Add(hn::Mul(hn::Mul(dx, dx), share_x), share);
    F factor = hn::Add(k2, hn::Mul(k3, s));
    factor = hn::Add(k1, hn::Mul(factor, s));
    factor = hn::Add(k0, hn::Mul(factor, s));
    return {hn::Add(middle_x, hn::Mul(dx, factor)), hn::Add(middle_y, hn::Mul(dy, factor))};
  }

  F centre_x, share_x, dy, share, middle_x, middle_y, k0, k1, k2, k3;
};

/// Two neighbours, and the weight of the second in 1/256.
struct Taps {
  H first, second;
  H weight;
};

struct Axis {
  explicit Axis(const RemapAxis& axis)
      : length(Number(axis.length)),
        period(Number(2 * axis.length)),
        inverse_period(Number(1 / (2 * axis.length))),
        before(Half(axis.first + 1)),
        first(Half(axis.first)),
        last(Half(axis.last)) {}

  /// Positions in 1/256, seen from the centre of the pixel before the longer line: in the upper
  /// half of each lane the pixel behind the position, in the other the weight, times 256.
  HWY_INLINE W StepsAt(F position) const {
    const Floats d;
    const F zero = hn::Zero(d);
    F inside = position;
    // Within the line nothing is mirrored.
    if (!hn::AllTrue(d, hn::And(hn::Ge(position, zero), hn::Le(position, length)))) {
      const F turns = hn::Floor(hn::Mul(position, inverse_period));
      F rest = hn::Sub(position, hn::Mul(turns, period));
      rest = hn::Min(hn::Max(rest, zero), period);
      const F mirrored = hn::Min(rest, hn::Sub(period, rest));
      const auto within = hn::And(hn::Ge(position, zero), hn::Le(position, length));
      inside = hn::IfThenElse(within, position, mirrored);
    }
    // The sum has no room for fractions, and the number in its lower bits.
    const F steps = hn::Add(hn::Mul(inside, Number(256.f)), Number(kNoFractions));
    const W words = hn::ShiftLeft<8>(hn::BitCast(Words(), steps));
    return hn::Add(words, hn::Set(Words(), 128 * 256));
  }

  /// The taps of a lane of 16 bits each.
  HWY_INLINE Taps TapsOfEach(F low, F high) const {
    const Halves d;
    const H low_halves = hn::BitCast(d, StepsAt(low));
    const H high_halves = hn::BitCast(d, StepsAt(high));
    return TapsOf(hn::ConcatOdd(d, high_halves, low_halves),
                  hn::ConcatEven(d, high_halves, low_halves));
  }

  /// The taps of two lanes together.
  HWY_INLINE Taps TapsOfPairs(F position) const {
    const Halves d;
    const W steps = StepsAt(position);
    const W low = hn::And(steps, hn::Set(Words(), 0xFFFF));
    const W high = hn::ShiftRight<16>(steps);
    return TapsOf(hn::BitCast(d, hn::Or(high, hn::ShiftLeft<16>(high))),
                  hn::BitCast(d, hn::Or(low, hn::ShiftLeft<16>(low))));
  }

  HWY_INLINE Taps TapsOf(H next, H weight) const {
    return {hn::Min(hn::SaturatedSub(next, before), last),
            hn::Min(hn::SaturatedSub(next, first), last), hn::ShiftRight<8>(weight)};
  }

  F length, period, inverse_period;
  H before, first, last;
};

#endif

}  // namespace HWY_NAMESPACE
}  // namespace lumora::cpu
HWY_AFTER_NAMESPACE();

#endif  // once per instruction set
