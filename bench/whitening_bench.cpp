// SPDX-License-Identifier: Apache-2.0
// Whitening of preview frames: against bare GL and against full quads.
#include <cstring>

#include "bench/bare_preview.h"
#include "bench/counters.h"
#include "bench/engines.h"
#include "bench/families.h"

namespace lumora::bench {
namespace {

struct Scene {
  explicit Scene(Size size_in)
      : size(size_in),
        face(RecordOf(PreviewFace(size), size)),
        frame(SkinFrame(size)),
        ours(size.FrameBytes()),
        theirs(size.FrameBytes()) {
    engine.InitPreview(size, true);
    for (int i = 0; i < kWarmFrames; ++i) Run(ours);
    Require(std::memcmp(ours.data(), frame.data(), ours.size()) != 0, "nothing was whitened");
  }

  void Run(const Buffer& result) { engine.Whiten(frame.data(), result.data(), size, face); }
  void RequireSameBytes() const {
    Require(std::memcmp(ours.data(), theirs.data(), ours.size()) == 0, "the two sides differ");
  }

  Size size;
  FACE_INFO_t face;
  Buffer frame, ours, theirs;
  BenchEngine engine;
};

void FullAgainstBareGl(benchmark::State& state, Size size) {
  Plan plan;
  plan.clock = RendererClock();
  plan.sample_ms = 100;
  SetFullQuads(true);
  Scene scene(size);
  const BareContext context;
  BareWhitening bare(size,
                     static_cast<const GLProgWhiteningBase&>(*scene.engine->m_pProgFaceWhitening));
  bare.Run(scene.frame.data(), scene.theirs.data());
  scene.RequireSameBytes();
  ReportPair(state, Ratio::kCost,
             {[&] { scene.Run(scene.ours); }, [&] { scene.engine.MakeCurrent(); }},
             {{[&] { bare.Run(scene.frame.data(), scene.theirs.data()); },
               [&] { context.MakeCurrent(); }}},
             plan);
  SetFullQuads(false);
}

void BoxAgainstFull(benchmark::State& state, Size size) {
  Plan plan;
  plan.clock = RendererClock();
  plan.sample_ms = 100;
  Scene scene(size);
  SetFullQuads(true);
  scene.Run(scene.theirs);
  SetFullQuads(false);
  scene.Run(scene.ours);
  scene.RequireSameBytes();
  ReportPair(state, Ratio::kCost, {[&] { scene.Run(scene.ours); }, [] { SetFullQuads(false); }},
             {{[&] { scene.Run(scene.theirs); }, [] { SetFullQuads(true); }}}, plan);
  SetFullQuads(false);
}

}  // namespace

void RegisterWhitening() {
  for (const Size size : {kVga, k720}) {
    Register("whitening/full_vs_bare_gl/" + size.Text(),
             [size](benchmark::State& state) { FullAgainstBareGl(state, size); });
    Register("whitening/box_vs_full/" + size.Text(),
             [size](benchmark::State& state) { BoxAgainstFull(state, size); });
  }
}

}  // namespace lumora::bench
