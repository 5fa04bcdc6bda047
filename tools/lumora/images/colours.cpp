// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/images/colours.h"

#include <algorithm>
#include <utility>

namespace lumora::tools {
namespace {

// The factors of the conversion as whole numbers of 2^-14.
constexpr int kBits = 14;
constexpr int Fixed(double factor) {
  return static_cast<int>(factor * (1 << kBits) + (factor < 0 ? -0.5 : 0.5));
}
constexpr int kRedInLuma = Fixed(0.299), kGreenInLuma = Fixed(0.587), kBlueInLuma = Fixed(0.114);
constexpr int kCrOfRed = Fixed(0.713), kCbOfBlue = Fixed(0.564);
constexpr int kRedOfCr = Fixed(1.403), kGreenOfCr = Fixed(-0.714);
constexpr int kGreenOfCb = Fixed(-0.344), kBlueOfCb = Fixed(1.773);

int Rounded(int fixed) {
  return (fixed + (1 << (kBits - 1))) >> kBits;
}

uint8_t Sample(int value) {
  return static_cast<uint8_t>(std::clamp(value, 0, 255));
}

}  // namespace

ColourPlanes PlanesOf(const Image& bgr) {
  ColourPlanes planes{Image(bgr.size()), Image(bgr.size()), Image(bgr.size())};
  constexpr int kMiddle = kNoColour << kBits;
  const int channels = bgr.channels();
  for (int row = 0; row < bgr.height(); ++row) {
    const uint8_t* pixel = bgr.Row(row);
    uint8_t* const y = planes.y.Row(row);
    uint8_t* const cb = planes.cb.Row(row);
    uint8_t* const cr = planes.cr.Row(row);
    for (int x = 0; x < bgr.width(); ++x, pixel += channels) {
      const int blue = pixel[0], green = pixel[1], red = pixel[2];
      const int luma = Rounded(blue * kBlueInLuma + green * kGreenInLuma + red * kRedInLuma);
      y[x] = Sample(luma);
      cb[x] = Sample(Rounded((blue - luma) * kCbOfBlue + kMiddle));
      cr[x] = Sample(Rounded((red - luma) * kCrOfRed + kMiddle));
    }
  }
  return planes;
}

Image BgrOf(const Image& y, const Image& cb, const Image& cr) {
  Image bgr(y.size(), 3);
  for (int row = 0; row < bgr.height(); ++row) {
    uint8_t* pixel = bgr.Row(row);
    const uint8_t* const lumas = y.Row(row);
    const uint8_t* const blues = cb.Row(row);
    const uint8_t* const reds = cr.Row(row);
    for (int x = 0; x < bgr.width(); ++x, pixel += 3) {
      const int luma = lumas[x], blue = blues[x] - kNoColour, red = reds[x] - kNoColour;
      pixel[0] = Sample(luma + Rounded(blue * kBlueOfCb));
      pixel[1] = Sample(luma + Rounded(blue * kGreenOfCb + red * kGreenOfCr));
      pixel[2] = Sample(luma + Rounded(red * kRedOfCr));
    }
  }
  return bgr;
}

Image BgrOf(const Image& image) {
  if (image.channels() == 3) return image;
  Image bgr(image.size(), 3);
  const int channels = image.channels();
  for (int row = 0; row < image.height(); ++row) {
    const uint8_t* from = image.Row(row);
    uint8_t* to = bgr.Row(row);
    for (int x = 0; x < image.width(); ++x, from += channels, to += 3) {
      for (int c = 0; c < 3; ++c) to[c] = from[channels == 1 ? 0 : c];
    }
  }
  return bgr;
}

Image WithRedAndBlueSwapped(Image image) {
  const int channels = image.channels();
  for (int row = 0; row < image.height(); ++row) {
    uint8_t* pixel = image.Row(row);
    for (int x = 0; x < image.width(); ++x, pixel += channels) std::swap(pixel[0], pixel[2]);
  }
  return image;
}

}  // namespace lumora::tools
