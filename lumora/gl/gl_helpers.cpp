#include "lumora/gl/gl_helpers.h"

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "lumora/gl/log.h"
#include "lumora/platform/gl_api.h"
#include "lumora/platform/graphic_buffer.h"

LUMORA_LOG_TAG("EGLImageTest");

namespace {

/// A text buffer of the C allocator that releases itself; `get` is null when there is no memory.
class InfoLog {
 public:
  explicit InfoLog(GLint length)
      : text_(length > 0 ? static_cast<char*>(std::calloc(static_cast<size_t>(length), 1))
                         : nullptr) {}
  ~InfoLog() { std::free(text_); }
  InfoLog(const InfoLog&) = delete;
  InfoLog& operator=(const InfoLog&) = delete;
  char* get() const { return text_; }

 private:
  char* text_;
};

}  // namespace

int LogLine(const char* fmt, ...) {
  va_list arguments;
  va_start(arguments, fmt);
  const int result =
      lumora::platform::PrintUnmasked(lumora::kLogInfo, g_log_channel.tag, fmt, arguments);
  va_end(arguments);
  return result;
}

void printGLString(const char* name, unsigned int id) {
  const GLubyte* value = glGetString(id);
  LOGI("GL %s = %s\n", name, value != nullptr ? reinterpret_cast<const char*>(value) : "(null)");
}

int checkGlError(const char* op) {
  for (GLenum error = glGetError(); error != GL_NO_ERROR; error = glGetError()) {
    LOGI("after %s() glError (0x%x)\n", op, error);
  }
  return 0;
}

bool LocIsValid(const char* name, int loc) {
  if (loc >= 0) return true;
  LOGE("[%s] invalid %s == %d", "LocIsValid", name, loc);
  return false;
}

unsigned int loadShader(unsigned int type, const char* source) {
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
  if (log.get() != nullptr) {
    glGetShaderInfoLog(shader, log_length, nullptr, log.get());
    LOGE("Could not compile shader %d:\n%s\n", static_cast<int>(type), log.get());
  }
  glDeleteShader(shader);
  return 0;
}

unsigned int createProgram(const char* vertexSource, const char* fragmentSource) {
  const GLuint vertex_shader = loadShader(GL_VERTEX_SHADER, vertexSource);
  checkGlError("gl Load Vertex Shader");
  if (vertex_shader == 0) return 0;
  const GLuint fragment_shader = loadShader(GL_FRAGMENT_SHADER, fragmentSource);
  checkGlError("gl Load Fragment Shader");
  if (fragment_shader == 0) return 0;

  const GLuint program = glCreateProgram();
  checkGlError("glCreateProgram");
  if (program == 0) return 0;
  glAttachShader(program, vertex_shader);
  checkGlError("glAttachVertexShader");
  glAttachShader(program, fragment_shader);
  checkGlError("glAttachFragmentShader");
  glLinkProgram(program);
  GLint linked = GL_FALSE;
  glGetProgramiv(program, GL_LINK_STATUS, &linked);
  if (linked == GL_TRUE) return program;

  GLint log_length = 0;
  glGetProgramiv(program, GL_INFO_LOG_LENGTH, &log_length);
  const InfoLog log(log_length);
  if (log.get() != nullptr) {
    glGetProgramInfoLog(program, log_length, nullptr, log.get());
    LOGE("Could not link program:\n%s\n", log.get());
  }
  glDeleteProgram(program);
  return 0;
}

bool SetColorAttachment(unsigned int target, unsigned int texture) {
  glBindTexture(target, texture);
  checkGlError("SetColorAttachment - glBindTexture");
  glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, target, texture, 0);
  checkGlError("SetColorAttachment - after glFramebufferTexture2D");
  lumora::platform::NoteColorAttachment(texture);
  const GLenum status = glCheckFramebufferStatus(GL_FRAMEBUFFER);
  if (status == GL_FRAMEBUFFER_COMPLETE) return true;
  LOGE("[SetColorAttachment] ERROR, FBO not complete, status %u\n", status);
  return false;
}

unsigned char* GenTexture(unsigned int width, unsigned int height, int colour) {
  constexpr uint8_t kFills[3][4] = {{255, 0, 0, 255}, {0, 255, 0, 255}, {0, 0, 255, 255}};
  const size_t pixels = static_cast<size_t>(width) * height;
  auto* buffer = static_cast<unsigned char*>(std::malloc(pixels * 4));
  if (buffer == nullptr || colour < 0 || colour > 2) return buffer;
  for (size_t i = 0; i < pixels; ++i) std::memcpy(buffer + i * 4, kFills[colour], 4);
  return buffer;
}
