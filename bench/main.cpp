// SPDX-License-Identifier: Apache-2.0
// bench_lumora: every figure is a ratio of two sides that are measured in turn in this process.
// Takes the options of Google Benchmark; scripts/bench runs it and makes a table of it.
#include <benchmark/benchmark.h>

#include <cstring>
#include <string>

#include "bench/children.h"
#include "bench/environment.h"
#include "bench/families.h"

namespace lumora::bench {
namespace {

int Run(int argc, char** argv) {
  constexpr char kChild[] = "--child=";
  if (argc == 2 && std::strncmp(argv[1], kChild, sizeof(kChild) - 1) == 0) {
    return RunChild(argv[1] + sizeof(kChild) - 1);  // in the environment of its parent
  }
  const TemporaryFolder folder;
  SettleEnvironment(folder.path());
  RegisterConvert();
  RegisterSlimming();
  RegisterWhitening();
  RegisterCapture();
  RegisterStartUp();
  RegisterMemory();
  RegisterPipeline();
  RegisterCpu();
  RegisterKernels();
#if defined(LUMORA_BENCH_COMMAND)
  RegisterPhoto();
#endif
  RegisterStages();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}

}  // namespace
}  // namespace lumora::bench

int main(int argc, char** argv) {
  return lumora::bench::Run(argc, argv);
}
