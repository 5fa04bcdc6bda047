// SPDX-License-Identifier: Apache-2.0
// The command over one photo, as whole processes: what a start and a face cost on each device.
#include <sys/resource.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "bench/counters.h"
#include "bench/environment.h"
#include "bench/families.h"

namespace lumora::bench {
namespace {

namespace fs = std::filesystem;

/// Milliseconds that all processes took that this one has waited for.
double ChildrenNow() {
  rusage usage{};
  getrusage(RUSAGE_CHILDREN, &usage);
  const auto milliseconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
  };
  return milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime);
}

void RunCommand(const std::string& variables, const std::string& arguments) {
  const std::string line =
      "env " + variables + " '" LUMORA_BENCH_COMMAND "' " + arguments + " >/dev/null 2>&1";
  Require(std::system(line.c_str()) == 0, "the command fails: " + arguments);
}

/// A photograph of one person where the working copy has one beside it, else a drawn portrait.
std::string PhotoIn(const std::string& folder) {
  if (fs::exists(LUMORA_BENCH_PHOTO)) return LUMORA_BENCH_PHOTO;
  RunCommand("LUMORA_DEVICE=cpu", "demo '" + folder + "' --capture 0");
  return folder + "/portrait-1-before.png";
}

/// Where to find a face in it: wherever that is, nothing has to be searched.
std::string FacesIn(const std::string& folder) {
  const std::string path = folder + "/faces.json";
  std::ofstream(path) << R"({"faces": [{"eyes": [[203, 101], [245, 103]]}]})";
  return path;
}

/// Caches are warm: both sides run once before the first round.
void PhotoByDevice(benchmark::State& state, bool search) {
  constexpr int kRounds = 15;
  const TemporaryFolder folder;
  const std::string photo = PhotoIn(folder.path());
  const std::string faces = search ? "" : " --faces '" + FacesIn(folder.path()) + "'";
  const auto run = [&](const std::string& device, Times* times) {
    const double processor = ChildrenNow(), wall = WallNow();
    const std::string result = folder.path() + "/" + device + ".png";
    RunCommand("LUMORA_DEVICE=" + device, "photo '" + photo + "' -o '" + result +
                                              "' --slim 50 --whiten 40 --require-face" + faces);
    Require(fs::file_size(result) > 0, "there is no result");
    times->wall.push_back(WallNow() - wall);
    times->processor.push_back(ChildrenNow() - processor);
  };
  Times first, ours, theirs;
  run("cpu", &first);
  run("gl", &first);
  for (int round = 0; round < kRounds; ++round) {
    if (round % 2 == 0) run("cpu", &ours);
    run("gl", &theirs);
    if (round % 2 == 1) run("cpu", &ours);
  }
  ReportTimes(state, Ratio::kCost, Clock::kProcessor, ours, theirs);
}

}  // namespace

void RegisterPhoto() {
  Register("cpu/photo", [](benchmark::State& state) { PhotoByDevice(state, true); });
  Register("cpu/photo_faces_given", [](benchmark::State& state) { PhotoByDevice(state, false); });
}

}  // namespace lumora::bench
