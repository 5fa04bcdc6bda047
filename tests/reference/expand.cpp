// SPDX-License-Identifier: Apache-2.0
#include "reference/expand.h"

#include <algorithm>

namespace lumora::reference {

void Expand(const Frame& frame, Image* image) {
  for (int y = 0; y < frame.height; ++y) {
    for (int x = 0; x < frame.width; ++x) {
      uint8_t* texel = image->pixel(x, y);
      texel[0] = frame.y(x, y);
      texel[1] = frame.cr(x, y);
      texel[2] = frame.cb(x, y);
      texel[3] = 255;
    }
  }
}

Image Expanded(const Frame& frame) {
  return Expanded(frame, frame.width);
}

Image Expanded(const Frame& frame, int row_texels) {
  Image image(row_texels, frame.height);
  Expand(frame, &image);
  return image;
}

Frame Unpack(const Image& luma, const Image& chroma, int width, int height) {
  Frame frame(width, height);
  for (int y = 0; y < height; ++y) {
    std::copy_n(luma.pixel(0, y), width, frame.luma() + y * width);
  }
  for (int y = 0; y < height / 2; ++y) {
    std::copy_n(chroma.pixel(0, y), width, frame.chroma() + y * width);
  }
  return frame;
}

Frame ToFrame(const Image& yuv, int width, int height) {
  Frame frame(width, height);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const uint8_t* texel = yuv.pixel(x, y);
      frame.y(x, y) = texel[0];
      if (x % 2 != 0 || y % 2 != 0) continue;
      frame.cr(x, y) = texel[1];
      frame.cb(x, y) = texel[2];
    }
  }
  return frame;
}

}  // namespace lumora::reference
