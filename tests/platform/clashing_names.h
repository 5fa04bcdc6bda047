// SPDX-License-Identifier: Apache-2.0
// An application whose names clash with the library's.
#ifndef LUMORA_TESTS_PLATFORM_CLASHING_NAMES_H_
#define LUMORA_TESTS_PLATFORM_CLASHING_NAMES_H_

namespace lumora::test {

/// How often any of its functions of such names was called.
int CallsOfTheApplication();

}  // namespace lumora::test

#endif  // LUMORA_TESTS_PLATFORM_CLASHING_NAMES_H_
