// SPDX-License-Identifier: Apache-2.0
// What an ordinary OpenGL ES application has: functions and classes of its own whose names, by
// chance, are those of the library's. None of them does what the library's does.
#include "platform/clashing_names.h"

namespace {

int g_calls = 0;

int Counted() {
  ++g_calls;
  return 0;
}

}  // namespace

namespace lumora::test {

int CallsOfTheApplication() {
  return g_calls;
}

}  // namespace lumora::test

// Visible, as in an application that is compiled without further ado.
#pragma GCC visibility push(default)

int LogLine(const char*, ...) {
  return Counted();
}
void printGLString(const char*, unsigned int) {
  Counted();
}
int checkGlError(const char*) {
  return Counted();
}
bool LocIsValid(const char*, int) {
  return Counted() != 0;
}
unsigned int loadShader(unsigned int, const char*) {
  return static_cast<unsigned int>(Counted());
}
unsigned int createProgram(const char*, const char*) {
  return static_cast<unsigned int>(Counted());
}
bool SetColorAttachment(unsigned int, unsigned int) {
  return Counted() != 0;
}
unsigned char* GenTexture(unsigned int, unsigned int, int) {
  Counted();
  return nullptr;
}

#ifdef LUMORA_CLASSES_CLASH
class GLProgram {
 public:
  GLProgram();
  virtual ~GLProgram();
  virtual bool Load();
  virtual bool Use();
  virtual bool Draw();
};
GLProgram::GLProgram() {
  Counted();
}
GLProgram::~GLProgram() {
  Counted();
}
bool GLProgram::Load() {
  return Counted() != 0;
}
bool GLProgram::Use() {
  return Counted() != 0;
}
bool GLProgram::Draw() {
  return Counted() != 0;
}

class SEGLImage {
 public:
  explicit SEGLImage(unsigned char flag);
  int Create(int width, int height, int format);
  void Destroy();
};
SEGLImage::SEGLImage(unsigned char) {
  Counted();
}
int SEGLImage::Create(int, int, int) {
  return Counted();
}
void SEGLImage::Destroy() {
  Counted();
}
#endif

#pragma GCC visibility pop
