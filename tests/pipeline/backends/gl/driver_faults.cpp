// SPDX-License-Identifier: Apache-2.0
#include "pipeline/backends/gl/driver_faults.h"

#include <EGL/egl.h>
#include <GLES2/gl2.h>

#include <atomic>

#include "support/next_function.h"

namespace {

std::atomic<int> g_no_contexts = 0;
std::atomic<int> g_framebuffers_incomplete = 0;
std::atomic<int> g_programs_lost = 0;
std::atomic<bool> g_error_told = false;

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

extern "C" __attribute__((visibility("default"))) void glDrawElements(GLenum mode, GLsizei count,
                                                                      GLenum type,
                                                                      const void* indices) {
  if (g_programs_lost > 0) {
    GLint program = 0;
    glGetIntegerv(GL_CURRENT_PROGRAM, &program);
    glUseProgram(0);
    glDeleteProgram(static_cast<GLuint>(program));
    return;
  }
  const auto next = LUMORA_NEXT(glDrawElements);
  next(mode, count, type, indices);
}

extern "C" __attribute__((visibility("default"))) GLenum glGetError(void) {
  if (g_programs_lost > 0) {
    g_error_told = !g_error_told;
    if (g_error_told) return GL_OUT_OF_MEMORY;
  }
  return LUMORA_NEXT(glGetError)();
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

ProgramsLost::ProgramsLost() {
  g_error_told = false;
  ++g_programs_lost;
}
ProgramsLost::~ProgramsLost() {
  --g_programs_lost;
}

}  // namespace lumora::test
