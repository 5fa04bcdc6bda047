// SPDX-License-Identifier: Apache-2.0
#include "lumora/platform/offscreen_context.h"

#include "lumora/platform/display.h"

namespace lumora::platform {
namespace {

// clang-format off
constexpr EGLint kConfigAttributes[] = {
    EGL_SURFACE_TYPE, EGL_PBUFFER_BIT | EGL_WINDOW_BIT,
    EGL_RED_SIZE, 8,
    EGL_GREEN_SIZE, 8,
    EGL_BLUE_SIZE, 8,
    EGL_ALPHA_SIZE, 8,
    EGL_DEPTH_SIZE, 16,
    EGL_STENCIL_SIZE, 4,
    EGL_RENDERABLE_TYPE, EGL_OPENGL_ES2_BIT,
    EGL_NONE};
// clang-format on
constexpr EGLint kContextAttributes[] = {EGL_CONTEXT_CLIENT_VERSION, 2, EGL_NONE};
constexpr EGLint kSurfaceAttributes[] = {EGL_WIDTH, 1, EGL_HEIGHT, 1, EGL_NONE};

constexpr EGLint kConfigCapacity = 10;

}  // namespace

bool CreateOffscreenContext(const OffscreenHandles& egl, bool& display_referenced,
                            EglStepLog done) {
  egl.display = GetDisplay();
  if (egl.display == EGL_NO_DISPLAY) return false;
  done("m_eglDisplay");

  EGLint major = 0;
  EGLint minor = 0;
  if (Initialize(egl.display, &major, &minor) == EGL_FALSE) return false;
  display_referenced = true;

  EGLConfig configs[kConfigCapacity] = {};
  EGLint count = 0;
  if (ChooseConfig(egl.display, kConfigAttributes, configs, kConfigCapacity, &count) == EGL_FALSE ||
      count < 1) {
    return false;
  }
  done("eglChooseConfig");
  egl.config = configs[0];
  return MakeContextCurrent(egl, done);
}

bool MakeContextCurrent(const OffscreenHandles& egl, EglStepLog done) {
  egl.context = eglCreateContext(egl.display, egl.config, EGL_NO_CONTEXT, kContextAttributes);
  if (egl.context == EGL_NO_CONTEXT) return false;
  done("eglCreateContext");

  egl.surface = eglCreatePbufferSurface(egl.display, egl.config, kSurfaceAttributes);
  if (egl.surface == EGL_NO_SURFACE) return false;
  done("eglCreatePbufferSurface");

  if (eglMakeCurrent(egl.display, egl.surface, egl.surface, egl.context) == EGL_FALSE) return false;
  done("eglMakeCurrent");
  return true;
}

void DestroyContext(const OffscreenHandles& egl, EglStepLog about_to) {
  if (egl.surface != EGL_NO_SURFACE) {
    about_to("eglDestroySurface");
    eglDestroySurface(egl.display, egl.surface);
    egl.surface = EGL_NO_SURFACE;
  }
  if (egl.context != EGL_NO_CONTEXT) {
    about_to("eglDestroyContext");
    eglDestroyContext(egl.display, egl.context);
    egl.context = EGL_NO_CONTEXT;
  }
}

void DestroyOffscreenContext(const OffscreenHandles& egl, bool& display_referenced,
                             EglStepLog about_to) {
  if (egl.display == EGL_NO_DISPLAY) return;
  // Draws that still sample shared memory must not outlive the context: drivers unmap it with them.
  if (egl.context != EGL_NO_CONTEXT && eglGetCurrentContext() == egl.context) glFinish();
  about_to("eglMakeCurrent");
  eglMakeCurrent(egl.display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
  DestroyContext(egl, about_to);
  about_to("eglTerminate");
  if (display_referenced) Terminate(egl.display);
  display_referenced = false;
  egl.display = EGL_NO_DISPLAY;
}

}  // namespace lumora::platform
