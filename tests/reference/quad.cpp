// SPDX-License-Identifier: Apache-2.0
#include "reference/quad.h"

#include <algorithm>

namespace lumora::reference {
namespace {

double Cross(Vec2 a, Vec2 b) {
  return a.x * b.y - a.y * b.x;
}
Vec2 Minus(Vec2 a, Vec2 b) {
  return {a.x - b.x, a.y - b.y};
}

struct Weights {
  double first, second, third;
  bool inside() const { return first >= 0 && second >= 0 && third >= 0; }
};

// The barycentric coordinates of p in the triangle a b c.
Weights Barycentric(Vec2 p, Vec2 a, Vec2 b, Vec2 c) {
  const double area = Cross(Minus(b, a), Minus(c, a));
  const double second = Cross(Minus(p, a), Minus(c, a)) / area;
  const double third = Cross(Minus(b, a), Minus(p, a)) / area;
  return {1.0 - second - third, second, third};
}

Vec2 Blend(const Weights& w, Vec2 a, Vec2 b, Vec2 c) {
  return {w.first * a.x + w.second * b.x + w.third * c.x,
          w.first * a.y + w.second * b.y + w.third * c.y};
}

}  // namespace

void ForEachFragment(const Geometry& geometry, int viewport_width, int viewport_height,
                     int target_width, int target_height,
                     const std::function<void(int x, int y, Vec2 coordinate)>& fragment) {
  const Corners& p = geometry.positions;
  const Corners& t = geometry.coordinates;
  for (int y = 0; y < std::min(viewport_height, target_height); ++y) {
    for (int x = 0; x < std::min(viewport_width, target_width); ++x) {
      const Vec2 centre{2.0 * (x + 0.5) / viewport_width - 1.0,
                        2.0 * (y + 0.5) / viewport_height - 1.0};
      const Weights first = Barycentric(centre, p[0], p[1], p[2]);
      if (first.inside()) {
        fragment(x, y, Blend(first, t[0], t[1], t[2]));
        continue;
      }
      const Weights second = Barycentric(centre, p[0], p[2], p[3]);
      if (second.inside()) fragment(x, y, Blend(second, t[0], t[2], t[3]));
    }
  }
}

void DrawFullQuad(const Shader& shader, int viewport_width, int viewport_height, Image* target,
                  const Geometry& geometry) {
  ForEachFragment(geometry, viewport_width, viewport_height, target->width, target->height,
                  [&](int x, int y, Vec2 coordinate) { target->set(x, y, shader(coordinate)); });
}

}  // namespace lumora::reference
