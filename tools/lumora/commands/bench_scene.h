// SPDX-License-Identifier: Apache-2.0
// What effects are timed on: a frame with one face, and the clock beside it.
#ifndef LUMORA_TOOLS_COMMANDS_BENCH_SCENE_H_
#define LUMORA_TOOLS_COMMANDS_BENCH_SCENE_H_

#include <functional>

#include "lumora/pipeline/report.h"
#include "tools/lumora/commands/retoucher.h"

namespace lumora::tools {

struct BenchCase {
  Chain chain;
  int width, height;
  Look look;
};

struct Timing {
  double first_ms = 0;   ///< programs and images are made
  double median_ms = 0;  ///< of the frames after it; of the first where time was up
  int frames = 0;
  Report report;  ///< of the last one
};

/// Processes the case's frame, an NV21 one in the colour of skin, with noise, that no effect leaves
/// alone, for so long, and at least twice. Throws Failure (Failed).
Timing Measure(Retoucher& retoucher, const BenchCase& what, double seconds);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_COMMANDS_BENCH_SCENE_H_
