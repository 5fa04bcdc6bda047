// SPDX-License-Identifier: Apache-2.0
#include "reference/image.h"

#include <algorithm>
#include <cmath>

namespace lumora::reference {
namespace {

// The texel index that GL reads for index `i` of an axis of `size` texels.
int WrapIndex(double index, int size, Wrap wrap) {
  switch (wrap) {
    case Wrap::ClampToEdge:
      return static_cast<int>(std::clamp(index, 0.0, static_cast<double>(size - 1)));
    case Wrap::Repeat:
      return static_cast<int>(index - std::floor(index / size) * size);
    case Wrap::MirroredRepeat: {
      const double period = 2.0 * size;
      const int inside = static_cast<int>(index - std::floor(index / period) * period);
      return inside < size ? inside : 2 * size - 1 - inside;
    }
  }
  return 0;
}

}  // namespace

double& Texel::operator[](int channel) {
  return channel == 0 ? r : channel == 1 ? g : channel == 2 ? b : a;
}

double Texel::operator[](int channel) const {
  return const_cast<Texel&>(*this)[channel];
}

uint8_t ToByte(double value) {
  if (std::isnan(value)) return 0;
  return static_cast<uint8_t>(std::floor(std::clamp(value, 0.0, 1.0) * 255.0 + 0.5));
}

double FromByte(uint8_t byte) {
  return byte / 255.0;
}

Image::Image(int image_width, int image_height)
    : width(image_width),
      height(image_height),
      bytes(static_cast<size_t>(image_width) * static_cast<size_t>(image_height) * 4) {}

uint8_t* Image::pixel(int x, int y) {
  return &bytes[(static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)) * 4];
}

const uint8_t* Image::pixel(int x, int y) const {
  return const_cast<Image*>(this)->pixel(x, y);
}

Texel Image::at(int x, int y) const {
  const uint8_t* p = pixel(x, y);
  return {FromByte(p[0]), FromByte(p[1]), FromByte(p[2]), FromByte(p[3])};
}

void Image::set(int x, int y, const Texel& texel) {
  uint8_t* p = pixel(x, y);
  for (int channel = 0; channel < 4; ++channel) p[channel] = ToByte(texel[channel]);
}

void Image::fill(uint8_t r, uint8_t g, uint8_t b, uint8_t a) {
  const uint8_t colour[4] = {r, g, b, a};
  for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = colour[i % 4];
}

Texel Sampler::sample(Vec2 coordinate) const {
  if (!std::isfinite(coordinate.x) || !std::isfinite(coordinate.y)) return image->at(0, 0);
  const double x = coordinate.x * image->width;
  const double y = coordinate.y * image->height;
  if (filter == Filter::Nearest) {
    return image->at(WrapIndex(std::floor(x), image->width, wrap),
                     WrapIndex(std::floor(y), image->height, wrap));
  }
  const double left = std::floor(x - 0.5);
  const double top = std::floor(y - 0.5);
  const double fx = x - 0.5 - left;
  const double fy = y - 0.5 - top;
  const int x0 = WrapIndex(left, image->width, wrap);
  const int x1 = WrapIndex(left + 1, image->width, wrap);
  const int y0 = WrapIndex(top, image->height, wrap);
  const int y1 = WrapIndex(top + 1, image->height, wrap);
  const Texel corners[4] = {image->at(x0, y0), image->at(x1, y0), image->at(x0, y1),
                            image->at(x1, y1)};
  const double weights[4] = {(1 - fx) * (1 - fy), fx * (1 - fy), (1 - fx) * fy, fx * fy};
  Texel sum;
  for (int corner = 0; corner < 4; ++corner) {
    for (int channel = 0; channel < 4; ++channel) {
      sum[channel] += weights[corner] * corners[corner][channel];
    }
  }
  return sum;
}

}  // namespace lumora::reference
