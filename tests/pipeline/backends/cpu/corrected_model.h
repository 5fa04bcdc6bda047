// SPDX-License-Identifier: Apache-2.0
// Corrected frames as the reference computes them, in double precision, for frames of any size.
#ifndef LUMORA_TESTS_PIPELINE_BACKENDS_CPU_CORRECTED_MODEL_H_
#define LUMORA_TESTS_PIPELINE_BACKENDS_CPU_CORRECTED_MODEL_H_

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "lumora/pipeline/lens.h"
#include "pipeline/frames/frame_memory.h"
#include "reference/image.h"
#include "reference/quad.h"
#include "reference/rectification.h"

namespace lumora::test {

/// A frame within the engine's, whose sides are multiples of 32.
struct PlacedFrame {
  int width, height;
  int left = 0, top = 0;

  static int RoundedUp(int size) { return (size + 31) / 32 * 32; }
  int padded_width() const { return RoundedUp(width); }
  int padded_height() const { return RoundedUp(height); }

  /// In the middle, as near as even numbers allow.
  static PlacedFrame InTheMiddle(int width, int height) {
    const auto place = [](int size) { return (RoundedUp(size) - size) / 4 * 2; };
    return {width, height, place(width), place(height)};
  }
};

/// The texels (Y, Cr, Cb, 255) of the whole, the frame's outermost samples repeated around it.
inline reference::Image PaddedImage(const PlacedFrame& frame, const Samples& samples) {
  reference::Image image(frame.padded_width(), frame.padded_height());
  const int chroma_width = (frame.width + 1) / 2;
  const int chroma_height = (frame.height + 1) / 2;
  for (int y = 0; y < image.height; ++y) {
    for (int x = 0; x < image.width; ++x) {
      const auto luma = static_cast<size_t>(std::clamp(y - frame.top, 0, frame.height - 1)) *
                            static_cast<size_t>(frame.width) +
                        static_cast<size_t>(std::clamp(x - frame.left, 0, frame.width - 1));
      const int column = (x - frame.left) / 2 - (x < frame.left ? 1 : 0);
      const int row = (y - frame.top) / 2 - (y < frame.top ? 1 : 0);
      const auto chroma = static_cast<size_t>(std::clamp(row, 0, chroma_height - 1)) *
                              static_cast<size_t>(chroma_width) +
                          static_cast<size_t>(std::clamp(column, 0, chroma_width - 1));
      uint8_t* const texel = image.pixel(x, y);
      texel[0] = samples.y[luma];
      texel[1] = samples.cr[chroma];
      texel[2] = samples.cb[chroma];
      texel[3] = 255;
    }
  }
  return image;
}

/// What the drawing gives: an 8-bit image, of which samples are taken.
struct CorrectedModel {
  PlacedFrame frame;
  reference::Image drawn;

  uint8_t luma(int x, int y) const { return drawn.pixel(frame.left + x, frame.top + y)[0]; }
  /// Chroma of one of the four pixels that a sample stands for.
  uint8_t cr(int x, int y) const { return drawn.pixel(frame.left + x, frame.top + y)[1]; }
  uint8_t cb(int x, int y) const { return drawn.pixel(frame.left + x, frame.top + y)[2]; }

  /// How far chroma is from the nearest of its four pixels; both samples are of one pixel.
  int ChromaError(const Samples& samples, int column, int row) const {
    const auto at = static_cast<size_t>(row) * static_cast<size_t>((frame.width + 1) / 2) +
                    static_cast<size_t>(column);
    int least = 255;
    for (int pixel = 0; pixel < 4; ++pixel) {
      const int x = 2 * column + pixel % 2, y = 2 * row + pixel / 2;
      least = std::min(least, std::max(std::abs(samples.cr[at] - cr(x, y)),
                                       std::abs(samples.cb[at] - cb(x, y))));
    }
    return least;
  }
};

inline CorrectedModel KeystoneModel(const Samples& samples, int width, int height, int degree) {
  const PlacedFrame frame = {width, height};
  const reference::Image input = PaddedImage(frame, samples);
  CorrectedModel model = {frame, reference::Image(input.width, input.height)};
  const reference::Sampler sampler = {&input, reference::Wrap::MirroredRepeat,
                                      reference::Filter::Linear};
  const auto quad = reference::QuadOfDegree(degree);
  const double share_x = static_cast<double>(width) / input.width;
  const double share_y = static_cast<double>(height) / input.height;
  const auto shader = [&](reference::Vec2 at) {
    const reference::Vec2 from = reference::QuadMap({at.x / share_x, at.y / share_y}, quad);
    return sampler.sample({from.x * share_x, from.y * share_y});
  };
  reference::DrawFullQuad(shader, input.width, input.height, &model.drawn);
  return model;
}

inline CorrectedModel LensModel(const Samples& samples, int width, int height,
                                const LensCoefficients& lens) {
  const PlacedFrame frame = PlacedFrame::InTheMiddle(width, height);
  const reference::Image input = PaddedImage(frame, samples);
  CorrectedModel model = {frame, reference::Image(input.width, input.height)};
  const double share_x = static_cast<double>(width) / input.width;
  const double share_y = static_cast<double>(height) / input.height;
  // The squared distance counts in the caller's frame, where a corner is at 1.
  const double area = (share_x * share_x + share_y * share_y) / 2;
  reference::RadialDistortion shader;
  shader.input = {&input, reference::Wrap::MirroredRepeat, reference::Filter::Linear};
  shader.k = {static_cast<double>(lens.k0), static_cast<double>(lens.k1) / area,
              static_cast<double>(lens.k2) / (area * area),
              static_cast<double>(lens.k3) / (area * area * area)};
  reference::Geometry geometry;
  geometry.coordinates = reference::CroppedCorners();
  reference::DrawFullQuad(shader, input.width, input.height, &model.drawn, geometry);
  return model;
}

}  // namespace lumora::test

#endif  // LUMORA_TESTS_PIPELINE_BACKENDS_CPU_CORRECTED_MODEL_H_
