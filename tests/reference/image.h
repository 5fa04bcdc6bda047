// SPDX-License-Identifier: Apache-2.0
// Pictures of the reference model: 8-bit RGBA stores, and what a texture unit makes of them.
//
// Row 0 of a store is the row at texture coordinate t = 0: the first row in memory, the one that
// GL uploads and reads back first. Nothing is ever flipped.
#ifndef LUMORA_REFERENCE_IMAGE_H_
#define LUMORA_REFERENCE_IMAGE_H_

#include <cstddef>
#include <cstdint>
#include <vector>

namespace lumora::reference {

/// A pair of texture coordinates or of offsets.
struct Vec2 {
  double x = 0.0;
  double y = 0.0;
};

/// Four components of a shader value, nominally in 0..1.
struct Texel {
  double r = 0.0;
  double g = 0.0;
  double b = 0.0;
  double a = 0.0;

  double& operator[](int channel);
  double operator[](int channel) const;
};

/// What an 8-bit render target stores for `value`: clamped to 0..1, rounded to nearest, NaN as 0.
uint8_t ToByte(double value);
/// What a sampler reads from a stored byte.
double FromByte(uint8_t byte);

/// A width x height store of 8-bit R, G, B, A, rows tightly packed, zeroed at first.
struct Image {
  Image() = default;
  Image(int image_width, int image_height);

  int width = 0;
  int height = 0;
  std::vector<uint8_t> bytes;  ///< width * height * 4

  uint8_t* pixel(int x, int y);
  const uint8_t* pixel(int x, int y) const;
  Texel at(int x, int y) const;
  /// Stores with the rounding of a render target.
  void set(int x, int y, const Texel& texel);
  /// Every byte is R, G, B, A = the given one.
  void fill(uint8_t r, uint8_t g, uint8_t b, uint8_t a);
};

enum class Wrap { ClampToEdge, MirroredRepeat, Repeat };
enum class Filter { Nearest, Linear };

/// A texture unit: an image with its wrap mode (both axes) and filter (both directions, no levels).
/// The image must outlive the sampler.
struct Sampler {
  const Image* image = nullptr;
  Wrap wrap = Wrap::ClampToEdge;
  Filter filter = Filter::Nearest;

  /// The value at a texture coordinate. Coordinates that are not finite read the texel at (0, 0):
  /// GL leaves them undefined, so tests keep away from them.
  Texel sample(Vec2 coordinate) const;
};

}  // namespace lumora::reference

#endif  // LUMORA_REFERENCE_IMAGE_H_
