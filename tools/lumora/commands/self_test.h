// SPDX-License-Identifier: Apache-2.0
// Small renders whose results are known without a GPU.
#ifndef LUMORA_TOOLS_COMMANDS_SELF_TEST_H_
#define LUMORA_TOOLS_COMMANDS_SELF_TEST_H_

#include <string>

#include "tools/lumora/commands/retoucher.h"

namespace lumora::tools {

struct SelfTest {
  bool passed = false;
  std::string sentence;
  Frame420 result;
};

/// How far the results of two devices may be apart: each of them may be off by half of it.
inline constexpr int kMostBetweenDevices = 4;

/// The largest difference of the samples of two results, in steps of 1/255.
int LargestDifference(const SelfTest& one, const SelfTest& other);

/// Slims a synthetic face and compares every sample with the same warp in double precision. Throws
/// Failure when the pipeline itself fails.
SelfTest TestSlimming(Retoucher& retoucher);

/// Whitens an evenly coloured synthetic face: it must get brighter inside its ellipse, and nothing
/// outside of it may change. Throws Failure when the pipeline itself fails.
SelfTest TestWhitening(Retoucher& retoucher);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_COMMANDS_SELF_TEST_H_
