// SPDX-License-Identifier: Apache-2.0
// The exported helpers. Nothing in the library calls them: an application may well have functions
// of its own with such names, and then these give way to them.
#include "lumora/gl/gl_helpers.h"

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "lumora/gl/gl_steps.h"

int LogLine(const char* fmt, ...) {
  va_list arguments;
  va_start(arguments, fmt);
  const int result = lumora::gl::LogUnmaskedList(fmt, arguments);
  va_end(arguments);
  return result;
}

void printGLString(const char* name, unsigned int id) {
  lumora::gl::PrintGlString(name, id);
}

int checkGlError(const char* op) {
  return lumora::gl::CheckGlError(op);
}

bool LocIsValid(const char* name, int loc) {
  return lumora::gl::LocationIsValid(name, loc);
}

unsigned int loadShader(unsigned int type, const char* source) {
  return lumora::gl::LoadShader(type, source);
}

unsigned int createProgram(const char* vertexSource, const char* fragmentSource) {
  return lumora::gl::CreateProgram(vertexSource, fragmentSource);
}

bool SetColorAttachment(unsigned int target, unsigned int texture) {
  return lumora::gl::AttachColour(target, texture);
}

unsigned char* GenTexture(unsigned int width, unsigned int height, int colour) {
  constexpr uint8_t kFills[3][4] = {{255, 0, 0, 255}, {0, 255, 0, 255}, {0, 0, 255, 255}};
  const size_t pixels = static_cast<size_t>(width) * height;
  auto* buffer = static_cast<unsigned char*>(std::malloc(pixels * 4));
  if (buffer == nullptr || colour < 0 || colour > 2) return buffer;
  for (size_t i = 0; i < pixels; ++i) std::memcpy(buffer + i * 4, kFills[colour], 4);
  return buffer;
}
