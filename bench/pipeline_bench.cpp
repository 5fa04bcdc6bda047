// The pipeline, frame in to frame out, over the engine alone.
#include <cstring>
#include <memory>
#include <vector>

#include "bench/engines.h"
#include "bench/families.h"
#include "bench/report.h"
#include "pipeline/pipeline.h"

namespace lumora::bench {
namespace {

FrameView ViewOf(const Buffer& frame, Size size) {
  return {PixelFormat::NV21,
          size.width,
          size.height,
          {frame.data(), frame.data() + size.Pixels(), nullptr},
          {size.width, size.width, 0}};
}

/// The filters that the pipeline chooses for slimming, whatever the frames before did.
void SetLinearFilters(BenchEngine& engine) {
  for (const SEGLImage* image : {engine->m_pRGBImage, engine->m_pWorkImage[0]}) {
    glBindTexture(GL_TEXTURE_2D, image->m_hTexture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
  }
}

/// Slimming from one frame to another. The engine works in place, so that its caller has to copy
/// the frame first.
void Slimming(benchmark::State& state, Size size, bool full) {
  Plan plan;
  plan.clock = RendererClock();
  plan.sample_ms = 60;
  plan.rounds = 21;
  SetFullQuads(full);
  const Buffer frame = RandomFrame(size);
  const Buffer ours(size.FrameBytes());
  const Buffer theirs(size.FrameBytes());
  const Face face = PreviewFace(size);
  const FACE_INFO_t record = RecordOf(face, size);

  Status status;
  const auto pipeline = Pipeline::Create(&status);
  Require(pipeline != nullptr, status.message);
  BenchEngine engine;
  engine.InitPreview(size, false);
  const auto run_pipeline = [&] {
    Look look;
    look.slim = 50;
    const Status done = pipeline->Process(AsConst(ViewOf(frame, size)), ViewOf(ours, size), {face},
                                          look, nullptr, {Chain::Preview});
    Require(done.ok(), done.message);
  };
  const auto run_engine = [&] {
    SetLinearFilters(engine);
    std::memcpy(theirs.data(), frame.data(), frame.size());
    engine.Slim(theirs.data(), size, record);
  };
  for (int i = 0; i < kWarmFrames; ++i) {
    run_pipeline();
    run_engine();
  }
  Require(std::memcmp(ours.data(), theirs.data(), ours.size()) == 0, "the two sides differ");
  ReportPair(state, Ratio::kCost, {run_pipeline, {}}, {{run_engine, {}}}, plan);
  SetFullQuads(false);
}

}  // namespace

void RegisterPipeline() {
  for (const Size size : {kVga, k720, k1080}) {
    Register("pipeline/slimming/" + size.Text(),
             [size](benchmark::State& state) { Slimming(state, size, false); });
  }
  Register("pipeline/slimming_full_quads/" + k720.Text(),
           [](benchmark::State& state) { Slimming(state, k720, true); });
}

}  // namespace lumora::bench
