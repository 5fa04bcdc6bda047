// SPDX-License-Identifier: Apache-2.0
// GL names that belong to one context and must never be mistaken for another's.
#ifndef LUMORA_PLATFORM_LINUX_OWNED_TEXTURE_H_
#define LUMORA_PLATFORM_LINUX_OWNED_TEXTURE_H_

#include <EGL/egl.h>
#include <GLES2/gl2.h>

#include <cstdint>

namespace lumora::platform {

/// Keeps the texture that is bound to GL_TEXTURE_2D on the active unit, for the life of the object.
class TextureBindingScope {
 public:
  TextureBindingScope();
  ~TextureBindingScope();
  TextureBindingScope(const TextureBindingScope&) = delete;
  TextureBindingScope& operator=(const TextureBindingScope&) = delete;

 private:
  GLint texture_ = 0;
};

/// A texture in the current context, without storage, left bound to GL_TEXTURE_2D. It goes with the
/// object when its context is current then, else with the context.
///
/// Names are small numbers that every context hands out anew, and a new context may even get the
/// handle of a dead one; so the texture carries a label of its own (KHR_debug) that proves it.
class OwnedTexture {
 public:
  OwnedTexture();
  ~OwnedTexture();
  OwnedTexture(const OwnedTexture&) = delete;
  OwnedTexture& operator=(const OwnedTexture&) = delete;

  GLuint name() const { return name_; }

  /// Whether the handle of the texture's context is current: enough while the context is alive.
  bool IsContextCurrent() const;

  /// Whether the texture itself is there, so that names made with it may be deleted.
  bool IsHere() const;

 private:
  EGLContext context_;
  uint64_t serial_;
  GLuint name_ = 0;
};

}  // namespace lumora::platform

#endif  // LUMORA_PLATFORM_LINUX_OWNED_TEXTURE_H_
