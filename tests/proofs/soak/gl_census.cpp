// SPDX-License-Identifier: Apache-2.0
#include "proofs/soak/gl_census.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GLES2/gl2.h>
#include <GLES2/gl2ext.h>

#include <cstdint>
#include <mutex>
#include <set>
#include <tuple>

#include "support/driver_extensions.h"
#include "support/next_function.h"

namespace {

using lumora::test::Census;

/// An object: the context that it belongs to (null for what belongs to displays), kind and name.
using Object = std::tuple<EGLContext, std::string, uintptr_t>;

class Registry {
 public:
  void Add(EGLContext context, const char* kind, uintptr_t name) {
    if (name == 0) return;
    const std::lock_guard<std::mutex> guard(mutex_);
    living_.emplace(context, kind, name);
    ++made_[kind];
  }

  void Remove(EGLContext context, const char* kind, uintptr_t name) {
    const std::lock_guard<std::mutex> guard(mutex_);
    living_.erase({context, kind, name});
  }

  void RemoveContext(EGLContext context) {
    const std::lock_guard<std::mutex> guard(mutex_);
    const auto first = living_.lower_bound({context, "", 0});
    auto end = first;
    while (end != living_.end() && std::get<EGLContext>(*end) == context) ++end;
    living_.erase(first, end);
    living_.erase({nullptr, "context", reinterpret_cast<uintptr_t>(context)});
  }

  Census Living() {
    const std::lock_guard<std::mutex> guard(mutex_);
    Census census;
    for (const Object& object : living_) ++census[std::get<std::string>(object)];
    return census;
  }

  Census Made() {
    const std::lock_guard<std::mutex> guard(mutex_);
    return made_;
  }

 private:
  std::mutex mutex_;
  std::set<Object> living_;
  Census made_;
};

Registry& TheRegistry() {
  static auto* const registry = new Registry;  // threads may outlive static objects
  return *registry;
}

void Add(const char* kind, GLsizei count, const GLuint* names) {
  const EGLContext context = eglGetCurrentContext();
  for (GLsizei i = 0; i < count; ++i) TheRegistry().Add(context, kind, names[i]);
}

void Remove(const char* kind, GLsizei count, const GLuint* names) {
  const EGLContext context = eglGetCurrentContext();
  for (GLsizei i = 0; i < count; ++i) TheRegistry().Remove(context, kind, names[i]);
}

void AddHandle(const char* kind, const void* handle) {
  TheRegistry().Add(nullptr, kind, reinterpret_cast<uintptr_t>(handle));
}

void RemoveHandle(const char* kind, const void* handle) {
  TheRegistry().Remove(nullptr, kind, reinterpret_cast<uintptr_t>(handle));
}

// The driver's extension functions, known after somebody asked for them.
lumora::test::DriverExtensions g_driver;

EGLImageKHR EGLAPIENTRY CreateImage(EGLDisplay display, EGLContext context, EGLenum target,
                                    EGLClientBuffer buffer, const EGLint* attributes) {
  const EGLImageKHR image = g_driver.create_image(display, context, target, buffer, attributes);
  AddHandle("EGL image", image);
  return image;
}

EGLBoolean EGLAPIENTRY DestroyImage(EGLDisplay display, EGLImageKHR image) {
  RemoveHandle("EGL image", image);
  return g_driver.destroy_image(display, image);
}

void GL_APIENTRY CreateMemory(GLsizei count, GLuint* names) {
  g_driver.create_memory(count, names);
  Add("memory object", count, names);
}

void GL_APIENTRY DeleteMemory(GLsizei count, const GLuint* names) {
  Remove("memory object", count, names);
  g_driver.delete_memory(count, names);
}

lumora::test::DriverExtensions Replacements() {
  lumora::test::DriverExtensions counted;
  counted.create_image = CreateImage;
  counted.destroy_image = DestroyImage;
  counted.create_memory = CreateMemory;
  counted.delete_memory = DeleteMemory;
  return counted;
}

using Procedure = __eglMustCastToProperFunctionPointerType;

}  // namespace

// Visible, so that a shared library finds them in the executable first.
#pragma GCC visibility push(default)
extern "C" {

Procedure EGLAPIENTRY eglGetProcAddress(const char* name) {
  return lumora::test::ReplaceExtension(name, LUMORA_NEXT(eglGetProcAddress)(name), g_driver,
                                        Replacements());
}

EGLContext EGLAPIENTRY eglCreateContext(EGLDisplay display, EGLConfig config, EGLContext share,
                                        const EGLint* attributes) {
  const auto next = LUMORA_NEXT(eglCreateContext);
  const EGLContext context = next(display, config, share, attributes);
  AddHandle("context", context);
  return context;
}

EGLBoolean EGLAPIENTRY eglDestroyContext(EGLDisplay display, EGLContext context) {
  const auto next = LUMORA_NEXT(eglDestroyContext);
  TheRegistry().RemoveContext(context);
  return next(display, context);
}

EGLSurface EGLAPIENTRY eglCreatePbufferSurface(EGLDisplay display, EGLConfig config,
                                               const EGLint* attributes) {
  const auto next = LUMORA_NEXT(eglCreatePbufferSurface);
  const EGLSurface surface = next(display, config, attributes);
  AddHandle("surface", surface);
  return surface;
}

EGLBoolean EGLAPIENTRY eglDestroySurface(EGLDisplay display, EGLSurface surface) {
  const auto next = LUMORA_NEXT(eglDestroySurface);
  RemoveHandle("surface", surface);
  return next(display, surface);
}

void GL_APIENTRY glGenTextures(GLsizei count, GLuint* names) {
  const auto next = LUMORA_NEXT(glGenTextures);
  next(count, names);
  Add("texture", count, names);
}

void GL_APIENTRY glDeleteTextures(GLsizei count, const GLuint* names) {
  const auto next = LUMORA_NEXT(glDeleteTextures);
  Remove("texture", count, names);
  next(count, names);
}

void GL_APIENTRY glGenFramebuffers(GLsizei count, GLuint* names) {
  const auto next = LUMORA_NEXT(glGenFramebuffers);
  next(count, names);
  Add("framebuffer", count, names);
}

void GL_APIENTRY glDeleteFramebuffers(GLsizei count, const GLuint* names) {
  const auto next = LUMORA_NEXT(glDeleteFramebuffers);
  Remove("framebuffer", count, names);
  next(count, names);
}

GLuint GL_APIENTRY glCreateShader(GLenum type) {
  const auto next = LUMORA_NEXT(glCreateShader);
  const GLuint shader = next(type);
  Add("shader", 1, &shader);
  return shader;
}

void GL_APIENTRY glDeleteShader(GLuint shader) {
  const auto next = LUMORA_NEXT(glDeleteShader);
  Remove("shader", 1, &shader);
  next(shader);
}

GLuint GL_APIENTRY glCreateProgram(void) {
  const auto next = LUMORA_NEXT(glCreateProgram);
  const GLuint program = next();
  Add("program", 1, &program);
  return program;
}

void GL_APIENTRY glDeleteProgram(GLuint program) {
  const auto next = LUMORA_NEXT(glDeleteProgram);
  Remove("program", 1, &program);
  next(program);
}

}  // extern "C"
#pragma GCC visibility pop

namespace lumora::test {

Census LivingObjects() {
  return TheRegistry().Living();
}

Census MadeObjects() {
  return TheRegistry().Made();
}

Census Growth(const Census& before, const Census& after) {
  Census growth = after;
  for (const auto& [kind, count] : before) growth[kind] -= count;
  for (auto entry = growth.begin(); entry != growth.end();) {
    entry = entry->second == 0 ? growth.erase(entry) : std::next(entry);
  }
  return growth;
}

}  // namespace lumora::test
