// Row lengths of images and packed targets.
#ifndef LUMORA_GL_ROW_SIZES_H_
#define LUMORA_GL_ROW_SIZES_H_

namespace lumora {

/// Rows of graphic buffers are multiples of 32 pixels.
constexpr int RoundUpTo32(int value) {
  return (value + 31) & ~31;
}

constexpr int RoundUpToEven(int value) {
  return (value + 1) & ~1;
}

/// Width of the packed targets in samples: four samples a texel, rows of whole 32 texels.
constexpr int PackedWidth(int frame_width) {
  return RoundUpTo32(frame_width >> 2) * 4;
}

}  // namespace lumora

#endif  // LUMORA_GL_ROW_SIZES_H_
