// SPDX-License-Identifier: Apache-2.0
// Counting what asks for memory.
//
// The executable defines the allocating operators in place of the library's, and counts what its
// own code asks for, directly or through the C++ library. Libraries of their own are not counted:
// what a GL driver needs for a frame is the driver's. So what is to be counted is linked
// statically.
#ifndef LUMORA_TESTS_SUPPORT_ALLOCATION_COUNT_H_
#define LUMORA_TESTS_SUPPORT_ALLOCATION_COUNT_H_

#include <functional>

namespace lumora::test {

/// How often `work` runs into operator new, on whatever thread.
int AllocationsOf(const std::function<void()>& work);

/// The same for frames after the first ones, for which things are made that stay.
int SteadyAllocationsOf(const std::function<void()>& frame);

}  // namespace lumora::test

#endif  // LUMORA_TESTS_SUPPORT_ALLOCATION_COUNT_H_
