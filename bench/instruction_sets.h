// SPDX-License-Identifier: Apache-2.0
// The instruction sets that a measurement is to be made with.
#ifndef LUMORA_BENCH_INSTRUCTION_SETS_H_
#define LUMORA_BENCH_INSTRUCTION_SETS_H_

#include <cstdint>
#include <vector>

namespace lumora::bench {

struct InstructionSet {
  const char* name;  ///< part of a benchmark's name
  int64_t targets;   ///< Highway's bits: the best of those that the processor has is used
};

/// "avx512" and "avx2".
const std::vector<InstructionSet>& InstructionSets();

/// Kernels work with that instruction set, in this process, while the object lives. Throws where
/// the processor lacks it: "not on this machine: ...".
class WithInstructionSet {
 public:
  explicit WithInstructionSet(const InstructionSet& set);
  ~WithInstructionSet();
  WithInstructionSet(const WithInstructionSet&) = delete;
  WithInstructionSet& operator=(const WithInstructionSet&) = delete;
};

}  // namespace lumora::bench

#endif  // LUMORA_BENCH_INSTRUCTION_SETS_H_
