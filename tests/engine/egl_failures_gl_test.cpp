// SPDX-License-Identifier: Apache-2.0
// Engines whose context cannot be made.
#include <gtest/gtest.h>

#include <memory>
#include <ostream>

#include "engine/engine_images.h"
#include "support/caller_memory.h"
#include "support/egl_faults.h"
#include "support/log_capture.h"
#include "support/pictures.h"

namespace lumora::test {
namespace {

struct Failure {
  const char* name;
  EglStep step;
  int passing_calls;
  std::vector<const char*> done;    // steps told by the construction
  std::vector<const char*> undone;  // steps told by the destruction
};
void PrintTo(const Failure& failure, std::ostream* out) {
  *out << failure.name;
}

// Finding a display starts it and asks it for a configuration once: what fails at the first call is
// a display that is not found, what fails at the second is the engine's own step.
const Failure kFailures[] = {
    {"NoDisplay", EglStep::FindDisplay, 0, {}, {}},
    {"NoDisplayStarts", EglStep::Initialize, 0, {}, {}},
    {"NoDisplayHasConfigs", EglStep::AnswerNoConfig, 0, {}, {}},
    {"Initialize", EglStep::Initialize, 1, {"m_eglDisplay"}, {"eglMakeCurrent", "eglTerminate"}},
    {"ChooseConfig",
     EglStep::ChooseConfig,
     1,
     {"m_eglDisplay"},
     {"eglMakeCurrent", "eglTerminate"}},
    {"NoConfig", EglStep::AnswerNoConfig, 1, {"m_eglDisplay"}, {"eglMakeCurrent", "eglTerminate"}},
    {"CreateContext",
     EglStep::CreateContext,
     0,
     {"m_eglDisplay", "eglChooseConfig"},
     {"eglMakeCurrent", "eglTerminate"}},
    {"CreatePbuffer",
     EglStep::CreatePbuffer,
     0,
     {"m_eglDisplay", "eglChooseConfig", "eglCreateContext"},
     {"eglMakeCurrent", "eglDestroyContext", "eglTerminate"}},
    {"MakeCurrent",
     EglStep::MakeCurrent,
     0,
     {"m_eglDisplay", "eglChooseConfig", "eglCreateContext", "eglCreatePbufferSurface"},
     {"eglMakeCurrent", "eglDestroySurface", "eglDestroyContext", "eglTerminate"}},
};

void ExpectWorkingEngine() {
  GPUBeautyFace engine;
  EXPECT_TRUE(engine.m_bEGLReady);
  engine.Init(64, 48, 64, 48, nullptr, false);
  const Frame frame = NoiseFrame(64, 48, 1);
  CallerFrame caller(frame);
  EXPECT_EQ(1, engine.FaceProcessMultiface(caller.luma(), caller.chroma(), 0, nullptr, 0, 0));
  EXPECT_EQ(frame.bytes, caller.bytes());
}

class EglFailures : public testing::TestWithParam<Failure> {
 protected:
  std::unique_ptr<GPUBeautyFace> half_built() {
    const EglFault fault(GetParam().step, GetParam().passing_calls);
    auto engine = std::make_unique<GPUBeautyFace>();
    EXPECT_GT(fault.failed(), 0);
    return engine;
  }
};

TEST_P(EglFailures, StopTheConstructionSilently) {
  LogCapture log;
  std::unique_ptr<GPUBeautyFace> engine = half_built();
  EXPECT_FALSE(engine->m_bEGLReady);
  std::vector<LogLine> construction = {Info("Lumora", "GPUBeautyFace()+")};
  for (const char* step : GetParam().done) {
    construction.push_back(Debug("Lumora", "[GPUBeautyFace] %s successfully", step));
  }
  EXPECT_TRUE(LogIs(log, construction));
  EXPECT_EQ(GetParam().done.empty(), engine->m_eglDisplay == EGL_NO_DISPLAY);
  EXPECT_EQ(GetParam().done.size() < 3, engine->m_eglContext == EGL_NO_CONTEXT);
  EXPECT_EQ(GetParam().done.size() < 4, engine->m_eglSurface == EGL_NO_SURFACE);

  engine.reset();
  std::vector<LogLine> destruction = {Info("Lumora", "~GPUBeautyFace()+")};
  for (const char* step : GetParam().undone) {
    destruction.push_back(Info("Lumora", "[~GPUBeautyFace] %s", step));
  }
  destruction.push_back(Info("Lumora", "~GPUBeautyFace()-"));
  EXPECT_TRUE(LogIs(log, destruction));
  ExpectWorkingEngine();
}

// Callers that do not look at m_bEGLReady get failures, not crashes.
TEST_P(EglFailures, LeaveAnEngineThatFailsAndDoesNotCrash) {
  std::unique_ptr<GPUBeautyFace> engine = half_built();
  const Frame frame = NoiseFrame(64, 48, 1);
  CallerFrame caller(frame);
  EXPECT_EQ(0, engine->FaceProcessMultiface(caller.luma(), caller.chroma(), 0, nullptr, 0, 0));
  EXPECT_EQ(frame.bytes, caller.bytes());
  EXPECT_EQ(1, engine->Init(64, 48, 64, 48, nullptr, false));
  EXPECT_EQ(1, engine->DeInit());
  engine.reset();
  ExpectWorkingEngine();
}

TEST_P(EglFailures, DoNotDisturbAnEngineOfTheSameDisplay) {
  GPUBeautyFace survivor;
  survivor.Init(64, 48, 64, 48, nullptr, false);
  const EGLSurface surface = survivor.m_eglSurface;
  half_built().reset();
  // The half-built engine took this thread's current context away; the display it left alone.
  ASSERT_EQ(EGL_TRUE,
            eglMakeCurrent(survivor.m_eglDisplay, surface, surface, survivor.m_eglContext));
  const Frame frame = NoiseFrame(64, 48, 1);
  CallerFrame caller(frame);
  EXPECT_EQ(1, survivor.FaceProcessMultiface(caller.luma(), caller.chroma(), 0, nullptr, 0, 0));
  EXPECT_EQ(frame.bytes, caller.bytes());
}

INSTANTIATE_TEST_SUITE_P(Steps, EglFailures, testing::ValuesIn(kFailures),
                         [](const testing::TestParamInfo<Failure>& row) { return row.param.name; });

}  // namespace
}  // namespace lumora::test
