// SPDX-License-Identifier: Apache-2.0
// Peak memory of a large capture, in a process of its own.
#include <vector>

#include "bench/children.h"
#include "bench/counters.h"
#include "bench/families.h"
#include "bench/scene.h"

namespace lumora::bench {
namespace {

/// The peak over what a small capture leaves behind (driver, compiled programs, libraries), against
/// the caller's frame and the store of the whole frame, four bytes a pixel.
void CapturePeak(benchmark::State& state) {
  const std::vector<double> bytes = StartChild("capture-peak", {"LP_NUM_THREADS=2"});
  const auto needed = static_cast<double>(k48Megapixels.FrameBytes() + k48Megapixels.Pixels() * 4);
  constexpr double kMebibyte = 1 << 20;
  state.counters["ratio"] = (bytes[1] - bytes[0]) / needed;
  state.counters["baseline_mib"] = bytes[0] / kMebibyte;
  state.counters["peak_mib"] = bytes[1] / kMebibyte;
  state.counters["needed_mib"] = needed / kMebibyte;
  state.SetIterationTime(1e-9);
}

}  // namespace

void RegisterMemory() {
  Register("memory/capture_48mp", CapturePeak);
}

}  // namespace lumora::bench
