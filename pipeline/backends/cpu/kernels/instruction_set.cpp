// SPDX-License-Identifier: Apache-2.0
#include "pipeline/backends/cpu/kernels/instruction_set.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pipeline/backends/cpu/kernels/instruction_set.cpp"
#include "hwy/foreach_target.h"  // must precede highway.h
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace lumora::cpu {
namespace HWY_NAMESPACE {

const char* InstructionSet() {
  return hwy::TargetName(HWY_TARGET);
}

}  // namespace HWY_NAMESPACE
}  // namespace lumora::cpu
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace lumora::cpu {

HWY_EXPORT(InstructionSet);

const char* InstructionSet() {
  return HWY_DYNAMIC_DISPATCH(InstructionSet)();
}

}  // namespace lumora::cpu
#endif  // HWY_ONCE
