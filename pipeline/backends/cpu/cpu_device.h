// SPDX-License-Identifier: Apache-2.0
#ifndef LUMORA_PIPELINE_BACKENDS_CPU_CPU_DEVICE_H_
#define LUMORA_PIPELINE_BACKENDS_CPU_CPU_DEVICE_H_

#include "lumora/pipeline/device.h"
#include "pipeline/backends/cpu/kernels/instruction_set.h"

namespace lumora::cpu {

/// What this processor is to whoever works on it with so many threads.
inline DeviceInfo DeviceWith(int threads) {
  DeviceInfo info;
  info.device = Device::Cpu;
  info.simd = InstructionSet();
  info.threads = threads;
  return info;
}

}  // namespace lumora::cpu

#endif  // LUMORA_PIPELINE_BACKENDS_CPU_CPU_DEVICE_H_
