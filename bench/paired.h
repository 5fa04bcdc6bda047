// SPDX-License-Identifier: Apache-2.0
// Paired measurement: the sides run in turn in one process, so that whatever else the machine does
// falls on all of them, and ratios are taken round by round.
#ifndef LUMORA_BENCH_PAIRED_H_
#define LUMORA_BENCH_PAIRED_H_

#include <functional>
#include <vector>

namespace lumora::bench {

/// One of the things that are compared.
struct Side {
  std::function<void()> run;      ///< what is measured
  std::function<void()> prepare;  ///< before each sample, not measured; may be empty
};

/// Which reading of the time decides. The processor time of the process leaves out what other
/// processes take, but it says nothing about work that a GPU does.
enum class Clock { kProcessor, kWall };

struct Plan {
  Clock clock = Clock::kProcessor;
  int rounds = 15;
  /// A sample makes as many calls as fill this time.
  double sample_ms = 10;
  /// Exactly one call a sample, for calls that need `prepare` each time.
  bool one_call = false;
  /// Call each side once more before its sample: brings its data back into the caches and its
  /// context's state into the driver.
  bool warm = true;
};

/// A median with its quartiles.
struct Spread {
  double lower = 0;
  double median = 0;
  double upper = 0;
};
Spread SpreadOf(std::vector<double> values);

/// Times of one side, milliseconds a call, one a round.
struct Times {
  std::vector<double> processor;
  std::vector<double> wall;

  const std::vector<double>& Of(Clock clock) const {
    return clock == Clock::kProcessor ? processor : wall;
  }
};

/// Runs all sides in every round, in alternating order.
std::vector<Times> MeasureInTurn(const std::vector<Side>& sides, const Plan& plan);

/// numerator / denominator, round by round.
Spread RatioOf(const std::vector<double>& numerator, const std::vector<double>& denominator);

/// Milliseconds of both clocks.
double ProcessorNow();
double WallNow();

}  // namespace lumora::bench

#endif  // LUMORA_BENCH_PAIRED_H_
