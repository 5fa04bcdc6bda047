// SPDX-License-Identifier: Apache-2.0
// Pixels in memory.
#ifndef LUMORA_TOOLS_IMAGES_IMAGE_H_
#define LUMORA_TOOLS_IMAGES_IMAGE_H_

#include <cstddef>
#include <cstdint>

#include "tools/lumora/support/files.h"

namespace lumora::tools {

/// Pixels across and down.
struct Size {
  int width = 0, height = 0;

  bool empty() const { return width <= 0 || height <= 0; }
};
constexpr bool operator==(Size a, Size b) {
  return a.width == b.width && a.height == b.height;
}
constexpr bool operator!=(Size a, Size b) {
  return !(a == b);
}

/// 8-bit pixels of one to four channels, row after row without gaps. Colours are in the order blue,
/// green, red, opacity. A plane is an image of one channel.
class Image {
 public:
  Image() = default;
  explicit Image(Size size, int channels = 1, uint8_t value = 0);

  Size size() const { return size_; }
  int width() const { return size_.width; }
  int height() const { return size_.height; }
  int channels() const { return channels_; }
  bool empty() const { return bytes_.empty(); }

  size_t stride() const {  ///< bytes from row to row
    return static_cast<size_t>(size_.width) * static_cast<size_t>(channels_);
  }
  uint8_t* Row(int y) { return bytes_.data() + static_cast<size_t>(y) * stride(); }
  const uint8_t* Row(int y) const { return bytes_.data() + static_cast<size_t>(y) * stride(); }

  Bytes& bytes() { return bytes_; }
  const Bytes& bytes() const { return bytes_; }

 private:
  Size size_;
  int channels_ = 1;
  Bytes bytes_;
};

/// The same in someone else's memory, to be read.
struct PixelView {
  PixelView() = default;
  PixelView(const uint8_t* first, Size in_pixels, int of_channels, size_t row_bytes)
      : pixels(first), size(in_pixels), channels(of_channels), stride(row_bytes) {}
  /// Implicit: an image is looked at wherever a view is wanted.
  PixelView(const Image& image)
      : PixelView(image.bytes().data(), image.size(), image.channels(), image.stride()) {}

  const uint8_t* pixels = nullptr;
  Size size;
  int channels = 1;
  size_t stride = 0;  ///< bytes from row to row
};

/// The image in that size: columns on the right and rows at the bottom are cut off, or the last of
/// them repeated.
Image Fitted(const Image& image, Size size);
Image Fitted(Image&& image, Size size);

/// Rows for columns.
Image Transposed(const Image& image);

/// Left for right, or top for bottom.
Image FlippedAcross(Image image);
Image FlippedDown(Image image);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_IMAGES_IMAGE_H_
