// Counted allocations.
#include "support/allocation_count.h"

#include <gtest/gtest.h>

#include <new>
#include <thread>

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
