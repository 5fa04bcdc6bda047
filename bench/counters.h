// SPDX-License-Identifier: Apache-2.0
// Between paired measurements and Google Benchmark: registration, counters, errors.
#ifndef LUMORA_BENCH_COUNTERS_H_
#define LUMORA_BENCH_COUNTERS_H_

#include <benchmark/benchmark.h>

#include <functional>
#include <string>
#include <vector>

#include "bench/paired.h"

namespace lumora::bench {

/// Registers a benchmark that `body` carries out by itself, once. Anything that it throws is the
/// benchmark's error.
void Register(const std::string& name, std::function<void(benchmark::State&)> body);

/// What the counter `ratio` says.
enum class Ratio {
  kCost,   ///< our time / the anchor's: below 1 is faster than the anchor
  kSpeed,  ///< the anchor's time / ours: above 1 is faster than the anchor
};

/// Measures `ours` against the best of `anchors` (the one with the least median) and reports:
/// `ratio` by the plan's clock with its quartiles `ratio_q1` and `ratio_q3`, `ratio_wall` by the
/// other reading, `ours_ms`, `anchor_ms` and `rounds`.
void ReportPair(benchmark::State& state, Ratio kind, const Side& ours,
                const std::vector<Side>& anchors, const Plan& plan);

/// The counters of ReportPair for times that were taken elsewhere.
void ReportTimes(benchmark::State& state, Ratio kind, Clock clock, const Times& ours,
                 const Times& anchor);

/// The time of one thing alone: `ms` with its quartiles, wall clock.
void ReportTime(benchmark::State& state, const Side& side, const Plan& plan);

/// Throws std::runtime_error(what) unless `ok`.
void Require(bool ok, const std::string& what);

}  // namespace lumora::bench

#endif  // LUMORA_BENCH_COUNTERS_H_
