#include "pipeline/driver_faults.h"

#include <EGL/egl.h>
#include <GLES2/gl2.h>
#include <dlfcn.h>

#include <atomic>

namespace {

std::atomic<int> g_no_contexts = 0;
std::atomic<int> g_framebuffers_incomplete = 0;

/// The function that would have been called without this file.
template <typename Function>
Function Next(const char* name) {
  return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" __attribute__((visibility("default"))) EGLContext eglCreateContext(
    EGLDisplay display, EGLConfig config, EGLContext share, const EGLint* attributes) {
  if (g_no_contexts > 0) return EGL_NO_CONTEXT;
  static const auto next = Next<decltype(&eglCreateContext)>("eglCreateContext");
  return next(display, config, share, attributes);
}

extern "C" __attribute__((visibility("default"))) GLenum glCheckFramebufferStatus(GLenum target) {
  if (g_framebuffers_incomplete > 0) return GL_FRAMEBUFFER_UNSUPPORTED;
  static const auto next = Next<decltype(&glCheckFramebufferStatus)>("glCheckFramebufferStatus");
  return next(target);
}

namespace lumora::test {

NoContexts::NoContexts() {
  ++g_no_contexts;
}
NoContexts::~NoContexts() {
  --g_no_contexts;
}

FramebuffersIncomplete::FramebuffersIncomplete() {
  ++g_framebuffers_incomplete;
}
FramebuffersIncomplete::~FramebuffersIncomplete() {
  --g_framebuffers_incomplete;
}

}  // namespace lumora::test
