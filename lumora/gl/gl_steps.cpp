// SPDX-License-Identifier: Apache-2.0
#include "lumora/gl/gl_steps.h"

#include <cstdarg>
#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "lumora/gl/log.h"
#include "lumora/platform/gl_api.h"
#include "lumora/platform/graphic_buffer.h"

LUMORA_LOG_TAG("EGLImageTest");

namespace {

/// A text buffer of the C allocator that releases itself; `Get` is null when there is no memory.
class InfoLog {
 public:
  explicit InfoLog(GLint length)
      : text_(length > 0 ? static_cast<char*>(std::calloc(static_cast<size_t>(length), 1))
                         : nullptr) {}
  ~InfoLog() { std::free(text_); }
  InfoLog(const InfoLog&) = delete;
  InfoLog& operator=(const InfoLog&) = delete;
  char* Get() const { return text_; }

 private:
  char* text_;
};

}  // namespace

namespace lumora::gl {

int LogUnmaskedList(const char* fmt, va_list arguments) {
  return platform::PrintUnmasked(kLogInfo, g_log_channel.tag, fmt, arguments);
}

int LogUnmasked(const char* fmt, ...) {
  va_list arguments;
  va_start(arguments, fmt);
  const int result = LogUnmaskedList(fmt, arguments);
  va_end(arguments);
  return result;
}

void PrintGlString(const char* name, unsigned int id) {
  const GLubyte* value = glGetString(id);
  LOGI("GL %s = %s\n", name, value != nullptr ? reinterpret_cast<const char*>(value) : "(null)");
}

int CheckGlError(const char* op) {
  for (GLenum error = glGetError(); error != GL_NO_ERROR; error = glGetError()) {
    LOGI("after %s() glError (0x%x)\n", op, error);
  }
  return 0;
}

bool LocationIsValid(const char* name, int loc) {
  if (loc >= 0) return true;
  LOGE("[%s] invalid %s == %d", "LocIsValid", name, loc);
  return false;
}

unsigned int LoadShader(unsigned int type, const char* source) {
  const GLuint shader = glCreateShader(type);
  if (shader == 0) return 0;
  glShaderSource(shader, 1, &source, nullptr);
  glCompileShader(shader);
  GLint compiled = 0;
  glGetShaderiv(shader, GL_COMPILE_STATUS, &compiled);
  if (compiled != 0) return shader;

  GLint log_length = 0;
  glGetShaderiv(shader, GL_INFO_LOG_LENGTH, &log_length);
  if (log_length == 0) return shader;  // some drivers report no status; the link step decides
  const InfoLog log(log_length);
  if (log.Get() != nullptr) {
    glGetShaderInfoLog(shader, log_length, nullptr, log.Get());
    LOGE("Could not compile shader %d:\n%s\n", static_cast<int>(type), log.Get());
  }
  glDeleteShader(shader);
  return 0;
}

unsigned int CreateProgram(const char* vertexSource, const char* fragmentSource) {
  const GLuint vertex_shader = LoadShader(GL_VERTEX_SHADER, vertexSource);
  CheckGlError("gl Load Vertex Shader");
  if (vertex_shader == 0) return 0;
  const GLuint fragment_shader = LoadShader(GL_FRAGMENT_SHADER, fragmentSource);
  CheckGlError("gl Load Fragment Shader");
  if (fragment_shader == 0) return 0;

  const GLuint program = glCreateProgram();
  CheckGlError("glCreateProgram");
  if (program == 0) return 0;
  glAttachShader(program, vertex_shader);
  CheckGlError("glAttachVertexShader");
  glAttachShader(program, fragment_shader);
  CheckGlError("glAttachFragmentShader");
  glLinkProgram(program);
  GLint linked = GL_FALSE;
  glGetProgramiv(program, GL_LINK_STATUS, &linked);
  if (linked == GL_TRUE) return program;

  GLint log_length = 0;
  glGetProgramiv(program, GL_INFO_LOG_LENGTH, &log_length);
  const InfoLog log(log_length);
  if (log.Get() != nullptr) {
    glGetProgramInfoLog(program, log_length, nullptr, log.Get());
    LOGE("Could not link program:\n%s\n", log.Get());
  }
  glDeleteProgram(program);
  return 0;
}

bool AttachColour(unsigned int target, unsigned int texture) {
  glBindTexture(target, texture);
  CheckGlError("SetColorAttachment - glBindTexture");
  glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, target, texture, 0);
  CheckGlError("SetColorAttachment - after glFramebufferTexture2D");
  platform::NoteColorAttachment(texture);
  const GLenum status = glCheckFramebufferStatus(GL_FRAMEBUFFER);
  if (status == GL_FRAMEBUFFER_COMPLETE) return true;
  LOGE("[SetColorAttachment] ERROR, FBO not complete, status %u\n", status);
  return false;
}

}  // namespace lumora::gl
