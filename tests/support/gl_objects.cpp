// SPDX-License-Identifier: Apache-2.0
#include "support/gl_objects.h"

#include <cstddef>

namespace lumora::test {
namespace {

GLuint Get(GLenum name) {
  GLint value = 0;
  glGetIntegerv(name, &value);
  return static_cast<GLuint>(value);
}

GLint GlFilter(Filter filter) {
  return filter == Filter::Linear ? GL_LINEAR : GL_NEAREST;
}

GLint GlWrap(Wrap wrap) {
  switch (wrap) {
    case Wrap::ClampToEdge:
      return GL_CLAMP_TO_EDGE;
    case Wrap::MirroredRepeat:
      return GL_MIRRORED_REPEAT;
    case Wrap::Repeat:
      break;
  }
  return GL_REPEAT;
}

Image Filled(int width, int height, unsigned char byte) {
  Image image(width, height);
  image.fill(byte, byte, byte, byte);
  return image;
}

}  // namespace

Texture::Texture(const Image& image, Filter filter, Wrap wrap)
    : Texture(GL_RGBA, image.width, image.height, image.bytes.data(), filter, wrap) {}

Texture::Texture(GLenum format, int width, int height, const void* pixels, Filter filter,
                 Wrap wrap) {
  GLint alignment = 4;
  glGetIntegerv(GL_UNPACK_ALIGNMENT, &alignment);
  glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  glGenTextures(1, &name_);
  glBindTexture(GL_TEXTURE_2D, name_);
  glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(format), width, height, 0, format,
               GL_UNSIGNED_BYTE, pixels);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GlFilter(filter));
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GlFilter(filter));
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GlWrap(wrap));
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GlWrap(wrap));
  glPixelStorei(GL_UNPACK_ALIGNMENT, alignment);
}

Texture::~Texture() {
  glDeleteTextures(1, &name_);
}

RenderTarget::RenderTarget(int width, int height, unsigned char fill)
    : width_(width), height_(height), texture_(Filled(width, height, fill)) {
  glGenFramebuffers(1, &framebuffer_);
  glBindFramebuffer(GL_FRAMEBUFFER, framebuffer_);
  glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture_.name(), 0);
}

RenderTarget::~RenderTarget() {
  glDeleteFramebuffers(1, &framebuffer_);
}

void RenderTarget::bind() const {
  glBindFramebuffer(GL_FRAMEBUFFER, framebuffer_);
  glViewport(0, 0, width_, height_);
}

Image RenderTarget::read() const {
  return ReadFramebuffer(framebuffer_, width_, height_);
}

Image ReadFramebuffer(GLuint framebuffer, int width, int height) {
  const GLuint before = BoundFramebuffer();
  glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
  Image image(width, height);
  glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, image.bytes.data());
  glBindFramebuffer(GL_FRAMEBUFFER, before);
  return image;
}

Image ReadTexture(GLuint texture, int width, int height) {
  const GLuint before = BoundFramebuffer();
  GLuint framebuffer = 0;
  glGenFramebuffers(1, &framebuffer);
  glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
  glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0);
  Image image = ReadFramebuffer(framebuffer, width, height);
  glBindFramebuffer(GL_FRAMEBUFFER, before);
  glDeleteFramebuffers(1, &framebuffer);
  return image;
}

GLuint BoundTexture(int unit) {
  const GLuint active = Get(GL_ACTIVE_TEXTURE);
  glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(unit));
  const GLuint texture = Get(GL_TEXTURE_BINDING_2D);
  glActiveTexture(active);
  return texture;
}

GLuint BoundFramebuffer() {
  return Get(GL_FRAMEBUFFER_BINDING);
}

GLint TextureParameter(GLuint texture, GLenum parameter) {
  const GLuint before = Get(GL_TEXTURE_BINDING_2D);
  glBindTexture(GL_TEXTURE_2D, texture);
  GLint value = 0;
  glGetTexParameteriv(GL_TEXTURE_2D, parameter, &value);
  glBindTexture(GL_TEXTURE_2D, before);
  return value;
}

std::vector<GLenum> TakeGlErrors() {
  std::vector<GLenum> errors;
  for (GLenum error = glGetError(); error != GL_NO_ERROR; error = glGetError()) {
    errors.push_back(error);
  }
  return errors;
}

}  // namespace lumora::test
