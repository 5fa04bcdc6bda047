// SPDX-License-Identifier: Apache-2.0
// Operations before a set-up, and after one was released: what they say, and that they draw
// nothing.
#include <gtest/gtest.h>

#include "proofs/conformance/operations.h"
#include "support/caller_memory.h"
#include "support/faces.h"

namespace lumora::test {
namespace {

using Engine = GPUBeautyFace;
using Plane = unsigned char*;

constexpr char kNoSource[] = "[SetSrcImage]g_pSrcTexture is not initiated";
constexpr char kNoRgb[] = "[SetSrcImage]g_pEGLRGB is not initiated";

FACE_INFO_t Face() {
  return PortraitFace(32, 22, 12).as<FACE_INFO_t>();
}

/// An operation that fails with these lines, the first of which tells its start.
Operation Failing(const char* name, std::function<int(Engine&, Plane, Plane)> run,
                  const std::vector<LogLine>& lines) {
  return {name, std::move(run), [lines](const Engine&) { return Told(lines); }, 0};
}
LogLine Start(const char* text) {
  return Info("Lumora", "%s", text);
}
LogLine Missing(const char* text) {
  return Error("Lumora", "%s", text);
}

// The entry points that look for the input image, and then whether the engine is initialised.
std::vector<Operation> EntryPoints(const LogLine& refusal) {
  return {
      Failing("FaceProcess",
              [](Engine& e, Plane y, Plane uv) { return e.FaceProcess(y, uv, 5, Face(), 0); },
              {Start("FaceProcess++"), refusal}),
      Failing("FaceProcessMultiface",
              [](Engine& e, Plane y, Plane uv) {
                FACE_INFO_t face = Face();
                return e.FaceProcessMultiface(y, uv, 5, &face, 1, 0);
              },
              {Start("FaceProcess+"), refusal}),
      Failing("Rectification",
              [](Engine& e, Plane y, Plane uv) { return e.Rectification(y, uv, 5, 0); },
              {Start("FaceProcess++"), refusal}),
      Failing("RadialRectification",
              [](Engine& e, Plane y, Plane uv) { return e.RadialRectification(y, uv, 0, 1); },
              {Start("FaceProcess  RadialRectification++"), refusal}),
  };
}

std::vector<Operation> WithoutImages() {
  std::vector<Operation> operations = EntryPoints(Missing(kNoSource));
  operations.push_back(Failing("ConvertYUV", [](Engine& e, Plane, Plane) { return e.ConvertYUV(); },
                               {Start("ConvertYUV+"), Missing(kNoRgb)}));
  operations.push_back(Failing("ConvertHSItoYUV",
                               [](Engine& e, Plane, Plane) { return e.ConvertHSItoYUV(); },
                               {Start("ConvertYUV+"), Missing(kNoRgb)}));
  operations.push_back(
      Failing("CopyMemYUVfromSrcTexture",
              [](Engine& e, Plane y, Plane uv) { return e.CopyMemYUVfromSrcTexture(y, uv); },
              {Missing(kNoSource)}));
  operations.push_back(Failing("DoFaceWhitening",
                               [](Engine& e, Plane, Plane) {
                                 FACE_INFO_t face = Face();
                                 return e.DoFaceWhitening(&face, 1, 30, 30, BEAUTYSHOT_EFFECT_BOTH);
                               },
                               {Start("DoFaceWhitening+"), Missing(kNoRgb)}));
  operations.push_back(Failing(
      "CopyMemYUVfromSrcTextureLarge",
      [](Engine& e, Plane y, Plane uv) { return e.CopyMemYUVfromSrcTextureLarge(y, uv, 0, 1); },
      {}));
  operations.push_back(
      {"CopyMemYUVfromSrcTextureLarge without a face",
       [](Engine& e, Plane y, Plane uv) { return e.CopyMemYUVfromSrcTextureLarge(y, uv, 0, 0); },
       [](const Engine&) { return Script{}; }});
  return operations;
}

void ExpectRefusals(const std::vector<Operation>& operations, Engine* engine) {
  const reference::Frame picture(64, 48, 100, 120, 140);
  for (const Operation& operation : operations) {
    CallerFrame frame(picture);
    ExpectTranscript(operation, *engine, frame.luma(), frame.chroma());
    EXPECT_EQ(picture.bytes, frame.bytes()) << operation.name;
    EXPECT_TRUE(frame.intact());
  }
}

TEST(MissingPartsCalls, BeforeASetUp) {
  Engine engine;
  ExpectRefusals(WithoutImages(), &engine);
}

TEST(MissingPartsCalls, AfterTheReleaseOfAPreview) {
  for (const bool colour : {false, true}) {
    Engine engine;
    engine.Init(64, 48, 64, 48, nullptr, colour);
    engine.DeInit();
    engine.m_bColorCvtMode = false;  // of the set-up that is no more; the release leaves it
    ExpectRefusals(WithoutImages(), &engine);
  }
}

TEST(MissingPartsCalls, AfterTheReleaseOfACapture) {
  for (const bool block_mode : {false, true}) {
    Engine engine;
    engine.InitCapture(nullptr, nullptr, 320, 240, nullptr, block_mode);
    engine.DeInitCapture();
    ExpectRefusals(WithoutImages(), &engine);
  }
}

// With images, but not initialised.
TEST(MissingPartsCalls, OfAnEngineThatIsNotInitialised) {
  Engine engine;
  engine.Init(64, 48, 64, 48, nullptr, false);
  engine.m_bIsInit = false;
  ExpectRefusals(EntryPoints(Info("Lumora", "!m_bIsInit")), &engine);
  engine.m_bIsInit = true;
}

// A capture of planes has no input image.
TEST(MissingPartsCalls, PreviewOperationsInACaptureOfPlanes) {
  Engine engine;
  engine.InitCapture(nullptr, nullptr, 320, 240, nullptr, false);
  ExpectRefusals(EntryPoints(Missing(kNoSource)), &engine);
  engine.DeInitCapture();
}

}  // namespace
}  // namespace lumora::test
