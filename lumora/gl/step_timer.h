// SPDX-License-Identifier: Apache-2.0
// Times a step into the timing globals.
#ifndef LUMORA_GL_STEP_TIMER_H_
#define LUMORA_GL_STEP_TIMER_H_

#include <ctime>

namespace lumora::gl {

/// Starts with the object: stores the reading of the clock in `g_cTimeStart`. Engines on several
/// threads time their steps at once, so the globals are stored atomically and never read here.
class StepTimer {
 public:
  StepTimer();

  /// Stores `g_cTimeFinish` and `g_dCountTimeInterval`, and returns the latter: milliseconds since
  /// the start, of a clock with a million ticks a second.
  double Stop() const;

 private:
  const clock_t start_;
};

}  // namespace lumora::gl

#endif  // LUMORA_GL_STEP_TIMER_H_
