// SPDX-License-Identifier: Apache-2.0
#include "reference/bounds.h"

#include <algorithm>
#include <cmath>

namespace lumora::reference {
namespace {

// The places along one axis where the value may be extreme: both ends of the range, and, for linear
// filtering, the texel centre between them, where the interpolated value bends.
int ExtremePlaces(double coordinate, int size, double slack, Filter filter, double places[3]) {
  const double texels = coordinate * size;
  places[0] = (texels - slack) / size;
  places[1] = (texels + slack) / size;
  const double centre = std::floor(texels + slack - 0.5) + 0.5;
  if (filter == Filter::Nearest || centre <= texels - slack) return 2;
  places[2] = centre / size;
  return 3;
}

}  // namespace

void TexelBounds::include(const Texel& texel) {
  include(Exactly(texel));
}

void TexelBounds::include(const TexelBounds& other) {
  for (int channel = 0; channel < 4; ++channel) {
    low[channel] = std::min(low[channel], other.low[channel]);
    high[channel] = std::max(high[channel], other.high[channel]);
  }
}

TexelBounds SampleBounds(const ImageBounds& bounds, Wrap wrap, Filter filter, Vec2 coordinate,
                         double slack) {
  const Sampler low{&bounds.low, wrap, filter};
  const Sampler high{&bounds.high, wrap, filter};
  double xs[3];
  double ys[3];
  const int columns = ExtremePlaces(coordinate.x, bounds.low.width, slack, filter, xs);
  const int rows = ExtremePlaces(coordinate.y, bounds.low.height, slack, filter, ys);
  TexelBounds result{low.sample(coordinate), high.sample(coordinate)};
  for (int row = 0; row < rows; ++row) {
    for (int column = 0; column < columns; ++column) {
      const Vec2 place{xs[column], ys[row]};
      result.include({low.sample(place), high.sample(place)});
    }
  }
  return result;
}

}  // namespace lumora::reference
