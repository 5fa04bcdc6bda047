// SPDX-License-Identifier: Apache-2.0
// lumora bench: how fast the effects are on this machine.
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "tools/lumora/commands/bench_scene.h"
#include "tools/lumora/commands/command.h"
#include "tools/lumora/commands/report_json.h"
#include "tools/lumora/commands/retoucher.h"
#include "tools/lumora/options/common_options.h"
#include "tools/lumora/support/talk.h"

namespace lumora::tools {
namespace {

struct BenchOptions {
  double seconds = 2;  ///< of each case
  int largest = 48;    ///< captures, megapixels
  Device device = Device::Auto;
  bool json = false;
};

struct NamedLook {
  const char* name;
  Look look;
};
constexpr NamedLook kLooks[] = {{"slimming", {/*slim=*/50}},
                                {"whitening", {/*slim=*/0, /*whiten=*/40}},
                                {"both", {/*slim=*/50, /*whiten=*/40}}};

struct FrameKind {
  Chain chain;
  int width, height;
};
constexpr FrameKind kFrames[] = {{Chain::Preview, 640, 480},
                                 {Chain::Preview, 1280, 720},
                                 {Chain::Preview, 1920, 1080},
                                 {Chain::Capture, 4000, 3000},
                                 {Chain::Capture, 8000, 6000}};

class Bench {
 public:
  explicit Bench(const BenchOptions& options) : options_(options), retoucher_(options.device) {}

  ExitCode Run() {
    const DeviceInfo device = retoucher_.pipeline().Device();
    if (!options_.json) Print(DeviceText(device));
    for (const FrameKind& frame : kFrames) {
      const double megapixels = frame.width * 1e-6 * frame.height;
      if (frame.chain == Chain::Capture && megapixels > options_.largest) continue;
      for (const NamedLook& look : kLooks) RunOne(frame, look);
    }
    if (options_.json) {
      PrintReport({{"device", DeviceJson(device.device)},
                   {"simd", device.simd},
                   {"threads", device.threads},
                   {"renderer", device.renderer},
                   {"version", device.version},
                   {"buffer", Name(device.buffer_kind)},
                   {"results", results_}});
    }
    return ExitCode::Done;
  }

 private:
  void RunOne(const FrameKind& what, const NamedLook& look) {
    const Timing timing =
        Measure(retoucher_, {what.chain, what.width, what.height, look.look}, options_.seconds);
    const char* const chain = what.chain == Chain::Preview ? "preview" : "capture";
    results_.push_back({{"chain", chain},
                        {"width", what.width},
                        {"height", what.height},
                        {"effect", look.name},
                        {"frames", timing.frames},
                        {"first_ms", timing.first_ms},
                        {"median_ms", timing.median_ms},
                        {"frames_per_second", 1e3 / timing.median_ms},
                        {"engine_ms", timing.report.engine_ms}});
    if (options_.json) return;
    char line[128];
    std::snprintf(line, sizeof(line),
                  "%-8s %4d x %-5d %-10s %9.2f ms %8.1f frames/s  first %8.1f ms", chain,
                  what.width, what.height, look.name, timing.median_ms, 1e3 / timing.median_ms,
                  timing.first_ms);
    Print(line);
  }

  BenchOptions options_;
  Retoucher retoucher_;
  nlohmann::ordered_json results_ = nlohmann::ordered_json::array();
};

}  // namespace

Action OfferBench(Options options) {
  auto chosen = std::make_shared<BenchOptions>();
  options.Decimal("--seconds", &chosen->seconds, 0, 600, "how long to measure each case");
  options.Whole("--largest", &chosen->largest, 0, 48,
                "leave out captures of more megapixels than this; 0 leaves out all");
  AddDevice(options, &chosen->device);
  options.Flag("--json", &chosen->json, "print the figures for machines");
  return [chosen] { return Bench(*chosen).Run(); };
}

}  // namespace lumora::tools
