// SPDX-License-Identifier: Apache-2.0
// What one call leaves is there for the next.
#include "pipeline/support/spare.h"

#include <gtest/gtest.h>

#include <vector>

namespace lumora::test {
namespace {

using Things = Spare<std::vector<int>>;

TEST(Spare, LendsTheSameThingToOneCallAfterAnother) {
  Things things;
  const int* memory = nullptr;
  {
    const Things::Loan loan(things);
    (*loan).assign(3, 7);
    memory = (*loan).data();
  }
  const Things::Loan loan(things);
  EXPECT_EQ((*loan).data(), memory);
  EXPECT_EQ(*loan, std::vector<int>(3, 7));
}

TEST(Spare, LendsCallsAtOneTimeOneEach) {
  Things things;
  for (int round = 0; round < 3; ++round) {
    const Things::Loan first(things);
    const Things::Loan second(things);
    EXPECT_NE(&*first, &*second);
  }
}

}  // namespace
}  // namespace lumora::test
