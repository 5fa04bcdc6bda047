#include "pipeline/driver_faults.h"

#include <EGL/egl.h>
#include <GLES2/gl2.h>

#include <atomic>

#include "support/next_function.h"

namespace {

std::atomic<int> g_no_contexts = 0;
std::atomic<int> g_framebuffers_incomplete = 0;

}  // namespace

extern "C" __attribute__((visibility("default"))) EGLContext eglCreateContext(
    EGLDisplay display, EGLConfig config, EGLContext share, const EGLint* attributes) {
  if (g_no_contexts > 0) return EGL_NO_CONTEXT;
  const auto next = LUMORA_NEXT(eglCreateContext);
  return next(display, config, share, attributes);
}

extern "C" __attribute__((visibility("default"))) GLenum glCheckFramebufferStatus(GLenum target) {
  if (g_framebuffers_incomplete > 0) return GL_FRAMEBUFFER_UNSUPPORTED;
  const auto next = LUMORA_NEXT(glCheckFramebufferStatus);
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
