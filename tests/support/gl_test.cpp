// SPDX-License-Identifier: Apache-2.0
#include "support/gl_test.h"

#include <cstdio>

#include "lumora/platform/display.h"

namespace lumora::test {
namespace {

const char* GlText(GLenum name) {
  const GLubyte* text = glGetString(name);
  return text == nullptr ? "(none)" : reinterpret_cast<const char*>(text);
}

void PrintRendererOnce() {
  static bool printed = false;
  if (printed) return;
  printed = true;
  std::printf("GL_RENDERER: %s\nGL_VERSION: %s\n", GlText(GL_RENDERER), GlText(GL_VERSION));
}

}  // namespace

GlContext::GlContext() {
  previous_context_ = eglGetCurrentContext();
  previous_surface_ = eglGetCurrentSurface(EGL_DRAW);
  display_ = platform::GetDisplay();
  if (display_ == EGL_NO_DISPLAY) return;
  if (platform::Initialize(display_, nullptr, nullptr) == EGL_FALSE) {
    display_ = EGL_NO_DISPLAY;
    return;
  }
  const EGLint config_attributes[] = {EGL_SURFACE_TYPE,
                                      EGL_PBUFFER_BIT,
                                      EGL_RED_SIZE,
                                      8,
                                      EGL_GREEN_SIZE,
                                      8,
                                      EGL_BLUE_SIZE,
                                      8,
                                      EGL_ALPHA_SIZE,
                                      8,
                                      EGL_RENDERABLE_TYPE,
                                      EGL_OPENGL_ES2_BIT,
                                      EGL_NONE};
  EGLConfig config = nullptr;
  EGLint count = 0;
  if (platform::ChooseConfig(display_, config_attributes, &config, 1, &count) == EGL_FALSE ||
      count == 0) {
    return;
  }
  const EGLint context_attributes[] = {EGL_CONTEXT_CLIENT_VERSION, 2, EGL_NONE};
  const EGLint surface_attributes[] = {EGL_WIDTH, 1, EGL_HEIGHT, 1, EGL_NONE};
  context_ = eglCreateContext(display_, config, EGL_NO_CONTEXT, context_attributes);
  surface_ = eglCreatePbufferSurface(display_, config, surface_attributes);
  ok_ = context_ != EGL_NO_CONTEXT && surface_ != EGL_NO_SURFACE && make_current();
}

GlContext::~GlContext() {
  if (display_ == EGL_NO_DISPLAY) return;
  // Shared image memory may go with the context: no draw may still sample it then.
  if (ok_ && eglGetCurrentContext() == context_) glFinish();
  eglMakeCurrent(display_, previous_surface_, previous_surface_, previous_context_);
  if (surface_ != EGL_NO_SURFACE) eglDestroySurface(display_, surface_);
  if (context_ != EGL_NO_CONTEXT) eglDestroyContext(display_, context_);
  platform::Terminate(display_);
}

bool GlContext::make_current() const {
  return eglMakeCurrent(display_, surface_, surface_, context_) == EGL_TRUE;
}

void GlTest::SetUp() {
  ASSERT_TRUE(context_.ok()) << "no OpenGL ES 2 context on " << platform::DisplayOrigin();
  PrintRendererOnce();
}

}  // namespace lumora::test
