// SPDX-License-Identifier: Apache-2.0
// Images in memory of their own, with bytes behind each row that must not be touched.
#ifndef LUMORA_TESTS_PIPELINE_IMAGE_MEMORY_H_
#define LUMORA_TESTS_PIPELINE_IMAGE_MEMORY_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "lumora/pipeline/frame.h"

namespace lumora::test {

constexpr uint8_t kUntouched = 0x5A;

struct ImageMemory {
  ImageMemory(int image_width, int image_height, int image_channels)
      : width(image_width),
        height(image_height),
        channels(image_channels),
        stride(static_cast<size_t>(image_width * image_channels + 5)),
        bytes(stride * static_cast<size_t>(image_height), kUntouched) {}

  ImageView view() {
    return {bytes.data(), width, height, channels, static_cast<std::ptrdiff_t>(stride)};
  }
  const uint8_t* at(int x, int y) const {
    return bytes.data() + static_cast<size_t>(y) * stride + static_cast<size_t>(x * channels);
  }
  bool RowEndsIntact() const {
    for (int y = 0; y < height; ++y) {
      for (const uint8_t* end = at(width, y); end != at(width, y) + 5; ++end) {
        if (*end != kUntouched) return false;
      }
    }
    return true;
  }

  int width, height, channels;
  size_t stride;
  std::vector<uint8_t> bytes;
};

}  // namespace lumora::test

#endif  // LUMORA_TESTS_PIPELINE_IMAGE_MEMORY_H_
