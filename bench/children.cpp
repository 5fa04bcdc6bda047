// SPDX-License-Identifier: Apache-2.0
#include "bench/children.h"

#include <unistd.h>

#include <array>
#include <climits>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <functional>
#include <map>
#include <optional>

#include "bench/bare_gl.h"
#include "bench/counters.h"
#include "bench/engines.h"
#include "bench/pipelines.h"
#include "lumora/programs/programs.h"
#include "lumora/programs/shader_texts.h"

namespace lumora::bench {
namespace {

/// Prints the processor and wall times of `work`.
void Timed(const std::function<void()>& work) {
  const double processor = ProcessorNow();
  const double wall = WallNow();
  work();
  const double wall_time = WallNow() - wall;
  std::printf("%.6f %.6f\n", ProcessorNow() - processor, wall_time);
}

template <typename... Programs>
bool LoadAll(Programs&&... programs) {
  return (programs.Load() && ...);
}

void LoadPrograms() {
  const BareContext context;
  Timed([] {
    const bool loaded =
        LoadAll(GLProgRGBtoY(), GLProgRGBtoUV(), GLProgCheekSlimmer(), GLProgFaceWhitening(),
                GLProgFaceWhiteningLarge(), GLProgRectificaton(), GLProgRadialDistortion(),
                GLProgYUV2RGB(), GLProgRGB2HSI(), GLProgYUV2HSI(), GLProgHSI2YUV());
    Require(loaded, "a program does not load");
  });
}

/// The same programs without a cache, and nothing kept of them.
void CompilePrograms() {
  const BareContext context;
  Timed([] {
    namespace s = shaders;
    for (const char* fragment : {s::kRgbToYFrag, s::kRgbToUvFrag, s::kYuvToRgbFrag,
                                 s::kRgbToHsiFrag, s::kYuvToHsiFrag, s::kHsiToYuvFrag}) {
      BareProgram(s::kPassThroughVert, fragment);
    }
    for (const char* fragment :
         {s::kCheekSlimmerFrag, s::kFaceWhiteningFrag, s::kFaceWhiteningLargeFrag,
          s::kRectificationFrag, s::kRadialDistortionFrag}) {
      BareProgram(s::kPassThroughEffectsVert, fragment);
    }
  });
}

/// The engine whitens a capture in block mode, in place.
void WhitenCapture(BenchEngine& engine, Size size, const Buffer& frame, FACE_INFO_t* face) {
  int stride = 0;
  engine->InitCapture(nullptr, nullptr, size.width, size.height, &stride, true);
  const bool done =
      engine->DoFaceWhiteningLarge(frame.data(), frame.data() + size.Pixels(), face, 1,
                                   kIntensityLevel, kSaturationLevel,
                                   BEAUTYSHOT_EFFECT_BOTH) == 1 &&
      engine->CopyMemYUVfromSrcTextureLarge(frame.data(), frame.data() + size.Pixels(), 0, 1) == 1;
  engine->DeInitCapture();
  Require(done, "whitening the capture failed");
}

/// From nothing to the first frame, slimmed or whitened.
void FirstFrame(bool whiten) {
  const Buffer frame = SkinFrame(k720);
  const Buffer result(k720.FrameBytes());
  const FACE_INFO_t face = RecordOf(PreviewFace(k720), k720);
  std::optional<BenchEngine> engine;  // its release is no part of a start
  Timed([&] {
    engine.emplace();
    engine->InitPreview(k720, whiten);
    if (whiten) {
      engine->Whiten(frame.data(), result.data(), k720, face);
    } else {
      engine->Slim(frame.data(), k720, face);
    }
  });
}

/// From nothing to a first frame of each chain: slimmed, whitened, a whitened capture. The frames
/// are so small that programs count and not pixels.
void FirstOfEach() {
  constexpr Size kSmall{256, 192};
  const Buffer frame = SkinFrame(kSmall);
  const Buffer result(kSmall.FrameBytes());
  const FACE_INFO_t face = RecordOf(PreviewFace(kSmall), kSmall);
  FACE_INFO_t captured = RecordOf(CentredFace(kSmall, 0.35), kSmall, Chain::Capture);
  std::optional<BenchEngine> engine;
  Timed([&] {
    engine.emplace();
    engine->InitPreview(kSmall, true);
    engine->Slim(frame.data(), kSmall, face);
    engine->Whiten(frame.data(), result.data(), kSmall, face);
    (*engine)->DeInit();
    WhitenCapture(*engine, kSmall, frame, &captured);
  });
}

/// A line of /proc/self/status, bytes.
double StatusBytes(const char* name) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    double kibibytes = 0;
    if (line.rfind(name, 0) == 0 &&
        std::sscanf(line.c_str() + std::strlen(name), ": %lf", &kibibytes) == 1) {
      return kibibytes * 1024;
    }
  }
  return 0;
}

/// A capture with a face that fills the frame, and an engine for it.
void WhitenLoneCapture(Size size) {
  const Buffer frame = SkinFrame(size);
  FACE_INFO_t face = RecordOf(CentredFace(size, 0.35), size, Chain::Capture);
  BenchEngine engine;
  WhitenCapture(engine, size, frame, &face);
}

/// Prints the resident size with driver and programs loaded, then the peak of a large capture.
void CapturePeak() {
  WhitenLoneCapture({1344, 1008});
  const double before = StatusBytes("VmRSS");
  WhitenLoneCapture(k48Megapixels);
  std::printf("%.0f %.0f\n", before, StatusBytes("VmHWM"));
}

/// What a process does with a capture of that size that it has read, into memory of its own.
using CaptureWork = std::function<void(Size size, const Buffer& frame, const Buffer& result)>;

/// Prints the resident size after a small capture, then the peak of a large one.
void FramePeak(const CaptureWork& work) {
  const auto run = [&work](Size size) {
    const Buffer frame = SkinFrame(size), result(size.FrameBytes());
    work(size, frame, result);
  };
  run({1344, 1008});
  const double before = StatusBytes("VmRSS");
  run(k48Megapixels);
  std::printf("%.0f %.0f\n", before, StatusBytes("VmHWM"));
}

void CpuCapturePeak() {
  const auto pipeline = MakePipeline(Device::Cpu);
  FramePeak([&pipeline](Size size, const Buffer& frame, const Buffer& result) {
    const Look look = {kSlim, kWhiten, 0};
    ProcessFrame(*pipeline, frame, result, size, PreviewFace(size), look, Chain::Capture);
  });
}

void CopyPeak() {
  FramePeak([](Size, const Buffer& frame, const Buffer& result) {
    std::memcpy(result.data(), frame.data(), frame.size());
  });
}

std::string OwnPath() {
  std::array<char, PATH_MAX> path{};
  const ssize_t length = readlink("/proc/self/exe", path.data(), path.size() - 1);
  return length > 0 ? std::string(path.data(), static_cast<size_t>(length)) : std::string();
}

}  // namespace

int RunChild(const std::string& name) {
  const std::map<std::string, std::function<void()>> children = {
      {"load-programs", LoadPrograms},
      {"compile-programs", CompilePrograms},
      {"first-slimmed", [] { FirstFrame(false); }},
      {"first-whitened", [] { FirstFrame(true); }},
      {"first-of-each", FirstOfEach},
      {"capture-peak", CapturePeak},
      {"cpu-capture-peak", CpuCapturePeak},
      {"copy-peak", CopyPeak}};
  const auto child = children.find(name);
  if (child == children.end()) return 2;
  try {
    child->second();
  } catch (const std::exception& error) {
    std::fprintf(stderr, "bench_lumora: %s: %s\n", name.c_str(), error.what());
    return 1;
  }
  return 0;
}

std::vector<double> StartChild(const std::string& name, const std::vector<std::string>& variables) {
  std::string command = "env";
  for (const std::string& variable : variables) command += " '" + variable + "'";
  command += " '" + OwnPath() + "' --child=" + name;
  FILE* const output = popen(command.c_str(), "r");
  Require(output != nullptr, "a child process does not start");
  std::vector<double> numbers;
  for (double number = 0; std::fscanf(output, "%lf", &number) == 1;) numbers.push_back(number);
  Require(pclose(output) == 0 && numbers.size() == 2, "the child " + name + " failed");
  return numbers;
}

}  // namespace lumora::bench
