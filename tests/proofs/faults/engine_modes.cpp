// SPDX-License-Identifier: Apache-2.0
#include "proofs/faults/engine_modes.h"

#include <gtest/gtest.h>

#include <map>

#include "support/faces.h"

namespace lumora::test {
namespace {

constexpr int kWidth = 64;
constexpr int kHeight = 48;

// Larger than the largest texture that captures go by, in as few pixels as that can be had.
constexpr int kLargeWidth = 4100;
constexpr int kLargeHeight = 32;

FACE_INFO_t FaceAt(int x, int y, int half_width) {
  FaceRecord record = PortraitFace(x, y, half_width);
  record.set(FaceRecord::kDistValid, 1);
  return record.as<FACE_INFO_t>();
}

FACE_INFO_t* Faces() {
  static FACE_INFO_t faces[3] = {FaceAt(20, 20, 10), FaceAt(40, 24, 12), FaceAt(30, 16, 8)};
  return faces;
}

int SlimPlanes(GPUBeautyFace& engine, CallerFrame& frame) {
  return engine.FaceProcessLarge(frame.luma(), frame.chroma(), kWidth, kHeight, 0, Faces(), 2, 5);
}

int WhitenCapture(GPUBeautyFace& engine, CallerFrame& frame) {
  return engine.DoFaceWhiteningLarge(frame.luma(), frame.chroma(), Faces(), 2, 60, 40,
                                     BEAUTYSHOT_EFFECT_BOTH);
}

int BringBack(GPUBeautyFace& engine, CallerFrame& frame) {
  return engine.CopyMemYUVfromSrcTextureLarge(frame.luma(), frame.chroma(), 0, 2);
}

const std::vector<Step> kPreviewSteps = {
    {"FaceProcess",
     [](GPUBeautyFace& e, CallerFrame& f) {
       return e.FaceProcess(f.luma(), f.chroma(), 5, Faces()[0], 0);
     }},
    {"FaceProcessMultiface, none",
     [](GPUBeautyFace& e, CallerFrame& f) {
       return e.FaceProcessMultiface(f.luma(), f.chroma(), 5, nullptr, 0, 0);
     }},
    {"FaceProcessMultiface, three",
     [](GPUBeautyFace& e, CallerFrame& f) {
       return e.FaceProcessMultiface(f.luma(), f.chroma(), 5, Faces(), 3, 0);
     }},
    {"Rectification",
     [](GPUBeautyFace& e, CallerFrame& f) { return e.Rectification(f.luma(), f.chroma(), 10, 0); }},
    {"RadialRectification", [](GPUBeautyFace& e, CallerFrame& f) {
       return e.RadialRectification(f.luma(), f.chroma(), 0, 1);
     }}};

// One frame, from the caller's memory through every stage and back.
const std::vector<Step> kColourSteps = {
    {"LoadPreviewFrameBuffer",
     [](GPUBeautyFace& e, CallerFrame& f) { return e.LoadPreviewFrameBuffer(f.luma()); }},
    {"ConvertYUV", [](GPUBeautyFace& e, CallerFrame&) { return e.ConvertYUV(); }},
    {"DoFaceWhitening",
     [](GPUBeautyFace& e, CallerFrame&) {
       return e.DoFaceWhitening(Faces(), 3, 60, 40, BEAUTYSHOT_EFFECT_BOTH);
     }},
    {"ConvertHSItoYUV", [](GPUBeautyFace& e, CallerFrame&) { return e.ConvertHSItoYUV(); }},
    {"CopyMemYUVfromSrcTexture",
     [](GPUBeautyFace& e, CallerFrame& f) {
       return e.CopyMemYUVfromSrcTexture(f.luma(), f.chroma());
     }},
    {"FaceProcess",
     [](GPUBeautyFace& e, CallerFrame& f) {
       return e.FaceProcess(f.luma(), f.chroma(), 5, Faces()[0], 0);
     }},
    {"Rectification", [](GPUBeautyFace& e, CallerFrame& f) {
       return e.Rectification(f.luma(), f.chroma(), -10, 0);
     }}};

const std::vector<Step> kBlockSteps = {{"DoFaceWhiteningLarge", WhitenCapture},
                                       {"CopyMemYUVfromSrcTextureLarge", BringBack}};

template <bool colour>
int SetUpPreview(GPUBeautyFace& engine) {
  return engine.Init(kWidth, kHeight, kWidth, kHeight, nullptr, colour);
}

int SetUpPlanes(GPUBeautyFace& engine) {
  CallerFrame frame(kWidth, kHeight, NoisePlanes(kWidth, kHeight, 2));
  return engine.InitCapture(frame.luma(), frame.chroma(), kWidth, kHeight, nullptr, false);
}

template <int width, int height>
int SetUpBlocks(GPUBeautyFace& engine) {
  int stride = 0;
  return engine.InitCapture(nullptr, nullptr, width, height, &stride, true);
}

int ReleasePreview(GPUBeautyFace& engine) {
  return engine.DeInit();
}
int ReleaseCapture(GPUBeautyFace& engine) {
  return engine.DeInitCapture();
}

const std::vector<const char*> kPreviewImages = {"input",  "work 0", "work 1",
                                                 "work 2", "luma",   "chroma"};
const std::vector<const char*> kPreviewPrograms = {
    "RGBtoY", "RGBtoUV", "CheekSlimmer", "FaceWhitening", "Rectification", "RadialDistortion"};
const std::vector<const char*> kBlockPrograms = {"RGBtoY", "RGBtoUV", "FaceWhiteningLarge",
                                                 "YUV2HSI", "HSI2YUV"};

const std::vector<Mode> kModes = {
    {"Preview",
     kWidth,
     kHeight,
     kPreviewImages,
     {},
     kPreviewPrograms,
     "InitShader",
     SetUpPreview<false>,
     ReleasePreview,
     kPreviewSteps},
    {"ColourPreview",
     kWidth,
     kHeight,
     kPreviewImages,
     {"YUV2RGB", "RGB2HSI", "HSI2YUV"},
     kPreviewPrograms,
     "InitShader",
     SetUpPreview<true>,
     ReleasePreview,
     kColourSteps},
    {"PlaneCapture",
     kWidth,
     kHeight,
     {"luma", "chroma"},
     {},
     {"RGBtoY", "RGBtoUV", "CheekSlimmerLarge", "FaceWhiteningLarge", "YUV2HSI", "HSI2YUV"},
     "InitShaderLarge",
     SetUpPlanes,
     ReleaseCapture,
     {{"FaceProcessLarge", SlimPlanes}}},
    {"BlockCapture",
     kWidth,
     kHeight,
     kPreviewImages,
     {},
     kBlockPrograms,
     "InitShaderLarge",
     SetUpBlocks<kWidth, kHeight>,
     ReleaseCapture,
     kBlockSteps},
    {"LargeCapture",
     kLargeWidth,
     kLargeHeight,
     {"input", "work 0", "store", "work 2", "luma", "chroma"},
     {},
     kBlockPrograms,
     "InitShaderLarge",
     SetUpBlocks<kLargeWidth, kLargeHeight>,
     ReleaseCapture,
     kBlockSteps}};

}  // namespace

const std::vector<Mode>& AllModes() {
  return kModes;
}

Parts PartsOf(const Mode& mode, Cache cache, const std::string& directory, bool staged) {
  Parts parts;
  if (std::string(mode.name) == "PlaneCapture") {
    parts = {PlaneTexture("luma plane"), PlaneTexture("chroma plane"), PlainImage("work 0")};
  }
  for (const char* image : mode.images) {
    const bool store = std::string(image) == "store";
    parts.push_back(store ? LargeStore(staged) : BufferedImage(image, staged));
  }
  return parts + Programs(mode.colour_programs, "InitColorCvtShader", 1, cache, directory) +
         Programs(mode.programs, mode.program_step, 2, cache, directory);
}

bool SameForCaller(const Outcome& a, const Outcome& b) {
  return a.result == b.result && a.frame == b.frame;
}

const Bytes& PicturePlanes(const Mode& mode) {
  static std::map<const Mode*, Bytes> made;
  Bytes& planes = made[&mode];
  if (planes.empty()) planes = NoisePlanes(mode.width, mode.height, 1);
  return planes;
}

Outcome RunStep(const Step& step, const Mode& mode, GPUBeautyFace& engine) {
  SCOPED_TRACE(step.name);
  CallerFrame frame(mode.width, mode.height, PicturePlanes(mode));
  LogCapture log;
  const int result = step.run(engine, frame);
  EXPECT_TRUE(result == 0 || result == 1) << result;
  EXPECT_TRUE(frame.intact());
  return {result, frame.bytes(), log.lines(6)};
}

std::vector<Outcome> RunAll(const Mode& mode, GPUBeautyFace& engine) {
  std::vector<Outcome> outcomes;
  for (const Step& step : mode.steps) outcomes.push_back(RunStep(step, mode, engine));
  return outcomes;
}

}  // namespace lumora::test
