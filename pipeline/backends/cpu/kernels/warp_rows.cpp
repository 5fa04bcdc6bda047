// SPDX-License-Identifier: Apache-2.0
#include "pipeline/backends/cpu/kernels/warp_rows.h"

#include <cstddef>
#include <cstring>

// Highway compiles the rest of this file once per instruction set.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pipeline/backends/cpu/kernels/warp_rows.cpp"
#include "hwy/foreach_target.h"  // must precede highway.h
#include "hwy/highway.h"

// Multiplications and additions are rounded one by one, as everywhere: fused ones would give other
// bytes where there are some.
HWY_BEFORE_NAMESPACE();
namespace lumora::cpu {
namespace HWY_NAMESPACE {

// Without vectors the definition itself is as quick.
#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128

void DrawWarp(const WarpShape& shape, const WarpSource& source, const WarpRows& rows) {
  scalar::DrawWarp(shape, source, rows);
}

#else

namespace hn = hwy::HWY_NAMESPACE;

using Floats = hn::CappedTag<float, 16>;
using Ints = hn::RebindToSigned<Floats>;
using Halves = hn::Repartition<uint16_t, Floats>;  // two to a lane
using Bytes = hn::Rebind<uint8_t, Floats>;
using F = hn::Vec<Floats>;
using I = hn::Vec<Ints>;

HWY_INLINE F Number(float value) {
  return hn::Set(Floats(), value);
}

HWY_INLINE I Whole(int value) {
  return hn::Set(Ints(), value);
}

/// Where pixels come from, relative to the source's first one, and whether any has moved.
struct Places {
  F x, y;
};

struct Moved {
  Places to;
  bool any;
};

/// What is the same for all pixels of a row.
struct RowOfPlaces {
  float y;
  float border;
};

HWY_INLINE Moved Move(const WarpShape& shape, F x, const RowOfPlaces& row, F column_borders) {
  const F one = Number(1.f);
  const F y = Number(row.y);
  const F distance = hn::Sqrt(hn::Add(hn::Mul(x, x), hn::Mul(y, y)));
  const F from_x = hn::Sub(x, Number(shape.limiter_x));
  const F from_y = hn::Sub(y, Number(shape.limiter_y));
  const F reached = hn::Mul(hn::Add(hn::Mul(from_x, from_x), hn::Mul(from_y, from_y)),
                            Number(shape.inverse_reach * shape.inverse_reach));
  const F hold = hn::Sqrt(hn::Min(hn::Max(reached, Number(1e-12f)), one));
  const F share = hn::Min(hn::Div(hn::Mul(distance, Number(shape.inverse_radius)), hold), one);
  const F border = hn::Min(column_borders, Number(row.border));
  const F weight = hn::Min(hn::Mul(share, hn::Sub(Number(2.f), border)), one);
  const F pull = hn::Mul(hn::Mul(Number(shape.strength), distance), hn::Sub(one, weight));
  return {{hn::Add(x, hn::Mul(x, pull)), hn::Add(y, hn::Mul(y, pull))},
          !hn::AllFalse(Floats(), hn::Lt(weight, one))};
}

/// Samples of an axis, and the weights of the next ones in 1/256.
struct Taps {
  I first;
  I weight;
};

HWY_INLINE Taps TapsAt(F position, int samples) {
  const F inside =
      hn::Min(hn::Max(position, hn::Zero(Floats())), Number(static_cast<float>(samples - 1)));
  const I first = hn::Min(hn::ConvertTo(Ints(), inside), Whole(samples - 2));
  const F rest = hn::Sub(inside, hn::ConvertTo(Floats(), first));
  return {first, hn::ConvertTo(Ints(), hn::Add(hn::Mul(rest, Number(256.f)), Number(0.5f)))};
}

HWY_INLINE Taps ChromaTapsAt(F position, int pixels, bool smooth) {
  if (smooth) {
    return TapsAt(hn::Sub(hn::Mul(position, Number(0.5f)), Number(0.25f)), pixels / 2);
  }
  const Taps pixel = TapsAt(position, pixels);
  const I odd = hn::And(pixel.first, Whole(1));
  return {hn::ShiftRight<1>(pixel.first), hn::And(pixel.weight, hn::Neg(odd))};
}

/// In each half of a lane: first * (256 - weight) + second * weight.
HWY_INLINE I MixHalves(I first, I second, I weight) {
  const Halves d;
  const auto weights = hn::BitCast(d, hn::Or(weight, hn::ShiftLeft<16>(weight)));
  const auto others = hn::Sub(hn::Set(d, 256), weights);
  return hn::BitCast(Ints(), hn::Add(hn::Mul(hn::BitCast(d, first), others),
                                     hn::Mul(hn::BitCast(d, second), weights)));
}

/// The mix of two rows' mixes, rounded to a sample.
HWY_INLINE I MixRows(I top, I bottom, I weight) {
  const I mixed = hn::Add(hn::ShiftLeft<8>(top), hn::Mul(hn::Sub(bottom, top), weight));
  return hn::ShiftRight<16>(hn::Add(mixed, Whole(1 << 15)));
}

HWY_INLINE I Gather(const uint8_t* bytes, I offsets) {
  return hn::GatherOffset(Ints(), reinterpret_cast<const int32_t*>(bytes), offsets);
}

HWY_INLINE I LumaAt(const WarpSource& source, const Places& at) {
  const Taps across = TapsAt(at.x, source.columns);
  const Taps down = TapsAt(at.y, source.rows);
  const I offset = hn::Add(hn::Mul(down.first, Whole(source.stride)), across.first);
  const I upper = Gather(source.luma, offset);
  const I lower = Gather(source.luma + source.stride, offset);
  // The upper row in the lower half of each lane, the lower one in the upper.
  const I byte = Whole(0xFF);
  const I first = hn::Or(hn::And(upper, byte), hn::ShiftLeft<16>(hn::And(lower, byte)));
  const I second = hn::Or(hn::And(hn::ShiftRight<8>(upper), byte),
                          hn::And(hn::ShiftLeft<8>(lower), Whole(0xFF0000)));
  const I mixed = MixHalves(first, second, across.weight);
  const I top = hn::And(mixed, Whole(0xFFFF));
  const I bottom =
      hn::BitCast(Ints(), hn::ShiftRight<16>(hn::BitCast(hn::RebindToUnsigned<Ints>(), mixed)));
  return MixRows(top, bottom, down.weight);
}

/// A pair of chroma samples in each lane: the first in its lower half.
HWY_INLINE I ChromaAt(const WarpSource& source, const Places& at, bool smooth) {
  const Taps across = ChromaTapsAt(at.x, source.columns, smooth);
  const Taps down = ChromaTapsAt(at.y, source.rows, smooth);
  const I offset =
      hn::Add(hn::Mul(down.first, Whole(source.stride)), hn::ShiftLeft<1>(across.first));
  const auto mix = [&](const uint8_t* row) HWY_ATTR {
    const I texels = Gather(row, offset);  // both samples of a pair, and of the next one
    const I byte = Whole(0xFF);
    const I first = hn::Or(hn::And(texels, byte), hn::ShiftLeft<8>(hn::And(texels, Whole(0xFF00))));
    const auto rest = hn::ShiftRight<16>(hn::BitCast(hn::RebindToUnsigned<Ints>(), texels));
    const I next = hn::BitCast(Ints(), rest);
    const I second = hn::Or(hn::And(next, byte), hn::ShiftLeft<8>(hn::And(next, Whole(0xFF00))));
    return MixHalves(first, second, across.weight);
  };
  const I top = mix(source.chroma);
  const I bottom = mix(source.chroma + source.stride);
  const auto lower_half = [](I both) HWY_ATTR { return hn::And(both, Whole(0xFFFF)); };
  const auto upper_half = [](I both) HWY_ATTR {
    return hn::BitCast(Ints(), hn::ShiftRight<16>(hn::BitCast(hn::RebindToUnsigned<Ints>(), both)));
  };
  const I cr = MixRows(lower_half(top), lower_half(bottom), down.weight);
  const I cb = MixRows(upper_half(top), upper_half(bottom), down.weight);
  return hn::Or(cr, hn::ShiftLeft<16>(cb));
}

HWY_INLINE void StoreBytes(I samples, uint8_t* to) {
  hn::StoreU(hn::DemoteTo(Bytes(), samples), Bytes(), to);
}

/// Two vectors of pixels in each of both rows.
struct Group {
  Moved parts[2][2];  // by row and half

  bool any() const {
    return parts[0][0].any || parts[0][1].any || parts[1][0].any || parts[1][1].any;
  }
};

/// The places of the pixels that chroma samples are taken from.
HWY_INLINE Places ChromaPlaces(const Moved (&row)[2], F lane, float first_x) {
  const Floats d;
  const F middle = hn::Add(hn::Add(lane, lane), Number(first_x + 0.5f));
  const auto right = hn::Ge(middle, hn::Zero(d));
  const auto choose = [&](F low, F high) HWY_ATTR {
    return hn::IfThenElse(right, hn::ConcatEven(d, high, low), hn::ConcatOdd(d, high, low));
  };
  return {choose(row[0].to.x, row[1].to.x), choose(row[0].to.y, row[1].to.y)};
}

HWY_INLINE void DrawGroup(const WarpShape& shape, const WarpSource& source, const WarpRows& rows,
                          F lane, int column) {
  const Floats d;
  const auto lanes = static_cast<int>(hn::Lanes(d));
  const float first_x = rows.x + static_cast<float>(column);
  Group group;
  for (int row = 0; row < 2; ++row) {
    const RowOfPlaces places = {rows.y + static_cast<float>(row), rows.row_borders[row]};
    for (int half = 0; half < 2; ++half) {
      const int at = half * lanes;
      const F x = hn::Add(Number(first_x + static_cast<float>(at)), lane);
      Moved& moved = group.parts[row][half];
      moved = Move(shape, x, places, hn::LoadU(d, rows.column_borders + column + at));
      moved.to.x = hn::Sub(moved.to.x, Number(source.x));
      moved.to.y = hn::Sub(moved.to.y, Number(source.y));
    }
  }
  if (!shape.smooth_chroma && !group.any()) {
    const auto from_x = static_cast<std::ptrdiff_t>(first_x - source.x);
    const auto from_y = static_cast<std::ptrdiff_t>(rows.y - source.y);
    const auto bytes = static_cast<size_t>(2 * lanes);
    const uint8_t* const luma = source.luma + from_y * source.stride + from_x;
    std::memcpy(rows.luma[0] + column, luma, bytes);
    std::memcpy(rows.luma[1] + column, luma + source.stride, bytes);
    std::memcpy(rows.chroma + column, source.chroma + from_y / 2 * source.stride + from_x, bytes);
    return;
  }
  for (int row = 0; row < 2; ++row) {
    for (int half = 0; half < 2; ++half) {
      StoreBytes(LumaAt(source, group.parts[row][half].to), rows.luma[row] + column + half * lanes);
    }
  }
  const int row = rows.y + 0.5f >= 0 ? 0 : 1;
  const I pairs =
      ChromaAt(source, ChromaPlaces(group.parts[row], lane, first_x), shape.smooth_chroma);
  const hn::Rebind<uint8_t, Halves> pair_bytes;
  hn::StoreU(hn::DemoteTo(pair_bytes, hn::BitCast(hn::RebindToSigned<Halves>(), pairs)), pair_bytes,
             rows.chroma + column);
}

void DrawWarp(const WarpShape& shape, const WarpSource& source, const WarpRows& rows) {
  const int step = 2 * static_cast<int>(hn::Lanes(Floats()));
  const F lane = hn::Iota(Floats(), 0.f);  // once: it goes by memory
  for (int column = 0; column < rows.columns; column += step) {
    DrawGroup(shape, source, rows, lane, column);
  }
}

#endif

}  // namespace HWY_NAMESPACE
}  // namespace lumora::cpu
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace lumora::cpu {

HWY_EXPORT(DrawWarp);

void DrawWarp(const WarpShape& shape, const WarpSource& source, const WarpRows& rows) {
  HWY_DYNAMIC_DISPATCH(DrawWarp)(shape, source, rows);
}

}  // namespace lumora::cpu
#endif  // HWY_ONCE
