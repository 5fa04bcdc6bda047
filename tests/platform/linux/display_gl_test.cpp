// SPDX-License-Identifier: Apache-2.0
// Displays that several engines and the application share.
#include "lumora/platform/display.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "lumora/platform/gl_api.h"
#include "support/gl_test.h"

namespace {

using lumora::platform::ChooseConfig;
using lumora::platform::DisplayOrigin;
using lumora::platform::GetDisplay;
using lumora::platform::Initialize;
using lumora::platform::Terminate;
using lumora::test::GlContext;

bool IsInitialised(EGLDisplay display) {
  return eglQueryString(display, EGL_VERSION) != nullptr;
}

// The steps in which an engine makes its context, and a drawing that shows that it works.
class Engine {
 public:
  Engine() {
    display_ = GetDisplay();
    EGLint major = 0;
    EGLint minor = 0;
    if (Initialize(display_, &major, &minor) != EGL_TRUE || major != 1) return;
    constexpr std::array<EGLint, 7> kConfig = {EGL_SURFACE_TYPE,
                                               EGL_WINDOW_BIT | EGL_PBUFFER_BIT,
                                               EGL_RENDERABLE_TYPE,
                                               EGL_OPENGL_ES2_BIT,
                                               EGL_ALPHA_SIZE,
                                               8,
                                               EGL_NONE};
    constexpr std::array<EGLint, 3> kVersion = {EGL_CONTEXT_CLIENT_VERSION, 2, EGL_NONE};
    constexpr std::array<EGLint, 5> kSize = {EGL_WIDTH, 1, EGL_HEIGHT, 1, EGL_NONE};
    std::array<EGLConfig, 10> configs{};
    EGLint count = 0;
    if (ChooseConfig(display_, kConfig.data(), configs.data(), 10, &count) != EGL_TRUE) return;
    context_ = eglCreateContext(display_, configs[0], EGL_NO_CONTEXT, kVersion.data());
    surface_ = eglCreatePbufferSurface(display_, configs[0], kSize.data());
  }

  ~Engine() {
    if (eglGetCurrentContext() == context_) {
      eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    }
    eglDestroyContext(display_, context_);
    eglDestroySurface(display_, surface_);
    Terminate(display_);
  }
  Engine(const Engine&) = delete;
  Engine& operator=(const Engine&) = delete;

  EGLDisplay display() const { return display_; }

  bool draws(GLubyte level) const {
    if (eglMakeCurrent(display_, surface_, surface_, context_) != EGL_TRUE) return false;
    glClearColor(static_cast<GLfloat>(level) / 255.0f, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    std::array<GLubyte, 4> pixel{};
    glReadPixels(0, 0, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel.data());
    return pixel[0] == level;
  }

 private:
  EGLDisplay display_ = EGL_NO_DISPLAY;
  EGLContext context_ = EGL_NO_CONTEXT;
  EGLSurface surface_ = EGL_NO_SURFACE;
};

TEST(Display, ADisplayIsFoundAndTellsItsOrigin) {
  const EGLDisplay display = GetDisplay();
  ASSERT_NE(display, EGL_NO_DISPLAY);
  EXPECT_EQ(GetDisplay(), display);
  const std::vector<std::string> origins = {"default display", "EGL device",
                                            "EGL device (software)", "surfaceless platform"};
  EXPECT_EQ(std::count(origins.begin(), origins.end(), DisplayOrigin()), 1) << DisplayOrigin();
  EXPECT_TRUE(Engine().draws(200));
}

TEST(Display, AConfigurationIsFoundWhereThereAreNoWindows) {
  const Engine engine;
  constexpr std::array<EGLint, 5> kConfig = {EGL_RENDERABLE_TYPE, EGL_OPENGL_ES2_BIT,
                                             EGL_SURFACE_TYPE, EGL_WINDOW_BIT | EGL_PBUFFER_BIT,
                                             EGL_NONE};
  std::array<EGLConfig, 10> configs{};
  EGLint count = 0;
  ASSERT_EQ(ChooseConfig(engine.display(), kConfig.data(), configs.data(), 10, &count), EGL_TRUE);
  ASSERT_GT(count, 0);
  EGLint types = 0;
  eglGetConfigAttrib(engine.display(), configs[0], EGL_SURFACE_TYPE, &types);
  EXPECT_NE(types & EGL_PBUFFER_BIT, 0);
  // A list that does not speak of surfaces asks for windows; it is answered as well.
  EXPECT_EQ(ChooseConfig(engine.display(), nullptr, configs.data(), 10, &count), EGL_TRUE);
  EXPECT_GT(count, 0);
}

TEST(Display, ImpossibleConfigurationsStayImpossible) {
  const Engine engine;
  constexpr std::array<EGLint, 3> kConfig = {EGL_RED_SIZE, 31, EGL_NONE};
  EGLConfig config = nullptr;
  EGLint count = -1;
  EXPECT_EQ(ChooseConfig(engine.display(), kConfig.data(), &config, 1, &count), EGL_TRUE);
  EXPECT_EQ(count, 0);
}

TEST(Display, NoDisplayGivesEglsOwnAnswers) {
  EXPECT_EQ(Initialize(EGL_NO_DISPLAY, nullptr, nullptr), EGL_FALSE);
  EXPECT_EQ(Terminate(EGL_NO_DISPLAY), EGL_FALSE);
}

TEST(Display, TheFirstEnginesEndLeavesTheSecondAlive) {
  auto first = std::make_unique<Engine>();
  const Engine second;
  EXPECT_TRUE(first->draws(10));
  EXPECT_TRUE(second.draws(20));
  first.reset();
  EXPECT_TRUE(second.draws(30));
}

TEST(Display, TheSecondEnginesEndLeavesTheFirstAlive) {
  const Engine first;
  for (GLubyte round = 1; round < 4; ++round) {
    EXPECT_TRUE(Engine().draws(round));
    EXPECT_TRUE(first.draws(static_cast<GLubyte>(100 + round)));
  }
}

TEST(Display, LooksForADisplayLeaveEnginesAlive) {
  const Engine engine;
  EXPECT_EQ(GetDisplay(), engine.display());
  EXPECT_TRUE(engine.draws(40));
}

TEST(Display, TheLastEnginesEndTerminates) {
  EGLDisplay display = EGL_NO_DISPLAY;
  {
    const Engine first;
    const Engine second;
    display = first.display();
    EXPECT_TRUE(IsInitialised(display));
  }
  EXPECT_FALSE(IsInitialised(display));
  EXPECT_TRUE(Engine().draws(50));
}

TEST(Display, ADisplayThatTheApplicationInitialisedIsNeverTerminated) {
  const EGLDisplay display = Engine().display();
  ASSERT_FALSE(IsInitialised(display));
  ASSERT_EQ(eglInitialize(display, nullptr, nullptr), EGL_TRUE);
  for (GLubyte round = 0; round < 3; ++round) {
    const Engine engine;
    EXPECT_EQ(engine.display(), display);
    EXPECT_TRUE(engine.draws(round));
  }
  EXPECT_TRUE(IsInitialised(display));

  // Once the application has ended it, it is the library's to begin and to end.
  eglTerminate(display);
  EXPECT_TRUE(Engine().draws(60));
  EXPECT_FALSE(IsInitialised(display));
}

TEST(Display, ThreadsMakeAndEndEnginesAtOnce) {
  constexpr int kThreads = 4;
  constexpr int kRounds = 25;
  std::atomic<int> failures{0};
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&failures, thread] {
      for (int round = 0; round < kRounds; ++round) {
        const Engine engine;
        if (!engine.draws(static_cast<GLubyte>(thread * 50 + round))) ++failures;
      }
      eglReleaseThread();
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(failures, 0);
}

TEST(Extensions, AreFoundAsWholeWords) {
  using lumora::gl::HasExtension;
  constexpr const char* kList = "GL_OES_image GL_OES_image_external GL_EXT_b";
  EXPECT_TRUE(HasExtension(kList, "GL_OES_image"));
  EXPECT_TRUE(HasExtension(kList, "GL_OES_image_external"));
  EXPECT_TRUE(HasExtension(kList, "GL_EXT_b"));
  EXPECT_FALSE(HasExtension(kList, "GL_OES_image_ext"));
  EXPECT_FALSE(HasExtension(kList, "OES_image"));
  EXPECT_FALSE(HasExtension("GL_EXT_ab GL_EXT_a_", "GL_EXT_a"));
  EXPECT_FALSE(HasExtension(kList, ""));
  EXPECT_FALSE(HasExtension(nullptr, "GL_OES_image"));
}

}  // namespace
