// SPDX-License-Identifier: Apache-2.0
// Small owners of GL objects and ways to look at GL state. Link `lumora_gl_support`; it works in
// any current context, an engine's as well. All calls need a current context on the thread.
#ifndef LUMORA_TESTS_SUPPORT_GL_OBJECTS_H_
#define LUMORA_TESTS_SUPPORT_GL_OBJECTS_H_

#include <GLES2/gl2.h>

#include <vector>

#include "reference/image.h"

namespace lumora::test {

using reference::Filter;
using reference::Image;
using reference::Wrap;

/// A 2-D RGBA texture with the image's pixels. Left bound to the active unit.
class Texture {
 public:
  explicit Texture(const Image& image, Filter filter = Filter::Nearest,
                   Wrap wrap = Wrap::ClampToEdge);
  /// Another format (GL_LUMINANCE, GL_LUMINANCE_ALPHA) of unsigned bytes, rows tightly packed.
  Texture(GLenum format, int width, int height, const void* pixels, Filter filter = Filter::Nearest,
          Wrap wrap = Wrap::ClampToEdge);
  ~Texture();
  Texture(const Texture&) = delete;
  Texture& operator=(const Texture&) = delete;

  GLuint name() const { return name_; }

 private:
  GLuint name_ = 0;
};

/// A framebuffer with an RGBA texture as its colour attachment, filled with `fill` (each byte).
/// Left bound; the viewport is not touched.
class RenderTarget {
 public:
  RenderTarget(int width, int height, unsigned char fill = 0x66);
  ~RenderTarget();
  RenderTarget(const RenderTarget&) = delete;
  RenderTarget& operator=(const RenderTarget&) = delete;

  GLuint framebuffer() const { return framebuffer_; }
  GLuint texture() const { return texture_.name(); }
  /// Binds the framebuffer and sets the viewport to all of it.
  void bind() const;
  /// The pixels now. Bindings are kept.
  Image read() const;

 private:
  int width_;
  int height_;
  Texture texture_;
  GLuint framebuffer_ = 0;
};

/// The pixels of a framebuffer, or of a texture through a framebuffer made for it. Bindings are
/// kept.
Image ReadFramebuffer(GLuint framebuffer, int width, int height);
Image ReadTexture(GLuint texture, int width, int height);

/// The texture bound to a unit (0, 1, ...) as a 2-D texture; the active unit is kept.
GLuint BoundTexture(int unit);
GLuint BoundFramebuffer();
/// A texture's parameter, such as GL_TEXTURE_MIN_FILTER. Bindings are kept.
GLint TextureParameter(GLuint texture, GLenum parameter);

/// Takes all pending GL errors, oldest first.
std::vector<GLenum> TakeGlErrors();

}  // namespace lumora::test

#endif  // LUMORA_TESTS_SUPPORT_GL_OBJECTS_H_
