// SPDX-License-Identifier: Apache-2.0
#include "pipeline/backends/cpu/kernels/colour_rows.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

// Highway compiles the rest of this file once per instruction set.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pipeline/backends/cpu/kernels/colour_rows.cpp"
#include "hwy/foreach_target.h"  // must precede highway.h
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace lumora::cpu {
namespace HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128

void ConvertColours(const ColourRows& in, const ImageRows& rgb, const ImageRows& hsi) {
  scalar::ConvertColours(in, rgb, hsi);
}

#else

namespace hn = hwy::HWY_NAMESPACE;

using Bytes = hn::CappedTag<uint8_t, 64>;
using HalfBytes = hn::Half<Bytes>;
using Shorts = hn::Repartition<int16_t, Bytes>;
using HalfShorts = hn::Half<Shorts>;
using Floats = hn::Repartition<float, Bytes>;
using Ints = hn::RebindToSigned<Floats>;
using B = hn::Vec<Bytes>;
using S = hn::Vec<Shorts>;
using F = hn::Vec<Floats>;
using I = hn::Vec<Ints>;

constexpr size_t kPixels = hn::MaxLanes(Bytes());

HWY_INLINE F Number(float value) {
  return hn::Set(Floats(), value);
}

HWY_INLINE S Whole(int value) {
  return hn::Set(Shorts(), static_cast<int16_t>(value));
}

/// A vector of pixels in two halves.
struct Wide {
  S low, high;
};

/// A vector of numbers for single pixels in two halves.
struct Parts {
  F low, high;
};

HWY_INLINE Parts ToFloats(S values) {
  return {hn::ConvertTo(Floats(), hn::PromoteTo(Ints(), hn::LowerHalf(HalfShorts(), values))),
          hn::ConvertTo(Floats(), hn::PromoteTo(Ints(), hn::UpperHalf(HalfShorts(), values)))};
}

HWY_INLINE Wide ToShorts(B bytes) {
  return {hn::PromoteTo(Shorts(), hn::LowerHalf(HalfBytes(), bytes)),
          hn::PromoteTo(Shorts(), hn::UpperHalf(HalfBytes(), bytes))};
}

HWY_INLINE B ToBytes(const Wide& values) {
  return hn::Combine(Bytes(), hn::DemoteTo(HalfBytes(), values.high),
                     hn::DemoteTo(HalfBytes(), values.low));
}

/// The nearest whole number to a number that is not less than -`below`: sums so large have no
/// fractions, and the number in their lower bits. Quicker on x86 than a conversion, which needs a
/// check.
HWY_INLINE I Nearest(F value, int below) {
  constexpr float kLift = 8388608;
  const F sum = hn::Add(value, Number(kLift + static_cast<float>(below)));
  return hn::Sub(hn::BitCast(Ints(), sum),
                 hn::BitCast(Ints(), Number(kLift + static_cast<float>(below))));
}

/// Positive numbers rounded to the nearest; halves, which these are not quite, up.
HWY_INLINE S Rounded(F low, F high) {
  const auto part = [](F value) HWY_ATTR {
    return hn::DemoteTo(HalfShorts(), Nearest(hn::Add(value, Number(0.0005f)), 0));
  };
  return hn::Combine(Shorts(), part(high), part(low));
}

/// What chroma adds to luma, for the pixels of a vector.
struct ChromaShare {
  Wide red, green, blue;
};

/// Each number, which is above -512 and not halfway between two whole ones, for two pixels.
HWY_INLINE Wide ForPixels(const Parts& share) {
  const auto part = [](F value) HWY_ATTR {
    const I whole =
        hn::Sub(hn::ConvertTo(Ints(), hn::Add(value, Number(512.5f))), hn::Set(Ints(), 512));
    const I low = hn::And(whole, hn::Set(Ints(), 0xFFFF));
    return hn::BitCast(Shorts(), hn::Or(low, hn::ShiftLeft<16>(whole)));
  };
  return {part(share.low), part(share.high)};
}

HWY_INLINE ChromaShare ShareOf(S cr_samples, S cb_samples) {
  const Parts cr = ToFloats(cr_samples);
  const Parts cb = ToFloats(cb_samples);
  const auto red = [](F c)
                       HWY_ATTR { return hn::Sub(hn::Mul(c, Number(1.402f)), Number(178.755f)); };
  const auto green = [](F first, F second) HWY_ATTR {
    return hn::Sub(hn::Sub(Number(134.895f), hn::Mul(first, Number(0.714f))),
                   hn::Mul(second, Number(0.344f)));
  };
  const auto blue = [](F c)
                        HWY_ATTR { return hn::Sub(hn::Mul(c, Number(1.772f)), Number(225.93f)); };
  return {ForPixels({red(cr.low), red(cr.high)}),
          ForPixels({green(cr.low, cb.low), green(cr.high, cb.high)}),
          ForPixels({blue(cb.low), blue(cb.high)})};
}

/// Loads the samples of a vector's pixels, as many as half of these, and nothing else.
HWY_INLINE ChromaShare LoadShare(const uint8_t* cr, const uint8_t* cb, int step) {
  const Shorts d;
  if (step == 1) {
    const HalfBytes half;
    return ShareOf(hn::PromoteTo(d, hn::LoadU(half, cr)), hn::PromoteTo(d, hn::LoadU(half, cb)));
  }
  const hn::RebindToUnsigned<Shorts> pairs;
  const auto both = hn::BitCast(pairs, hn::LoadU(Bytes(), std::min(cr, cb)));
  const S first = hn::BitCast(d, hn::And(both, hn::Set(pairs, 0xFF)));
  const S second = hn::BitCast(d, hn::ShiftRight<8>(both));
  return cr < cb ? ShareOf(first, second) : ShareOf(second, first);
}

struct Colours {
  Wide red, green, blue;
};

HWY_INLINE Wide Sum(const Wide& luma, const Wide& share) {
  const auto part = [](S a, S b) HWY_ATTR {
    return hn::Min(hn::Max(hn::Add(a, b), hn::Zero(Shorts())), Whole(255));
  };
  return {part(luma.low, share.low), part(luma.high, share.high)};
}

struct Tones {
  S hue, saturation, intensity;
};

HWY_INLINE Tones TonesOf(S red, S green, S blue) {
  const Shorts d;
  const S largest = hn::Max(red, hn::Max(green, blue));
  const S range = hn::Sub(largest, hn::Min(red, hn::Min(green, blue)));
  const S two = hn::Add(range, range);
  const S four = hn::Add(two, two);
  S sixths = hn::Add(hn::Sub(red, green), four);
  sixths = hn::IfThenElse(hn::Eq(green, largest), hn::Add(hn::Sub(blue, red), two), sixths);
  sixths = hn::IfThenElse(hn::Eq(red, largest), hn::Sub(green, blue), sixths);
  sixths = hn::Add(sixths, hn::IfThenElseZero(hn::Lt(sixths, hn::Zero(d)), hn::Add(four, two)));

  const Parts sixths_parts = ToFloats(sixths);
  const Parts range_parts = ToFloats(range);
  const Parts largest_parts = ToFloats(largest);
  // One division for both quotients. What it loses is less than what lies between a quotient of
  // bytes and the nearest half, and Rounded() lifts halves over their border.
  const auto inverse = [](F a, F b) HWY_ATTR {
    return hn::Div(Number(1.f), hn::Max(hn::Mul(a, b), Number(1.f)));
  };
  const F low = inverse(range_parts.low, largest_parts.low);
  const F high = inverse(range_parts.high, largest_parts.high);
  const auto hue = [](F sixths_part, F over, F largest_part) HWY_ATTR {
    return hn::Mul(hn::Mul(sixths_part, Number(42.5f)), hn::Mul(over, largest_part));
  };
  const auto saturation = [](F range_part, F over) HWY_ATTR {
    return hn::Mul(hn::Mul(range_part, Number(255.f)), hn::Mul(over, range_part));
  };
  return {Rounded(hue(sixths_parts.low, low, largest_parts.low),
                  hue(sixths_parts.high, high, largest_parts.high)),
          Rounded(saturation(range_parts.low, low), saturation(range_parts.high, high)), largest};
}

HWY_INLINE void Store(B first, B second, B third, int channels, uint8_t* to) {
  const Bytes d;
  if (channels == 4) {
    hn::StoreInterleaved4(first, second, third, hn::Set(d, 255), d, to);
  } else {
    hn::StoreInterleaved3(first, second, third, d, to);
  }
}

/// Converts a vector of pixels of one row; images may be null.
HWY_INLINE void ConvertVector(const uint8_t* luma, const ChromaShare& share, uint8_t* rgb,
                              int rgb_channels, uint8_t* hsi, int hsi_channels) {
  const Wide y = ToShorts(hn::LoadU(Bytes(), luma));
  const Wide red = Sum(y, share.red);
  const Wide green = Sum(y, share.green);
  const Wide blue = Sum(y, share.blue);
  if (rgb != nullptr) Store(ToBytes(red), ToBytes(green), ToBytes(blue), rgb_channels, rgb);
  if (hsi == nullptr) return;
  const Tones low = TonesOf(red.low, green.low, blue.low);
  const Tones high = TonesOf(red.high, green.high, blue.high);
  Store(ToBytes({low.hue, high.hue}), ToBytes({low.saturation, high.saturation}),
        ToBytes({low.intensity, high.intensity}), hsi_channels, hsi);
}

HWY_INLINE uint8_t* At(const ImageRows& image, int row, int column) {
  uint8_t* const begin = image.rows[row];
  return begin == nullptr ? nullptr : begin + std::ptrdiff_t{column} * image.channels;
}

/// Converts the pixels from `column` on that do not fill a vector, by way of some that do.
HWY_INLINE void ConvertRest(const ColourRows& in, int column, const ImageRows& rgb,
                            const ImageRows& hsi) {
  const auto pixels = static_cast<size_t>(in.columns - column);
  const size_t samples = (pixels + 1) / 2;
  const auto step = static_cast<size_t>(in.chroma_step);
  const std::ptrdiff_t chroma = std::ptrdiff_t{column / 2} * in.chroma_step;
  HWY_ALIGN uint8_t luma[kPixels] = {};
  HWY_ALIGN uint8_t chroma_samples[2][kPixels] = {};
  const uint8_t* cr = chroma_samples[0];
  const uint8_t* cb = chroma_samples[1];
  if (step == 1) {
    std::memcpy(chroma_samples[0], in.cr + chroma, samples);
    std::memcpy(chroma_samples[1], in.cb + chroma, samples);
  } else {
    std::memcpy(chroma_samples[0], std::min(in.cr, in.cb) + chroma, 2 * samples);
    cr = chroma_samples[0] + (in.cr < in.cb ? 0 : 1);
    cb = chroma_samples[0] + (in.cr < in.cb ? 1 : 0);
  }
  const ChromaShare share = LoadShare(cr, cb, in.chroma_step);
  HWY_ALIGN uint8_t images[2][4 * kPixels];
  for (int row = 0; row < 2; ++row) {
    if (in.luma[row] == nullptr) continue;
    std::memcpy(luma, in.luma[row] + column, pixels);
    uint8_t* const to[2] = {At(rgb, row, column), At(hsi, row, column)};
    ConvertVector(luma, share, to[0] != nullptr ? images[0] : nullptr, rgb.channels,
                  to[1] != nullptr ? images[1] : nullptr, hsi.channels);
    if (to[0] != nullptr) std::memcpy(to[0], images[0], pixels * static_cast<size_t>(rgb.channels));
    if (to[1] != nullptr) std::memcpy(to[1], images[1], pixels * static_cast<size_t>(hsi.channels));
  }
}

void ConvertColours(const ColourRows& in, const ImageRows& rgb, const ImageRows& hsi) {
  constexpr int kStep = static_cast<int>(kPixels);
  int column = 0;
  for (; column + kStep <= in.columns; column += kStep) {
    const std::ptrdiff_t chroma = std::ptrdiff_t{column / 2} * in.chroma_step;
    const ChromaShare share = LoadShare(in.cr + chroma, in.cb + chroma, in.chroma_step);
    for (int row = 0; row < 2; ++row) {
      if (in.luma[row] == nullptr) continue;
      ConvertVector(in.luma[row] + column, share, At(rgb, row, column), rgb.channels,
                    At(hsi, row, column), hsi.channels);
    }
  }
  if (column < in.columns) ConvertRest(in, column, rgb, hsi);
}

#endif

}  // namespace HWY_NAMESPACE
}  // namespace lumora::cpu
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace lumora::cpu {

HWY_EXPORT(ConvertColours);

void ConvertColours(const ColourRows& in, const ImageRows& rgb, const ImageRows& hsi) {
  HWY_DYNAMIC_DISPATCH(ConvertColours)(in, rgb, hsi);
}

}  // namespace lumora::cpu
#endif  // HWY_ONCE
