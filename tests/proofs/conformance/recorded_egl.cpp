// SPDX-License-Identifier: Apache-2.0
// EGL, and the extension functions that it hands out.
#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GLES2/gl2.h>
#include <GLES2/gl2ext.h>

#include "proofs/conformance/recorded_calls.h"
#include "support/driver_extensions.h"

namespace {

using namespace lumora::test::recorded;  // NOLINT: the words of these functions
using lumora::test::Bindings;
using lumora::test::EglList;
using lumora::test::ObjectId;
using lumora::test::ObjectKind;

// ---- Extension functions, handed out by eglGetProcAddress ---------------------------------------

lumora::test::DriverExtensions g_driver;

uint64_t ImageName(EGLImageKHR image) {
  return static_cast<uint64_t>(reinterpret_cast<uintptr_t>(image));
}

// What the image shows is the platform's affair; that it is made, and with which attributes, is
// not.
EGLImageKHR EGLAPIENTRY CreateImage(EGLDisplay display, EGLContext context, EGLenum target,
                                    EGLClientBuffer buffer, const EGLint* attributes) {
  const EGLImageKHR image = g_driver.create_image(display, context, target, buffer, attributes);
  Record("eglCreateImageKHR",
         {{EglList(attributes)}, {"", Make(ObjectKind::Image, ImageName(image))}});
  return image;
}
EGLBoolean EGLAPIENTRY DestroyImage(EGLDisplay display, EGLImageKHR image) {
  Record("eglDestroyImageKHR", {Object(ObjectKind::Image, ImageName(image))});
  return g_driver.destroy_image(display, image);
}
void GL_APIENTRY ImageTarget(GLenum target, GLeglImageOES image) {
  Record("glEGLImageTargetTexture2DOES",
         {Name(target), Object(ObjectKind::Image, ImageName(image))});
  g_driver.image_target(target, image);
}
void GL_APIENTRY GetBinary(GLuint program, GLsizei size, GLsizei* length, GLenum* format,
                           void* binary) {
  Record("glGetProgramBinaryOES", {Program(program)});
  g_driver.get_binary(program, size, length, format, binary);
}
void GL_APIENTRY ProgramBinary(GLuint program, GLenum format, const void* binary, GLint length) {
  Record("glProgramBinaryOES", {Program(program)});
  g_driver.program_binary(program, format, binary, length);
}

using Procedure = __eglMustCastToProperFunctionPointerType;

void NoteDisplayCall(const std::string& call) {
  if (Now().display_calls.size() < 8) Now().display_calls.push_back(call);
}

// Contexts keep their bindings while others are current.
std::map<ObjectId, Bindings>& KeptBindings() {
  static auto* const kept = new std::map<ObjectId, Bindings>;
  return *kept;
}

}  // namespace

// Visible, so that a shared library finds them in the executable first.
#pragma GCC visibility push(default)
extern "C" {

Procedure EGLAPIENTRY eglGetProcAddress(const char* name) {
  return lumora::test::ReplaceExtension(
      name, LUMORA_NEXT(eglGetProcAddress)(name), g_driver,
      {CreateImage, DestroyImage, ImageTarget, GetBinary, ProgramBinary});
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
  // It may have the place of one that ended.
  KeptBindings().erase(Egl(ObjectKind::Context, context).object);
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
  Bindings& bindings = Now().bindings;
  KeptBindings()[bindings.context] = bindings;
  bindings = KeptBindings()[Egl(ObjectKind::Context, context).object];
  bindings.context = Egl(ObjectKind::Context, context).object;
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

}  // extern "C"
#pragma GCC visibility pop
