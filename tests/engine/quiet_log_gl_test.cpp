// SPDX-License-Identifier: Apache-2.0
// An engine whose tags have DEBUG switched off. One executable: each file asks for its levels once.
#include <gtest/gtest.h>

#include <memory>

#include "engine/engine_images.h"
#include "support/caller_memory.h"
#include "support/log_capture.h"
#include "support/pictures.h"

namespace lumora::test {
namespace {

constexpr unsigned char kInfoAndError = LevelBit(4) | LevelBit(6);
const ScopedLogLevels kEngineLevels("Lumora", kInfoAndError);
const ScopedLogLevels kImageLevels("EGLImageTest", LevelBit(6));
const ScopedLogLevels kProgramLevels("GLProgram", LevelBit(6));
const ScopedLogLevels kLoadLevels(kNoTag, kNoLevels);

TEST(QuietLog, OnlyTheLevelsThatAreOnArePrinted) {
  LogCapture log;
  auto engine = std::make_unique<GPUBeautyFace>();
  EXPECT_TRUE(LogIs(log, {Info("Lumora", "GPUBeautyFace()+"), Info("Lumora", "GPUBeautyFace()-")}));

  engine->Init(32, 16, 32, 16, nullptr, false);
  EXPECT_EQ(std::vector<LogLine>(), log.lines_of("Lumora")) << "the set-up of previews is DEBUG";
  EXPECT_EQ(std::vector<LogLine>(), log.lines_of(kNoTag));
  EXPECT_EQ(std::vector<LogLine>(), log.lines(3));
  // One line an image is printed without asking for its level.
  EXPECT_EQ(6, log.count(Info("EGLImageTest", "eglCreateImageKHR() done! ")));
  log.take();

  CallerFrame frame(NoiseFrame(32, 16, 1));
  engine->FaceProcessMultiface(frame.luma(), frame.chroma(), 0, nullptr, 0, 0);
  EXPECT_TRUE(LogIs(log, {Info("Lumora", "FaceProcess+"), Info("Lumora", "FaceProcess-")}));

  engine->DeInit();
  EXPECT_TRUE(LogIs(log, {}));

  engine->InitCapture(nullptr, nullptr, 32, 16, nullptr, true);
  EXPECT_EQ((std::vector<LogLine>{Info("Lumora", "[CAMIN] Lumora 2012/05/17 InitCapture+"),
                                  Info("Lumora", "[CAMIN] Lumora 2012/05/17 InitCapture-")}),
            log.lines_of("Lumora"));
  log.take();
  engine->DeInitCapture();
  EXPECT_TRUE(LogIs(log, {}));

  engine.reset();
  EXPECT_TRUE(LogIs(
      log, {Info("Lumora", "~GPUBeautyFace()+"), Info("Lumora", "[~GPUBeautyFace] eglMakeCurrent"),
            Info("Lumora", "[~GPUBeautyFace] eglDestroySurface"),
            Info("Lumora", "[~GPUBeautyFace] eglDestroyContext"),
            Info("Lumora", "[~GPUBeautyFace] eglTerminate"), Info("Lumora", "~GPUBeautyFace()-")}));
}

}  // namespace
}  // namespace lumora::test
