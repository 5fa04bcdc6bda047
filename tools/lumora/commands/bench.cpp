// SPDX-License-Identifier: Apache-2.0
// lumora bench: how fast the effects are on this machine.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "tools/lumora/commands/command.h"
#include "tools/lumora/commands/report_json.h"
#include "tools/lumora/commands/retoucher.h"
#include "tools/lumora/support/clock.h"
#include "tools/lumora/support/talk.h"

namespace lumora::tools {
namespace {

struct BenchOptions {
  double seconds = 2;  ///< of each case
  int largest = 48;    ///< captures, megapixels
  bool json = false;
};

struct NamedLook {
  const char* name;
  Look look;
};
constexpr NamedLook kLooks[] = {{"slimming", {/*slim=*/50}},
                                {"whitening", {/*slim=*/0, /*whiten=*/40}},
                                {"both", {/*slim=*/50, /*whiten=*/40}}};

struct Case {
  Chain chain;
  int width, height;
};
constexpr Case kCases[] = {{Chain::Preview, 640, 480},
                           {Chain::Preview, 1280, 720},
                           {Chain::Preview, 1920, 1080},
                           {Chain::Capture, 4000, 3000},
                           {Chain::Capture, 8000, 6000}};

/// An NV21 frame in the colour of skin, with noise: one that no effect leaves alone.
class NoisyFrame {
 public:
  NoisyFrame(int width, int height) : width_(width), height_(height) {
    const auto pixels = static_cast<size_t>(width) * static_cast<size_t>(height);
    std::mt19937 random(1);
    const auto noisy = [&random](unsigned middle) {
      return static_cast<uint8_t>(middle + random() % 16);
    };
    luma_.resize(pixels);
    chroma_.resize(pixels / 2);
    for (uint8_t& sample : luma_) sample = noisy(122);
    for (size_t i = 0; i < chroma_.size(); ++i) chroma_[i] = noisy(i % 2 == 0 ? 147 : 97);
  }

  FrameView View() {
    return {PixelFormat::NV21,
            width_,
            height_,
            {luma_.data(), chroma_.data(), nullptr},
            {width_, width_, 0}};
  }

 private:
  int width_, height_;
  std::vector<uint8_t> luma_, chroma_;
};

/// A face in the middle: of someone who holds the camera in a preview, a fifth of the width in a
/// capture.
Face FaceIn(const Case& what) {
  const auto x = static_cast<float>(what.width) / 2;
  const auto y = static_cast<float>(what.height) * 0.45f;
  const float half =
      static_cast<float>(what.height) * (what.chain == Chain::Preview ? 0.085f : 0.06f);
  return FaceFromEyes({x - half, y}, {x + half, y});
}

struct Timing {
  double first_ms = 0;   ///< programs and images are made
  double median_ms = 0;  ///< of the frames after it; of the first where time was up
  int frames = 0;
};

Timing Measure(const std::function<void()>& process, double seconds) {
  Timing timing;
  const double start = Now();
  process();
  timing.first_ms = Now() - start;
  std::vector<double> frames;
  do {
    const double before = Now();
    process();
    frames.push_back(Now() - before);
  } while (Now() - start < seconds * 1e3);
  std::nth_element(frames.begin(), frames.begin() + static_cast<std::ptrdiff_t>(frames.size() / 2),
                   frames.end());
  timing.median_ms = frames[frames.size() / 2];
  timing.frames = static_cast<int>(frames.size()) + 1;
  return timing;
}

class Bench {
 public:
  explicit Bench(const BenchOptions& options) : options_(options) {}

  ExitCode Run() {
    const DeviceInfo device = retoucher_.pipeline().Device();
    if (!options_.json) Print(device.renderer + ", " + Name(device.buffer_kind));
    for (const Case& what : kCases) {
      const double megapixels = what.width * 1e-6 * what.height;
      if (what.chain == Chain::Capture && megapixels > options_.largest) continue;
      for (const NamedLook& look : kLooks) RunOne(what, look);
    }
    if (options_.json) {
      PrintReport({{"renderer", device.renderer},
                   {"version", device.version},
                   {"buffer", Name(device.buffer_kind)},
                   {"results", results_}});
    }
    return ExitCode::Done;
  }

 private:
  void RunOne(const Case& what, const NamedLook& look) {
    NoisyFrame frame(what.width, what.height);
    NoisyFrame result(what.width, what.height);
    const Face face = FaceIn(what);
    Report report;
    const Timing timing = Measure(
        [&] {
          ThrowUnlessOk(retoucher_.pipeline().Process(
              {AsConst(frame.View()), result.View(), {face}, look.look, what.chain}, &report));
        },
        options_.seconds);
    const char* const chain = what.chain == Chain::Preview ? "preview" : "capture";
    results_.push_back({{"chain", chain},
                        {"width", what.width},
                        {"height", what.height},
                        {"effect", look.name},
                        {"frames", timing.frames},
                        {"first_ms", timing.first_ms},
                        {"median_ms", timing.median_ms},
                        {"frames_per_second", 1e3 / timing.median_ms},
                        {"engine_ms", report.engine_ms}});
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
  options.Flag("--json", &chosen->json, "print the figures for machines");
  return [chosen] { return Bench(*chosen).Run(); };
}

}  // namespace lumora::tools
