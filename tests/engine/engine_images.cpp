// SPDX-License-Identifier: Apache-2.0
#include "engine/engine_images.h"

#include <algorithm>
#include <cstring>

namespace lumora::test {
namespace {

size_t RowBytes(const SEGLImage& image) {
  return size_t{image.m_spBuffer->width()} * 4;
}
size_t StrideBytes(const SEGLImage& image) {
  return size_t{image.m_spBuffer->stride()} * 4;
}

}  // namespace

reference::Image PixelsOf(SEGLImage& image) {
  reference::Image pixels(static_cast<int>(image.m_spBuffer->width()),
                          static_cast<int>(image.m_spBuffer->height()));
  const unsigned char* memory = image.Lock();
  for (int y = 0; y < pixels.height; ++y) {
    std::memcpy(pixels.pixel(0, y), memory + static_cast<size_t>(y) * StrideBytes(image),
                RowBytes(image));
  }
  return pixels;
}

void SetPixels(SEGLImage& image, const reference::Image& pixels) {
  unsigned char* memory = image.Lock();
  for (int y = 0; y < pixels.height; ++y) {
    std::memcpy(memory + static_cast<size_t>(y) * StrideBytes(image), pixels.pixel(0, y),
                RowBytes(image));
  }
  image.Unlock();
}

void ClearImages(GPUBeautyFace& engine) {
  SEGLImage* const images[] = {engine.m_pRGBImage,     engine.m_pWorkImage[0],
                               engine.m_pWorkImage[1], engine.m_pWorkImage[2],
                               engine.m_pYYYYImage,    engine.m_pUVUVImage};
  for (SEGLImage* image : images) {
    if (image == nullptr || !image->m_spBuffer) continue;
    std::memset(image->Lock(), 0, StrideBytes(*image) * image->m_spBuffer->height());
    image->Unlock();
  }
}

}  // namespace lumora::test
