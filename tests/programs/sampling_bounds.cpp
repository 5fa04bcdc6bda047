// SPDX-License-Identifier: Apache-2.0
#include "programs/sampling_bounds.h"

#include <cstring>

namespace lumora::test {

TexelBounds WarpInput::at(Vec2 coordinate) const {
  return reference::SampleBounds(exact, wrap, filter, coordinate, kSlack);
}

TexelBounds WarpInput::at(Vec2 coordinate, const std::function<Texel(const Texel&)>& shader) const {
  const reference::Sampler sampler{&exact.low, wrap, Filter::Nearest};
  TexelBounds result = TexelBounds::Exactly(shader(sampler.sample(coordinate)));
  for (const double dx : {-kSlack, kSlack}) {
    for (const double dy : {-kSlack, kSlack}) {
      const Vec2 near{coordinate.x + dx / exact.low.width, coordinate.y + dy / exact.low.height};
      result.include(shader(sampler.sample(near)));
    }
  }
  return result;
}

ImageBounds DrawBounds(const std::function<TexelBounds(Vec2)>& shader, int width, int height,
                       const Geometry& geometry) {
  ImageBounds drawn(width, height);
  reference::ForEachFragment(geometry, width, height, width, height,
                             [&](int x, int y, Vec2 coordinate) {
                               const TexelBounds texel = shader(coordinate);
                               drawn.low.set(x, y, texel.low);
                               drawn.high.set(x, y, texel.high);
                             });
  return drawn;
}

double DoubtfulShare(const ImageBounds& bounds) {
  int64_t doubtful = 0;
  for (int y = 0; y < bounds.low.height; ++y) {
    for (int x = 0; x < bounds.low.width; ++x) {
      if (std::memcmp(bounds.low.pixel(x, y), bounds.high.pixel(x, y), 4) != 0) ++doubtful;
    }
  }
  return static_cast<double>(doubtful) / (bounds.low.width * bounds.low.height);
}

}  // namespace lumora::test
