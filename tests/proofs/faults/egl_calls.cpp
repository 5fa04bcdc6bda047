// SPDX-License-Identifier: Apache-2.0
// EGL calls that can fail. NOLINTBEGIN(bugprone-reserved-identifier): the linker's names.
#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GLES2/gl2.h>
#include <GLES2/gl2ext.h>

#include <cstring>

#include "proofs/faults/fault_switch.h"

namespace {

using lumora::test::Call;
using lumora::test::Fails;
using Procedure = __eglMustCastToProperFunctionPointerType;

thread_local EGLint t_error = EGL_SUCCESS;  // of the last call that was made to fail

bool FailsEgl(Call call, EGLint error) {
  if (!Fails(call)) return false;
  t_error = error;
  return true;
}

PFNEGLCREATEIMAGEKHRPROC g_create_image = nullptr;
PFNEGLGETPLATFORMDISPLAYEXTPROC g_platform_display = nullptr;

EGLImageKHR EGLAPIENTRY CreateImage(EGLDisplay display, EGLContext context, EGLenum target,
                                    EGLClientBuffer buffer, const EGLint* attributes) {
  if (FailsEgl(Call::CreateImage, EGL_BAD_ALLOC)) return EGL_NO_IMAGE_KHR;
  return g_create_image(display, context, target, buffer, attributes);
}

EGLDisplay EGLAPIENTRY PlatformDisplay(EGLenum platform, void* native, const EGLint* attributes) {
  if (FailsEgl(Call::FindDisplay, EGL_BAD_PARAMETER)) return EGL_NO_DISPLAY;
  return g_platform_display(platform, native, attributes);
}

template <typename Function>
Procedure Replace(Procedure found, Function& original, Function replacement) {
  original = reinterpret_cast<Function>(found);
  return reinterpret_cast<Procedure>(replacement);
}

}  // namespace

extern "C" {

Procedure __real_eglGetProcAddress(const char* name);
EGLint __real_eglGetError(void);
EGLDisplay __real_eglGetDisplay(EGLNativeDisplayType native);
EGLBoolean __real_eglInitialize(EGLDisplay display, EGLint* major, EGLint* minor);
EGLBoolean __real_eglChooseConfig(EGLDisplay display, const EGLint* attributes, EGLConfig* configs,
                                  EGLint capacity, EGLint* count);
EGLContext __real_eglCreateContext(EGLDisplay display, EGLConfig config, EGLContext share,
                                   const EGLint* attributes);
EGLBoolean __real_eglDestroyContext(EGLDisplay display, EGLContext context);
EGLSurface __real_eglCreatePbufferSurface(EGLDisplay display, EGLConfig config,
                                          const EGLint* attributes);
EGLBoolean __real_eglMakeCurrent(EGLDisplay display, EGLSurface draw, EGLSurface read,
                                 EGLContext context);

Procedure __wrap_eglGetProcAddress(const char* name) {
  const Procedure found = __real_eglGetProcAddress(name);
  if (found == nullptr) return nullptr;
  if (std::strcmp(name, "eglCreateImageKHR") == 0) {
    return Replace(found, g_create_image, &CreateImage);
  }
  if (std::strcmp(name, "eglGetPlatformDisplayEXT") == 0) {
    return Replace(found, g_platform_display, &PlatformDisplay);
  }
  return lumora::test::ReplaceGlProcedure(name, found);
}

EGLint __wrap_eglGetError(void) {
  const EGLint injected = t_error;
  t_error = EGL_SUCCESS;
  const EGLint own = __real_eglGetError();
  return injected != EGL_SUCCESS ? injected : own;
}

EGLDisplay __wrap_eglGetDisplay(EGLNativeDisplayType native) {
  if (FailsEgl(Call::FindDisplay, EGL_BAD_PARAMETER)) return EGL_NO_DISPLAY;
  return __real_eglGetDisplay(native);
}

EGLBoolean __wrap_eglInitialize(EGLDisplay display, EGLint* major, EGLint* minor) {
  if (FailsEgl(Call::InitializeDisplay, EGL_NOT_INITIALIZED)) return EGL_FALSE;
  return __real_eglInitialize(display, major, minor);
}

EGLBoolean __wrap_eglChooseConfig(EGLDisplay display, const EGLint* attributes, EGLConfig* configs,
                                  EGLint capacity, EGLint* count) {
  if (FailsEgl(Call::ChooseConfig, EGL_BAD_ATTRIBUTE)) return EGL_FALSE;
  if (Fails(Call::OfferConfig)) {
    *count = 0;
    return EGL_TRUE;
  }
  return __real_eglChooseConfig(display, attributes, configs, capacity, count);
}

EGLContext __wrap_eglCreateContext(EGLDisplay display, EGLConfig config, EGLContext share,
                                   const EGLint* attributes) {
  if (FailsEgl(Call::CreateContext, EGL_BAD_ALLOC)) return EGL_NO_CONTEXT;
  return __real_eglCreateContext(display, config, share, attributes);
}

EGLBoolean __wrap_eglDestroyContext(EGLDisplay display, EGLContext context) {
  lumora::test::ForgetContext(context);
  return __real_eglDestroyContext(display, context);
}

EGLSurface __wrap_eglCreatePbufferSurface(EGLDisplay display, EGLConfig config,
                                          const EGLint* attributes) {
  if (FailsEgl(Call::CreatePbuffer, EGL_BAD_ALLOC)) return EGL_NO_SURFACE;
  return __real_eglCreatePbufferSurface(display, config, attributes);
}

EGLBoolean __wrap_eglMakeCurrent(EGLDisplay display, EGLSurface draw, EGLSurface read,
                                 EGLContext context) {
  // Releasing a context is what destruction relies on; drivers do not refuse it.
  if (context != EGL_NO_CONTEXT && FailsEgl(Call::MakeCurrent, EGL_BAD_ALLOC)) return EGL_FALSE;
  return __real_eglMakeCurrent(display, draw, read, context);
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier)
