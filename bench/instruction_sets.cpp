// SPDX-License-Identifier: Apache-2.0
#include "bench/instruction_sets.h"

#include <hwy/highway.h>

#include <string>

#include "bench/counters.h"

namespace lumora::bench {
namespace {

void Allow(int64_t targets) {
  hwy::SetSupportedTargetsForTest(targets);
  hwy::GetChosenTarget().Update(hwy::SupportedTargets());
}

}  // namespace

const std::vector<InstructionSet>& InstructionSets() {
  static const std::vector<InstructionSet> sets = {{"avx512", HWY_AVX3_DL | HWY_AVX3},
                                                   {"avx2", HWY_AVX2}};
  return sets;
}

WithInstructionSet::WithInstructionSet(const InstructionSet& set) {
  const int64_t here = hwy::SupportedTargets() & set.targets;
  Require(here != 0, std::string("not on this machine: ") + set.name);
  Allow(here);
}

WithInstructionSet::~WithInstructionSet() {
  Allow(0);  // all that there are
}

}  // namespace lumora::bench
