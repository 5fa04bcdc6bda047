// SPDX-License-Identifier: Apache-2.0
// Rectangles in expectations.
#ifndef LUMORA_TESTS_GEOMETRY_RECTANGLES_H_
#define LUMORA_TESTS_GEOMETRY_RECTANGLES_H_

#include <ostream>

#include "lumora/geometry/rectangle.h"

namespace lumora::platform {

inline bool operator==(const PixelRectangle& a, const PixelRectangle& b) {
  return a.x == b.x && a.y == b.y && a.width == b.width && a.height == b.height;
}

inline void PrintTo(const PixelRectangle& r, std::ostream* out) {
  *out << r.width << " x " << r.height << " at (" << r.x << ", " << r.y << ")";
}

}  // namespace lumora::platform

#endif  // LUMORA_TESTS_GEOMETRY_RECTANGLES_H_
