// SPDX-License-Identifier: Apache-2.0
// A library that asks for memory, as a driver does.
#ifndef LUMORA_TESTS_SUPPORT_FOREIGN_ALLOCATION_H_
#define LUMORA_TESTS_SUPPORT_FOREIGN_ALLOCATION_H_

namespace lumora::test {

/// Asks directly and through the C++ library.
[[gnu::visibility("default")]] void AllocateElsewhere();
[[gnu::visibility("default")]] void CallFromElsewhere(void (*work)());

}  // namespace lumora::test

#endif  // LUMORA_TESTS_SUPPORT_FOREIGN_ALLOCATION_H_
