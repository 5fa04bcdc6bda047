// SPDX-License-Identifier: Apache-2.0
// The pipeline on the cpu: against the engine on a software renderer, against OpenCV, against
// itself with another thread, against copying.
#include <cstring>
#include <functional>
#include <memory>
#include <opencv2/core.hpp>
#include <string>
#include <utility>
#include <vector>

#include "bench/children.h"
#include "bench/counters.h"
#include "bench/engines.h"
#include "bench/families.h"
#include "bench/instruction_sets.h"
#include "bench/opencv_box.h"
#include "bench/pipelines.h"
#include "pipeline/plan/frame_difference.h"

namespace lumora::bench {
namespace {

constexpr Look kSlimLook{kSlim, 0, 0};
constexpr Look kWhitenLook{0, kWhiten, 0};
constexpr Look kBothLook{kSlim, kWhiten, 0};

/// A frame with a face, and results of both sides.
struct Scene {
  Scene(Size size_in, const Look& look_in, Buffer (*make)(Size) = SkinFrame)
      : size(size_in),
        look(look_in),
        face(PreviewFace(size)),
        frame(make(size)),
        ours(size.FrameBytes()),
        theirs(size.FrameBytes()) {}

  void Run(Pipeline& pipeline, const Buffer& in, const Buffer& out) const {
    ProcessFrame(pipeline, in, out, size, face, look, Chain::Preview);
  }
  void Restore() const {
    std::memcpy(ours.data(), frame.data(), frame.size());
    std::memcpy(theirs.data(), frame.data(), frame.size());
  }
  FrameDifference Difference() const {
    return CompareResults(ConstViewOf(frame, size), ConstViewOf(theirs, size),
                          ConstViewOf(ours, size), face, look);
  }

  Size size;
  Look look;
  Face face;
  Buffer frame, ours, theirs;
};

/// Both backends make the same picture. Chroma that is moved depends on where the renderer samples
/// a texel's border: it is left to the tests, which know the candidates.
void RequireOnePicture(const Scene& scene, Pipeline& cpu) {
  const auto gl = MakePipeline(Device::Gl);
  scene.Run(*gl, scene.frame, scene.theirs);
  scene.Run(cpu, scene.frame, scene.ours);
  const FrameDifference difference = scene.Difference();
  const bool slims = scene.look.slim > 0, whitens = scene.look.whiten > 0;
  const int most = (slims ? 2 : 0) + (whitens ? 3 : 0);
  Require(difference.y.changed > 1000, "nothing was changed");
  Require(difference.stray() == 0, "something was changed that no face may change");
  Require(difference.y.largest <= most && difference.y.mean <= (slims && whitens ? 0.5 : 0.25),
          "the two backends make different pictures");
  Require(slims || difference.largest_chroma() <= 3, "the two backends make different colours");
}

/// The same work of an engine alone, on the whole frame.
class WholeFrameEngine {
 public:
  explicit WholeFrameEngine(const Scene& scene)
      : scene_(scene), record_(RecordOf(scene.face, scene.size)) {
    engine_.InitPreview(scene.size, Whitens(scene.look));
    for (int i = 0; i < kWarmFrames; ++i) Run();
  }

  void Run() {
    uint8_t* const result = scene_.theirs.data();
    if (Whitens(scene_.look)) {
      engine_.Whiten(scene_.frame.data(), result, scene_.size, record_);
    } else {
      std::memcpy(result, scene_.frame.data(), scene_.frame.size());
    }
    if (scene_.look.slim == 0) return;
    engine_.SetLinearFilters();
    if (Whitens(scene_.look)) engine_->LoadPreviewFrameBuffer(result);
    engine_.Slim(result, scene_.size, record_);
  }

 private:
  const Scene& scene_;
  FACE_INFO_t record_;
  BenchEngine engine_;
};

void AgainstEngine(benchmark::State& state, Size size, const Look& look,
                   const InstructionSet& set) {
  const WithInstructionSet with(set);
  Plan plan;
  plan.clock = RendererClock();
  plan.sample_ms = 20;
  const Scene scene(size, look);
  const auto cpu = MakePipeline(Device::Cpu);
  RequireOnePicture(scene, *cpu);
  WholeFrameEngine engine(scene);
  ReportPair(state, Ratio::kSpeed, {[&] { scene.Run(*cpu, scene.frame, scene.ours); }, {}},
             {{[&] { engine.Run(); }, {}}}, plan);
}

/// What the gl backend saves by drawing around the faces only.
void CropAgainstWholeFrame(benchmark::State& state, Size size) {
  Plan plan;
  plan.clock = RendererClock();
  plan.sample_ms = 60;
  const Scene scene(size, kWhitenLook);
  const auto gl = MakePipeline(Device::Gl);
  WholeFrameEngine engine(scene);
  ReportPair(state, Ratio::kCost, {[&] { scene.Run(*gl, scene.frame, scene.ours); }, {}},
             {{[&] { engine.Run(); }, {}}}, plan);
}

/// Both work in place, each time on the frame as it was.
void AgainstPeer(benchmark::State& state, const Scene& scene, Pipeline& cpu,
                 const std::function<void(uint8_t*)>& peer) {
  const auto restore = [&] { scene.Restore(); };
  Plan plan;
  plan.one_call = true;
  plan.rounds = 151;
  ReportPair(state, Ratio::kSpeed, {[&] { scene.Run(cpu, scene.ours, scene.ours); }, restore},
             {{[&] { peer(scene.theirs.data()); }, restore}}, plan);
}

void AgainstOpenCvWhitening(benchmark::State& state, Size size, Mask mask,
                            const InstructionSet& set) {
  const WithInstructionSet with(set);
  cv::setNumThreads(1);
  const Scene scene(size, kWhitenLook);
  const auto cpu = MakePipeline(Device::Cpu);
  OpenCvWhitening opencv(size, scene.face, mask);
  scene.Restore();
  opencv.Run(scene.theirs.data());
  scene.Run(*cpu, scene.frame, scene.ours);
  const FrameDifference difference = scene.Difference();
  Require(difference.y.changed > 1000 && difference.y.mean < 64, "OpenCV whitens another place");
  AgainstPeer(state, scene, *cpu, [&](uint8_t* frame) { opencv.Run(frame); });
}

void AgainstOpenCvSlimming(benchmark::State& state, Size size, bool cached,
                           const InstructionSet& set) {
  const WithInstructionSet with(set);
  cv::setNumThreads(1);
  const auto cpu = MakePipeline(Device::Cpu);
  OpenCvBoxSlimming opencv(size, PreviewFace(size));
  {
    const Scene smooth(size, kSlimLook, SmoothFrame);
    smooth.Restore();
    opencv.Run(smooth.theirs.data());
    smooth.Run(*cpu, smooth.frame, smooth.ours);
    const FrameDifference difference = smooth.Difference();
    Require(difference.y.changed > 1000, "nothing was slimmed");
    Require(difference.y.largest <= 3 && difference.largest_chroma() <= 3,
            "OpenCV makes another picture");
  }
  const Scene scene(size, kSlimLook);
  AgainstPeer(state, scene, *cpu, [&](uint8_t* frame) {
    if (!cached) opencv.BuildMaps();
    opencv.Run(frame);
  });
}

/// The wall clock decides: the processor's time would not show what a second thread is for.
void TwoThreads(benchmark::State& state) {
  const Scene scene(k1080, kBothLook);
  const auto one = MakePipeline(Device::Cpu, 1), two = MakePipeline(Device::Cpu, 2);
  scene.Run(*one, scene.frame, scene.theirs);
  scene.Run(*two, scene.frame, scene.ours);
  Require(std::memcmp(scene.ours.data(), scene.theirs.data(), scene.ours.size()) == 0,
          "the two sides differ");
  Plan plan;
  plan.clock = Clock::kWall;
  plan.sample_ms = 30;
  plan.rounds = 31;
  ReportPair(state, Ratio::kCost, {[&] { scene.Run(*two, scene.frame, scene.ours); }, {}},
             {{[&] { scene.Run(*one, scene.frame, scene.theirs); }, {}}}, plan);
}

/// A capture with one face whose eyes are that far apart, against copying its planes.
void AgainstCopying(benchmark::State& state, double eye_distance) {
  const Size size = k48Megapixels;
  const Buffer frame = SkinFrame(size), ours(size.FrameBytes()), theirs(size.FrameBytes());
  const Face face = CentredFace(size, eye_distance);
  const auto cpu = MakePipeline(Device::Cpu);
  const auto run = [&] { ProcessFrame(*cpu, frame, ours, size, face, kBothLook, Chain::Capture); };
  const auto copy = [&] {
    std::memcpy(theirs.data(), frame.data(), size.Pixels());
    std::memcpy(theirs.data() + size.Pixels(), frame.data() + size.Pixels(), size.Pixels() / 2);
  };
  run();
  copy();
  const FrameDifference difference =
      CompareResults(ConstViewOf(frame, size), ConstViewOf(ours, size), ConstViewOf(theirs, size),
                     face, kBothLook);
  Require(difference.y.changed > 1000 && difference.stray() == 0, "the capture is wrong");
  Plan plan;
  plan.sample_ms = 1;
  ReportPair(state, Ratio::kCost, {run, {}}, {{copy, {}}}, plan);
}

/// The peak over what a small capture leaves behind, against the same of a copy.
void CapturePeak(benchmark::State& state) {
  const std::vector<double> ours = StartChild("cpu-capture-peak", {});
  const std::vector<double> copy = StartChild("copy-peak", {});
  constexpr double kMebibyte = 1 << 20;
  state.counters["ratio"] = (ours[1] - ours[0]) / (copy[1] - copy[0]);
  state.counters["peak_mib"] = (ours[1] - ours[0]) / kMebibyte;
  state.counters["copy_mib"] = (copy[1] - copy[0]) / kMebibyte;
  state.SetIterationTime(1e-9);
}

using Body = std::function<void(benchmark::State&, Size, const InstructionSet&)>;

void Add(const std::string& what, const InstructionSet& set, Size size, const Body& body) {
  Register("cpu/" + what + "/" + set.name + "/" + size.Text(),
           [=](benchmark::State& state) { body(state, size, set); });
}

void RegisterFor(const InstructionSet& set) {
  const struct {
    const char* name;
    Look look;
  } looks[] = {{"whitening", kWhitenLook}, {"slimming", kSlimLook}, {"both", kBothLook}};
  for (const auto& [name, look] : looks) {
    for (const Size size : {kVga, k720, k1080}) {
      Add(name, set, size, [look = look](benchmark::State& state, Size at, const auto& with) {
        AgainstEngine(state, at, look, with);
      });
    }
  }
  for (const auto& [name, mask] : {std::pair("opencv_whitening", Mask::kBlended),
                                   std::pair("opencv_whitening_copied", Mask::kCopied)}) {
    Add(name, set, k720, [mask = mask](benchmark::State& state, Size at, const auto& with) {
      AgainstOpenCvWhitening(state, at, mask, with);
    });
  }
  for (const auto& [name, cached] :
       {std::pair("opencv_slimming", false), std::pair("opencv_slimming_cached", true)}) {
    Add(name, set, k720, [cached = cached](benchmark::State& state, Size at, const auto& with) {
      AgainstOpenCvSlimming(state, at, cached, with);
    });
  }
}

}  // namespace

void RegisterCpu() {
  for (const Size size : {k720, k1080}) {
    Register("pipeline/whitening_crop/" + size.Text(),
             [size](benchmark::State& state) { CropAgainstWholeFrame(state, size); });
  }
  for (const InstructionSet& set : InstructionSets()) RegisterFor(set);
  Register("cpu/two_threads/" + k1080.Text(), TwoThreads);
  Register("cpu/capture_48mp/face_of_a_group",
           [](benchmark::State& state) { AgainstCopying(state, 0.02); });
  Register("cpu/capture_48mp/face_of_a_portrait",
           [](benchmark::State& state) { AgainstCopying(state, 0.17); });
  Register("cpu/capture_48mp/memory", CapturePeak);
}

}  // namespace lumora::bench
