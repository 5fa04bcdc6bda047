// SPDX-License-Identifier: Apache-2.0
// Memory that is left to nobody on purpose.
#ifndef LUMORA_TESTS_SUPPORT_MEANT_LEAKS_H_
#define LUMORA_TESTS_SUPPORT_MEANT_LEAKS_H_

// Present when a leak checker runs.
extern "C" {
void __lsan_disable() __attribute__((weak));
void __lsan_enable() __attribute__((weak));
}

namespace lumora::test {

/// Leak checkers do not report what is allocated while it lives.
class MeantLeaks {
 public:
  MeantLeaks() {
    if (CheckerRuns()) __lsan_disable();
  }
  ~MeantLeaks() {
    if (CheckerRuns()) __lsan_enable();
  }
  MeantLeaks(const MeantLeaks&) = delete;
  MeantLeaks& operator=(const MeantLeaks&) = delete;

  static bool CheckerRuns() { return __lsan_disable != nullptr && __lsan_enable != nullptr; }
};

}  // namespace lumora::test

#endif  // LUMORA_TESTS_SUPPORT_MEANT_LEAKS_H_
