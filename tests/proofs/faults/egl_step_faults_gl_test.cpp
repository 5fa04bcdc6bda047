// SPDX-License-Identifier: Apache-2.0
// Every EGL call of an engine's and a converter's construction, made to fail.
#include <EGL/egl.h>
#include <gtest/gtest.h>

#include <map>
#include <memory>

#include "lumora/convert/gpu_color_converter.h"
#include "lumora/engine/gpu_beauty_face.h"
#include "lumora/platform/display.h"
#include "proofs/faults/fault_layer.h"
#include "proofs/faults/fault_test.h"
#include "support/caller_memory.h"
#include "support/log_capture.h"

namespace lumora::test {
namespace {

using android::GPUBeautyFace;
using android::GPUColorConverter;

// How far a construction comes. The steps told are those up to here.
enum Reached { Nothing, Display, Config, Context, Surface, Ready };

constexpr const char* kSteps[] = {"m_eglDisplay", "eglChooseConfig", "eglCreateContext",
                                  "eglCreatePbufferSurface", "eglMakeCurrent"};

// The first display works on every machine of these tests: looking for it asks once for it, starts
// it once and asks for one configuration; what fails then is a display of which there are others.
// The calls that follow are the engine's own.
Reached ReachedWith(const Fault& fault, bool another_display) {
  const bool own = fault.number > 1;
  switch (fault.call) {
    case Call::FindDisplay:
    case Call::InitializeDisplay:
    case Call::ChooseConfig:
    case Call::OfferConfig:
      if (!own) return another_display ? Ready : Nothing;
      // Where no configuration has windows, one without is asked for.
      return fault.call == Call::OfferConfig && fault.number == 2 ? Ready : Display;
    case Call::CreateContext:
      return Config;
    case Call::CreatePbuffer:
      return Context;
    default:
      return Surface;
  }
}

template <typename Object>
struct Names;
template <>
struct Names<GPUBeautyFace> {
  static constexpr const char* kTag = "Lumora";
  static constexpr const char* kClass = "GPUBeautyFace";
};
template <>
struct Names<GPUColorConverter> {
  static constexpr const char* kTag = "GPUColorConvert";
  static constexpr const char* kClass = "GPUColorConverter";
};

std::vector<LogLine> Destruction(const GPUBeautyFace*, Reached reached) {
  const auto step = [](const char* name) { return Info("Lumora", "[~GPUBeautyFace] %s", name); };
  std::vector<LogLine> lines = {Info("Lumora", "~GPUBeautyFace()+")};
  if (reached >= Display) lines.push_back(step("eglMakeCurrent"));
  if (reached >= Surface) lines.push_back(step("eglDestroySurface"));
  if (reached >= Context) lines.push_back(step("eglDestroyContext"));
  if (reached >= Display) lines.push_back(step("eglTerminate"));
  lines.push_back(Info("Lumora", "~GPUBeautyFace()-"));
  return lines;
}

// A converter whose construction failed does nothing at its end.
std::vector<LogLine> Destruction(const GPUColorConverter*, Reached reached) {
  const auto line = [](const char* text) { return Info("GPUColorConvert", "%s", text); };
  std::vector<LogLine> lines = {line("~GPUColorConverter()+")};
  if (reached < Ready) return lines;
  for (const char* step :
       {"eglMakeCurrent", "eglDestroySurface", "eglDestroyContext", "eglTerminate"}) {
    lines.push_back(Info("GPUColorConvert", "[~GPUColorConverter] %s", step));
  }
  lines.push_back(line("~GPUColorConverter()-"));
  return lines;
}

void ExpectWorks(GPUBeautyFace& engine) {
  constexpr int kWidth = 64;
  constexpr int kHeight = 48;
  engine.Init(kWidth, kHeight, kWidth, kHeight, nullptr, false);
  const Bytes frame = NoisePlanes(kWidth, kHeight, 1);
  CallerFrame caller(kWidth, kHeight, frame);
  EXPECT_EQ(1, engine.FaceProcessMultiface(caller.luma(), caller.chroma(), 0, nullptr, 0, 0));
  EXPECT_EQ(frame, caller.bytes());
}

void ExpectWorks(GPUColorConverter& converter) {
  converter.Init(128, 64, nullptr);
  reference::Frame frame(128, 64, 100);
  EXPECT_EQ(1, converter.ConvertYUV(frame.luma()));
  EXPECT_NEAR(100, converter.GetRGB_Image()[0], 1);
}

// What callers do who do not look at m_bEGLReady.
void UseAnyway(GPUBeautyFace& engine) {
  CallerFrame caller(64, 48, NoisePlanes(64, 48, 1));
  EXPECT_EQ(0, engine.FaceProcessMultiface(caller.luma(), caller.chroma(), 0, nullptr, 0, 0));
  EXPECT_EQ(1, engine.Init(64, 48, 64, 48, nullptr, true));
  EXPECT_EQ(0, engine.FaceProcessMultiface(caller.luma(), caller.chroma(), 0, nullptr, 0, 0));
  EXPECT_EQ(NoisePlanes(64, 48, 1), caller.bytes());
  EXPECT_TRUE(caller.intact());
  EXPECT_EQ(1, engine.DeInit());
}
void UseAnyway(GPUColorConverter& converter) {
  reference::Frame frame(128, 64, 100);
  EXPECT_EQ(0, converter.ConvertYUV(frame.luma()));
}

bool IsInitialised(EGLDisplay display) {
  return eglQueryString(display, EGL_VERSION) != nullptr;
}

template <typename Object>
class EglFaults : public testing::Test {
 protected:
  using N = Names<Object>;

  void Inject(const Fault& fault, bool use) {
    SCOPED_TRACE(testing::Message() << fault);
    LogCapture log;
    auto object = std::make_unique<Object>();
    object.reset();
    log.take();
    {
      const FaultScope scope(fault);
      object = std::make_unique<Object>();
      EXPECT_EQ(1, scope.failed());
    }
    const Reached reached = ReachedWith(fault, object->m_eglDisplay != EGL_NO_DISPLAY);
    std::vector<LogLine> construction = {Info(N::kTag, "%s()+", N::kClass)};
    for (int i = 0; i < reached; ++i) {
      construction.push_back(Debug(N::kTag, "[%s] %s successfully", N::kClass, kSteps[i]));
    }
    if (reached == Ready) construction.push_back(Info(N::kTag, "%s()-", N::kClass));
    EXPECT_TRUE(LogIs(log, construction));
    EXPECT_EQ(reached == Ready, object->m_bEGLReady);
    EXPECT_EQ(reached >= Display, object->m_eglDisplay != EGL_NO_DISPLAY);
    EXPECT_EQ(reached >= Context, object->m_eglContext != EGL_NO_CONTEXT);
    EXPECT_EQ(reached >= Surface, object->m_eglSurface != EGL_NO_SURFACE);
    EXPECT_EQ(reached == Ready, eglGetCurrentContext() != EGL_NO_CONTEXT);
    if (reached == Ready) ExpectWorks(*object);
    if (reached != Ready && use) UseAnyway(*object);

    const EGLDisplay display = object->m_eglDisplay;
    // A converter that came no further keeps what it made: its destructor does nothing.
    const bool terminates = std::is_same_v<Object, GPUBeautyFace> || reached == Ready;
    log.take();
    const Object* const none = nullptr;
    object.reset();
    const std::vector<LogLine> lines = log.lines_of(N::kTag);
    const std::vector<LogLine> expected = Destruction(none, reached);
    EXPECT_TRUE(LogHas(lines, expected));
    EXPECT_EQ(EGL_NO_CONTEXT, eglGetCurrentContext());
    if (display != EGL_NO_DISPLAY && terminates) {
      EXPECT_FALSE(IsInitialised(display));
    }

    auto next = std::make_unique<Object>();
    ASSERT_TRUE(next->m_bEGLReady);
    ExpectWorks(*next);
    const EGLDisplay last = next->m_eglDisplay;
    next.reset();
    EXPECT_FALSE(IsInitialised(last)) << "what failed before still counts";
  }
};

using Objects = testing::Types<GPUBeautyFace, GPUColorConverter>;
TYPED_TEST_SUITE(EglFaults, Objects);

TYPED_TEST(EglFaults, StopTheConstructionSilently) {
  CacheFolder cache;
  cache.prepare(Cache::Warm);
  CallCounts counts{};
  { TypeParam first; }
  {
    const FaultScope scope;
    TypeParam second;
    counts = scope.counts();
  }
  const std::vector<Fault> faults = FaultsOf(counts);
  // Once by the search for a display, and by the object itself. Where configurations have windows,
  // nobody asks for more of them.
  for (const Call call : {Call::InitializeDisplay, Call::ChooseConfig, Call::OfferConfig}) {
    EXPECT_GE(counts[static_cast<size_t>(call)], 2) << call;
  }
  for (const Call call : {Call::CreateContext, Call::CreatePbuffer, Call::MakeCurrent}) {
    EXPECT_EQ(counts[static_cast<size_t>(call)], 1) << call;
  }
  for (const Fault& fault : faults) {
    this->Inject(fault, false);
    this->Inject(fault, true);
  }
  TellInjected(2 * faults.size());
}

}  // namespace
}  // namespace lumora::test
