// SPDX-License-Identifier: Apache-2.0
// Slimming of preview frames: against bare GL, against full quads, against OpenCV, and its
// read-back.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <opencv2/core.hpp>

#include "bench/bare_preview.h"
#include "bench/counters.h"
#include "bench/engines.h"
#include "bench/families.h"
#include "bench/opencv_slimming.h"

namespace lumora::bench {
namespace {

/// An engine that slims one face, and frames for both sides.
struct Scene {
  explicit Scene(Size size_in, Buffer (*make)(Size) = RandomFrame)
      : size(size_in),
        face(RecordOf(PreviewFace(size), size)),
        original(make(size)),
        ours(size.FrameBytes()),
        theirs(size.FrameBytes()) {
    engine.InitPreview(size, false);
    for (int i = 0; i < kWarmFrames; ++i) {
      Restore();
      Run();
    }
  }

  void Restore() const {
    std::memcpy(ours.data(), original.data(), ours.size());
    std::memcpy(theirs.data(), original.data(), theirs.size());
  }
  void Run() { engine.Slim(ours.data(), size, face); }
  const GLProgWarp& Warp() { return static_cast<const GLProgWarp&>(*engine->m_pProgCheekSlimmer); }
  Side Engine() {
    return {[this] { Run(); }, [this] { engine.MakeCurrent(); }};
  }

  Size size;
  FACE_INFO_t face;
  Buffer original, ours, theirs;
  BenchEngine engine;
};

struct FullQuads {
  FullQuads() { SetFullQuads(true); }
  ~FullQuads() { SetFullQuads(false); }
};

void RequireSameBytes(const Buffer& a, const Buffer& b) {
  Require(std::memcmp(a.data(), b.data(), a.size()) == 0, "the two sides differ");
}

void FullAgainstBareGl(benchmark::State& state, Size size) {
  const FullQuads full;
  const Clock clock = RendererClock();
  Scene scene(size);
  const BareContext context;
  BareSlimming bare(size, scene.Warp());
  scene.Restore();
  bare.Run(scene.theirs.data());
  scene.engine.MakeCurrent();
  scene.Run();
  RequireSameBytes(scene.ours, scene.theirs);

  Plan plan;
  plan.clock = clock;
  plan.sample_ms = 60;
  plan.rounds = 21;
  ReportPair(state, Ratio::kCost, scene.Engine(),
             {{[&] { bare.Run(scene.theirs.data()); }, [&] { context.MakeCurrent(); }}}, plan);
}

/// The box around the circle outside of which nothing moves, as a share of the frame.
double BoxShare(const GLProgWarp& warp) {
  const auto extent = [](double centre, double reach) {
    return std::min(centre + reach, 1.0) - std::max(centre - reach, 0.0);
  };
  const double radius = static_cast<double>(warp.m_fvController[3]);
  return extent(static_cast<double>(warp.m_fvController[0]), radius) *
         extent(static_cast<double>(warp.m_fvController[1]),
                radius / static_cast<double>(warp.m_fAspectRatio));
}

void BoxAgainstFull(benchmark::State& state, Size size) {
  Plan plan;
  plan.clock = RendererClock();
  plan.sample_ms = 40;
  Scene scene(size);
  scene.Restore();
  scene.Run();
  SetFullQuads(true);
  scene.engine.Slim(scene.theirs.data(), size, scene.face);
  SetFullQuads(false);
  RequireSameBytes(scene.ours, scene.theirs);

  ReportPair(state, Ratio::kCost, {[&] { scene.Run(); }, [] { SetFullQuads(false); }},
             {{[&] { scene.engine.Slim(scene.theirs.data(), size, scene.face); },
               [] { SetFullQuads(true); }}},
             plan);
  SetFullQuads(false);
  state.counters["share"] = BoxShare(scene.Warp());
}

/// The largest difference of two frames.
int LargestDifference(const Buffer& a, const Buffer& b) {
  int largest = 0;
  for (size_t i = 0; i < a.size(); ++i) {
    largest = std::max(largest, std::abs(int{a.data()[i]} - int{b.data()[i]}));
  }
  return largest;
}

enum class Peer { kMapEveryFrame, kMapCached, kTuned };

void RunPeer(OpenCvSlimming& opencv, Peer peer, uint8_t* frame) {
  if (peer != Peer::kMapCached) opencv.BuildMap(peer == Peer::kTuned);
  if (peer == Peer::kTuned) {
    opencv.RemapPlanes(frame);
  } else {
    opencv.Remap(frame);
  }
}

/// What OpenCV's pictures may differ by: it interpolates where the engine takes the nearest pixel,
/// and rounds twice on the way to colours and back.
constexpr int kPeerBound = 3;

/// With threads, the wall clock decides: the processor's time would not show what they are for.
void AgainstOpenCv(benchmark::State& state, Size size, Peer peer, int threads) {
  const Clock clock = threads == 1 ? RendererClock() : Clock::kWall;
  SetRendererThreads(threads == 1 ? 0 : threads);
  cv::setNumThreads(threads);
  {
    Scene scene(size, SmoothFrame);
    OpenCvSlimming opencv(size, scene.Warp());
    scene.Restore();
    scene.Run();
    opencv.BuildMap(false);
    RunPeer(opencv, peer, scene.theirs.data());
    const int slimmed = LargestDifference(scene.ours, scene.original);
    const int differs = LargestDifference(scene.ours, scene.theirs);
    Require(slimmed > 2 * kPeerBound, "nothing was slimmed");
    Require(differs <= kPeerBound, "OpenCV makes another picture");
  }
  Scene scene(size);
  OpenCvSlimming opencv(size, scene.Warp());
  opencv.BuildMap(false);
  Plan plan;
  plan.clock = clock;
  plan.sample_ms = 30;
  ReportPair(state, Ratio::kSpeed, scene.Engine(),
             {{[&] { RunPeer(opencv, peer, scene.theirs.data()); }, {}}}, plan);
  SetRendererThreads(0);
  cv::setNumThreads(1);
}

/// The engine's way from its packed targets to the caller's planes, against staging memory and row
/// copies. Each call follows a draw: there is nothing to read back otherwise.
void ReadBack(benchmark::State& state, Size size) {
  const FullQuads full;  // whole planes
  Plan plan;
  plan.clock = RendererClock();
  plan.one_call = true;
  plan.rounds = 101;
  Scene scene(size);
  scene.Restore();
  const auto draw = [&] {
    scene.engine->DrawRGBtoYY(-1);
    scene.engine->DrawRGBtoUV(-1);
    glFinish();
  };
  const auto read = [&] {
    Require(scene.engine->MemcpyYUV(scene.ours.data(), scene.ours.data() + size.Pixels()) == 1,
            "MemcpyYUV failed");
  };
  Buffer staging(size.FrameBytes());
  const auto copy_rows = [&](GLuint framebuffer, int rows, uint8_t* to) {
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glReadPixels(0, 0, size.width / 4, rows, GL_RGBA, GL_UNSIGNED_BYTE, staging.data());
    const auto bytes = static_cast<size_t>(size.width);
    for (size_t row = 0; row < static_cast<size_t>(rows); ++row) {
      std::memcpy(to + row * bytes, staging.data() + row * bytes, bytes);
    }
  };
  const auto copy = [&] {
    copy_rows(scene.engine->m_hYYYYFbo, size.height, scene.theirs.data());
    copy_rows(scene.engine->m_hUVUVFbo, size.height / 2, scene.theirs.data() + size.Pixels());
  };
  draw();
  read();
  draw();
  copy();
  RequireSameBytes(scene.ours, scene.theirs);
  ReportPair(state, Ratio::kCost, {read, draw}, {{copy, draw}}, plan);
}

}  // namespace

void RegisterSlimming() {
  const auto add = [](const char* name, Size size, auto body) {
    Register(std::string(name) + "/" + size.Text(),
             [size, body](benchmark::State& state) { body(state, size); });
  };
  for (const Size size : {kVga, k720, k1080}) {
    add("slimming/full_vs_bare_gl", size, FullAgainstBareGl);
    add("slimming/box_vs_full", size, BoxAgainstFull);
    add("slimming/read_back", size, ReadBack);
    const struct {
      const char* name;
      Peer peer;
      int threads;
    } peers[] = {{"slimming/opencv", Peer::kMapEveryFrame, 1},
                 {"slimming/opencv_cached", Peer::kMapCached, 1},
                 {"slimming/opencv_tuned", Peer::kTuned, 1},
                 {"slimming/opencv_2_threads", Peer::kMapEveryFrame, 2},
                 {"slimming/opencv_cached_2_threads", Peer::kMapCached, 2},
                 {"slimming/opencv_tuned_2_threads", Peer::kTuned, 2}};
    for (const auto& row : peers) {
      add(row.name, size, [row](benchmark::State& state, Size at) {
        AgainstOpenCv(state, at, row.peer, row.threads);
      });
    }
  }
}

}  // namespace lumora::bench
