// SPDX-License-Identifier: Apache-2.0
#include "lumora/platform/linux/owned_texture.h"

#include <array>
#include <atomic>
#include <cinttypes>
#include <cstdio>
#include <cstring>

#include "lumora/platform/gl_api.h"

namespace lumora::platform {
namespace {

std::atomic<uint64_t> g_last_serial{0};

using Label = std::array<char, 32>;

Label LabelOf(uint64_t serial) {
  Label label{};
  std::snprintf(label.data(), label.size(), "lumora %" PRIu64, serial);
  return label;
}

bool HasLabels() {
  return gl::ContextHasExtension("GL_KHR_debug");
}

}  // namespace

TextureBindingScope::TextureBindingScope() {
  glGetIntegerv(GL_TEXTURE_BINDING_2D, &texture_);
}

TextureBindingScope::~TextureBindingScope() {
  glBindTexture(GL_TEXTURE_2D, static_cast<GLuint>(texture_));
}

OwnedTexture::OwnedTexture() : context_(eglGetCurrentContext()), serial_(++g_last_serial) {
  glGenTextures(1, &name_);
  glBindTexture(GL_TEXTURE_2D, name_);
  if (HasLabels()) {
    gl::Extensions().glObjectLabelKHR(GL_TEXTURE, name_, -1, LabelOf(serial_).data());
  }
}

OwnedTexture::~OwnedTexture() {
  if (IsHere()) glDeleteTextures(1, &name_);
}

bool OwnedTexture::IsContextCurrent() const {
  return context_ != EGL_NO_CONTEXT && eglGetCurrentContext() == context_;
}

bool OwnedTexture::IsHere() const {
  if (!IsContextCurrent() || glIsTexture(name_) != GL_TRUE) return false;
  if (!HasLabels()) return true;
  Label found{};
  gl::Extensions().glGetObjectLabelKHR(GL_TEXTURE, name_, static_cast<GLsizei>(found.size()),
                                       nullptr, found.data());
  return std::strcmp(found.data(), LabelOf(serial_).data()) == 0;
}

}  // namespace lumora::platform
