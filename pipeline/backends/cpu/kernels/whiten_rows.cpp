// SPDX-License-Identifier: Apache-2.0
#include "pipeline/backends/cpu/kernels/whiten_rows.h"

// Highway compiles the rest of this file once per instruction set.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pipeline/backends/cpu/kernels/whiten_rows.cpp"
#include "hwy/foreach_target.h"  // must precede highway.h
#include "hwy/highway.h"

// Multiplications and additions are rounded one by one, as everywhere: fused ones would give other
// bytes where there are some.
HWY_BEFORE_NAMESPACE();
namespace lumora::cpu {
namespace HWY_NAMESPACE {

// Without vectors the definition itself is as quick.
#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128

void DrawWhitening(const WhitenTone& tone, const WhitenRows& rows) {
  scalar::DrawWhitening(tone, rows);
}

#else

namespace hn = hwy::HWY_NAMESPACE;

using Floats = hn::CappedTag<float, kWhitenColumns>;
using Ints = hn::RebindToSigned<Floats>;
using Bytes = hn::Rebind<uint8_t, Floats>;
using F = hn::Vec<Floats>;

HWY_INLINE F Number(float value) {
  return hn::Set(Floats(), value);
}

HWY_INLINE F LoadBytes(const uint8_t* from) {
  return hn::ConvertTo(Floats(), hn::PromoteTo(Ints(), hn::LoadU(Bytes(), from)));
}

HWY_INLINE F Clamp(F value, float most) {
  return hn::Min(hn::Max(value, hn::Zero(Floats())), Number(most));
}

/// Halves go up; values are not negative.
HWY_INLINE F Rounded(F value) {
  return hn::Trunc(hn::Add(value, Number(0.5f)));
}

struct Rgb {
  F r, g, b;
};

struct Hsi {
  F h, s, i;
};

struct Yuv {
  F y, cr, cb;
};

template <bool kRound>
HWY_INLINE Rgb RgbOf(F y, F cr, F cb) {
  const auto channel = [](F value)
                           HWY_ATTR { return kRound ? Rounded(Clamp(value, 255.f)) : value; };
  return {channel(hn::Add(hn::Sub(y, Number(0.701f * 255)), hn::Mul(cr, Number(1.402f)))),
          channel(hn::Sub(hn::Sub(hn::Add(y, Number(0.529f * 255)), hn::Mul(cb, Number(0.344f))),
                          hn::Mul(cr, Number(0.714f)))),
          channel(hn::Add(hn::Sub(y, Number(0.886f * 255)), hn::Mul(cb, Number(1.772f))))};
}

HWY_INLINE Hsi HsiOf(const Rgb& rgb) {
  const F least = Number(1e-6f);
  const F most = hn::Max(rgb.r, hn::Max(rgb.g, rgb.b));
  const F delta = hn::Sub(most, hn::Min(rgb.r, hn::Min(rgb.g, rgb.b)));
  const F scale = hn::Div(Number(1.f), hn::Max(delta, least));
  const auto red = hn::Eq(rgb.r, most);
  const auto green = hn::Eq(rgb.g, most);
  const F minuend = hn::IfThenElse(red, rgb.g, hn::IfThenElse(green, rgb.b, rgb.r));
  const F subtrahend = hn::IfThenElse(red, rgb.b, hn::IfThenElse(green, rgb.r, rgb.g));
  const F sector =
      hn::IfThenElse(red, hn::Zero(Floats()), hn::IfThenElse(green, Number(2.f), Number(4.f)));
  F h = hn::Add(hn::Mul(hn::Sub(minuend, subtrahend), scale), sector);
  h = hn::Add(h, hn::IfThenElseZero(hn::Lt(h, hn::Zero(Floats())), Number(6.f)));
  const F s = hn::Min(hn::Div(delta, hn::Max(most, least)), Number(1.f));
  return {hn::Mul(Rounded(hn::Mul(h, Number(255.f / 6))), Number(6.f / 255)),
          hn::Mul(Rounded(hn::Mul(s, Number(255.f))), Number(1.f / 255)),
          hn::Mul(Rounded(hn::Min(most, Number(255.f))), Number(1.f / 255))};
}

HWY_INLINE Hsi Lift(const Hsi& from, F position, const WhitenTone& tone) {
  const F one = Number(1.f);
  const F keep = hn::Min(position, one);
  const F gained = hn::Mul(Number(tone.gain), from.i);
  const F lifted = hn::Div(gained, hn::Add(hn::Sub(one, from.i), gained));
  const F i = hn::Add(lifted, hn::Mul(hn::Sub(from.i, lifted), keep));
  const F s = hn::Min(hn::Add(from.s, hn::Mul(Number(tone.saturation), hn::Sub(one, keep))), one);
  return {from.h, hn::Mul(Rounded(hn::Mul(s, Number(255.f))), Number(1.f / 255)),
          hn::Mul(Rounded(hn::Mul(i, Number(255.f))), Number(1.f / 255))};
}

HWY_INLINE Yuv YuvOf(const Hsi& hsi) {
  const F one = Number(1.f), two = Number(2.f);
  const F intensity = hn::Mul(hsi.i, Number(255.f));
  const auto channel = [&](F pure) HWY_ATTR {
    const F share = hn::Add(hn::Mul(hn::Sub(Clamp(pure, 1.f), one), hsi.s), one);
    return hn::Mul(share, intensity);
  };
  const auto from = [&](float sector) HWY_ATTR { return hn::Abs(hn::Sub(hsi.h, Number(sector))); };
  const F r = channel(hn::Sub(from(3.f), one));
  const F g = channel(hn::Sub(two, from(2.f)));
  const F b = channel(hn::Sub(two, from(4.f)));
  const auto times = [](F value, float factor) HWY_ATTR { return hn::Mul(value, Number(factor)); };
  const F grey = Number(127.5f);
  return {Rounded(hn::Add(times(r, 0.299f), hn::Add(times(g, 0.587f), times(b, 0.114f)))),
          Rounded(hn::Sub(hn::Add(grey, times(r, 0.5f)),
                          hn::Add(times(g, 0.4186829f), times(b, 0.0813089f)))),
          Rounded(hn::Sub(hn::Add(grey, times(b, 0.5f)),
                          hn::Add(times(g, 0.33126147f), times(r, 0.168727f))))};
}

HWY_INLINE F ShareOf(F luma, const WhitenTone& tone) {
  const F t = Clamp(hn::Mul(hn::Sub(luma, Number(tone.darkest)), Number(tone.luma_scale)), 1.f);
  return hn::Mul(hn::Mul(t, t), hn::Sub(Number(3.f), hn::Mul(Number(2.f), t)));
}

HWY_INLINE void StoreMixed(F from, F to, F weight, uint8_t* at) {
  const F mixed = hn::Add(from, hn::Mul(weight, hn::Sub(to, from)));
  const auto whole = hn::ConvertTo(Ints(), hn::Add(mixed, Number(0.5f)));
  hn::StoreU(hn::DemoteTo(Bytes(), whole), Bytes(), at);
}

/// The sum of each pair of lanes, in both of them.
HWY_INLINE F PairSums(F values) {
  return hn::Add(hn::DupEven(values), hn::DupOdd(values));
}

template <bool kRoundRgb>
HWY_INLINE void WhitenGroup(const WhitenTone& tone, const WhitenRows& rows, F lane, int column) {
  const Floats d;
  const F masks[2] = {hn::LoadU(d, rows.weights[0] + column),
                      hn::LoadU(d, rows.weights[1] + column)};
  if (hn::AllFalse(d, hn::Gt(hn::Max(masks[0], masks[1]), hn::Zero(d)))) return;
  const F chroma = LoadBytes(rows.chroma + column);
  const F cr = hn::DupEven(chroma), cb = hn::DupOdd(chroma);
  const F x = hn::Add(Number(rows.x + static_cast<float>(column)), lane);
  const F along = hn::Mul(x, Number(tone.along_x)), across = hn::Mul(x, Number(tone.across_x));
  F cr_sums = hn::Zero(d), cb_sums = hn::Zero(d), weights = hn::Zero(d);
  for (int row = 0; row < 2; ++row) {
    const float y = rows.y + static_cast<float>(row);
    const F first = hn::Add(along, Number(y * tone.along_y));
    const F second = hn::Add(across, Number(y * tone.across_y));
    const F position = hn::Sqrt(hn::Add(hn::Mul(first, first), hn::Mul(second, second)));
    const F luma = LoadBytes(rows.luma[row] + column);
    const Yuv to = YuvOf(Lift(HsiOf(RgbOf<kRoundRgb>(luma, cr, cb)), position, tone));
    const F weight = hn::Mul(masks[row], ShareOf(luma, tone));
    StoreMixed(luma, to.y, weight, rows.luma[row] + column);
    cr_sums = hn::Add(cr_sums, to.cr);
    cb_sums = hn::Add(cb_sums, to.cb);
    weights = hn::Add(weights, weight);
  }
  const F quarter = Number(0.25f);
  const F to = hn::OddEven(PairSums(cb_sums), PairSums(cr_sums));
  StoreMixed(chroma, hn::Mul(to, quarter), hn::Mul(PairSums(weights), quarter),
             rows.chroma + column);
}

void DrawWhitening(const WhitenTone& tone, const WhitenRows& rows) {
  const int step = static_cast<int>(hn::Lanes(Floats()));
  const F lane = hn::Iota(Floats(), 0.f);  // once: it goes by memory
  for (int column = 0; column < rows.columns; column += step) {
    if (tone.round_rgb) {
      WhitenGroup<true>(tone, rows, lane, column);
    } else {
      WhitenGroup<false>(tone, rows, lane, column);
    }
  }
}

#endif

}  // namespace HWY_NAMESPACE
}  // namespace lumora::cpu
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace lumora::cpu {

HWY_EXPORT(DrawWhitening);

void DrawWhitening(const WhitenTone& tone, const WhitenRows& rows) {
  HWY_DYNAMIC_DISPATCH(DrawWhitening)(tone, rows);
}

}  // namespace lumora::cpu
#endif  // HWY_ONCE
