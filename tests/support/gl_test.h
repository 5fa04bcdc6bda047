// SPDX-License-Identifier: Apache-2.0
// A GL context for tests of single parts. Link `lumora_gl_fixture`, which brings in the library as
// the static `lumora_internal`; such an executable must not link the shared library too.
// Tests that own an engine need no fixture: the engine makes its own context.
#ifndef LUMORA_TESTS_SUPPORT_GL_TEST_H_
#define LUMORA_TESTS_SUPPORT_GL_TEST_H_

#include <EGL/egl.h>
#include <gtest/gtest.h>

#include "support/gl_objects.h"

namespace lumora::test {

/// An off-screen OpenGL ES 2 context with a 1 x 1 pbuffer, current on the thread that made it. On
/// failure `ok` is false. Ends on the same thread; the context that was current before comes back.
class GlContext {
 public:
  GlContext();
  ~GlContext();
  GlContext(const GlContext&) = delete;
  GlContext& operator=(const GlContext&) = delete;

  bool ok() const { return ok_; }
  EGLDisplay display() const { return display_; }
  EGLContext context() const { return context_; }
  /// Makes this context current again, after another one was.
  bool make_current() const;

 private:
  EGLDisplay display_ = EGL_NO_DISPLAY;
  EGLSurface surface_ = EGL_NO_SURFACE;
  EGLContext context_ = EGL_NO_CONTEXT;
  EGLContext previous_context_ = EGL_NO_CONTEXT;
  EGLSurface previous_surface_ = EGL_NO_SURFACE;
  bool ok_ = false;
};

/// Every test gets a fresh context: no GL state is carried over from the test before. A display
/// that does not work is a failure, not a skip. The first test of a run prints renderer and
/// version.
class GlTest : public ::testing::Test {
 protected:
  void SetUp() override;
  GlContext& context() { return context_; }

 private:
  GlContext context_;
};

}  // namespace lumora::test

#endif  // LUMORA_TESTS_SUPPORT_GL_TEST_H_
