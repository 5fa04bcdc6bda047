// SPDX-License-Identifier: Apache-2.0
// Whitening of captures in block mode: what a block costs.
#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

#include "bench/bare_capture.h"
#include "bench/counters.h"
#include "bench/engines.h"
#include "bench/families.h"

namespace lumora::bench {
namespace {

/// A capture with one face that lies in four blocks, whatever the size of the frame.
struct Scene {
  explicit Scene(Size size_in)
      : size(size_in),
        face(RecordOf(CentredFace(size, kEyePixels / size.height), size, Chain::Capture)),
        frame(SkinFrame(size)),
        result(size.FrameBytes()) {
    int stride = 0;
    engine->InitCapture(nullptr, nullptr, size.width, size.height, &stride, true);
    for (int i = 0; i < kWarmFrames; ++i) Run();
    Require(Blocks().size() == 4, "the face does not lie in four blocks");
  }

  ~Scene() {
    engine.MakeCurrent();
    engine->DeInitCapture();
  }

  void Run() {
    uint8_t* const planes[2] = {frame.data(), frame.data() + size.Pixels()};
    const bool done = engine->DoFaceWhiteningLarge(planes[0], planes[1], &face, 1, kIntensityLevel,
                                                   kSaturationLevel, BEAUTYSHOT_EFFECT_BOTH) == 1 &&
                      engine->CopyMemYUVfromSrcTextureLarge(
                          result.data(), result.data() + size.Pixels(), 0, 1) == 1;
    Require(done, "whitening the capture failed");
  }

  Side Engine() {
    return {[this] { Run(); }, [this] { engine.MakeCurrent(); }};
  }

  /// Upper left corners of the blocks that the engine went through.
  std::vector<std::pair<int, int>> Blocks() {
    const android::FaceProcessRect& area = engine->m_rcFaceProcess[0];
    std::vector<std::pair<int, int>> blocks;
    const auto even = [](int place) { return (place + 1) / 2 * 2; };
    for (int y = even(area.Y); y < area.Y + area.Height; y += BareCapture::kBlock) {
      for (int x = even(area.X); x < area.X + area.Width; x += BareCapture::kBlock) {
        blocks.emplace_back(x, y);
      }
    }
    return blocks;
  }

  static constexpr double kEyePixels = 120;
  Size size;
  FACE_INFO_t face;
  Buffer frame, result;
  BenchEngine engine;
};

void BlockAgainstBareGl(benchmark::State& state) {
  Plan plan;
  plan.clock = RendererClock();
  plan.sample_ms = 100;
  Scene scene(k12Megapixels);
  const auto blocks = scene.Blocks();
  const BareContext context;
  BareCapture bare(scene.size,
                   static_cast<const GLProgWhiteningBase&>(*scene.engine->m_pProgFaceWhitening));
  Buffer result(scene.size.FrameBytes());
  const auto run = [&] {
    for (const auto& [x, y] : blocks) bare.Whiten(scene.frame.data(), x, y);
    for (const auto& [x, y] : blocks) bare.Return(result.data(), x, y);
  };
  run();
  CheckBare("bare capture");
  Require(std::memcmp(result.data(), scene.result.data(), result.size()) == 0,
          "the two sides differ");
  ReportPair(state, Ratio::kCost, scene.Engine(), {{run, [&] { context.MakeCurrent(); }}}, plan);
  state.counters["blocks"] = static_cast<double>(blocks.size());
}

void LargeAgainstSmall(benchmark::State& state) {
  Plan plan;
  plan.clock = RendererClock();
  plan.sample_ms = 100;
  Scene large(k48Megapixels);
  Scene small(k12Megapixels);
  ReportPair(state, Ratio::kCost, large.Engine(), {small.Engine()}, plan);
}

}  // namespace

void RegisterCapture() {
  Register("capture/block_vs_bare_gl", BlockAgainstBareGl);
  Register("capture/block_48mp_vs_12mp", LargeAgainstSmall);
}

}  // namespace lumora::bench
