// SPDX-License-Identifier: Apache-2.0
#include "lumora/platform/linux/texture_image.h"

#include <algorithm>
#include <cstdint>

#include "lumora/platform/gl_api.h"

namespace lumora::platform {

bool FitsTexture(const BufferGeometry& geometry) {
  GLint largest = 0;
  glGetIntegerv(GL_MAX_TEXTURE_SIZE, &largest);
  return std::max(geometry.width, geometry.height) <= static_cast<GLuint>(largest);
}

EGLImageKHR CreateTextureImage(EGLDisplay display, GLuint texture, const EGLint* attributes) {
  const gl::ExtensionApi& api = gl::Extensions();
  if (api.eglCreateImageKHR == nullptr) return EGL_NO_IMAGE_KHR;
  const auto client_buffer = reinterpret_cast<EGLClientBuffer>(static_cast<uintptr_t>(texture));
  return api.eglCreateImageKHR(display, eglGetCurrentContext(), EGL_GL_TEXTURE_2D_KHR,
                               client_buffer, attributes);
}

}  // namespace lumora::platform
