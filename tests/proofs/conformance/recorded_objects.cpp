// SPDX-License-Identifier: Apache-2.0
// Textures, framebuffers and what is bound.
#include "proofs/conformance/recorded_calls.h"

namespace {

using namespace lumora::test::recorded;  // NOLINT: the words of these functions
using lumora::test::ObjectKind;

}  // namespace

// Visible, so that a shared library finds them in the executable first.
#pragma GCC visibility push(default)
extern "C" {

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
  Now().bindings.textures[Now().bindings.unit] = Texture(name).object;
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
    Now().bindings.framebuffer = Framebuffer(name).object;
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

}  // extern "C"
#pragma GCC visibility pop
