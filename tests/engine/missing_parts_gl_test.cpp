// SPDX-License-Identifier: Apache-2.0
// Engines that lack a program or an image: before a set-up, or because making it failed. Operations
// that need the part do nothing, say so and return 0.
#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <ostream>
#include <set>
#include <utility>

#include "engine/engine_images.h"
#include "reference/face_record.h"
#include "support/caller_memory.h"
#include "support/log_capture.h"
#include "support/pictures.h"

namespace lumora::test {
namespace {

constexpr int kWidth = 64;
constexpr int kHeight = 48;

enum class Part {
  Input,
  Work0,
  Work1,
  Work2,
  PackedLuma,
  PackedChroma,  // images with their framebuffers
  RgbToY,
  RgbToUv,
  Slimmer,
  YuvToRgb,
  RgbToHsi,
  HsiToYuv,
  YuvToHsi  // programs
};

SEGLImage** ImageOf(GPUBeautyFace& engine, Part part, GLuint** framebuffer) {
  switch (part) {
    case Part::Input:
      *framebuffer = &engine.m_hRGBFbo;
      return &engine.m_pRGBImage;
    case Part::Work0:
    case Part::Work1:
    case Part::Work2: {
      const int i = static_cast<int>(part) - static_cast<int>(Part::Work0);
      *framebuffer = &engine.m_hWorkFbo[i];
      return &engine.m_pWorkImage[i];
    }
    case Part::PackedLuma:
      *framebuffer = &engine.m_hYYYYFbo;
      return &engine.m_pYYYYImage;
    case Part::PackedChroma:
      *framebuffer = &engine.m_hUVUVFbo;
      return &engine.m_pUVUVImage;
    default:
      return nullptr;
  }
}

GLProgram** ProgramOf(GPUBeautyFace& engine, Part part) {
  switch (part) {
    case Part::RgbToY:
      return &engine.m_pProgRGBtoY;
    case Part::RgbToUv:
      return &engine.m_pProgRGBtoUV;
    case Part::Slimmer:
      return &engine.m_pProgCheekSlimmer;
    case Part::YuvToRgb:
      return &engine.m_pProgYUV2RGB;
    case Part::RgbToHsi:
      return &engine.m_pProgRGB2HSI;
    case Part::HsiToYuv:
      return &engine.m_pProgHSI2YUV;
    case Part::YuvToHsi:
      return &engine.m_pProgYUV2HSI;
    default:
      return nullptr;
  }
}

// Removes a part as if making it had failed: an image that could not be made has no framebuffer.
void Remove(GPUBeautyFace& engine, Part part) {
  if (GLProgram** program = ProgramOf(engine, part)) {
    delete *program;
    *program = nullptr;
    return;
  }
  GLuint* framebuffer = nullptr;
  SEGLImage** image = ImageOf(engine, part, &framebuffer);
  if (*image == nullptr) return;
  glDeleteFramebuffers(1, framebuffer);
  *framebuffer = static_cast<GLuint>(-1);
  (*image)->Destroy();
  delete *image;
  *image = nullptr;
}

struct Operation {
  const char* name;
  std::function<int(GPUBeautyFace&, unsigned char* luma, unsigned char* chroma)> run;
  std::set<Part> needs;
};

FACE_INFO_t* Faces() {
  static FACE_INFO_t faces[3];
  for (FACE_INFO_t& face : faces) {
    face = reference::SlimmingFace(32, 24, 12, 12, 0).as<FACE_INFO_t>();
  }
  return faces;
}

using Engine = GPUBeautyFace;
using Plane = unsigned char*;

// By set-up: the operations that it makes work.
const std::vector<Operation> kPreview = {
    {"LoadPreviewFrameBuffer",
     [](Engine& e, Plane y, Plane) { return e.LoadPreviewFrameBuffer(y); },
     {Part::Input}},
    {"ConvertYUV",
     [](Engine& e, Plane, Plane) { return e.ConvertYUV(); },
     {Part::Input, Part::Work0, Part::Work1, Part::YuvToRgb, Part::RgbToHsi}},
    {"ConvertHSItoYUV",
     [](Engine& e, Plane, Plane) { return e.ConvertHSItoYUV(); },
     {Part::Input, Part::Work2, Part::HsiToYuv}},
    {"DrawColorConvertYUV2RGB",
     [](Engine& e, Plane, Plane) { return e.DrawColorConvertYUV2RGB(); },
     {Part::Input, Part::Work0, Part::YuvToRgb}},
    {"DrawColorConvertRGB2HSI",
     [](Engine& e, Plane, Plane) { return e.DrawColorConvertRGB2HSI(); },
     {Part::Work0, Part::Work1, Part::RgbToHsi}},
    {"DrawColorConvertHSI2YUV",
     [](Engine& e, Plane, Plane) { return e.DrawColorConvertHSI2YUV(); },
     {Part::Work2, Part::Input, Part::HsiToYuv}},
    {"DrawRGBtoYY input",
     [](Engine& e, Plane, Plane) { return e.DrawRGBtoYY(-1); },
     {Part::Input, Part::PackedLuma, Part::RgbToY}},
    {"DrawRGBtoYY first",
     [](Engine& e, Plane, Plane) { return e.DrawRGBtoYY(1); },
     {Part::Work0, Part::PackedLuma, Part::RgbToY}},
    {"DrawRGBtoUV input",
     [](Engine& e, Plane, Plane) { return e.DrawRGBtoUV(-1); },
     {Part::Input, Part::PackedChroma, Part::RgbToUv}},
    {"DrawRGBtoUV second",
     [](Engine& e, Plane, Plane) { return e.DrawRGBtoUV(2); },
     {Part::Work1, Part::PackedChroma, Part::RgbToUv}},
    {"CopyMemYUVfromSrcTexture",
     [](Engine& e, Plane y, Plane uv) { return e.CopyMemYUVfromSrcTexture(y, uv); },
     {Part::Input, Part::PackedLuma, Part::PackedChroma, Part::RgbToY, Part::RgbToUv}},
    {"MemcpyYUV",
     [](Engine& e, Plane y, Plane uv) { return e.MemcpyYUV(y, uv); },
     {Part::PackedLuma, Part::PackedChroma}},
    {"BlockCopyYUV",
     [](Engine& e, Plane y, Plane uv) { return e.BlockCopyYUV(y, uv, kWidth, 0, 0, 0, 16, 16); },
     {Part::PackedLuma, Part::PackedChroma}},
    {"SetParameters",
     [](Engine& e, Plane, Plane) { return e.SetParameters(32, 24, 12, 0, 12, 5, 0, false, 1.0f); },
     {Part::Slimmer}},
    {"SetCheekSlimmerParameters",
     [](Engine& e, Plane, Plane) { return e.SetCheekSlimmerParameters(Faces()[0], 5, false); },
     {Part::Slimmer}},
    {"DrawFaceDist first",
     [](Engine& e, Plane, Plane) { return e.DrawFaceDist(0); },
     {Part::Input, Part::Work0, Part::Slimmer}},
    {"DrawFaceDist second",
     [](Engine& e, Plane, Plane) { return e.DrawFaceDist(1); },
     {Part::Work0, Part::Work1, Part::Slimmer}},
    {"FaceProcess",
     [](Engine& e, Plane y, Plane uv) { return e.FaceProcess(y, uv, 5, Faces()[0], 0); },
     {Part::Input, Part::Work0, Part::Slimmer, Part::RgbToY, Part::RgbToUv, Part::PackedLuma,
      Part::PackedChroma}},
    {"FaceProcessMultiface, none",
     [](Engine& e, Plane y, Plane uv) { return e.FaceProcessMultiface(y, uv, 5, nullptr, 0, 0); },
     {Part::Input, Part::RgbToY, Part::RgbToUv, Part::PackedLuma, Part::PackedChroma}},
    {"FaceProcessMultiface, three",
     [](Engine& e, Plane y, Plane uv) { return e.FaceProcessMultiface(y, uv, 5, Faces(), 3, 0); },
     {Part::Input, Part::Work0, Part::Work1, Part::Slimmer, Part::RgbToY, Part::RgbToUv,
      Part::PackedLuma, Part::PackedChroma}},
};

const std::vector<Operation> kCapture = {
    {"DrawColorConvertYUV2HSI",
     [](Engine& e, Plane, Plane) { return e.DrawColorConvertYUV2HSI(); },
     {Part::Input, Part::Work0, Part::YuvToHsi}},
    {"CopyMemYUVfromSrcTextureLarge",
     [](Engine& e, Plane y, Plane uv) { return e.CopyMemYUVfromSrcTextureLarge(y, uv, 0, 1); },
     {Part::Input, Part::Work1, Part::HsiToYuv, Part::RgbToY, Part::RgbToUv, Part::PackedLuma,
      Part::PackedChroma}},
};

constexpr Part kParts[] = {Part::Input,      Part::Work0,        Part::Work1,    Part::Work2,
                           Part::PackedLuma, Part::PackedChroma, Part::RgbToY,   Part::RgbToUv,
                           Part::Slimmer,    Part::YuvToRgb,     Part::RgbToHsi, Part::HsiToYuv,
                           Part::YuvToHsi};

// Runs the operation and expects it to fail, or to succeed.
void Expect(const Operation& operation, GPUBeautyFace& engine, bool works) {
  SCOPED_TRACE(operation.name);
  const Bytes before = NoisePlanes(kWidth, kHeight, 1);
  CallerFrame frame(kWidth, kHeight, before);
  LogCapture log;
  const int returned = operation.run(engine, frame.luma(), frame.chroma());
  EXPECT_EQ(works ? 1 : 0, returned);
  EXPECT_EQ(works, log.lines(6).empty()) << "one ERROR line or more, exactly when it failed";
  if (!works) {
    EXPECT_EQ(before, frame.bytes());
  }
  EXPECT_TRUE(frame.intact());
}

struct SetUpKind {
  const char* name;
  const std::vector<Operation>* operations;
  void (*prepare)(GPUBeautyFace&);
  void (*release)(GPUBeautyFace&);
};
const SetUpKind kSetUps[] = {
    {"Preview", &kPreview,
     [](GPUBeautyFace& e) { e.Init(kWidth, kHeight, kWidth, kHeight, nullptr, true); },
     [](GPUBeautyFace& e) { e.DeInit(); }},
    {"Capture", &kCapture,
     [](GPUBeautyFace& e) {
       e.InitCapture(nullptr, nullptr, kWidth, kHeight, nullptr, true);
       e.m_rcFaceProcess[0] = {0, 0, 32, 32, 0};
     },
     [](GPUBeautyFace& e) { e.DeInitCapture(); }},
};
void PrintTo(const SetUpKind& kind, std::ostream* out) {
  *out << kind.name;
}

class MissingParts : public testing::TestWithParam<SetUpKind> {};

TEST_P(MissingParts, NothingIsMissingAfterASetUp) {
  GPUBeautyFace engine;
  GetParam().prepare(engine);
  for (const Operation& operation : *GetParam().operations) Expect(operation, engine, true);
  GetParam().release(engine);
}

TEST_P(MissingParts, OperationsFailExactlyWithoutTheirOwnParts) {
  for (const Part part : kParts) {
    SCOPED_TRACE(testing::Message() << "part " << static_cast<int>(part));
    GPUBeautyFace engine;
    GetParam().prepare(engine);
    Remove(engine, part);
    for (const Operation& operation : *GetParam().operations) {
      Expect(operation, engine, operation.needs.count(part) == 0);
    }
    GetParam().release(engine);
  }
}

// A slot may be empty while its framebuffer is there: nothing looks through the empty slot.
TEST_P(MissingParts, EmptyImageSlotsAreNeverLookedThrough) {
  for (const Part part : kParts) {
    if (part > Part::PackedChroma) break;
    SCOPED_TRACE(testing::Message() << "part " << static_cast<int>(part));
    GPUBeautyFace engine;
    GetParam().prepare(engine);
    GLuint* framebuffer = nullptr;
    SEGLImage** slot = ImageOf(engine, part, &framebuffer);
    SEGLImage* const image = std::exchange(*slot, nullptr);
    for (const Operation& operation : *GetParam().operations) {
      SCOPED_TRACE(operation.name);
      CallerFrame frame(kWidth, kHeight, NoisePlanes(kWidth, kHeight, 1));
      operation.run(engine, frame.luma(), frame.chroma());
      EXPECT_TRUE(frame.intact());
    }
    *slot = image;
    GetParam().release(engine);
  }
}

INSTANTIATE_TEST_SUITE_P(SetUps, MissingParts, testing::ValuesIn(kSetUps),
                         [](const testing::TestParamInfo<SetUpKind>& row) {
                           return row.param.name;
                         });

TEST(MissingEverything, NoOperationWorksBeforeASetUp) {
  GPUBeautyFace engine;
  for (const Operation& operation : kPreview) Expect(operation, engine, false);
  Expect(kCapture[0], engine, false);
}

TEST(MissingEverything, NoOperationWorksAfterTheRelease) {
  GPUBeautyFace engine;
  for (const SetUpKind& kind : kSetUps) {
    kind.prepare(engine);
    kind.release(engine);
    engine.m_bColorCvtMode = false;
    for (const Operation& operation : kPreview) Expect(operation, engine, false);
    Expect(kCapture[0], engine, false);
  }
}

// Outside block mode the block loop is refused before anything is looked at, so without a line.
TEST(MissingEverything, BlocksAreRefusedBeforeASetUp) {
  GPUBeautyFace engine;
  LogCapture log;
  unsigned char byte = 7;
  EXPECT_EQ(0, engine.CopyMemYUVfromSrcTextureLarge(&byte, &byte, 0, 1));
  EXPECT_TRUE(LogIs(log, {}));
  EXPECT_EQ(7, byte);
}

// The store of a large capture is plain memory, not an image.
TEST(MissingStore, LargeCapturesWithoutItFail) {
  GPUBeautyFace engine;
  engine.InitCapture(nullptr, nullptr, 4100, 40, nullptr, true);
  engine.m_rcFaceProcess[0] = {0, 0, 32, 32, 0};
  engine.m_spLargeBuffer.clear();
  CallerPlanes planes(4100, 40);
  const Bytes before = planes.bytes();
  LogCapture log;
  EXPECT_EQ(0, engine.CopyMemYUVfromSrcTextureLarge(planes.luma(), planes.chroma(), 0, 1));
  EXPECT_FALSE(log.lines(6).empty());
  EXPECT_EQ(before, planes.bytes());
  engine.DeInitCapture();
}

TEST(MissingFrame, ThereIsNothingToLoad) {
  GPUBeautyFace engine;
  engine.Init(kWidth, kHeight, kWidth, kHeight, nullptr, false);
  LogCapture log;
  EXPECT_EQ(0, engine.LoadPreviewFrameBuffer(nullptr));
  EXPECT_FALSE(log.lines(6).empty());
  EXPECT_EQ(0, engine.DrawFaceDist(-1));
}

}  // namespace
}  // namespace lumora::test
