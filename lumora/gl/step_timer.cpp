// SPDX-License-Identifier: Apache-2.0
#include "lumora/gl/step_timer.h"

#include "lumora/gl/step_times.h"

clock_t g_cTimeStart = 0;
clock_t g_cTimeFinish = 0;
double g_dCountTimeInterval = 0.0;

namespace lumora::gl {
namespace {

template <typename T>
void Publish(T* global, T value) {
  __atomic_store(global, &value, __ATOMIC_RELAXED);
}

}  // namespace

StepTimer::StepTimer() : start_(clock()) {
  Publish(&g_cTimeStart, start_);
}

double StepTimer::Stop() const {
  const clock_t finish = clock();
  const double interval = static_cast<double>(finish - start_) * 1000.0 / 1000000.0;
  Publish(&g_cTimeFinish, finish);
  Publish(&g_dCountTimeInterval, interval);
  return interval;
}

}  // namespace lumora::gl
