// SPDX-License-Identifier: Apache-2.0
// GL calls that can fail. NOLINTBEGIN(bugprone-reserved-identifier): the linker's names.
#include <EGL/egl.h>
#include <GLES2/gl2.h>
#include <GLES2/gl2ext.h>

#include <algorithm>
#include <cstring>
#include <deque>
#include <map>
#include <mutex>
#include <set>

#include "proofs/faults/fault_switch.h"

extern "C" {
GLenum __real_glGetError(void);
void __real_glGenTextures(GLsizei count, GLuint* names);
void __real_glDeleteTextures(GLsizei count, const GLuint* names);
void __real_glGenFramebuffers(GLsizei count, GLuint* names);
void __real_glDeleteFramebuffers(GLsizei count, const GLuint* names);
void __real_glTexImage2D(GLenum target, GLint level, GLint internal, GLsizei width, GLsizei height,
                         GLint border, GLenum format, GLenum type, const void* pixels);
GLenum __real_glCheckFramebufferStatus(GLenum target);
GLuint __real_glCreateShader(GLenum type);
void __real_glCompileShader(GLuint shader);
void __real_glGetShaderiv(GLuint shader, GLenum name, GLint* value);
void __real_glGetShaderInfoLog(GLuint shader, GLsizei size, GLsizei* length, GLchar* text);
GLuint __real_glCreateProgram(void);
void __real_glLinkProgram(GLuint program);
void __real_glGetProgramiv(GLuint program, GLenum name, GLint* value);
void __real_glGetProgramInfoLog(GLuint program, GLsizei size, GLsizei* length, GLchar* text);
GLint __real_glGetAttribLocation(GLuint program, const GLchar* name);
GLint __real_glGetUniformLocation(GLuint program, const GLchar* name);
}

namespace {

using lumora::test::Call;
using lumora::test::Fails;
using lumora::test::FailsWith;
using lumora::test::LiveNames;

constexpr char kInfoLog[] = "made to fail";

// Errors raised here are those of the thread's context, which is one at a time in each thread.
thread_local std::deque<GLenum> t_errors;

// Shaders and programs whose status is not the driver's. Names are those of one context; the
// library builds one program at a time.
std::mutex g_mutex;
std::set<GLuint> g_failed_shaders;
std::set<GLuint> g_quiet_shaders;
std::set<GLuint> g_failed_programs;
std::map<EGLContext, LiveNames> g_live;

bool IsIn(const std::set<GLuint>& names, GLuint name) {
  const std::lock_guard<std::mutex> guard(g_mutex);
  return names.count(name) != 0;
}

void Put(std::set<GLuint>& names, GLuint name, bool inside) {
  const std::lock_guard<std::mutex> guard(g_mutex);
  if (inside) {
    names.insert(name);
  } else {
    names.erase(name);
  }
}

void CopyInfoLog(GLsizei size, GLsizei* length, GLchar* text) {
  if (size <= 0) return;
  const auto count = std::min(static_cast<size_t>(size) - 1, sizeof(kInfoLog) - 1);
  std::memcpy(text, kInfoLog, count);
  text[count] = '\0';
  if (length != nullptr) *length = static_cast<GLsizei>(count);
}

// How many of the names are names of objects.
int CountNames(GLsizei count, const GLuint* names, GLboolean (*exists)(GLuint)) {
  return static_cast<int>(
      std::count_if(names, names + count, [&](GLuint name) { return exists(name) == GL_TRUE; }));
}

void Count(int LiveNames::*live, int change) {
  const EGLContext context = eglGetCurrentContext();
  const std::lock_guard<std::mutex> guard(g_mutex);
  g_live[context].*live += change;
}

PFNGLEGLIMAGETARGETTEXTURE2DOESPROC g_image_target = nullptr;
PFNGLGETPROGRAMBINARYOESPROC g_get_binary = nullptr;
PFNGLPROGRAMBINARYOESPROC g_program_binary = nullptr;
PFNGLTEXSTORAGEMEM2DEXTPROC g_storage_mem = nullptr;

void GL_APIENTRY ImageTarget(GLenum target, GLeglImageOES image) {
  if (!FailsWith(Call::ShowImage, GL_INVALID_OPERATION)) g_image_target(target, image);
}

void GL_APIENTRY GetBinary(GLuint program, GLsizei size, GLsizei* length, GLenum* format,
                           void* binary) {
  if (!FailsWith(Call::TakeBinary, GL_INVALID_OPERATION)) {
    g_get_binary(program, size, length, format, binary);
  }
}

void GL_APIENTRY ProgramBinary(GLuint program, GLenum format, const void* binary, GLint length) {
  if (!Fails(Call::AcceptBinary)) g_program_binary(program, format, binary, length);
}

void GL_APIENTRY StorageMem(GLenum target, GLsizei levels, GLenum format, GLsizei width,
                            GLsizei height, GLuint memory, GLuint64 offset) {
  if (!FailsWith(Call::ImportMemory, GL_OUT_OF_MEMORY)) {
    g_storage_mem(target, levels, format, width, height, memory, offset);
  }
}

using Procedure = __eglMustCastToProperFunctionPointerType;

template <typename Function>
Procedure Replace(Procedure found, Function& original, Function replacement) {
  original = reinterpret_cast<Function>(found);
  return reinterpret_cast<Procedure>(replacement);
}

}  // namespace

namespace lumora::test {

bool FailsWith(Call call, GLenum error) {
  if (!Fails(call)) return false;
  t_errors.push_back(error);
  return true;
}

LiveNames LiveGlNames() {
  const EGLContext context = eglGetCurrentContext();
  const std::lock_guard<std::mutex> guard(g_mutex);
  return g_live[context];
}

void ForgetContext(EGLContext context) {
  const std::lock_guard<std::mutex> guard(g_mutex);
  g_live.erase(context);
}

Procedure ReplaceGlProcedure(const char* name, Procedure found) {
  const auto is = [name](const char* other) { return std::strcmp(name, other) == 0; };
  if (is("glEGLImageTargetTexture2DOES")) return Replace(found, g_image_target, &ImageTarget);
  if (is("glGetProgramBinaryOES")) return Replace(found, g_get_binary, &GetBinary);
  if (is("glProgramBinaryOES")) return Replace(found, g_program_binary, &ProgramBinary);
  if (is("glTexStorageMem2DEXT")) return Replace(found, g_storage_mem, &StorageMem);
  return found;
}

}  // namespace lumora::test

extern "C" {

GLenum __wrap_glGetError(void) {
  if (t_errors.empty()) return __real_glGetError();
  const GLenum error = t_errors.front();
  t_errors.pop_front();
  return error;
}

void __wrap_glGenTextures(GLsizei count, GLuint* names) {
  if (FailsWith(Call::GenTexture, GL_OUT_OF_MEMORY)) return;
  __real_glGenTextures(count, names);
  Count(&LiveNames::textures, count);
}

void __wrap_glDeleteTextures(GLsizei count, const GLuint* names) {
  Count(&LiveNames::textures, -CountNames(count, names, glIsTexture));
  __real_glDeleteTextures(count, names);
}

void __wrap_glGenFramebuffers(GLsizei count, GLuint* names) {
  if (FailsWith(Call::GenFramebuffer, GL_OUT_OF_MEMORY)) return;
  __real_glGenFramebuffers(count, names);
  Count(&LiveNames::framebuffers, count);
}

void __wrap_glDeleteFramebuffers(GLsizei count, const GLuint* names) {
  Count(&LiveNames::framebuffers, -CountNames(count, names, glIsFramebuffer));
  __real_glDeleteFramebuffers(count, names);
}

void __wrap_glTexImage2D(GLenum target, GLint level, GLint internal, GLsizei width, GLsizei height,
                         GLint border, GLenum format, GLenum type, const void* pixels) {
  if (FailsWith(Call::TexImage, GL_OUT_OF_MEMORY)) return;
  __real_glTexImage2D(target, level, internal, width, height, border, format, type, pixels);
}

GLenum __wrap_glCheckFramebufferStatus(GLenum target) {
  if (Fails(Call::CheckFramebuffer)) return GL_FRAMEBUFFER_UNSUPPORTED;
  return __real_glCheckFramebufferStatus(target);
}

GLuint __wrap_glCreateShader(GLenum type) {
  return Fails(Call::CreateShader) ? 0 : __real_glCreateShader(type);
}

void __wrap_glCompileShader(GLuint shader) {
  __real_glCompileShader(shader);
  Put(g_failed_shaders, shader, Fails(Call::CompileShader));
  Put(g_quiet_shaders, shader, Fails(Call::CompileQuietly));
}

void __wrap_glGetShaderiv(GLuint shader, GLenum name, GLint* value) {
  __real_glGetShaderiv(shader, name, value);
  const bool failed = IsIn(g_failed_shaders, shader);
  const bool quiet = IsIn(g_quiet_shaders, shader);
  if (!failed && !quiet) return;
  if (name == GL_COMPILE_STATUS) *value = GL_FALSE;
  if (name == GL_INFO_LOG_LENGTH) *value = failed ? static_cast<GLint>(sizeof(kInfoLog)) : 0;
}

void __wrap_glGetShaderInfoLog(GLuint shader, GLsizei size, GLsizei* length, GLchar* text) {
  if (IsIn(g_failed_shaders, shader)) return CopyInfoLog(size, length, text);
  __real_glGetShaderInfoLog(shader, size, length, text);
}

GLuint __wrap_glCreateProgram(void) {
  return Fails(Call::CreateProgram) ? 0 : __real_glCreateProgram();
}

void __wrap_glLinkProgram(GLuint program) {
  __real_glLinkProgram(program);
  Put(g_failed_programs, program, Fails(Call::LinkProgram));
}

void __wrap_glGetProgramiv(GLuint program, GLenum name, GLint* value) {
  __real_glGetProgramiv(program, name, value);
  if (!IsIn(g_failed_programs, program)) return;
  if (name == GL_LINK_STATUS) {
    *value = GL_FALSE;
    return;
  }
  if (name == GL_INFO_LOG_LENGTH) *value = static_cast<GLint>(sizeof(kInfoLog));
}

void __wrap_glGetProgramInfoLog(GLuint program, GLsizei size, GLsizei* length, GLchar* text) {
  if (IsIn(g_failed_programs, program)) {
    Put(g_failed_programs, program, false);  // deleted next, and the name used again
    return CopyInfoLog(size, length, text);
  }
  __real_glGetProgramInfoLog(program, size, length, text);
}

GLint __wrap_glGetAttribLocation(GLuint program, const GLchar* name) {
  return Fails(Call::FindAttribute) ? -1 : __real_glGetAttribLocation(program, name);
}

GLint __wrap_glGetUniformLocation(GLuint program, const GLchar* name) {
  return Fails(Call::FindUniform) ? -1 : __real_glGetUniformLocation(program, name);
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier)
