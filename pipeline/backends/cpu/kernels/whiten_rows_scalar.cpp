// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <cmath>

#include "pipeline/backends/cpu/kernels/round_half_up.h"
#include "pipeline/backends/cpu/kernels/whiten_rows.h"

namespace lumora::cpu::scalar {
namespace {

// Quotients of nothing are nothing: no number is divided by less.
constexpr float kLeast = 1e-6f;

float Clamp(float value, float most) {
  return std::min(std::max(value, 0.f), most);
}

float Rounded(float value) {
  return static_cast<float>(RoundHalfUp(value));
}

struct Rgb {
  float r, g, b;  // 0..255, or beyond where they are not held in an image
};

/// Hue in sixths of a turn, saturation and intensity 0..1.
struct Hsi {
  float h, s, i;
};

Rgb RgbOf(float y, float cr, float cb, bool round) {
  const auto channel = [round](float value) {
    return round ? Rounded(Clamp(value, 255.f)) : value;
  };
  return {channel((y - 0.701f * 255) + cr * 1.402f),
          channel(((y + 0.529f * 255) - cb * 0.344f) - cr * 0.714f),
          channel((y - 0.886f * 255) + cb * 1.772f)};
}

Hsi HsiOf(const Rgb& rgb) {
  const float most = std::max(rgb.r, std::max(rgb.g, rgb.b));
  const float delta = most - std::min(rgb.r, std::min(rgb.g, rgb.b));
  const float scale = 1 / std::max(delta, kLeast);
  float h = 0;
  if (rgb.r == most) {
    h = (rgb.g - rgb.b) * scale;
  } else if (rgb.g == most) {
    h = (rgb.b - rgb.r) * scale + 2.f;
  } else {
    h = (rgb.r - rgb.g) * scale + 4.f;
  }
  if (h < 0) h = h + 6.f;
  const float s = delta / std::max(most, kLeast);
  return {Rounded(h * (255.f / 6)) * (6.f / 255), Rounded(std::min(s, 1.f) * 255.f) * (1.f / 255),
          Rounded(std::min(most, 255.f)) * (1.f / 255)};
}

Hsi Lift(const Hsi& from, float position, const WhitenTone& tone) {
  const float keep = std::min(position, 1.f);
  const float gained = tone.gain * from.i;
  const float lifted = gained / ((1.f - from.i) + gained);
  const float i = lifted + (from.i - lifted) * keep;
  const float s = std::min(from.s + tone.saturation * (1.f - keep), 1.f);
  return {from.h, Rounded(s * 255.f) * (1.f / 255), Rounded(i * 255.f) * (1.f / 255)};
}

struct Yuv {
  float y, cr, cb;  // 0..255
};

Yuv YuvOf(const Hsi& hsi) {
  const auto channel = [&hsi](float pure) {
    return ((Clamp(pure, 1.f) - 1.f) * hsi.s + 1.f) * (hsi.i * 255.f);
  };
  const float r = channel(std::abs(hsi.h - 3.f) - 1.f);
  const float g = channel(2.f - std::abs(hsi.h - 2.f));
  const float b = channel(2.f - std::abs(hsi.h - 4.f));
  return {Rounded(r * 0.299f + (g * 0.587f + b * 0.114f)),
          Rounded((127.5f + r * 0.5f) - (g * 0.4186829f + b * 0.0813089f)),
          Rounded((127.5f + b * 0.5f) - (g * 0.33126147f + r * 0.168727f))};
}

/// How much a pixel of that luma takes of its weight.
float ShareOf(float luma, const WhitenTone& tone) {
  const float t = Clamp((luma - tone.darkest) * tone.luma_scale, 1.f);
  return (t * t) * (3.f - 2.f * t);
}

uint8_t Mixed(float from, float to, float weight) {
  return static_cast<uint8_t>(RoundHalfUp(from + weight * (to - from)));
}

}  // namespace

void DrawWhitening(const WhitenTone& tone, const WhitenRows& rows) {
  for (int column = 0; column < rows.columns; column += 2) {
    uint8_t* const pair = rows.chroma + column;
    const float cr = pair[0], cb = pair[1];
    float cr_sums[2], cb_sums[2], weights[2];  // of the two columns
    for (int i = 0; i < 2; ++i) {
      const float x = rows.x + static_cast<float>(column + i);
      for (int row = 0; row < 2; ++row) {
        const float y = rows.y + static_cast<float>(row);
        const float along = x * tone.along_x + y * tone.along_y;
        const float across = x * tone.across_x + y * tone.across_y;
        const float position = std::sqrt(along * along + across * across);
        uint8_t& sample = rows.luma[row][column + i];
        const float luma = sample;
        const Yuv to = YuvOf(Lift(HsiOf(RgbOf(luma, cr, cb, tone.round_rgb)), position, tone));
        const float weight = rows.weights[row][column + i] * ShareOf(luma, tone);
        sample = Mixed(luma, to.y, weight);
        cr_sums[i] = row == 0 ? to.cr : cr_sums[i] + to.cr;
        cb_sums[i] = row == 0 ? to.cb : cb_sums[i] + to.cb;
        weights[i] = row == 0 ? weight : weights[i] + weight;
      }
    }
    const float weight = (weights[0] + weights[1]) * 0.25f;
    pair[0] = Mixed(cr, (cr_sums[0] + cr_sums[1]) * 0.25f, weight);
    pair[1] = Mixed(cb, (cb_sums[0] + cb_sums[1]) * 0.25f, weight);
  }
}

}  // namespace lumora::cpu::scalar
