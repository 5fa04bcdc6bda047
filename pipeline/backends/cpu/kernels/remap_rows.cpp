// SPDX-License-Identifier: Apache-2.0
#include "pipeline/backends/cpu/kernels/remap_rows.h"

#include <algorithm>
#include <cstring>

// Highway compiles the rest of this file once per instruction set.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pipeline/backends/cpu/kernels/remap_rows.cpp"
#include "hwy/foreach_target.h"  // must precede highway.h
#include "hwy/highway.h"
#include "pipeline/backends/cpu/kernels/remap_taps_inl.h"  // its own once per instruction set

// Neighbours in a row come from neighbours elsewhere: a few rows of 16 bytes hold all that 8 of
// them need, and a shuffle of bytes finds it there. That is several times as quick as gathering.
// Where a map takes pixels from too far apart the plain form does the same.
HWY_BEFORE_NAMESPACE();
namespace lumora::cpu {
namespace HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128

void RemapRow(const Remap& remap, const RemapSource& source, int row, int begin, int end,
              uint8_t* out) {
  scalar::RemapRow(remap, source, row, begin, end, out);
}

#else

/// The windows of all groups of 8 lanes in a row of the source.
template <class D>
HWY_INLINE hn::Vec<D> LoadWindows(D d, const uint8_t* row, const uint16_t* HWY_RESTRICT starts) {
  if constexpr (hn::MaxLanes(d) == kWindowBytes) {
    return hn::LoadU(d, row + starts[0]);
  } else {
    const hn::Half<D> half;
    const auto high = LoadWindows(half, row, starts + hn::MaxLanes(half) / 2);
    return hn::Combine(d, high, LoadWindows(half, row, starts));
  }
}

/// Pairs of neighbours in each lane: those of the upper row, and of the lower one.
struct Neighbours {
  H upper, lower;
};

/// Finds the neighbours whose bytes lie at `first` and `second` of rows `upper` and `lower`. False
/// where they lie too far apart. `near` is in the window of each lane.
HWY_INLINE bool Find(const RemapSource& source, H near, H first, H second, H upper, H lower,
                     Neighbours* found) {
  const Halves d;
  H start = hn::Min(hn::Broadcast<0>(near), hn::Broadcast<7>(near));
  start = hn::Min(start, Half(source.row_bytes - static_cast<int>(kWindowBytes)));
  HWY_ALIGN uint16_t starts[kHalves], tops[kHalves], bottoms[kHalves];
  hn::Store(start, d, starts);
  hn::Store(upper, d, tops);
  hn::Store(lower, d, bottoms);
  const int top = std::min(tops[0], tops[kHalves - 1]);
  const int bottom = std::max(bottoms[0], bottoms[kHalves - 1]);
  if (bottom - top >= kMostRows) return false;

  first = hn::Sub(first, start);
  second = hn::Sub(second, start);
  upper = hn::Sub(upper, Half(top));
  lower = hn::Sub(lower, Half(top));
  const H column = hn::Max(first, second);
  const H row = hn::Max(upper, lower);
  const auto near_enough = hn::And(hn::Eq(hn::Min(column, Half(kWindowBytes - 1)), column),
                                   hn::Eq(hn::Min(row, Half(bottom - top)), row));
  if (!hn::AllTrue(d, near_enough)) return false;

  const auto places = hn::BitCast(Bytes(), hn::Or(first, hn::ShiftLeft<8>(second)));
  const uint8_t* at = source.samples + top * source.stride;
  found->upper = found->lower = hn::Zero(d);
  for (int i = 0; i <= bottom - top; ++i, at += source.stride) {
    const H pairs = hn::BitCast(d, hn::TableLookupBytes(LoadWindows(Bytes(), at, starts), places));
    found->upper = hn::IfThenElse(hn::Eq(upper, Half(i)), pairs, found->upper);
    found->lower = hn::IfThenElse(hn::Eq(lower, Half(i)), pairs, found->lower);
  }
  return true;
}

/// The mix of neighbours in a row, in 15 bits.
HWY_INLINE hn::Vec<Shorts> MixAcross(H pairs, H weight) {
  const H first = hn::And(pairs, Half(0xFF));
  const H second = hn::ShiftRight<8>(pairs);
  const H mixed = hn::Add(hn::ShiftLeft<8>(first), hn::Mul(hn::Sub(second, first), weight));
  return hn::BitCast(Shorts(), hn::ShiftRight<1>(mixed));
}

/// What a kind of plane makes of positions, which step by a pixel or by two.
template <RemapSource::Kind kKind>
struct Layout {
  static constexpr bool kPairs = kKind == RemapSource::Kind::Pairs;
  static constexpr bool kLuma = kKind == RemapSource::Kind::Luma;
  /// Samples, or pairs of them, in a vector.
  static constexpr int kStep = static_cast<int>(kPairs ? kHalves / 2 : kHalves);
  static constexpr int kUnit = kPairs ? 2 : 1;
};

/// Centres of the pixels that samples are drawn for, from `sample` on.
template <class L>
HWY_INLINE F CentresFrom(F width, int sample) {
  const F lane = hn::Iota(Floats(), static_cast<float>(sample));
  if constexpr (L::kLuma) {
    return hn::Add(lane, Number(0.5f));
  } else {
    const F first = hn::Add(lane, lane);
    const auto before = hn::Lt(hn::Add(hn::Add(first, first), Number(2.f)), width);
    return hn::Add(first, hn::IfThenElse(before, Number(1.5f), Number(0.5f)));
  }
}

/// What a row is drawn with.
template <class RowPlaces>
struct RowTools {
  RowPlaces places;
  Axis columns, rows;
  F width;
};

struct BothTaps {
  Taps across, down;
};

template <class L, class RowPlaces>
HWY_INLINE BothTaps TapsFrom(const RowTools<RowPlaces>& tools, int sample) {
  const Places low = tools.places.At(CentresFrom<L>(tools.width, sample));
  if constexpr (L::kPairs) {
    return {tools.columns.TapsOfPairs(low.x), tools.rows.TapsOfPairs(low.y)};
  } else {
    const auto lanes = static_cast<int>(hn::Lanes(Floats()));
    const Places high = tools.places.At(CentresFrom<L>(tools.width, sample + lanes));
    return {tools.columns.TapsOfEach(low.x, high.x), tools.rows.TapsOfEach(low.y, high.y)};
  }
}

/// Draws a vector; false where its pixels come from too far apart.
template <class L, class RowPlaces>
HWY_INLINE bool DrawVector(const RowTools<RowPlaces>& tools, const RemapSource& source, int sample,
                           uint8_t* HWY_RESTRICT out) {
  const Halves d;
  const Shorts ds;
  const BothTaps taps = TapsFrom<L>(tools, sample);
  Neighbours found;
  if constexpr (L::kLuma) {
    if (!Find(source, taps.across.first, taps.across.first, taps.across.second, taps.down.first,
              taps.down.second, &found)) {
      return false;
    }
  } else {
    H first = hn::ShiftRight<1>(taps.across.first);
    H second = hn::ShiftRight<1>(taps.across.second);
    H near = first;
    if constexpr (L::kPairs) {
      const H odd = hn::And(hn::Iota(d, uint16_t{0}), Half(1));
      const H channel = source.swapped ? hn::Xor(odd, Half(1)) : odd;
      near = hn::Add(first, first);
      first = hn::Add(near, channel);
      second = hn::Add(hn::Add(second, second), channel);
    }
    if (!Find(source, near, first, second, hn::ShiftRight<1>(taps.down.first),
              hn::ShiftRight<1>(taps.down.second), &found)) {
      return false;
    }
  }
  const auto top = MixAcross(found.upper, taps.across.weight);
  const auto bottom = MixAcross(found.lower, taps.across.weight);
  const auto weight = hn::BitCast(ds, hn::ShiftLeft<7>(taps.down.weight));
  const auto mixed = hn::Add(top, hn::MulFixedPoint15(hn::Sub(bottom, top), weight));
  const auto samples = hn::ShiftRight<7>(hn::Add(mixed, hn::Set(ds, 64)));
  const hn::Rebind<uint8_t, Shorts> bytes;
  hn::StoreU(hn::DemoteTo(bytes, samples), bytes, out);
  return true;
}

template <class L, class RowPlaces>
HWY_INLINE void Draw(const Remap& remap, const RemapSource& given, const RowPlaces& places, int row,
                     int begin, int end, uint8_t* out) {
  const RowTools<RowPlaces> tools = {places, Axis(remap.columns), Axis(remap.rows),
                                     Number(static_cast<float>(remap.width))};
  const RemapSource source = given;
  for (int i = begin; i < end; i += L::kStep, out += kHalves) {
    const int count = std::min(end - i, L::kStep);
    if (count == L::kStep) {
      if (DrawVector<L>(tools, source, i, out)) continue;
    } else {
      HWY_ALIGN uint8_t rest[kHalves];
      if (DrawVector<L>(tools, source, i, rest)) {
        std::memcpy(out, rest, static_cast<size_t>(count * L::kUnit));
        continue;
      }
    }
    scalar::RemapRow(remap, given, row, i, i + count, out);
  }
}

template <RemapSource::Kind kKind>
HWY_INLINE void DrawKind(const Remap& remap, const RemapSource& source, int row, int begin, int end,
                         uint8_t* out) {
  using L = Layout<kKind>;
  const float y = RowCentre(remap, kKind, row);
  if (remap.kind == Remap::Kind::Quad) {
    Draw<L>(remap, source, QuadPlaces(RowOf(remap.quad, y)), row, begin, end, out);
  } else {
    Draw<L>(remap, source, LensPlaces(RowOf(remap.lens, y)), row, begin, end, out);
  }
}

void RemapRow(const Remap& remap, const RemapSource& source, int row, int begin, int end,
              uint8_t* out) {
  switch (source.kind) {
    case RemapSource::Kind::Luma:
      return DrawKind<RemapSource::Kind::Luma>(remap, source, row, begin, end, out);
    case RemapSource::Kind::Chroma:
      return DrawKind<RemapSource::Kind::Chroma>(remap, source, row, begin, end, out);
    case RemapSource::Kind::Pairs:
      return DrawKind<RemapSource::Kind::Pairs>(remap, source, row, begin, end, out);
  }
}

#endif

}  // namespace HWY_NAMESPACE
}  // namespace lumora::cpu
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace lumora::cpu {

HWY_EXPORT(RemapRow);

void RemapRow(const Remap& remap, const RemapSource& source, int row, int begin, int end,
              uint8_t* out) {
  HWY_DYNAMIC_DISPATCH(RemapRow)(remap, source, row, begin, end, out);
}

}  // namespace lumora::cpu
#endif  // HWY_ONCE
