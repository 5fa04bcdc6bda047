#include "conformance/gl_recorder.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GLES2/gl2ext.h>
#include <dlfcn.h>

#include <cstdlib>
#include <cstring>
#include <utility>

#include "conformance/gl_text.h"

namespace {

using lumora::test::Bindings;
using lumora::test::Call;
using lumora::test::CallArgument;
using lumora::test::CoordinatesText;
using lumora::test::EglList;
using lumora::test::GlName;
using lumora::test::GlRecorder;
using lumora::test::Numbers;
using lumora::test::ObjectId;
using lumora::test::ObjectKind;
using lumora::test::PositionsText;

using Arguments = std::vector<CallArgument>;

// What the process has made so far, followed whether or not anybody records.
struct Tracker {
  std::map<std::pair<ObjectKind, uint64_t>, uint64_t> serials;  // by name
  uint64_t last_serial = 0;
  std::map<GLuint, std::string> shaders;                                   // by name: its type
  std::map<std::pair<uint64_t, GLint>, std::string> attributes, uniforms;  // by program, location
  std::map<GLuint, const float*> pointers;                                 // by attribute location
  uint64_t program = 0;  // the current one's serial
  Bindings bindings;
  GLint configs_answered = 1;
  std::vector<std::string> display_calls;
};

Tracker& Now() {
  static auto* const tracker = new Tracker;  // never destroyed: drivers call until the end
  return *tracker;
}

GlRecorder* g_recorder = nullptr;
std::string g_last_call;

// The function that would have been called without this file.
template <typename Function>
Function Find(const char* name) {
  void* const function = dlsym(RTLD_NEXT, name);
  if (function == nullptr) std::abort();
  return reinterpret_cast<Function>(function);
}
#define LUMORA_NEXT(function)                                      \
  ([] {                                                            \
    static const auto next = Find<decltype(&function)>(#function); \
    return next;                                                   \
  }())

ObjectId Make(ObjectKind kind, uint64_t name) {
  const uint64_t serial = ++Now().last_serial;
  Now().serials[{kind, name}] = serial;
  return {kind, serial};
}

ObjectId Handle(ObjectKind kind, const void* handle) {
  return {kind, static_cast<uint64_t>(reinterpret_cast<uintptr_t>(handle))};
}

void Record(const char* function, Arguments arguments) {
  g_last_call = function;
  if (g_recorder == nullptr) return;
  g_recorder->calls.push_back(
      {function, std::move(arguments), Now().bindings.context, g_recorder->count_lines()});
}

CallArgument Object(ObjectKind kind, uint64_t name) {
  return {"", lumora::test::ObjectNow(kind, name)};
}
CallArgument Texture(GLuint name) {
  return Object(ObjectKind::Texture, name);
}
CallArgument Framebuffer(GLuint name) {
  return Object(ObjectKind::Framebuffer, name);
}
CallArgument Program(GLuint name) {
  return Object(ObjectKind::Program, name);
}
CallArgument Egl(ObjectKind kind, const void* handle) {
  return {"", Handle(kind, handle)};
}
CallArgument Name(GLenum value) {
  return {GlName(value)};
}
CallArgument Number(int64_t value) {
  return {std::to_string(value)};
}
CallArgument Shader(GLuint name) {
  return {Now().shaders[name]};
}

template <typename Map, typename Key>
std::string Text(const Map& map, const Key& key) {
  const auto found = map.find(key);
  return found != map.end() ? found->second : "nowhere";
}
CallArgument Uniform(GLint location) {
  return {Text(Now().uniforms, std::make_pair(Now().program, location))};
}
CallArgument Attribute(GLuint location) {
  return {Text(Now().attributes, std::make_pair(Now().program, static_cast<GLint>(location)))};
}

// ---- Extension functions, handed out by eglGetProcAddress ---------------------------------------

PFNEGLCREATEIMAGEKHRPROC g_create_image = nullptr;
PFNEGLDESTROYIMAGEKHRPROC g_destroy_image = nullptr;
PFNGLEGLIMAGETARGETTEXTURE2DOESPROC g_image_target = nullptr;
PFNGLGETPROGRAMBINARYOESPROC g_get_binary = nullptr;
PFNGLPROGRAMBINARYOESPROC g_program_binary = nullptr;

uint64_t ImageName(EGLImageKHR image) {
  return static_cast<uint64_t>(reinterpret_cast<uintptr_t>(image));
}

// What the image shows is the platform's affair; that it is made, and with which attributes, is
// not.
EGLImageKHR EGLAPIENTRY CreateImage(EGLDisplay display, EGLContext context, EGLenum target,
                                    EGLClientBuffer buffer, const EGLint* attributes) {
  const EGLImageKHR image = g_create_image(display, context, target, buffer, attributes);
  Record("eglCreateImageKHR",
         {{EglList(attributes)}, {"", Make(ObjectKind::Image, ImageName(image))}});
  return image;
}
EGLBoolean EGLAPIENTRY DestroyImage(EGLDisplay display, EGLImageKHR image) {
  Record("eglDestroyImageKHR", {Object(ObjectKind::Image, ImageName(image))});
  return g_destroy_image(display, image);
}
void GL_APIENTRY ImageTarget(GLenum target, GLeglImageOES image) {
  Record("glEGLImageTargetTexture2DOES",
         {Name(target), Object(ObjectKind::Image, ImageName(image))});
  g_image_target(target, image);
}
void GL_APIENTRY GetBinary(GLuint program, GLsizei size, GLsizei* length, GLenum* format,
                           void* binary) {
  Record("glGetProgramBinaryOES", {Program(program)});
  g_get_binary(program, size, length, format, binary);
}
void GL_APIENTRY ProgramBinary(GLuint program, GLenum format, const void* binary, GLint length) {
  Record("glProgramBinaryOES", {Program(program)});
  g_program_binary(program, format, binary, length);
}

using Procedure = __eglMustCastToProperFunctionPointerType;

template <typename Function>
Procedure Replace(Procedure found, Function& original, Function replacement) {
  original = reinterpret_cast<Function>(found);
  return reinterpret_cast<Procedure>(replacement);
}

void NoteDisplayCall(const std::string& call) {
  if (Now().display_calls.size() < 8) Now().display_calls.push_back(call);
}

}  // namespace

// Visible, so that a shared library finds them in the executable first.
#pragma GCC visibility push(default)
extern "C" {

Procedure EGLAPIENTRY eglGetProcAddress(const char* name) {
  const Procedure found = LUMORA_NEXT(eglGetProcAddress)(name);
  const auto is = [name](const char* other) { return std::strcmp(name, other) == 0; };
  if (is("eglCreateImageKHR")) return Replace(found, g_create_image, CreateImage);
  if (is("eglDestroyImageKHR")) return Replace(found, g_destroy_image, DestroyImage);
  if (is("glEGLImageTargetTexture2DOES")) return Replace(found, g_image_target, ImageTarget);
  if (is("glGetProgramBinaryOES")) return Replace(found, g_get_binary, GetBinary);
  if (is("glProgramBinaryOES")) return Replace(found, g_program_binary, ProgramBinary);
  return found;
}

// ---- EGL: the platform's own probing asks without version numbers or for fewer configurations ---

EGLDisplay EGLAPIENTRY eglGetDisplay(EGLNativeDisplayType native) {
  NoteDisplayCall(native == EGL_DEFAULT_DISPLAY ? "eglGetDisplay DEFAULT" : "eglGetDisplay");
  return LUMORA_NEXT(eglGetDisplay)(native);
}

EGLBoolean EGLAPIENTRY eglInitialize(EGLDisplay display, EGLint* major, EGLint* minor) {
  NoteDisplayCall("eglInitialize");
  if (major != nullptr) Record("eglInitialize", {Egl(ObjectKind::Display, display)});
  return LUMORA_NEXT(eglInitialize)(display, major, minor);
}

EGLBoolean EGLAPIENTRY eglChooseConfig(EGLDisplay display, const EGLint* attributes,
                                       EGLConfig* configs, EGLint capacity, EGLint* count) {
  // An answer of none is followed by a second question, which is the platform's.
  const bool asked_again = Now().configs_answered == 0;
  if (capacity == 10 && !asked_again) {
    Record("eglChooseConfig",
           {Egl(ObjectKind::Display, display), {EglList(attributes)}, Number(capacity)});
  }
  const EGLBoolean answer =
      LUMORA_NEXT(eglChooseConfig)(display, attributes, configs, capacity, count);
  if (capacity == 10) Now().configs_answered = asked_again ? 1 : *count;
  return answer;
}

EGLContext EGLAPIENTRY eglCreateContext(EGLDisplay display, EGLConfig config, EGLContext share,
                                        const EGLint* attributes) {
  const EGLContext context = LUMORA_NEXT(eglCreateContext)(display, config, share, attributes);
  Record("eglCreateContext", {Egl(ObjectKind::Display, display),
                              Egl(ObjectKind::Context, share),
                              {EglList(attributes)},
                              Egl(ObjectKind::Context, context)});
  return context;
}

EGLSurface EGLAPIENTRY eglCreatePbufferSurface(EGLDisplay display, EGLConfig config,
                                               const EGLint* attributes) {
  const EGLSurface surface = LUMORA_NEXT(eglCreatePbufferSurface)(display, config, attributes);
  Record("eglCreatePbufferSurface", {Egl(ObjectKind::Display, display),
                                     {EglList(attributes)},
                                     Egl(ObjectKind::Surface, surface)});
  return surface;
}

EGLBoolean EGLAPIENTRY eglMakeCurrent(EGLDisplay display, EGLSurface draw, EGLSurface read,
                                      EGLContext context) {
  Record("eglMakeCurrent", {Egl(ObjectKind::Display, display), Egl(ObjectKind::Surface, draw),
                            Egl(ObjectKind::Surface, read), Egl(ObjectKind::Context, context)});
  // Contexts keep their bindings while others are current.
  static auto* const kept = new std::map<ObjectId, Bindings>;
  Bindings& bindings = Now().bindings;
  (*kept)[bindings.context] = bindings;
  bindings = (*kept)[Handle(ObjectKind::Context, context)];
  bindings.context = Handle(ObjectKind::Context, context);
  return LUMORA_NEXT(eglMakeCurrent)(display, draw, read, context);
}

EGLBoolean EGLAPIENTRY eglDestroySurface(EGLDisplay display, EGLSurface surface) {
  Record("eglDestroySurface",
         {Egl(ObjectKind::Display, display), Egl(ObjectKind::Surface, surface)});
  return LUMORA_NEXT(eglDestroySurface)(display, surface);
}

EGLBoolean EGLAPIENTRY eglDestroyContext(EGLDisplay display, EGLContext context) {
  Record("eglDestroyContext",
         {Egl(ObjectKind::Display, display), Egl(ObjectKind::Context, context)});
  return LUMORA_NEXT(eglDestroyContext)(display, context);
}

EGLBoolean EGLAPIENTRY eglTerminate(EGLDisplay display) {
  Record("eglTerminate", {Egl(ObjectKind::Display, display)});
  return LUMORA_NEXT(eglTerminate)(display);
}

// ---- Objects ------------------------------------------------------------------------------------

void GL_APIENTRY glGenTextures(GLsizei count, GLuint* names) {
  LUMORA_NEXT(glGenTextures)(count, names);
  for (GLsizei i = 0; i < count; ++i) {
    Record("glGenTextures", {{"", Make(ObjectKind::Texture, names[i])}});
  }
}
void GL_APIENTRY glDeleteTextures(GLsizei count, const GLuint* names) {
  for (GLsizei i = 0; i < count; ++i) {
    Record("glDeleteTextures", {Texture(names[i])});
    Now().bindings.unbind(Texture(names[i]).object);
  }
  LUMORA_NEXT(glDeleteTextures)(count, names);
}
void GL_APIENTRY glBindTexture(GLenum target, GLuint name) {
  Record("glBindTexture", {Name(target), Texture(name)});
  Now().bindings.textures[Now().bindings.unit] = lumora::test::ObjectNow(ObjectKind::Texture, name);
  LUMORA_NEXT(glBindTexture)(target, name);
}
void GL_APIENTRY glActiveTexture(GLenum unit) {
  Record("glActiveTexture", {Name(unit)});
  Now().bindings.unit = unit - GL_TEXTURE0;
  LUMORA_NEXT(glActiveTexture)(unit);
}
void GL_APIENTRY glTexParameteri(GLenum target, GLenum name, GLint value) {
  Record("glTexParameteri", {Name(target), Name(name), Name(static_cast<GLenum>(value))});
  LUMORA_NEXT(glTexParameteri)(target, name, value);
}
void GL_APIENTRY glTexImage2D(GLenum target, GLint level, GLint inner, GLsizei width,
                              GLsizei height, GLint border, GLenum format, GLenum type,
                              const void* pixels) {
  Record("glTexImage2D", {Name(target), Number(level), Name(static_cast<GLenum>(inner)),
                          Number(width), Number(height), Number(border), Name(format), Name(type)});
  LUMORA_NEXT(glTexImage2D)
  (target, level, inner, width, height, border, format, type, pixels);
}
void GL_APIENTRY glGenFramebuffers(GLsizei count, GLuint* names) {
  LUMORA_NEXT(glGenFramebuffers)(count, names);
  for (GLsizei i = 0; i < count; ++i) {
    Record("glGenFramebuffers", {{"", Make(ObjectKind::Framebuffer, names[i])}});
  }
}
void GL_APIENTRY glDeleteFramebuffers(GLsizei count, const GLuint* names) {
  for (GLsizei i = 0; i < count; ++i) {
    Record("glDeleteFramebuffers", {Framebuffer(names[i])});
    Now().bindings.unbind(Framebuffer(names[i]).object);
  }
  LUMORA_NEXT(glDeleteFramebuffers)(count, names);
}
void GL_APIENTRY glBindFramebuffer(GLenum target, GLuint name) {
  Record("glBindFramebuffer", {Name(target), Framebuffer(name)});
  if (target == GL_FRAMEBUFFER) {
    Now().bindings.framebuffer = lumora::test::ObjectNow(ObjectKind::Framebuffer, name);
  }
  LUMORA_NEXT(glBindFramebuffer)(target, name);
}
void GL_APIENTRY glFramebufferTexture2D(GLenum target, GLenum attachment, GLenum kind,
                                        GLuint texture, GLint level) {
  Record("glFramebufferTexture2D",
         {Name(target), Name(attachment), Name(kind), Texture(texture), Number(level)});
  LUMORA_NEXT(glFramebufferTexture2D)(target, attachment, kind, texture, level);
}
GLenum GL_APIENTRY glCheckFramebufferStatus(GLenum target) {
  Record("glCheckFramebufferStatus", {Name(target)});
  return LUMORA_NEXT(glCheckFramebufferStatus)(target);
}

// ---- Programs -----------------------------------------------------------------------------------

GLuint GL_APIENTRY glCreateShader(GLenum type) {
  const GLuint shader = LUMORA_NEXT(glCreateShader)(type);
  Now().shaders[shader] = GlName(type);
  Record("glCreateShader", {Name(type)});
  return shader;
}
void GL_APIENTRY glShaderSource(GLuint shader, GLsizei count, const GLchar* const* texts,
                                const GLint* lengths) {
  Record("glShaderSource", {Shader(shader)});
  LUMORA_NEXT(glShaderSource)(shader, count, texts, lengths);
}
void GL_APIENTRY glCompileShader(GLuint shader) {
  Record("glCompileShader", {Shader(shader)});
  LUMORA_NEXT(glCompileShader)(shader);
}
void GL_APIENTRY glGetShaderiv(GLuint shader, GLenum name, GLint* value) {
  Record("glGetShaderiv", {Shader(shader), Name(name)});
  LUMORA_NEXT(glGetShaderiv)(shader, name, value);
}
void GL_APIENTRY glDeleteShader(GLuint shader) {
  Record("glDeleteShader", {Shader(shader)});
  LUMORA_NEXT(glDeleteShader)(shader);
}
GLuint GL_APIENTRY glCreateProgram(void) {
  const GLuint program = LUMORA_NEXT(glCreateProgram)();
  Record("glCreateProgram", {{"", Make(ObjectKind::Program, program)}});
  return program;
}
void GL_APIENTRY glAttachShader(GLuint program, GLuint shader) {
  Record("glAttachShader", {Program(program), Shader(shader)});
  LUMORA_NEXT(glAttachShader)(program, shader);
}
void GL_APIENTRY glLinkProgram(GLuint program) {
  Record("glLinkProgram", {Program(program)});
  LUMORA_NEXT(glLinkProgram)(program);
}
void GL_APIENTRY glGetProgramiv(GLuint program, GLenum name, GLint* value) {
  Record("glGetProgramiv", {Program(program), Name(name)});
  LUMORA_NEXT(glGetProgramiv)(program, name, value);
}
void GL_APIENTRY glDeleteProgram(GLuint program) {
  Record("glDeleteProgram", {Program(program)});
  LUMORA_NEXT(glDeleteProgram)(program);
}
GLboolean GL_APIENTRY glIsProgram(GLuint program) {
  Record("glIsProgram", {Program(program)});
  return LUMORA_NEXT(glIsProgram)(program);
}
GLint GL_APIENTRY glGetAttribLocation(GLuint program, const GLchar* name) {
  Record("glGetAttribLocation", {Program(program), {name}});
  const GLint location = LUMORA_NEXT(glGetAttribLocation)(program, name);
  Now().attributes[{Program(program).object.id, location}] = name;
  return location;
}
GLint GL_APIENTRY glGetUniformLocation(GLuint program, const GLchar* name) {
  Record("glGetUniformLocation", {Program(program), {name}});
  const GLint location = LUMORA_NEXT(glGetUniformLocation)(program, name);
  Now().uniforms[{Program(program).object.id, location}] = name;
  return location;
}
void GL_APIENTRY glUseProgram(GLuint program) {
  Record("glUseProgram", {Program(program)});
  Now().program = Program(program).object.id;
  LUMORA_NEXT(glUseProgram)(program);
}

void GL_APIENTRY glUniform1i(GLint location, GLint x) {
  Record("glUniform1i", {Uniform(location), Number(x)});
  LUMORA_NEXT(glUniform1i)(location, x);
}
void GL_APIENTRY glUniform1f(GLint location, GLfloat x) {
  Record("glUniform1f", {Uniform(location), {Numbers({x})}});
  LUMORA_NEXT(glUniform1f)(location, x);
}
void GL_APIENTRY glUniform2f(GLint location, GLfloat x, GLfloat y) {
  Record("glUniform2f", {Uniform(location), {Numbers({x, y})}});
  LUMORA_NEXT(glUniform2f)(location, x, y);
}
void GL_APIENTRY glUniform3f(GLint location, GLfloat x, GLfloat y, GLfloat z) {
  Record("glUniform3f", {Uniform(location), {Numbers({x, y, z})}});
  LUMORA_NEXT(glUniform3f)(location, x, y, z);
}
void GL_APIENTRY glUniform4f(GLint location, GLfloat x, GLfloat y, GLfloat z, GLfloat w) {
  Record("glUniform4f", {Uniform(location), {Numbers({x, y, z, w})}});
  LUMORA_NEXT(glUniform4f)(location, x, y, z, w);
}
void GL_APIENTRY glUniform2fv(GLint location, GLsizei count, const GLfloat* values) {
  Record("glUniform2fv", {Uniform(location), Number(count), {Numbers(values, 2 * count)}});
  LUMORA_NEXT(glUniform2fv)(location, count, values);
}
void GL_APIENTRY glUniformMatrix3fv(GLint location, GLsizei count, GLboolean transpose,
                                    const GLfloat* values) {
  Record("glUniformMatrix3fv", {Uniform(location), Number(count), Number(transpose)});
  LUMORA_NEXT(glUniformMatrix3fv)(location, count, transpose, values);
}
void GL_APIENTRY glUniformMatrix4fv(GLint location, GLsizei count, GLboolean transpose,
                                    const GLfloat* values) {
  Record("glUniformMatrix4fv",
         {Uniform(location), Number(count), Number(transpose), {Numbers(values, 16)}});
  LUMORA_NEXT(glUniformMatrix4fv)(location, count, transpose, values);
}

// ---- Drawing ------------------------------------------------------------------------------------

void GL_APIENTRY glViewport(GLint x, GLint y, GLsizei width, GLsizei height) {
  Record("glViewport", {Number(x), Number(y), Number(width), Number(height)});
  LUMORA_NEXT(glViewport)(x, y, width, height);
}
void GL_APIENTRY glVertexAttribPointer(GLuint index, GLint size, GLenum type, GLboolean normalised,
                                       GLsizei stride, const void* data) {
  Record("glVertexAttribPointer",
         {Attribute(index), Number(size), Name(type), Number(normalised), Number(stride)});
  Now().pointers[index] = static_cast<const float*>(data);
  LUMORA_NEXT(glVertexAttribPointer)(index, size, type, normalised, stride, data);
}
void GL_APIENTRY glEnableVertexAttribArray(GLuint index) {
  Record("glEnableVertexAttribArray", {Attribute(index)});
  LUMORA_NEXT(glEnableVertexAttribArray)(index);
}
void GL_APIENTRY glDrawElements(GLenum mode, GLsizei count, GLenum type, const void* indices) {
  // The arrays lie in client memory: what they hold now is what is drawn.
  std::string order;
  for (GLsizei i = 0; i < count; ++i) {
    order += (i == 0 ? "" : ",") + std::to_string(static_cast<const GLushort*>(indices)[i]);
  }
  Arguments arguments = {Name(mode), {order}, Name(type)};
  for (const auto& [location, data] : Now().pointers) {
    if (Attribute(location).text == "a_vertexCoord") arguments.push_back({PositionsText(data)});
  }
  for (const auto& [location, data] : Now().pointers) {
    if (Attribute(location).text == "a_textureCoord") {
      arguments.push_back({"(" + CoordinatesText(data) + ")"});
    }
  }
  Record("glDrawElements", std::move(arguments));
  LUMORA_NEXT(glDrawElements)(mode, count, type, indices);
}
void GL_APIENTRY glFlush(void) {
  Record("glFlush", {});
  LUMORA_NEXT(glFlush)();
}
void GL_APIENTRY glFinish(void) {
  Record("glFinish", {});
  LUMORA_NEXT(glFinish)();
}

GLenum GL_APIENTRY glGetError(void) {
  const bool fails = g_recorder != nullptr && g_recorder->failing.count(g_last_call) != 0;
  g_last_call = "glGetError";
  const GLenum error = LUMORA_NEXT(glGetError)();
  return fails ? GL_INVALID_ENUM : error;
}

}  // extern "C"
#pragma GCC visibility pop

namespace lumora::test {

ObjectId ObjectNow(ObjectKind kind, uint64_t name) {
  if (name == 0 || name == UINT32_MAX) return {kind, 0};  // the driver's and the engine's "unset"
  if (kind >= ObjectKind::Display) return {kind, name};
  const auto found = Now().serials.find({kind, name});
  return {kind, found != Now().serials.end() ? found->second : UINT64_MAX};
}

void Bindings::unbind(const ObjectId& object) {
  for (auto& [at, texture] : textures) {
    if (texture == object) texture.id = 0;
  }
  if (framebuffer == object) framebuffer.id = 0;
}

GlRecorder::GlRecorder(std::function<size_t()> count, std::set<std::string> functions)
    : before(Now().bindings), count_lines(std::move(count)), failing(std::move(functions)) {
  if (g_recorder != nullptr) std::abort();
  g_last_call.clear();
  g_recorder = this;
}

GlRecorder::~GlRecorder() {
  g_recorder = nullptr;
}

const std::vector<std::string>& FirstDisplayCalls() {
  return Now().display_calls;
}

}  // namespace lumora::test
