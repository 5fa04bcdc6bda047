// SPDX-License-Identifier: Apache-2.0
#include "reference/colour_bounds.h"

#include <algorithm>
#include <cmath>

#include "reference/colour.h"

namespace lumora::reference {

TexelBounds Widened(const Texel& texel, double error) {
  return Widened(TexelBounds::Exactly(texel), error);
}

TexelBounds Widened(TexelBounds texel, double error) {
  for (int channel = 0; channel < 4; ++channel) {
    texel.low[channel] -= error;
    texel.high[channel] += error;
  }
  return texel;
}

TexelBounds YuvToRgbBounds(const TexelBounds& yuv) {
  const Matrix4 matrix = YuvToRgbMatrix();
  TexelBounds rgb;
  for (int output = 0; output < 4; ++output) {
    for (int input = 0; input < 4; ++input) {
      const double factor = matrix[static_cast<size_t>(4 * input + output)];
      const double a = factor * yuv.low[input];
      const double b = factor * yuv.high[input];
      rgb.low[output] += std::min(a, b);
      rgb.high[output] += std::max(a, b);
    }
  }
  return Widened(rgb, kColourError);
}

TexelBounds RgbToHsiBounds(const TexelBounds& rgb, double alpha) {
  Texel middle;
  double error = kColourError;
  for (int channel = 0; channel < 3; ++channel) {
    middle[channel] = (rgb.low[channel] + rgb.high[channel]) / 2;
    error = std::max(error, kColourError + (rgb.high[channel] - rgb.low[channel]) / 2);
  }
  const double largest = std::max({middle.r, middle.g, middle.b});
  const double range = largest - std::min({middle.r, middle.g, middle.b});
  const Texel hsi = RgbToHsi(middle, alpha);

  TexelBounds bounds = TexelBounds::Exactly(hsi);
  bounds.low.b -= error;
  bounds.high.b += error;
  const double saturation_error = largest > 2 * error ? 2 * error / (largest - error) : 1.0;
  bounds.low.g -= saturation_error;
  bounds.high.g += saturation_error;
  const double hue_error = range > 4 * error ? 4 * error / (range - 2 * error) / 6.0 : 1.0;
  bounds.low.r -= hue_error;
  bounds.high.r += hue_error;
  if (bounds.low.r < 0.0 || bounds.high.r > 1.0) {
    bounds.low.r = 0.0;
    bounds.high.r = 1.0;
  }
  // Grey has no hue and no saturation, whatever its neighbours have.
  if (range < 2 * error) bounds.include(Texel{0.0, 0.0, hsi.b, alpha});
  return bounds;
}

TexelBounds HsiToYuvBounds(const Texel& hsi) {
  // Six times the hue has larger steps than the other numbers.
  return Widened(HsiToYuv(hsi), 2 * kColourError);
}

}  // namespace lumora::reference
