// SPDX-License-Identifier: Apache-2.0
// The driver's part of what the library does, with bare GL and EGL: a yardstick for what the driver
// keeps to itself.
#ifndef LUMORA_TESTS_SOAK_BARE_GL_H_
#define LUMORA_TESTS_SOAK_BARE_GL_H_

#include <EGL/egl.h>
#include <GLES2/gl2.h>

#include <string>

namespace lumora::test {

struct ProgramSources {
  std::string vertex, fragment;
};

/// The texts that a linked program of the current context was made from.
ProgramSources SourcesOf(GLuint program);

/// Compiles, links and returns a program. Its shaders stay, attached and never deleted.
GLuint MakeBareProgram(const ProgramSources& sources);

/// A display and programs to try on it, both found by having an engine for a moment.
class BareLives {
 public:
  BareLives();

  /// Initialises the display, makes a context and in it a program, draws with it or not, and ends
  /// all of it.
  void live(bool draws) const;

 private:
  EGLDisplay display_;
  ProgramSources sources_;
};

}  // namespace lumora::test

#endif  // LUMORA_TESTS_SOAK_BARE_GL_H_
