// SPDX-License-Identifier: Apache-2.0
#include "reference/frame.h"

#include <algorithm>

namespace lumora::reference {

Frame::Frame(int frame_width, int frame_height, uint8_t luma_byte, uint8_t cr_byte, uint8_t cb_byte)
    : width(frame_width),
      height(frame_height),
      bytes(static_cast<size_t>(frame_width) * static_cast<size_t>(frame_height) * 3 / 2,
            luma_byte) {
  for (size_t i = luma_size(); i < bytes.size(); ++i) {
    bytes[i] = (i - luma_size()) % 2 == 0 ? cr_byte : cb_byte;
  }
}

size_t Frame::luma_index(int column, int row) const {
  return static_cast<size_t>(row) * static_cast<size_t>(width) + static_cast<size_t>(column);
}

size_t Frame::chroma_index(int column, int row) const {
  return luma_size() + luma_index(column - column % 2, row / 2);
}

}  // namespace lumora::reference
