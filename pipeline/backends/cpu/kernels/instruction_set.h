// SPDX-License-Identifier: Apache-2.0
#ifndef LUMORA_PIPELINE_BACKENDS_CPU_KERNELS_INSTRUCTION_SET_H_
#define LUMORA_PIPELINE_BACKENDS_CPU_KERNELS_INSTRUCTION_SET_H_

namespace lumora::cpu {

/// The name of the instruction set that the kernels use on this machine.
const char* InstructionSet();

}  // namespace lumora::cpu

#endif  // LUMORA_PIPELINE_BACKENDS_CPU_KERNELS_INSTRUCTION_SET_H_
