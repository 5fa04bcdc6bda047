// SPDX-License-Identifier: Apache-2.0
// What an engine prints through its life, in exactly this order.
#include <gtest/gtest.h>

#include <memory>

#include "engine/engine_images.h"
#include "engine/setup_transcript.h"
#include "support/scoped.h"

namespace lumora::test {
namespace {

constexpr char kTag[] = "Lumora";

Lines ConstructionLines() {
  Lines lines = {Info(kTag, "GPUBeautyFace()+")};
  for (const char* step : {"m_eglDisplay", "eglChooseConfig", "eglCreateContext",
                           "eglCreatePbufferSurface", "eglMakeCurrent"}) {
    lines.push_back(Debug(kTag, "[GPUBeautyFace] %s successfully", step));
  }
  lines.push_back(Info(kTag, "GPUBeautyFace()-"));
  return lines;
}

Lines DestructionLines(const Lines& release) {
  Lines lines = Lines{Info(kTag, "~GPUBeautyFace()+")} + release;
  for (const char* step :
       {"eglMakeCurrent", "eglDestroySurface", "eglDestroyContext", "eglTerminate"}) {
    lines.push_back(Info(kTag, "[~GPUBeautyFace] %s", step));
  }
  lines.push_back(Info(kTag, "~GPUBeautyFace()-"));
  return lines;
}

std::vector<unsigned> Names(const std::vector<ProgramLoad>& loads) {
  std::vector<unsigned> names;
  for (const ProgramLoad& load : loads) names.push_back(load.program->m_hProgram);
  return names;
}

// The lines of releasing a preview; to be asked for before the release.
Lines DeInitLines(const GPUBeautyFace& engine) {
  std::vector<unsigned> programs = Names(PreviewLoads(engine));
  if (engine.m_bColorCvtMode) {
    programs.insert(programs.end(),
                    {engine.m_pProgHSI2YUV->m_hProgram, engine.m_pProgYUV2RGB->m_hProgram,
                     engine.m_pProgRGB2HSI->m_hProgram});
  }
  return Lines{Debug(kTag, "[CAMIN] Lumora 2012/05/17 DeInit+")} + DeletionLines(programs) +
         Lines{Debug(kTag, "[CAMIN] Lumora 2012/05/17 DeInit-")};
}

Lines InitLines(int width, int height, const Lines& earlier_release, const Lines& loads) {
  return Lines{Debug(kTag, "[CAMIN] Lumora 2012/05/17 Init+"),
               Debug(kTag, "(nSrcImageWidth, nSrcImageHeight) = (%d, %d)", width, height)} +
         earlier_release + ImageLines(6) + loads +
         Lines{Debug(kTag, "[CAMIN] Lumora 2012/05/17 Init-")};
}

Lines InitCaptureLines(int images, const Lines& loads) {
  return Lines{Info(kTag, "[CAMIN] Lumora 2012/05/17 InitCapture+")} + ImageLines(images) + loads +
         Lines{Info(kTag, "[CAMIN] Lumora 2012/05/17 InitCapture-")};
}

// Every test has a program cache of its own, empty at first.
class LifecycleTranscript : public testing::Test {
 protected:
  Lines taken() { return WithoutNumbers(log_.take()); }

  TempDirectory cache_;
  ScopedEnvironment environment_{"LUMORA_CACHE_DIR", cache_.path()};
  LogCapture log_;
};

TEST_F(LifecycleTranscript, ConstructionAndDestructionTellEveryStep) {
  auto engine = std::make_unique<GPUBeautyFace>();
  EXPECT_TRUE(LogIs(taken(), ConstructionLines()));
  engine.reset();
  EXPECT_TRUE(LogIs(taken(), DestructionLines({})));
}

TEST_F(LifecycleTranscript, PreviewsCompileOnceAndLoadBinariesLater) {
  GPUBeautyFace engine;
  taken();
  EXPECT_EQ(1, engine.Init(64, 48, 64, 48, nullptr, false));
  EXPECT_TRUE(
      LogIs(taken(), InitLines(64, 48, {}, ColdLoads(PreviewLoads(engine), cache_.path()))));

  Lines release = DeInitLines(engine);
  EXPECT_EQ(1, engine.DeInit());
  EXPECT_TRUE(LogIs(taken(), release));

  EXPECT_EQ(1, engine.Init(96, 66, 96, 66, nullptr, false));
  EXPECT_TRUE(LogIs(taken(), InitLines(96, 66, {}, WarmLoads(PreviewLoads(engine)))));
}

TEST_F(LifecycleTranscript, ASecondInitReleasesTheFirst) {
  GPUBeautyFace engine;
  engine.Init(64, 48, 64, 48, nullptr, false);
  taken();
  const Lines release = DeInitLines(engine);
  EXPECT_EQ(1, engine.Init(32, 16, 32, 16, nullptr, false));
  EXPECT_TRUE(LogIs(taken(), InitLines(32, 16, release, WarmLoads(PreviewLoads(engine)))));
}

TEST_F(LifecycleTranscript, ColourConvertModeLoadsItsProgramsFirst) {
  GPUBeautyFace engine;
  taken();
  engine.Init(64, 48, 64, 48, nullptr, true);
  EXPECT_TRUE(LogIs(taken(), InitLines(64, 48, {},
                                       ColdLoads(ColourConvertLoads(engine), cache_.path()) +
                                           ColdLoads(PreviewLoads(engine), cache_.path()))));
  const Lines release = DeInitLines(engine);
  engine.DeInit();
  EXPECT_TRUE(LogIs(taken(), release));
}

TEST_F(LifecycleTranscript, BlockCapturesMakeSixImagesAndTheHsiPrograms) {
  GPUBeautyFace engine;
  taken();
  EXPECT_EQ(1, engine.InitCapture(nullptr, nullptr, 1400, 900, nullptr, true));
  EXPECT_TRUE(LogIs(taken(), InitCaptureLines(6, ColdLoads(CaptureLoads(engine), cache_.path()))));

  const Lines release = Lines{Debug(kTag, "[CAMIN] Lumora 2012/05/17  DeInitCapture+")} +
                        DeletionLines(Names(CaptureLoads(engine))) +
                        Lines{Debug(kTag, "[CAMIN] Lumora 2012/05/17 DeInitCapture-")};
  EXPECT_EQ(1, engine.DeInitCapture());
  EXPECT_TRUE(LogIs(taken(), release));
}

TEST_F(LifecycleTranscript, LargeBlockCapturesMakeOneImageLess) {
  GPUBeautyFace engine;
  taken();
  engine.InitCapture(nullptr, nullptr, 4100, 40, nullptr, true);
  EXPECT_TRUE(LogIs(taken(), InitCaptureLines(5, ColdLoads(CaptureLoads(engine), cache_.path()))));
  engine.DeInitCapture();
}

TEST_F(LifecycleTranscript, PlaneCapturesMakeTwoBufferedImagesAndCompileTheirSlimmer) {
  GPUBeautyFace engine;
  taken();
  EXPECT_EQ(1, engine.InitCapture(nullptr, nullptr, 640, 480, nullptr, false));
  EXPECT_TRUE(LogIs(taken(), InitCaptureLines(2, ColdLoads(CaptureLoads(engine), cache_.path()))));
  const Lines release = Lines{Debug(kTag, "[CAMIN] Lumora 2012/05/17  DeInitCapture+")} +
                        DeletionLines(Names(CaptureLoads(engine))) +
                        Lines{Debug(kTag, "[CAMIN] Lumora 2012/05/17 DeInitCapture-")};
  EXPECT_EQ(1, engine.DeInitCapture());
  EXPECT_TRUE(LogIs(taken(), release));
}

TEST_F(LifecycleTranscript, TheDestructorReleasesAPreview) {
  auto engine = std::make_unique<GPUBeautyFace>();
  engine->Init(64, 48, 64, 48, nullptr, true);
  taken();
  const Lines expected = DestructionLines(DeInitLines(*engine));
  engine.reset();
  EXPECT_TRUE(LogIs(taken(), expected));
}

// The destructor does not know of captures: it releases what both paths have in common.
TEST_F(LifecycleTranscript, TheDestructorAloneLeavesThePartsThatOnlyCapturesHave) {
  for (const bool block_mode : {false, true}) {
    auto engine = std::make_unique<GPUBeautyFace>();
    engine->InitCapture(nullptr, nullptr, 320, 240, nullptr, block_mode);
    taken();
    std::vector<unsigned> programs = {engine->m_pProgRGBtoY->m_hProgram,
                                      engine->m_pProgRGBtoUV->m_hProgram};
    if (!block_mode) programs.push_back(engine->m_pProgCheekSlimmer->m_hProgram);
    programs.push_back(engine->m_pProgFaceWhitening->m_hProgram);
    if (block_mode) programs.push_back(engine->m_pProgHSI2YUV->m_hProgram);
    // What is left over belongs to the test.
    const std::unique_ptr<GLProgram> yuv_to_hsi(engine->m_pProgYUV2HSI);
    const std::unique_ptr<GLProgram> hsi_to_yuv(block_mode ? nullptr : engine->m_pProgHSI2YUV);

    const Lines release = Lines{Debug(kTag, "[CAMIN] Lumora 2012/05/17 DeInit+")} +
                          DeletionLines(programs) +
                          Lines{Debug(kTag, "[CAMIN] Lumora 2012/05/17 DeInit-")};
    engine.reset();
    EXPECT_TRUE(LogIs(taken(), DestructionLines(release))) << "block mode " << block_mode;
  }
}

}  // namespace
}  // namespace lumora::test
