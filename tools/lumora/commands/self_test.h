// SPDX-License-Identifier: Apache-2.0
// Small renders whose results are known without the GPU.
#ifndef LUMORA_TOOLS_COMMANDS_SELF_TEST_H_
#define LUMORA_TOOLS_COMMANDS_SELF_TEST_H_

#include <string>

#include "tools/lumora/commands/retoucher.h"

namespace lumora::tools {

struct SelfTest {
  bool passed = false;
  std::string sentence;
};

/// Slims a synthetic face and compares every sample with the same warp computed on the CPU. Throws
/// Failure when the pipeline itself fails.
SelfTest TestSlimming(Retoucher& retoucher);

/// Whitens an evenly coloured synthetic face: it must get brighter inside its ellipse, and nothing
/// outside of it may change. Throws Failure when the pipeline itself fails.
SelfTest TestWhitening(Retoucher& retoucher);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_COMMANDS_SELF_TEST_H_
