// SPDX-License-Identifier: Apache-2.0
// Tests of kernels, once for every instruction set that this processor has.
#ifndef LUMORA_TESTS_PIPELINE_BACKENDS_CPU_EVERY_TARGET_H_
#define LUMORA_TESTS_PIPELINE_BACKENDS_CPU_EVERY_TARGET_H_

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "hwy/highway.h"
#include "hwy/targets.h"

namespace lumora::test {

/// While a test runs, kernels are those of the instruction set that is its parameter.
class EveryTarget : public testing::TestWithParam<int64_t> {
 protected:
  void SetUp() override { Use(GetParam()); }
  void TearDown() override { Use(0); }

 private:
  static void Use(int64_t targets) {
    hwy::SetSupportedTargetsForTest(targets);
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
  }
};

/// One instantiation a suite: INSTANTIATE_TEST_SUITE_P(Targets, Suite, AllTargets(), TargetName).
inline auto AllTargets() {
  return testing::ValuesIn(hwy::SupportedAndGeneratedTargets());
}

inline std::string TargetName(const testing::TestParamInfo<int64_t>& target) {
  return hwy::TargetName(target.param);
}

}  // namespace lumora::test

#endif  // LUMORA_TESTS_PIPELINE_BACKENDS_CPU_EVERY_TARGET_H_
