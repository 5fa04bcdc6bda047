// SPDX-License-Identifier: Apache-2.0
// From nothing to programs and to the first frame, each time in a process of its own.
#include <cstdint>
#include <filesystem>
#include <string>

#include "bench/children.h"
#include "bench/counters.h"
#include "bench/environment.h"
#include "bench/families.h"

namespace lumora::bench {
namespace {

namespace fs = std::filesystem;

constexpr int kRounds = 15;

/// Where a child finds its caches: a folder for the library's programs, one for the driver's.
struct Caches {
  std::string programs, driver;

  std::vector<std::string> Variables() const {
    return {"LUMORA_CACHE_DIR=" + programs, "MESA_SHADER_CACHE_DIR=" + driver};
  }
};

void Add(const std::vector<double>& numbers, Times* times) {
  times->processor.push_back(numbers[0]);
  times->wall.push_back(numbers[1]);
}

/// Runs both children in turn; `fresh` gives the n-th child of the run its caches.
template <typename OurCaches, typename TheirCaches>
void Compare(benchmark::State& state, const char* ours, OurCaches our_caches, const char* theirs,
             TheirCaches their_caches) {
  Times our_times, their_times;
  for (int round = 0; round < kRounds; ++round) {
    const auto run_ours = [&] { Add(StartChild(ours, our_caches(round).Variables()), &our_times); };
    if (round % 2 == 0) run_ours();
    Add(StartChild(theirs, their_caches(round).Variables()), &their_times);
    if (round % 2 == 1) run_ours();
  }
  ReportTimes(state, Ratio::kCost, Clock::kProcessor, our_times, their_times);
}

/// A folder that no child has seen.
std::string Fresh(const TemporaryFolder& folder, const char* name, int round) {
  const fs::path path = fs::path(folder.path()) / (name + std::to_string(round));
  fs::create_directories(path);
  return path.string();
}

/// Programs from the library's own cache, with the driver's empty, against bare compilation.
void Programs(benchmark::State& state) {
  const TemporaryFolder folder;
  const std::string kept = Fresh(folder, "programs", 0);
  StartChild("load-programs", Caches{kept, Fresh(folder, "first", 0)}.Variables());
  Require(!fs::is_empty(kept), "no program was kept: the driver has no program binaries");
  Compare(
      state, "load-programs",
      [&](int round) {
        return Caches{kept, Fresh(folder, "loading", round)};
      },
      "compile-programs",
      [&](int round) {
        return Caches{Fresh(folder, "unused", round), Fresh(folder, "compiling", round)};
      });
}

/// All caches warm against all cold.
void FirstFrame(benchmark::State& state, const char* child) {
  const TemporaryFolder folder;
  const Caches warm{Fresh(folder, "programs", 0), Fresh(folder, "driver", 0)};
  StartChild(child, warm.Variables());
  Compare(
      state, child, [&](int) { return warm; }, child,
      [&](int round) {
        return Caches{Fresh(folder, "cold-programs", round), Fresh(folder, "cold-driver", round)};
      });
}

}  // namespace

void RegisterStartUp() {
  Register("start_up/programs_cached", Programs);
  Register("start_up/first_slimmed",
           [](benchmark::State& state) { FirstFrame(state, "first-slimmed"); });
  Register("start_up/first_whitened",
           [](benchmark::State& state) { FirstFrame(state, "first-whitened"); });
  Register("start_up/first_of_each",
           [](benchmark::State& state) { FirstFrame(state, "first-of-each"); });
}

}  // namespace lumora::bench
