// SPDX-License-Identifier: Apache-2.0
// Time that has passed.
#ifndef LUMORA_TOOLS_SUPPORT_CLOCK_H_
#define LUMORA_TOOLS_SUPPORT_CLOCK_H_

#include <chrono>

namespace lumora::tools {

/// Milliseconds of a clock that never goes back.
inline double Now() {
  const std::chrono::duration<double, std::milli> since =
      std::chrono::steady_clock::now().time_since_epoch();
  return since.count();
}

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_SUPPORT_CLOCK_H_
