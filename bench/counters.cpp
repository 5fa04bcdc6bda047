// SPDX-License-Identifier: Apache-2.0
#include "bench/counters.h"

#include <cstddef>
#include <exception>
#include <stdexcept>
#include <utility>

namespace lumora::bench {

void Require(bool ok, const std::string& what) {
  if (!ok) throw std::runtime_error(what);
}

void Register(const std::string& name, std::function<void(benchmark::State&)> body) {
  benchmark::RegisterBenchmark(name.c_str(),
                               [body = std::move(body)](benchmark::State& state) {
                                 for (auto _ : state) {
                                   try {
                                     body(state);
                                   } catch (const std::exception& error) {
                                     state.SkipWithError(error.what());
                                     break;
                                   }
                                 }
                               })
      ->Iterations(1)
      ->UseManualTime()
      ->Unit(benchmark::kMillisecond);
}

void ReportTimes(benchmark::State& state, Ratio kind, Clock clock, const Times& ours,
                 const Times& anchor) {
  const auto ratio = [&](Clock by) {
    return kind == Ratio::kCost ? RatioOf(ours.Of(by), anchor.Of(by))
                                : RatioOf(anchor.Of(by), ours.Of(by));
  };
  const Spread decisive = ratio(clock);
  state.counters["ratio"] = decisive.median;
  state.counters["ratio_q1"] = decisive.lower;
  state.counters["ratio_q3"] = decisive.upper;
  state.counters["ratio_wall"] = ratio(Clock::kWall).median;
  const double ours_ms = SpreadOf(ours.Of(clock)).median;
  state.counters["ours_ms"] = ours_ms;
  state.counters["anchor_ms"] = SpreadOf(anchor.Of(clock)).median;
  state.counters["rounds"] = static_cast<double>(ours.wall.size());
  state.SetIterationTime(ours_ms / 1e3);
}

void ReportPair(benchmark::State& state, Ratio kind, const Side& ours,
                const std::vector<Side>& anchors, const Plan& plan) {
  std::vector<Side> sides = {ours};
  sides.insert(sides.end(), anchors.begin(), anchors.end());
  const std::vector<Times> times = MeasureInTurn(sides, plan);
  size_t best = 1;
  for (size_t i = 2; i < times.size(); ++i) {
    const auto median = [&](size_t side) { return SpreadOf(times[side].Of(plan.clock)).median; };
    if (median(i) < median(best)) best = i;
  }
  ReportTimes(state, kind, plan.clock, times[0], times[best]);
}

void ReportTime(benchmark::State& state, const Side& side, const Plan& plan) {
  const Times times = MeasureInTurn({side}, plan).front();
  const Spread wall = SpreadOf(times.wall);
  state.counters["ms"] = wall.median;
  state.counters["ms_q1"] = wall.lower;
  state.counters["ms_q3"] = wall.upper;
  state.SetIterationTime(wall.median / 1e3);
}

}  // namespace lumora::bench
