// SPDX-License-Identifier: Apache-2.0
// What a fuzz target demands of the code under test, apart from what sanitizers watch.
#ifndef LUMORA_FUZZ_SUPPORT_REQUIRE_H_
#define LUMORA_FUZZ_SUPPORT_REQUIRE_H_

#include <cstdio>
#include <cstdlib>

namespace lumora::fuzz {

/// Ends the process with a sentence unless the demand holds: a finding.
inline void Require(bool holds, const char* demand) {
  if (holds) return;
  std::fprintf(stderr, "finding: not true that %s\n", demand);
  std::abort();
}

}  // namespace lumora::fuzz

#endif  // LUMORA_FUZZ_SUPPORT_REQUIRE_H_
