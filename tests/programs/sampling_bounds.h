// SPDX-License-Identifier: Apache-2.0
// What a draw may give where the last bits of the driver's arithmetic decide.
//
// A warp samples its input at computed places. Where such a place lies within kSlack of the border
// between two texels, nearest filtering may give either; the model then keeps both. Everywhere else
// the result is one value.
#ifndef LUMORA_TESTS_PROGRAMS_SAMPLING_BOUNDS_H_
#define LUMORA_TESTS_PROGRAMS_SAMPLING_BOUNDS_H_

#include <functional>

#include "reference/bounds.h"
#include "reference/quad.h"

namespace lumora::test {

using reference::Filter;
using reference::Geometry;
using reference::Image;
using reference::ImageBounds;
using reference::Texel;
using reference::TexelBounds;
using reference::Vec2;
using reference::Wrap;

/// How far the driver's sample positions may be off, in texels: coordinates are single-precision
/// numbers of a few operations on pictures of about a hundred texels.
constexpr double kSlack = 1.0 / 32;

/// An input of a warp.
struct WarpInput {
  explicit WarpInput(const Image& image, Wrap wrap_mode = Wrap::ClampToEdge,
                     Filter filter_mode = Filter::Nearest)
      : exact(image), wrap(wrap_mode), filter(filter_mode) {}

  TexelBounds at(Vec2 coordinate) const;
  /// `shader` of what may be sampled at the coordinate; for nearest filtering.
  TexelBounds at(Vec2 coordinate, const std::function<Texel(const Texel&)>& shader) const;

  ImageBounds exact;
  Wrap wrap;
  Filter filter;
};

/// Draws the quad, fragment by fragment, as a range of results.
ImageBounds DrawBounds(const std::function<TexelBounds(Vec2)>& shader, int width, int height,
                       const Geometry& geometry = {});

/// The share of the pixels that have more than one allowed value.
double DoubtfulShare(const ImageBounds& bounds);

}  // namespace lumora::test

#endif  // LUMORA_TESTS_PROGRAMS_SAMPLING_BOUNDS_H_
