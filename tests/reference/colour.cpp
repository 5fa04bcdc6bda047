// SPDX-License-Identifier: Apache-2.0
#include "reference/colour.h"

#include <algorithm>
#include <cmath>

namespace lumora::reference {
namespace {

Vec2 Plus(Vec2 a, Vec2 b) {
  return {a.x + b.x, a.y + b.y};
}
double Clamp01(double value) {
  return std::clamp(value, 0.0, 1.0);
}

}  // namespace

Matrix4 YuvToRgbMatrix() {
  const float columns[4][4] = {{1.0f, 1.0f, 1.0f, 0.0f},
                               {1.402f, -0.714f, 0.0f, 0.0f},
                               {0.0f, -0.344f, 1.772f, 0.0f},
                               {-0.701f, 0.529f, -0.886f, 1.0f}};
  Matrix4 matrix{};
  for (size_t input = 0; input < 4; ++input) {
    for (size_t output = 0; output < 4; ++output) {
      matrix[4 * input + output] = static_cast<double>(columns[input][output]);
    }
  }
  return matrix;
}

Texel Multiply(const Matrix4& matrix, const Texel& input) {
  Texel result;
  for (int output = 0; output < 4; ++output) {
    for (int column = 0; column < 4; ++column) {
      result[output] += matrix[static_cast<size_t>(4 * column + output)] * input[column];
    }
  }
  return result;
}

Texel RgbToHsi(const Texel& rgb, double alpha) {
  const double largest = std::max({rgb.r, rgb.g, rgb.b});
  const double delta = largest - std::min({rgb.r, rgb.g, rgb.b});
  Texel hsi{0.0, 0.0, largest, alpha};
  if (delta == 0.0) return hsi;
  hsi.g = delta / largest;
  double sixths;
  if (rgb.r == largest) {
    sixths = (rgb.g - rgb.b) / delta;
  } else if (rgb.g == largest) {
    sixths = 2.0 + (rgb.b - rgb.r) / delta;
  } else {
    sixths = 4.0 + (rgb.r - rgb.g) / delta;
  }
  hsi.r = sixths / 6.0;
  if (hsi.r < 0.0) hsi.r += 1.0;
  return hsi;
}

Texel HsiToYuv(const Texel& hsi) {
  const double sixths = hsi.r * 6.0;
  const double pure[3] = {Clamp01(std::abs(sixths - 3.0) - 1.0),
                          Clamp01(2.0 - std::abs(sixths - 2.0)),
                          Clamp01(2.0 - std::abs(sixths - 4.0))};
  double rgb[3];
  for (int i = 0; i < 3; ++i) rgb[i] = ((pure[i] - 1.0) * hsi.g + 1.0) * hsi.b;
  return {0.299 * rgb[0] + 0.587 * rgb[1] + 0.114 * rgb[2],
          0.5 * rgb[0] - 0.4186829 * rgb[1] - 0.0813089 * rgb[2] + 0.5,
          -0.168727 * rgb[0] - 0.33126147 * rgb[1] + 0.5 * rgb[2] + 0.5, 1.0};
}

Texel Yuv2Rgb::operator()(Vec2 coordinate) const {
  return Multiply(matrix, input.sample(coordinate));
}

Texel Rgb2Hsi::operator()(Vec2 coordinate) const {
  return RgbToHsi(input.sample(coordinate), alpha);
}

Texel Yuv2Hsi::operator()(Vec2 coordinate) const {
  return RgbToHsi(Multiply(matrix, input.sample(coordinate)), alpha);
}

Texel Hsi2Yuv::operator()(Vec2 coordinate) const {
  return HsiToYuv(input.sample(coordinate));
}

Texel LumaPacker::operator()(Vec2 coordinate) const {
  Texel packed;
  for (int i = 0; i < 4; ++i) {
    packed[i] = input.sample(Plus(coordinate, shift[static_cast<size_t>(i)])).r;
  }
  return packed;
}

Texel ChromaPacker::operator()(Vec2 coordinate) const {
  const Texel first = input.sample(Plus(coordinate, shift[0]));
  const Texel second = input.sample(Plus(coordinate, shift[1]));
  return {first.g, first.b, second.g, second.b};
}

std::array<Vec2, 4> LumaShifts(int width, bool rotate) {
  std::array<Vec2, 4> shifts;
  const float steps[4] = {-1.5f, -0.5f, 0.5f, 1.5f};
  for (size_t i = 0; i < 4; ++i) {
    const double shift = static_cast<double>(steps[i] / static_cast<float>(width));
    shifts[i] = rotate ? Vec2{0.0, shift} : Vec2{shift, 0.0};
  }
  return shifts;
}

std::array<Vec2, 2> ChromaShifts(int width, int height, bool rotate) {
  const double step = static_cast<double>(static_cast<float>(1.0 / (rotate ? height : width)));
  if (rotate) return {{{0.0, -step}, {0.0, step}}};
  return {{{-step, 0.0}, {step, 0.0}}};
}

}  // namespace lumora::reference
