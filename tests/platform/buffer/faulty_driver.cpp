// SPDX-License-Identifier: Apache-2.0
#include "platform/buffer/faulty_driver.h"

#include <EGL/egl.h>
#include <GLES2/gl2.h>
#include <GLES2/gl2ext.h>

#include "support/driver_extensions.h"
#include "support/next_function.h"

namespace lumora::test {
namespace {

DriverFault g_fault = DriverFault::None;
DriverExtensions g_driver;

// Contexts are used by one thread at a time in these tests, and watched on one.
thread_local bool t_told = false;
thread_local bool t_finished = false;

void GL_APIENTRY ImportMemory(GLuint memory, GLuint64 size, GLenum type, GLint descriptor) {
  constexpr GLenum kNoSuchType = 0;
  g_driver.import_memory(memory, size, g_fault == DriverFault::ImportRefused ? kNoSuchType : type,
                         descriptor);
}

void GL_APIENTRY StorageMemory(GLenum target, GLsizei levels, GLenum format, GLsizei width,
                               GLsizei height, GLuint memory, GLuint64 offset) {
  if (g_fault == DriverFault::StorageApart) {
    glTexImage2D(target, 0, GL_RGBA, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    return;
  }
  const GLsizei told_levels = g_fault == DriverFault::StorageRefused ? 0 : levels;
  g_driver.storage_memory(target, told_levels, format, width, height, memory, offset);
}

}  // namespace

FaultyDriver::FaultyDriver(DriverFault fault) {
  g_fault = fault;
}
FaultyDriver::~FaultyDriver() {
  g_fault = DriverFault::None;
}

void WatchFinishes() {
  t_finished = false;
}
bool SomethingWasFinished() {
  return t_finished;
}

}  // namespace lumora::test

using lumora::test::DriverFault;
using lumora::test::g_fault;
using lumora::test::t_finished;
using lumora::test::t_told;

#pragma GCC visibility push(default)
extern "C" {

__eglMustCastToProperFunctionPointerType EGLAPIENTRY eglGetProcAddress(const char* name) {
  lumora::test::DriverExtensions replacements;
  replacements.import_memory = &lumora::test::ImportMemory;
  replacements.storage_memory = &lumora::test::StorageMemory;
  return lumora::test::ReplaceExtension(name, LUMORA_NEXT(eglGetProcAddress)(name),
                                        lumora::test::g_driver, replacements);
}

void GL_APIENTRY glClear(GLbitfield mask) {
  t_told = true;
  LUMORA_NEXT(glClear)(mask);
}
void GL_APIENTRY glDrawArrays(GLenum mode, GLint first, GLsizei count) {
  t_told = true;
  if (g_fault != DriverFault::DrawsLost) LUMORA_NEXT(glDrawArrays)(mode, first, count);
}
void GL_APIENTRY glCopyTexImage2D(GLenum target, GLint level, GLenum format, GLint x, GLint y,
                                  GLsizei width, GLsizei height, GLint border) {
  t_told = true;
  LUMORA_NEXT(glCopyTexImage2D)(target, level, format, x, y, width, height, border);
}
void GL_APIENTRY glCopyTexSubImage2D(GLenum target, GLint level, GLint to_x, GLint to_y, GLint x,
                                     GLint y, GLsizei width, GLsizei height) {
  t_told = true;
  if (g_fault == DriverFault::CopiesLost) return;
  LUMORA_NEXT(glCopyTexSubImage2D)(target, level, to_x, to_y, x, y, width, height);
}
void GL_APIENTRY glEnable(GLenum state) {
  if (state == GL_SCISSOR_TEST && g_fault == DriverFault::ScissorIgnored) return;
  LUMORA_NEXT(glEnable)(state);
}
void GL_APIENTRY glFlush(void) {
  t_told = false;
  LUMORA_NEXT(glFlush)();
}
void GL_APIENTRY glFinish(void) {
  t_finished = t_finished || (t_told && eglGetCurrentContext() != EGL_NO_CONTEXT);
  t_told = false;
  LUMORA_NEXT(glFinish)();
}

}  // extern "C"
#pragma GCC visibility pop
