// SPDX-License-Identifier: Apache-2.0
// Rounding up, and numbers as an int.
#include "lumora/geometry/rounding.h"

#include <gtest/gtest.h>

#include <climits>
#include <limits>

namespace lumora {
namespace {

// The smallest multiple of `unit` that is not below `value`, by counting.
int NextMultiple(int value, int unit) {
  int multiple = 0;
  while (multiple < value) multiple += unit;
  return multiple;
}

TEST(Rounding, GoesUpToTheNextMultiple) {
  for (int size = 0; size <= 300; ++size) {
    EXPECT_EQ(NextMultiple(size, 32), RoundUpTo32(size)) << size;
    EXPECT_EQ(NextMultiple(size, 2), RoundUpToEven(size)) << size;
    for (const int step : {1, 2, 3, 32, 128, 384}) {
      EXPECT_EQ(NextMultiple(size, step), RoundUpTo(size, step)) << size << " by " << step;
    }
  }
  EXPECT_EQ(5024, RoundUpTo32(5000));
  EXPECT_EQ(1920, RoundUpTo32(1920));
  EXPECT_EQ(-32, RoundUpTo32(-33));
  EXPECT_EQ(uint64_t{1} << 40, RoundUpTo<uint64_t>((uint64_t{1} << 40) - 1, 128));
}

TEST(Rounding, KeepsWhatAnIntHolds) {
  EXPECT_EQ(INT_MAX, ClampToInt(int64_t{INT_MAX} + 1));
  EXPECT_EQ(INT_MIN, ClampToInt(int64_t{INT_MIN} - 1));
  EXPECT_EQ(INT_MAX, ClampToInt(INT64_MAX));
  for (const int value : {INT_MIN, -7, 0, 7, INT_MAX}) EXPECT_EQ(value, ClampToInt(value));
}

TEST(Rounding, CutsFractionsTowardsZero) {
  EXPECT_EQ(2, TruncateToInt(2.999));
  EXPECT_EQ(-2, TruncateToInt(-2.999));
  EXPECT_EQ(INT_MAX, TruncateToInt(1e300));
  EXPECT_EQ(INT_MIN, TruncateToInt(-std::numeric_limits<double>::infinity()));
  EXPECT_EQ(0, TruncateToInt(std::numeric_limits<double>::quiet_NaN()));
}

}  // namespace
}  // namespace lumora
