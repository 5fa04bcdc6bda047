// SPDX-License-Identifier: Apache-2.0
#include "bench/paired.h"

#include <algorithm>
#include <cstddef>
#include <ctime>

namespace lumora::bench {
namespace {

double Read(clockid_t clock) {
  timespec now{};
  clock_gettime(clock, &now);
  return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

/// How many calls make a sample of the fastest side long enough: all sides make the same number.
int CallsFor(const std::vector<Side>& sides, const Plan& plan) {
  constexpr int kMostCalls = 2000;
  double shortest = plan.sample_ms;
  for (const Side& side : sides) {
    if (side.prepare) side.prepare();
    side.run();
    const double start = WallNow();
    side.run();
    shortest = std::min(shortest, WallNow() - start);
  }
  if (plan.one_call) return 1;
  return static_cast<int>(
      std::clamp(plan.sample_ms / std::max(shortest, 1e-4), 1.0, double{kMostCalls}));
}

void Sample(const Side& side, int calls, bool warm, Times* times) {
  if (side.prepare) side.prepare();
  if (warm) side.run();
  const double processor = ProcessorNow();
  const double wall = WallNow();
  for (int call = 0; call < calls; ++call) side.run();
  times->wall.push_back((WallNow() - wall) / calls);
  times->processor.push_back((ProcessorNow() - processor) / calls);
}

}  // namespace

double ProcessorNow() {
  return Read(CLOCK_PROCESS_CPUTIME_ID);
}

double WallNow() {
  return Read(CLOCK_MONOTONIC);
}

Spread SpreadOf(std::vector<double> values) {
  if (values.empty()) return {};
  std::sort(values.begin(), values.end());
  const auto at = [&values](size_t quarters) { return values[(values.size() - 1) * quarters / 4]; };
  return {at(1), at(2), at(3)};
}

std::vector<Times> MeasureInTurn(const std::vector<Side>& sides, const Plan& plan) {
  const int calls = CallsFor(sides, plan);
  const bool warm = plan.warm && !plan.one_call;
  std::vector<Times> times(sides.size());
  for (int round = 0; round < plan.rounds; ++round) {
    for (size_t i = 0; i < sides.size(); ++i) {
      const size_t side = round % 2 == 0 ? i : sides.size() - 1 - i;
      Sample(sides[side], calls, warm, &times[side]);
    }
  }
  return times;
}

Spread RatioOf(const std::vector<double>& numerator, const std::vector<double>& denominator) {
  std::vector<double> ratios;
  for (size_t i = 0; i < numerator.size(); ++i) ratios.push_back(numerator[i] / denominator[i]);
  return SpreadOf(ratios);
}

}  // namespace lumora::bench
