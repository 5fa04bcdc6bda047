// SPDX-License-Identifier: Apache-2.0
// Times of single steps, each with a glFinish at its end. There is nothing to compare them with:
// they tell what bounds a chain on the machine at hand.
#include <cstring>
#include <functional>

#include "bench/counters.h"
#include "bench/engines.h"
#include "bench/families.h"

namespace lumora::bench {
namespace {

void Step(benchmark::State& state, const std::function<void()>& step) {
  Plan plan;
  plan.sample_ms = 30;
  plan.rounds = 7;
  ReportTime(state,
             {[&] {
                step();
                glFinish();
              },
              {}},
             plan);
}

/// A preview engine in colour-convert mode: it has the images and programs of every step.
struct Preview {
  explicit Preview(Size size_in)
      : size(size_in),
        face(RecordOf(PreviewFace(size), size)),
        frame(SkinFrame(size)),
        result(size.FrameBytes()) {
    engine.InitPreview(size, true);
    for (int i = 0; i < kWarmFrames; ++i) {
      engine.Whiten(frame.data(), result.data(), size, face);
      engine.Slim(result.data(), size, face);
    }
  }

  Size size;
  FACE_INFO_t face;
  Buffer frame, result;
  BenchEngine engine;
};

using PreviewStep = void (*)(Preview&);

constexpr struct {
  const char* name;
  PreviewStep step;
} kPreviewSteps[] = {
    {"load", [](Preview& p) { p.engine->LoadPreviewFrameBuffer(p.frame.data()); }},
    {"warp", [](Preview& p) { p.engine->DrawFaceDist(0); }},
    {"pack_luma", [](Preview& p) { p.engine->DrawRGBtoYY(1); }},
    {"pack_chroma", [](Preview& p) { p.engine->DrawRGBtoUV(1); }},
    {"pack_and_read_back",
     [](Preview& p) {
       p.engine->CopyMemYUVfromSrcTexture(p.result.data(), p.result.data() + p.size.Pixels());
     }},
    {"yuv_to_rgb", [](Preview& p) { p.engine->DrawColorConvertYUV2RGB(); }},
    {"rgb_to_hsi", [](Preview& p) { p.engine->DrawColorConvertRGB2HSI(); }},
    {"measure_face",
     [](Preview& p) {
       p.engine->SetFaceWhiteningParameters(p.face, kIntensityLevel, kSaturationLevel,
                                            BEAUTYSHOT_EFFECT_BOTH, 0, false, nullptr);
     }},
    {"whiten", [](Preview& p) { p.engine->DrawFaceWhite(0); }},
    {"hsi_to_yuv", [](Preview& p) { p.engine->DrawColorConvertHSI2YUV(); }},
    {"slimming_chain",
     [](Preview& p) {
       p.engine->LoadPreviewFrameBuffer(p.frame.data());
       p.engine.Slim(p.result.data(), p.size, p.face);
     }},
    {"whitening_chain",
     [](Preview& p) { p.engine.Whiten(p.frame.data(), p.result.data(), p.size, p.face); }},
};

/// A capture whose face takes a fifth of the frame's width.
struct Capture {
  explicit Capture(Size size_in)
      : size(size_in),
        face(RecordOf(CentredFace(size, 0.12), size, Chain::Capture)),
        frame(SkinFrame(size)) {}

  uint8_t* chroma() const { return frame.data() + size.Pixels(); }

  Size size;
  FACE_INFO_t face;
  Buffer frame;
  BenchEngine engine;
};

void InitBlocks(Capture& c) {
  int stride = 0;
  c.engine->InitCapture(nullptr, nullptr, c.size.width, c.size.height, &stride, true);
}

void InitPlanes(Capture& c) {
  int stride = 0;
  c.engine->InitCapture(c.frame.data(), c.chroma(), c.size.width, c.size.height, &stride, false);
}

void Release(Capture& c) {
  c.engine->DeInitCapture();
}

void Whiten(Capture& c) {
  c.engine->DoFaceWhiteningLarge(c.frame.data(), c.chroma(), &c.face, 1, kIntensityLevel,
                                 kSaturationLevel, BEAUTYSHOT_EFFECT_BOTH);
}

void BringBack(Capture& c) {
  c.engine->CopyMemYUVfromSrcTextureLarge(c.frame.data(), c.chroma(), 0, 1);
}

void Slim(Capture& c) {
  c.engine->FaceProcessLarge(c.frame.data(), c.chroma(), c.size.width, c.size.height, 0, &c.face, 1,
                             0);
}

using CaptureStep = void (*)(Capture&);

constexpr struct {
  const char* name;
  CaptureStep init;  ///< null: the step does that itself
  CaptureStep step;
} kCaptureSteps[] = {
    {"set_up_whitening", nullptr,
     [](Capture& c) {
       InitBlocks(c);
       Release(c);
     }},
    {"whiten", InitBlocks, Whiten},
    {"bring_back", InitBlocks, BringBack},
    {"set_up_slimming", nullptr,
     [](Capture& c) {
       InitPlanes(c);
       Release(c);
     }},
    {"slim", InitPlanes, Slim},
};

void MeasureCapture(benchmark::State& state, Size size, CaptureStep init, CaptureStep step) {
  Capture capture(size);
  if (init != nullptr) init(capture);
  if (step == BringBack) Whiten(capture);  // it returns the blocks that whitening names
  Step(state, [&] { step(capture); });
  if (init != nullptr) Release(capture);
}

}  // namespace

void RegisterStages() {
  for (const auto& row : kPreviewSteps) {
    Register(std::string("stage/preview_1080/") + row.name, [row](benchmark::State& state) {
      Preview preview(k1080);
      Step(state, [&] { row.step(preview); });
    });
  }
  for (const auto& row : kCaptureSteps) {
    for (const auto& [name, size] :
         {std::pair{"12mp", k12Megapixels}, std::pair{"48mp", k48Megapixels}}) {
      Register(std::string("stage/capture_") + name + "/" + row.name,
               [row, size = size](benchmark::State& state) {
                 MeasureCapture(state, size, row.init, row.step);
               });
    }
  }
}

}  // namespace lumora::bench
