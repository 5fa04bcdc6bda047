// SPDX-License-Identifier: Apache-2.0
// The life of an engine: every line and call of set-up and release, in order.
#include <gtest/gtest.h>

#include <memory>
#include <ostream>

#include "engine/engine_images.h"
#include "engine/setup_transcript.h"
#include "proofs/conformance/contract.h"
#include "support/property_override.h"
#include "support/scoped.h"

namespace lumora::test {
namespace {

constexpr char kRgbLabel[] = "InitTexture - after RGB SetColorAttachment";

/// A program of a set-up: its slot, how transcripts call it, its class.
struct Loaded {
  GLProgram* GPUBeautyFace::*slot;
  const char* name;
  const char* kind;
};
using Programs = std::vector<Loaded>;

const Programs kPackers = {{&GPUBeautyFace::m_pProgRGBtoY, "RGBtoY", "RGBtoY"},
                           {&GPUBeautyFace::m_pProgRGBtoUV, "RGBtoUV", "RGBtoUV"}};
const Programs kColour = {{&GPUBeautyFace::m_pProgYUV2RGB, "YUV2RGB", "YUV2RGB"},
                          {&GPUBeautyFace::m_pProgRGB2HSI, "RGB2HSI", "RGB2HSI"},
                          {&GPUBeautyFace::m_pProgHSI2YUV, "HSI2YUV", "HSI2YUV"}};
const Programs kBlocks = {
    {&GPUBeautyFace::m_pProgFaceWhitening, "FaceWhitening", "FaceWhiteningLarge"},
    {&GPUBeautyFace::m_pProgYUV2HSI, "YUV2HSI", "YUV2HSI"},
    {&GPUBeautyFace::m_pProgHSI2YUV, "HSI2YUV", "HSI2YUV"}};

Programs PreviewPrograms(bool marks) {
  return {{&GPUBeautyFace::m_pProgRGBtoY, "RGBtoY", "RGBtoY"},
          {&GPUBeautyFace::m_pProgRGBtoUV, "RGBtoUV", "RGBtoUV"},
          {&GPUBeautyFace::m_pProgCheekSlimmer, "CheekSlimmer",
           marks ? "CheekSlimmerMask" : "CheekSlimmer"},
          {&GPUBeautyFace::m_pProgFaceWhitening, "FaceWhitening", "FaceWhitening"},
          {&GPUBeautyFace::m_pProgRectification, "Rectification",
           marks ? "RectificationMask" : "Rectification"},
          {&GPUBeautyFace::m_pProgRadialDistortion, "RadialDistortion", "RadialDistortion"}};
}

Programs Capture(bool block_mode) {
  Programs programs = kPackers;
  if (!block_mode) {
    programs.push_back({&GPUBeautyFace::m_pProgCheekSlimmer, "CheekSlimmer", "CheekSlimmerLarge"});
  }
  programs.insert(programs.end(), kBlocks.begin(), kBlocks.end());
  return programs;
}

/// Every test has a program cache of its own, empty at first.
class LifecycleCalls : public testing::Test {
 protected:
  void SetUp() override {
    const GPUBeautyFace engine;
    if (!DriverHasBinaries()) GTEST_SKIP() << "this driver has no program binaries";
  }

  Script loads(const GPUBeautyFace& engine, const Programs& programs, bool cached) const {
    Script script;
    for (const Loaded& one : programs) {
      const GLProgram& program = *(engine.*one.slot);
      const ProgramCase& description = ProgramNamed(one.kind);
      script += cached ? LoadedFromCache(program, one.name, description)
                       : LoadedFromSource(program, one.name, description, cache_.path());
    }
    return script;
  }

  static Script deletions(const GPUBeautyFace& engine, const Programs& programs) {
    Script script;
    for (const Loaded& one : programs) script += ProgramDeleted(*(engine.*one.slot), one.name);
    return script;
  }

  Script init(const GPUBeautyFace& engine, const Script& release, bool colour, bool cached) const {
    Script script = EngineDebug("[CAMIN] Lumora 2012/05/17 Init+") +
                    EngineDebug("(nSrcImageWidth, nSrcImageHeight) = (%d, %d)", engine.m_nSrcWidth,
                                engine.m_nSrcHeight) +
                    release + TargetMade("input", "MIRRORED_REPEAT", "LINEAR", kRgbLabel);
    for (const char* work : {"work0", "work1", "work2"}) {
      script += TargetMade(work, "CLAMP_TO_EDGE", "LINEAR", kRgbLabel);
    }
    script += PackedTargetsMade();
    if (colour) script += loads(engine, kColour, cached);
    return script + loads(engine, PreviewPrograms(engine.m_bShowMask), cached) +
           EngineDebug("[CAMIN] Lumora 2012/05/17 Init-");
  }

  static Script framebuffers_deleted(const std::vector<std::string>& names) {
    Script script;
    for (const std::string& name : names) script += Script{"glDeleteFramebuffers " + name};
    return script + Script{"glBindFramebuffer FRAMEBUFFER none"};
  }

  /// To be asked for before the release.
  static Script de_init(const GPUBeautyFace& engine) {
    Programs programs = PreviewPrograms(engine.m_bShowMask);
    if (engine.m_bColorCvtMode) {
      programs.insert(programs.end(), {kColour[2], kColour[0], kColour[1]});
    }
    Script script = EngineDebug("[CAMIN] Lumora 2012/05/17 DeInit+") +
                    framebuffers_deleted({"luma", "chroma", "work0", "work1", "work2", "input"}) +
                    deletions(engine, programs);
    for (const char* image : {"input", "work0", "work1", "work2", "luma", "chroma"}) {
      script += ImageDestroyed(image);
    }
    return script + Finish() + EngineDebug("[CAMIN] Lumora 2012/05/17 DeInit-");
  }

  /// The images of a capture, by path.
  static Script capture_images(const GPUBeautyFace& engine) {
    const auto work = [](const char* name) {
      return TargetMade(name, "CLAMP_TO_EDGE", "NEAREST", kRgbLabel);
    };
    if (engine.m_bColorCvtMode) {
      Script script = TargetMade("input", "MIRRORED_REPEAT", "NEAREST", kRgbLabel) + work("work0");
      if (!engine.m_bLargeCapture) script += work("work1");
      return script + work("work2") + PackedTargetsMade();
    }
    return PlainTextureMade("Y-plane", "LUMINANCE", engine.m_nFullWidth, engine.m_nFullHeight,
                            "MIRRORED_REPEAT") +
           PlainTextureMade("CbCr-plane", "LUMINANCE_ALPHA", engine.m_nFullWidth / 2,
                            engine.m_nFullHeight / 2, "MIRRORED_REPEAT") +
           PlainTextureMade("work0", "RGBA", engine.m_nProcWidth, engine.m_nProcHeight, "REPEAT") +
           TargetAttached("work0", "CLAMP_TO_EDGE", "NEAREST", kRgbLabel) + PackedTargetsMade();
  }

  Script init_capture(const GPUBeautyFace& engine) const {
    return EngineInfo("[CAMIN] Lumora 2012/05/17 InitCapture+") + capture_images(engine) +
           loads(engine, Capture(engine.m_bColorCvtMode), true) +
           EngineInfo("[CAMIN] Lumora 2012/05/17 InitCapture-");
  }

  static Script de_init_capture(const GPUBeautyFace& engine) {
    const bool blocks = engine.m_bColorCvtMode;
    std::vector<std::string> framebuffers = {"luma", "chroma", "work0"};
    if (blocks) framebuffers.push_back("input");
    if (blocks && !engine.m_bLargeCapture) framebuffers.push_back("work1");
    if (blocks) framebuffers.push_back("work2");
    Script script = EngineDebug("[CAMIN] Lumora 2012/05/17  DeInitCapture+") +
                    framebuffers_deleted(framebuffers) + deletions(engine, Capture(blocks));
    if (blocks) {
      script += ImageDestroyed("input");
      if (!engine.m_bLargeCapture) script += ImageDestroyed("work1");
      script += ImageDestroyed("work2") + ImageDestroyed("work0");
    } else {
      // A plain image has no EGL image.
      script += Script{"glDeleteTextures Y-plane", "glDeleteTextures CbCr-plane",
                       "glDeleteTextures work0"};
    }
    return script + ImageDestroyed("luma") + ImageDestroyed("chroma") + Finish() +
           EngineDebug("[CAMIN] Lumora 2012/05/17 DeInitCapture-");
  }

  TempDirectory cache_;
  ScopedEnvironment environment_{"LUMORA_CACHE_DIR", cache_.path()};
};

TEST_F(LifecycleCalls, ConstructionAndDestruction) {
  auto recording = std::make_unique<Recording>(Checks::SetUp);
  auto engine = std::make_unique<GPUBeautyFace>();
  const ObjectNames names = NamesOf(*engine);
  EXPECT_TRUE(Same(ContextMade("Lumora", "GPUBeautyFace"), recording->lines(names)));
  recording.reset();

  recording = std::make_unique<Recording>(Checks::SetUp);
  engine.reset();
  EXPECT_TRUE(Same(EngineInfo("~GPUBeautyFace()+") + ContextDestroyed("Lumora", "GPUBeautyFace"),
                   recording->lines(names)));
}

TEST(FirstDisplay, IsTheDefaultOne) {
  { const GPUBeautyFace engine; }
  ASSERT_GE(FirstDisplayCalls().size(), 2u);
  EXPECT_EQ("eglGetDisplay DEFAULT", FirstDisplayCalls()[0]);
  EXPECT_EQ("eglInitialize", FirstDisplayCalls()[1]);
}

struct PreviewKind {
  const char* name;
  bool colour, marks;
};
void PrintTo(const PreviewKind& kind, std::ostream* out) {
  *out << kind.name;
}
class PreviewCalls : public LifecycleCalls, public testing::WithParamInterface<PreviewKind> {};

TEST_P(PreviewCalls, CompileOnceLoadLaterAndGiveAllBack) {
  const auto [name, colour, marks] = GetParam();
  const ScopedProperty property(kShowMaskProperty, marks ? "1" : "0");
  GPUBeautyFace engine;
  for (const bool cached : {false, true}) {
    SCOPED_TRACE(cached);
    ObjectNames names;
    {
      const Recording recording(Checks::SetUp);
      ASSERT_EQ(1, engine.Init(64, 48, 64, 48, nullptr, colour));
      names = NamesOf(engine);
      EXPECT_TRUE(Same(init(engine, {}, colour, cached), recording.lines(names)));
    }
    const Script release = de_init(engine);
    const Recording recording(Checks::SetUp);
    ASSERT_EQ(1, engine.DeInit());
    EXPECT_TRUE(Same(release, recording.lines(names)));
  }
}

TEST_P(PreviewCalls, AreReleasedByTheNextInitAndByTheDestructor) {
  const auto [name, colour, marks] = GetParam();
  const ScopedProperty property(kShowMaskProperty, marks ? "1" : "0");
  auto engine = std::make_unique<GPUBeautyFace>();
  engine->Init(32, 16, 32, 16, nullptr, colour);
  ObjectNames names = NamesOf(*engine);
  Script release = de_init(*engine);
  {
    const Recording recording(Checks::SetUp);
    ASSERT_EQ(1, engine->Init(64, 48, 64, 48, nullptr, colour));
    EXPECT_TRUE(
        Same(init(*engine, release, colour, true), recording.lines(names + NamesOf(*engine))));
  }
  names = NamesOf(*engine);
  release = de_init(*engine);
  const Recording recording(Checks::SetUp);
  engine.reset();
  EXPECT_TRUE(
      Same(EngineInfo("~GPUBeautyFace()+") + release + ContextDestroyed("Lumora", "GPUBeautyFace"),
           recording.lines(names)));
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, PreviewCalls,
    testing::Values(PreviewKind{"Plain", false, false}, PreviewKind{"PlainWithMarks", false, true},
                    PreviewKind{"Colour", true, false}, PreviewKind{"ColourWithMarks", true, true}),
    [](const testing::TestParamInfo<PreviewKind>& row) { return row.param.name; });

TEST_F(LifecycleCalls, NothingIsReleasedTwice) {
  GPUBeautyFace engine;
  engine.Init(32, 16, 32, 16, nullptr, true);
  engine.DeInit();
  const Script bind = {"glBindFramebuffer FRAMEBUFFER none"};
  {
    const Recording recording(Checks::SetUp);
    EXPECT_EQ(1, engine.DeInit());
    EXPECT_TRUE(Same(EngineDebug("[CAMIN] Lumora 2012/05/17 DeInit+") + bind + Finish() +
                         EngineDebug("[CAMIN] Lumora 2012/05/17 DeInit-"),
                     recording.lines(NamesOf(engine))));
  }
  const Recording recording(Checks::SetUp);
  EXPECT_EQ(1, engine.DeInitCapture());
  EXPECT_TRUE(Same(EngineDebug("[CAMIN] Lumora 2012/05/17  DeInitCapture+") + bind + Finish() +
                       EngineDebug("[CAMIN] Lumora 2012/05/17 DeInitCapture-"),
                   recording.lines(NamesOf(engine))));
}

struct CaptureKind {
  const char* name;
  int width, height;
  bool block_mode;
};
void PrintTo(const CaptureKind& kind, std::ostream* out) {
  *out << kind.name;
}
class CaptureCalls : public LifecycleCalls, public testing::WithParamInterface<CaptureKind> {};

TEST_P(CaptureCalls, MakeTheirPartsAndGiveAllBack) {
  const auto [name, width, height, block_mode] = GetParam();
  GPUBeautyFace engine;
  engine.InitCapture(nullptr, nullptr, 64, 64, nullptr, block_mode);  // fills the cache
  engine.DeInitCapture();
  ObjectNames names;
  {
    const Recording recording(Checks::SetUp);
    ASSERT_EQ(1, engine.InitCapture(nullptr, nullptr, width, height, nullptr, block_mode));
    names = NamesOf(engine);
    EXPECT_TRUE(Same(init_capture(engine), recording.lines(names)));
  }
  const Script release = de_init_capture(engine);
  const Recording recording(Checks::SetUp);
  ASSERT_EQ(1, engine.DeInitCapture());
  EXPECT_TRUE(Same(release, recording.lines(names)));
}

INSTANTIATE_TEST_SUITE_P(Kinds, CaptureCalls,
                         testing::Values(CaptureKind{"WholeBlock", 320, 240, true},
                                         CaptureKind{"Tiles", 1400, 900, true},
                                         CaptureKind{"LargeTiles", 4100, 40, true},
                                         CaptureKind{"LargeColumn", 40, 4100, true},
                                         CaptureKind{"Planes", 320, 240, false},
                                         CaptureKind{"TiledPlanes", 1400, 900, false}),
                         [](const testing::TestParamInfo<CaptureKind>& row) {
                           return row.param.name;
                         });

}  // namespace
}  // namespace lumora::test
