// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/images/image.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace lumora::tools {
namespace {

template <int channels>
void Transpose(const Image& image, Image& result) {
  // Block by block: a column of a large image touches as many lines of the cache as it has pixels.
  constexpr int kBlock = 32;
  for (int top = 0; top < image.height(); top += kBlock) {
    const int bottom = std::min(top + kBlock, image.height());
    for (int x = 0; x < image.width(); ++x) {
      uint8_t* const to = result.Row(x);
      for (int y = top; y < bottom; ++y) {
        std::memcpy(to + y * channels, image.Row(y) + x * channels, channels);
      }
    }
  }
}

}  // namespace

Image::Image(Size size, int channels, uint8_t value)
    : size_(size),
      channels_(channels),
      bytes_(static_cast<size_t>(size.width) * static_cast<size_t>(size.height) *
                 static_cast<size_t>(channels),
             value) {}

Image Fitted(const Image& image, Size size) {
  if (size == image.size()) return image;
  Image result(size, image.channels());
  const auto channels = static_cast<size_t>(image.channels());
  const auto kept = static_cast<size_t>(std::min(size.width, image.width()));
  for (int y = 0; y < size.height; ++y) {
    const uint8_t* const from = image.Row(std::min(y, image.height() - 1));
    uint8_t* const to = result.Row(y);
    std::memcpy(to, from, kept * channels);
    const uint8_t* const last = from + (kept - 1) * channels;
    for (size_t x = kept; x < static_cast<size_t>(size.width); ++x) {
      std::memcpy(to + x * channels, last, channels);
    }
  }
  return result;
}

Image Fitted(Image&& image, Size size) {
  if (size == image.size()) return std::move(image);
  return Fitted(image, size);
}

Image Transposed(const Image& image) {
  Image result({image.height(), image.width()}, image.channels());
  switch (image.channels()) {
    case 1:
      Transpose<1>(image, result);
      break;
    case 3:
      Transpose<3>(image, result);
      break;
    default:
      Transpose<4>(image, result);
      break;
  }
  return result;
}

Image FlippedAcross(Image image) {
  const int channels = image.channels();
  for (int y = 0; y < image.height(); ++y) {
    uint8_t* left = image.Row(y);
    for (uint8_t* right = left + (image.width() - 1) * channels; left < right;
         left += channels, right -= channels) {
      std::swap_ranges(left, left + channels, right);
    }
  }
  return image;
}

Image FlippedDown(Image image) {
  for (int top = 0, bottom = image.height() - 1; top < bottom; ++top, --bottom) {
    std::swap_ranges(image.Row(top), image.Row(top) + image.stride(), image.Row(bottom));
  }
  return image;
}

}  // namespace lumora::tools
