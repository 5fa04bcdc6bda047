// SPDX-License-Identifier: Apache-2.0
// Rounding up to whole steps, and numbers as an int.
#ifndef LUMORA_GEOMETRY_ROUNDING_H_
#define LUMORA_GEOMETRY_ROUNDING_H_

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

namespace lumora {

/// Rows of graphic buffers are multiples of this many pixels.
constexpr int kRowStep = 32;

/// `size`, which is not negative, rounded up to a multiple of `step`.
template <typename Number>
constexpr Number RoundUpTo(Number size, Number step) {
  return (size + step - 1) / step * step;
}

/// Rounded up to a multiple of kRowStep, negative numbers as well.
constexpr int RoundUpTo32(int value) {
  return (value + (kRowStep - 1)) & ~(kRowStep - 1);
}

constexpr int RoundUpToEven(int value) {
  return (value + 1) & ~1;
}

/// A number as an int: beyond its range the nearest one that it has.
constexpr int ClampToInt(int64_t value) {
  return static_cast<int>(std::clamp<int64_t>(value, INT32_MIN, INT32_MAX));
}

/// A number cut towards zero; beyond the range of int the nearest one that it has, and 0 for what
/// is not a number.
inline int TruncateToInt(double value) {
  if (std::isnan(value)) return 0;
  constexpr double kLowest = std::numeric_limits<int>::min();
  constexpr double kHighest = std::numeric_limits<int>::max();
  return static_cast<int>(std::clamp(value, kLowest, kHighest));
}

}  // namespace lumora

#endif  // LUMORA_GEOMETRY_ROUNDING_H_
