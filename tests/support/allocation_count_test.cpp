// SPDX-License-Identifier: Apache-2.0
// Counted allocations.
#include "support/allocation_count.h"

#include <gtest/gtest.h>

#include <new>
#include <sstream>
#include <string>
#include <thread>

#include "support/foreign_allocation.h"

namespace lumora::test {
namespace {

// Called as functions: new-expressions may be optimised away.
void AllocateOnce() {
  ::operator delete(::operator new(1));
}

TEST(AllocationCount, CountsEveryKindOnEveryThread) {
  EXPECT_EQ(0, AllocationsOf([] {}));
  EXPECT_EQ(1, AllocationsOf(AllocateOnce));
  EXPECT_EQ(1, AllocationsOf([] { ::operator delete[](::operator new[](1)); }));
  EXPECT_EQ(1, AllocationsOf([] { ::operator delete(::operator new(1, std::nothrow)); }));
  const int start = AllocationsOf([] { std::thread([] {}).join(); });
  EXPECT_EQ(start + 1, AllocationsOf([] { std::thread(AllocateOnce).join(); }));
}

// The C++ library asks for the memory of these.
TEST(AllocationCount, CountsWhatTheStandardLibraryAsksForHere) {
  EXPECT_EQ(1, AllocationsOf([] { EXPECT_EQ('x', std::string(100, 'x').back()); }));
  EXPECT_LE(1, AllocationsOf([] {
              std::ostringstream()
                  << std::string_view("longer than a string is without memory of its own");
            }));
}

TEST(AllocationCount, LeavesOtherLibrariesOut) {
  EXPECT_EQ(0, AllocationsOf(AllocateElsewhere));
  EXPECT_EQ(0, AllocationsOf([] { std::thread(AllocateElsewhere).join(); }) -
                   AllocationsOf([] { std::thread([] {}).join(); }));
  // Called back from there, it is this program's again.
  EXPECT_EQ(1, AllocationsOf([] { CallFromElsewhere(AllocateOnce); }));
}

TEST(AllocationCount, LeavesTheFirstFramesOut) {
  int frames = 0;
  const auto first_frame_allocates = [&frames] {
    if (frames++ == 0) AllocateOnce();
  };
  EXPECT_EQ(0, SteadyAllocationsOf(first_frame_allocates));
  EXPECT_EQ(5, SteadyAllocationsOf(AllocateOnce));
}

}  // namespace
}  // namespace lumora::test
