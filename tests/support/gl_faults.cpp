// SPDX-License-Identifier: Apache-2.0
#include "support/gl_faults.h"

#include <EGL/eglext.h>
#include <GLES2/gl2ext.h>

#include <algorithm>
#include <cstdlib>

#include "support/driver_extensions.h"
#include "support/next_function.h"

namespace {

using lumora::test::GlFaults;

GlFaults* g_faults = nullptr;
bool g_egl_failed = false;  // the next eglGetError tells of a failed image

void Raise(const std::vector<GLenum>& errors) {
  g_faults->errors.insert(g_faults->errors.end(), errors.begin(), errors.end());
}

// The driver's own extension functions, known after the library asked for them.
lumora::test::DriverExtensions g_driver;

EGLImageKHR EGLAPIENTRY CreateImage(EGLDisplay display, EGLContext context, EGLenum target,
                                    EGLClientBuffer buffer, const EGLint* attributes) {
  if (g_faults != nullptr && g_faults->no_egl_images) {
    g_egl_failed = true;
    return EGL_NO_IMAGE_KHR;
  }
  if (g_faults != nullptr) ++g_faults->egl_images_made;
  return g_driver.create_image(display, context, target, buffer, attributes);
}

EGLBoolean EGLAPIENTRY DestroyImage(EGLDisplay display, EGLImageKHR image) {
  if (g_faults != nullptr) ++g_faults->egl_images_destroyed;
  return g_driver.destroy_image(display, image);
}

void GL_APIENTRY ImageTarget(GLenum target, GLeglImageOES image) {
  g_driver.image_target(target, image);
  if (g_faults != nullptr) Raise(g_faults->errors_of_image_target);
}

void GL_APIENTRY GetBinary(GLuint program, GLsizei size, GLsizei* length, GLenum* format,
                           void* binary) {
  if (g_faults != nullptr) ++g_faults->binaries_taken;
  if (g_faults != nullptr && g_faults->no_binaries) return Raise({GL_INVALID_OPERATION});
  g_driver.get_binary(program, size, length, format, binary);
}

void GL_APIENTRY ProgramBinary(GLuint program, GLenum format, const void* binary, GLint length) {
  if (g_faults != nullptr) ++g_faults->binaries_given;
  g_driver.program_binary(program, format, binary, length);
}

using Procedure = __eglMustCastToProperFunctionPointerType;

/// Whether a program is one of the first, which are spared.
bool IsGood(GLuint program) {
  const std::vector<GLuint>& made = g_faults->programs_made;
  const auto at = static_cast<size_t>(std::find(made.begin(), made.end(), program) - made.begin());
  return at < g_faults->good_programs && at < made.size();
}

bool IsHidden(GLuint program, const char* name) {
  if (g_faults == nullptr) return false;
  g_faults->looked_up.push_back(name);
  return g_faults->hidden_location == name && !IsGood(program);
}

}  // namespace

extern "C" {

Procedure EGLAPIENTRY eglGetProcAddress(const char* name) {
  return lumora::test::ReplaceExtension(
      name, LUMORA_NEXT(eglGetProcAddress)(name), g_driver,
      {CreateImage, DestroyImage, ImageTarget, GetBinary, ProgramBinary});
}

EGLint EGLAPIENTRY eglGetError(void) {
  const auto next = LUMORA_NEXT(eglGetError);
  if (!g_egl_failed) return next();
  g_egl_failed = false;
  return EGL_BAD_ALLOC;
}

GLenum GL_APIENTRY glGetError(void) {
  const auto next = LUMORA_NEXT(glGetError);
  if (g_faults == nullptr || g_faults->errors.empty()) return next();
  const GLenum error = g_faults->errors.front();
  g_faults->errors.pop_front();
  return error;
}

GLuint GL_APIENTRY glCreateShader(GLenum type) {
  const auto next = LUMORA_NEXT(glCreateShader);
  if (g_faults != nullptr && g_faults->no_shaders) return 0;
  const GLuint shader = next(type);
  if (g_faults != nullptr) g_faults->shaders_made.push_back(shader);
  return shader;
}

void GL_APIENTRY glCompileShader(GLuint shader) {
  const auto next = LUMORA_NEXT(glCompileShader);
  if (g_faults != nullptr) ++g_faults->compiles;
  next(shader);
}

void GL_APIENTRY glDeleteShader(GLuint shader) {
  const auto next = LUMORA_NEXT(glDeleteShader);
  if (g_faults != nullptr) g_faults->shaders_deleted.push_back(shader);
  next(shader);
}

GLuint GL_APIENTRY glCreateProgram(void) {
  const auto next = LUMORA_NEXT(glCreateProgram);
  if (g_faults != nullptr && g_faults->no_programs) return 0;
  const GLuint program = next();
  if (g_faults != nullptr) g_faults->programs_made.push_back(program);
  return program;
}

void GL_APIENTRY glDeleteProgram(GLuint program) {
  const auto next = LUMORA_NEXT(glDeleteProgram);
  if (g_faults != nullptr) g_faults->programs_deleted.push_back(program);
  next(program);
}

void GL_APIENTRY glDeleteTextures(GLsizei count, const GLuint* textures) {
  const auto next = LUMORA_NEXT(glDeleteTextures);
  for (GLsizei i = 0; g_faults != nullptr && i < count; ++i) {
    g_faults->textures_deleted.push_back(textures[i]);
  }
  next(count, textures);
}

void GL_APIENTRY glGetShaderiv(GLuint shader, GLenum name, GLint* value) {
  const auto next = LUMORA_NEXT(glGetShaderiv);
  next(shader, name, value);
  if (g_faults == nullptr) return;
  if (name == GL_COMPILE_STATUS && g_faults->shaders_fail) *value = GL_FALSE;
  if (name == GL_INFO_LOG_LENGTH && g_faults->logs_are_empty) *value = 0;
}

void GL_APIENTRY glGetProgramiv(GLuint program, GLenum name, GLint* value) {
  const auto next = LUMORA_NEXT(glGetProgramiv);
  next(program, name, value);
  if (g_faults == nullptr) return;
  if (name == GL_LINK_STATUS && g_faults->programs_fail && !IsGood(program)) *value = GL_FALSE;
  if (name == GL_INFO_LOG_LENGTH && g_faults->logs_are_empty) *value = 0;
}

GLint GL_APIENTRY glGetAttribLocation(GLuint program, const GLchar* name) {
  const auto next = LUMORA_NEXT(glGetAttribLocation);
  return IsHidden(program, name) ? -1 : next(program, name);
}

GLint GL_APIENTRY glGetUniformLocation(GLuint program, const GLchar* name) {
  const auto next = LUMORA_NEXT(glGetUniformLocation);
  return IsHidden(program, name) ? -1 : next(program, name);
}

const GLubyte* GL_APIENTRY glGetString(GLenum name) {
  const auto next = LUMORA_NEXT(glGetString);
  const GLubyte* const text = next(name);
  if (g_faults != nullptr && name == GL_VERSION && !g_faults->driver_version.empty()) {
    return reinterpret_cast<const GLubyte*>(g_faults->driver_version.c_str());
  }
  if (g_faults == nullptr || !g_faults->no_binary_extension || name != GL_EXTENSIONS) return text;
  // A longer name in its place: whoever looks for the text without minding words is fooled.
  static std::string without;
  without = reinterpret_cast<const char*>(text);
  const std::string extension = "GL_OES_get_program_binary";
  const size_t at = without.find(extension);
  if (at != std::string::npos) without.replace(at, extension.size(), extension + "_of_old");
  return reinterpret_cast<const GLubyte*>(without.c_str());
}

void GL_APIENTRY glGetIntegerv(GLenum name, GLint* value) {
  const auto next = LUMORA_NEXT(glGetIntegerv);
  next(name, value);
  const bool formats = name == GL_NUM_PROGRAM_BINARY_FORMATS_OES;
  if (formats && g_faults != nullptr && g_faults->no_binary_formats) *value = 0;
}

void GL_APIENTRY glTexParameteri(GLenum target, GLenum name, GLint value) {
  const auto next = LUMORA_NEXT(glTexParameteri);
  next(target, name, value);
  const bool clamps_t = name == GL_TEXTURE_WRAP_T && value == GL_CLAMP_TO_EDGE;
  if (g_faults != nullptr && clamps_t) Raise(g_faults->errors_of_edge_mode);
}

}  // extern "C"

namespace lumora::test {

GlFaults::GlFaults() {
  if (g_faults != nullptr) std::abort();
  g_faults = this;
}

GlFaults::~GlFaults() {
  g_faults = nullptr;
  g_egl_failed = false;
}

}  // namespace lumora::test
