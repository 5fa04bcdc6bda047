// SPDX-License-Identifier: Apache-2.0
// A host program and the pipeline on one display: EGL counts no references to it.
#include <EGL/egl.h>
#include <GLES2/gl2.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "lumora/engine/gpu_beauty_face.h"
#include "lumora/pipeline/converter.h"
#include "lumora/pipeline/pipeline.h"

namespace lumora::test {
namespace {

// Ends the test's process where something is not as it should be.
void Require(bool condition, const char* what) {
  if (condition) return;
  std::fprintf(stderr, "not so: %s\n", what);
  std::_Exit(1);
}

bool IsInitialised(EGLDisplay display) {
  return eglQueryString(display, EGL_VERSION) != nullptr;
}

// The display that the library finds on this machine, initialised by nobody afterwards.
EGLDisplay LibrarysDisplay() {
  const android::GPUBeautyFace engine;
  return engine.m_eglDisplay;
}

// What a host program draws with.
class HostContext {
 public:
  explicit HostContext(EGLDisplay display) : display_(display) {
    Require(eglInitialize(display, nullptr, nullptr) == EGL_TRUE, "the host has the display");
    constexpr std::array<EGLint, 5> kConfig = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT,
                                               EGL_RENDERABLE_TYPE, EGL_OPENGL_ES2_BIT, EGL_NONE};
    constexpr std::array<EGLint, 3> kVersion = {EGL_CONTEXT_CLIENT_VERSION, 2, EGL_NONE};
    constexpr std::array<EGLint, 5> kSize = {EGL_WIDTH, 1, EGL_HEIGHT, 1, EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    eglChooseConfig(display, kConfig.data(), &config, 1, &count);
    context_ = eglCreateContext(display, config, EGL_NO_CONTEXT, kVersion.data());
    surface_ = eglCreatePbufferSurface(display, config, kSize.data());
    Require(context_ != EGL_NO_CONTEXT && surface_ != EGL_NO_SURFACE, "the host has a context");
  }

  bool Draws() const {
    if (eglMakeCurrent(display_, surface_, surface_, context_) != EGL_TRUE) return false;
    glClearColor(1, 0, 1, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    std::array<GLubyte, 4> pixel{};
    glReadPixels(0, 0, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel.data());
    eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    return pixel == std::array<GLubyte, 4>{255, 0, 255, 255};
  }

 private:
  EGLDisplay display_;
  EGLContext context_ = EGL_NO_CONTEXT;
  EGLSurface surface_ = EGL_NO_SURFACE;
};

template <typename Owner>
std::unique_ptr<Owner> Make() {
  Status status;
  std::unique_ptr<Owner> made = Owner::Create({Device::Gl}, &status);
  Require(made != nullptr, status.message.c_str());
  return made;
}

// The state of EGL belongs to the process, so each test has one of its own.
class HostDisplayDeathTest : public testing::Test {
 protected:
  HostDisplayDeathTest() { testing::GTEST_FLAG(death_test_style) = "threadsafe"; }
};

template <typename Owner>
void HostFirst() {
  const EGLDisplay display = LibrarysDisplay();
  Require(!IsInitialised(display), "the end of an engine alone terminates");
  const HostContext host(display);
  for (int i = 0; i < 2; ++i) {
    Make<Owner>().reset();
    Require(host.Draws(), "the host draws after the pipeline's end");
  }
  eglTerminate(display);
  Require(!IsInitialised(display), "the host ends what it began");
  Require(LibrarysDisplay() == display, "an engine works again");
  Require(!IsInitialised(display), "its end still terminates");
  std::_Exit(0);
}

template <typename Owner>
void PipelineFirst() {
  const EGLDisplay display = LibrarysDisplay();
  auto first = Make<Owner>();
  const HostContext host(display);
  auto second = Make<Owner>();
  first.reset();
  Require(host.Draws(), "the host draws after the first end");
  second.reset();
  Require(host.Draws(), "the host draws after the last end");
  Require(LibrarysDisplay() == display, "an engine works beside the host");
  Require(host.Draws(), "the host draws after the end of an engine");
  Make<Owner>().reset();
  Require(host.Draws(), "the host draws after another pipeline's end");
  std::_Exit(0);
}

// The host comes when pipelines have come and gone, and one comes and goes after it.
template <typename Owner>
void HostBetween() {
  const EGLDisplay display = LibrarysDisplay();
  Make<Owner>().reset();
  const HostContext host(display);
  Require(host.Draws(), "the host draws");
  Make<Owner>().reset();
  Require(host.Draws(), "the host draws after the pipeline's end");
  std::_Exit(0);
}

TEST_F(HostDisplayDeathTest, AHostThatComesFirstKeepsItsDisplay) {
  EXPECT_EXIT(HostFirst<Pipeline>(), testing::ExitedWithCode(0), "");
  EXPECT_EXIT(HostFirst<Converter>(), testing::ExitedWithCode(0), "");
}

TEST_F(HostDisplayDeathTest, AHostThatComesAfterAPipelineKeepsItsDisplay) {
  EXPECT_EXIT(PipelineFirst<Pipeline>(), testing::ExitedWithCode(0), "");
  EXPECT_EXIT(PipelineFirst<Converter>(), testing::ExitedWithCode(0), "");
}

TEST_F(HostDisplayDeathTest, AHostThatComesBetweenPipelinesKeepsItsDisplay) {
  EXPECT_EXIT(HostBetween<Pipeline>(), testing::ExitedWithCode(0), "");
  EXPECT_EXIT(HostBetween<Converter>(), testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace lumora::test
