// SPDX-License-Identifier: Apache-2.0
#include "support/egl_faults.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>

#include <cstring>
#include <optional>

#include "support/next_function.h"

namespace {

using lumora::test::EglStep;

struct {
  std::optional<EglStep> step;
  int passing = 0;
  int failed = 0;
} g_fault;

bool Fails(EglStep step) {
  if (g_fault.step != step) return false;
  if (g_fault.passing > 0) {
    --g_fault.passing;
    return false;
  }
  ++g_fault.failed;
  return true;
}

EGLDisplay EGLAPIENTRY PlatformDisplay(EGLenum platform, void* native, const EGLint* attributes) {
  if (Fails(EglStep::FindDisplay)) return EGL_NO_DISPLAY;
  const auto next = reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(
      LUMORA_NEXT(eglGetProcAddress)("eglGetPlatformDisplayEXT"));
  return next(platform, native, attributes);
}

}  // namespace

// Visible, so that a shared library finds them in the executable first.
#pragma GCC visibility push(default)
extern "C" {

__eglMustCastToProperFunctionPointerType eglGetProcAddress(const char* name) {
  if (std::strcmp(name, "eglGetPlatformDisplayEXT") == 0) {
    return reinterpret_cast<__eglMustCastToProperFunctionPointerType>(&PlatformDisplay);
  }
  return LUMORA_NEXT(eglGetProcAddress)(name);
}

EGLDisplay eglGetDisplay(EGLNativeDisplayType native) {
  if (Fails(EglStep::FindDisplay)) return EGL_NO_DISPLAY;
  return LUMORA_NEXT(eglGetDisplay)(native);
}

EGLBoolean eglInitialize(EGLDisplay display, EGLint* major, EGLint* minor) {
  if (Fails(EglStep::FindDisplay) || Fails(EglStep::Initialize)) return EGL_FALSE;
  return LUMORA_NEXT(eglInitialize)(display, major, minor);
}

EGLBoolean eglChooseConfig(EGLDisplay display, const EGLint* attributes, EGLConfig* configs,
                           EGLint capacity, EGLint* count) {
  if (Fails(EglStep::ChooseConfig)) return EGL_FALSE;
  if (Fails(EglStep::AnswerNoConfig)) {
    *count = 0;
    return EGL_TRUE;
  }
  return LUMORA_NEXT(eglChooseConfig)(display, attributes, configs, capacity, count);
}

EGLContext eglCreateContext(EGLDisplay display, EGLConfig config, EGLContext share,
                            const EGLint* attributes) {
  if (Fails(EglStep::CreateContext)) return EGL_NO_CONTEXT;
  return LUMORA_NEXT(eglCreateContext)(display, config, share, attributes);
}

EGLSurface eglCreatePbufferSurface(EGLDisplay display, EGLConfig config, const EGLint* attributes) {
  if (Fails(EglStep::CreatePbuffer)) return EGL_NO_SURFACE;
  return LUMORA_NEXT(eglCreatePbufferSurface)(display, config, attributes);
}

EGLBoolean eglMakeCurrent(EGLDisplay display, EGLSurface draw, EGLSurface read,
                          EGLContext context) {
  if (Fails(EglStep::MakeCurrent)) return EGL_FALSE;
  return LUMORA_NEXT(eglMakeCurrent)(display, draw, read, context);
}

}  // extern "C"
#pragma GCC visibility pop

namespace lumora::test {

EglFault::EglFault(EglStep step, int passing_calls) {
  g_fault.step = step;
  g_fault.passing = passing_calls;
  g_fault.failed = 0;
}

EglFault::~EglFault() {
  g_fault.step.reset();
}

int EglFault::failed() const {
  return g_fault.failed;
}

}  // namespace lumora::test
