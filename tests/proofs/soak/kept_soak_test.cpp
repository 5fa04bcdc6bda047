// SPDX-License-Identifier: Apache-2.0
// What is left behind on purpose, each with its exact number: growth beyond it would be a leak.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "lumora/programs/colour_programs.h"
#include "proofs/soak/bare_gl.h"
#include "proofs/soak/soak.h"
#include "proofs/soak/soak_scene.h"
#include "support/meant_leaks.h"
#include "support/scoped.h"

namespace lumora::test {
namespace {

// Without a usable cache directory every program is compiled; its two shaders are never deleted.
TEST(KeptSoak, ShadersOfEveryCompiledProgram) {
  const ScopedEnvironment no_cache("LUMORA_CACHE_DIR", "/dev/null/cache");
  GPUBeautyFace engine;
  engine.Init(64, 64, 64, 64, nullptr, false);
  std::vector<ProgramSources> sources;
  for (const GLProgram* program :
       {engine.m_pProgRGBtoY, engine.m_pProgRGBtoUV, engine.m_pProgCheekSlimmer,
        engine.m_pProgFaceWhitening, engine.m_pProgRectification, engine.m_pProgRadialDistortion}) {
    sources.push_back(SourcesOf(program->m_hProgram));
  }
  engine.DeInit();
  Kept kept = {{{"shader", 2 * static_cast<long>(sources.size())}}};
  kept.bytes = BytesKept(50, [&](int) {
    for (const ProgramSources& each : sources) glDeleteProgram(MakeBareProgram(each));
  });
  Soak(
      "Init, DeInit without a cache", Cycles(20),
      [&](int i) {
        const Size size = SizeOf(i);
        engine.Init(size.width, size.height, size.width, size.height, nullptr, false);
        engine.DeInit();
      },
      kept);
}

// The program object that refused a binary is left behind, beside the shaders of the one that is
// compiled in its place.
TEST(KeptSoak, ProgramThatRefusedItsCacheFile) {
  const TempDirectory directory;
  const ScopedEnvironment environment("LUMORA_CACHE_DIR", directory.path());
  GPUBeautyFace context;
  ProgramSources sources;
  {
    GLProgRGB2HSI program;
    ASSERT_TRUE(program.Load());
    sources = SourcesOf(program.m_hProgram);
  }
  const std::string path = directory.file("prog_rgb2hsi.bin");
  const std::string damaged = ReadFile(path).value_or("").substr(0, 100);
  if (damaged.empty()) GTEST_SKIP() << "this driver has no program binaries";
  Kept kept = {{{"program", 1}, {"shader", 2}}};
  kept.bytes = BytesKept(100, [&](int) {
    glCreateProgram();
    glDeleteProgram(MakeBareProgram(sources));
  });
  Soak(
      "a cache file that is refused", Cycles(4),
      [&](int) {
        WriteFile(path, damaged);
        GLProgRGB2HSI program;
        EXPECT_TRUE(program.Load());
      },
      kept);
}

// A plane that the caller does not name is replaced by a buffer that is left to nobody.
TEST(KeptSoak, ReplacementPlanes) {
  constexpr int kWidth = 256, kHeight = 128;
  GPUBeautyFace engine;
  engine.Init(kWidth, kHeight, kWidth, kHeight, nullptr, false);
  Kept kept;
  kept.bytes = kWidth * kHeight * 1.5;
  const MeantLeaks left_to_nobody;
  Soak(
      "MemcpyYUV without planes", Cycles(4),
      [&](int) { EXPECT_EQ(1, engine.MemcpyYUV(nullptr, nullptr)); }, kept);
}

// After a capture the destructor releases as after a preview: the program objects that only
// captures have are left in memory; what they name in GL goes with the context.
TEST(KeptSoak, CaptureThatIsDestroyedWithoutRelease) {
  const int cycles = Cycles(4);
  const BareLives bare;
  Kept kept;
  kept.ends_context = true;
  kept.bytes = 2 * sizeof(GLProgHSI2YUV) + BytesKept(cycles / 4, [&](int) { bare.live(false); });
  const MeantLeaks left_to_nobody;
  Soak(
      "engine: life with a capture", cycles,
      [](int i) {
        Frame frame = SkinFrame(SizeOf(i), i);
        GPUBeautyFace engine;
        engine.InitCapture(frame.luma(), frame.chroma(), frame.width, frame.height, nullptr,
                           i % 2 == 0);
      },
      kept);
}

// An image that is created twice leaves its first texture and EGL image; memory and destruction
// belong to the second.
TEST(KeptSoak, ImageThatIsCreatedTwice) {
  GPUBeautyFace context;
  Kept kept = {{{"texture", 1}, {"EGL image", 1}}};
  kept.bytes = 2 * 64 * 32 * 4;  // the first image's pixels, where both sides have their own
  kept.descriptors = 1;          // and the file of shared ones, where the driver keeps that open
  Soak(
      "SEGLImage: Create over Create", Cycles(20),
      [](int) {
        SEGLImage image(1);
        image.Create(64, 32, 1);
        image.Create(64, 64, 1);
        image.Destroy();
      },
      kept);
}

}  // namespace
}  // namespace lumora::test
