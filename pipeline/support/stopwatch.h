// SPDX-License-Identifier: Apache-2.0
// Measuring time.
#ifndef LUMORA_PIPELINE_SUPPORT_STOPWATCH_H_
#define LUMORA_PIPELINE_SUPPORT_STOPWATCH_H_

#include <chrono>

namespace lumora {

/// Milliseconds since the last reading, or since it was made.
class Stopwatch {
 public:
  double Lap() {
    const auto now = Clock::now();
    const std::chrono::duration<double, std::milli> passed = now - last_;
    last_ = now;
    return passed.count();
  }

 private:
  using Clock = std::chrono::steady_clock;
  Clock::time_point last_ = Clock::now();
};

}  // namespace lumora

#endif  // LUMORA_PIPELINE_SUPPORT_STOPWATCH_H_
