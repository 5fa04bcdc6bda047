// SPDX-License-Identifier: Apache-2.0
// A semi-planar YUV 4:2:0 frame, tightly packed: luma rows, then rows of chroma pairs, Cr first.
#ifndef LUMORA_REFERENCE_FRAME_H_
#define LUMORA_REFERENCE_FRAME_H_

#include <cstddef>
#include <cstdint>
#include <vector>

namespace lumora::reference {

/// Width and height are even. `bytes` holds width x height luma bytes, then width x height / 2
/// chroma bytes; this is what the engine's `in` pointer expects.
struct Frame {
  Frame() = default;
  /// Every pixel has the given luma and chroma.
  Frame(int frame_width, int frame_height, uint8_t luma_byte = 0, uint8_t cr_byte = 128,
        uint8_t cb_byte = 128);

  int width = 0;
  int height = 0;
  std::vector<uint8_t> bytes;

  uint8_t* luma() { return bytes.data(); }
  const uint8_t* luma() const { return bytes.data(); }
  uint8_t* chroma() { return bytes.data() + luma_size(); }
  const uint8_t* chroma() const { return bytes.data() + luma_size(); }
  size_t luma_size() const { return static_cast<size_t>(width) * static_cast<size_t>(height); }
  size_t chroma_size() const { return luma_size() / 2; }

  /// Samples by pixel coordinate; the chroma of a pixel is that of its 2 x 2 block.
  uint8_t& y(int column, int row) { return bytes[luma_index(column, row)]; }
  uint8_t& cr(int column, int row) { return bytes[chroma_index(column, row)]; }
  uint8_t& cb(int column, int row) { return bytes[chroma_index(column, row) + 1]; }
  uint8_t y(int column, int row) const { return bytes[luma_index(column, row)]; }
  uint8_t cr(int column, int row) const { return bytes[chroma_index(column, row)]; }
  uint8_t cb(int column, int row) const { return bytes[chroma_index(column, row) + 1]; }

 private:
  size_t luma_index(int column, int row) const;
  size_t chroma_index(int column, int row) const;
};

}  // namespace lumora::reference

#endif  // LUMORA_REFERENCE_FRAME_H_
