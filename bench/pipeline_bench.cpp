// SPDX-License-Identifier: Apache-2.0
// The pipeline, frame in to frame out, over the engine alone.
#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

#include "bench/counters.h"
#include "bench/engines.h"
#include "bench/families.h"
#include "bench/pipelines.h"

namespace lumora::bench {
namespace {

Size Padded(Size size) {
  const auto up = [](int side) { return (side + 31) / 32 * 32; };
  return {up(size.width), up(size.height)};
}

/// The pipeline's result is that of an engine for frames of whole multiples of 32 pixels, padded by
/// the last row.
void RequireEngineBytes(const Buffer& frame, const Buffer& result, Size size, const Face& face) {
  const Size padded = Padded(size);
  const auto width = static_cast<size_t>(size.width);
  Require(padded.width == size.width, "the width is no multiple of 32");
  const Buffer work(padded.FrameBytes());
  const auto fill = [&](const uint8_t* from, int rows, uint8_t* to, int padded_rows) {
    for (int row = 0; row < padded_rows; ++row) {
      const auto source = static_cast<size_t>(std::min(row, rows - 1));
      std::memcpy(to + static_cast<size_t>(row) * width, from + source * width, width);
    }
  };
  BenchEngine engine;
  engine.InitPreview(padded, false);
  const FACE_INFO_t record = RecordOf(face, padded);
  for (int i = 0; i < kWarmFrames; ++i) {
    fill(frame.data(), size.height, work.data(), padded.height);
    fill(frame.data() + size.Pixels(), size.height / 2, work.data() + padded.Pixels(),
         padded.height / 2);
    engine.SetLinearFilters();
    engine.Slim(work.data(), padded, record);
  }
  Require(std::memcmp(work.data(), result.data(), size.Pixels()) == 0 &&
              std::memcmp(work.data() + padded.Pixels(), result.data() + size.Pixels(),
                          size.Pixels() / 2) == 0,
          "the two sides differ");
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

  const auto pipeline = MakePipeline(Device::Gl);
  const auto run_pipeline = [&] {
    Look look;
    look.slim = kSlim;
    ProcessFrame(*pipeline, frame, ours, size, face, look, Chain::Preview);
  };
  run_pipeline();
  RequireEngineBytes(frame, ours, size, face);

  BenchEngine engine;
  engine.InitPreview(size, false);
  const auto run_engine = [&] {
    engine.SetLinearFilters();
    std::memcpy(theirs.data(), frame.data(), frame.size());
    engine.Slim(theirs.data(), size, record);
  };
  for (int i = 0; i < kWarmFrames; ++i) run_engine();
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
