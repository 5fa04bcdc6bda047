// SPDX-License-Identifier: Apache-2.0
// EGL images over textures, and what a texture can hold.
#ifndef LUMORA_PLATFORM_LINUX_TEXTURE_IMAGE_H_
#define LUMORA_PLATFORM_LINUX_TEXTURE_IMAGE_H_

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GLES2/gl2.h>

#include "lumora/platform/buffer/buffer_geometry.h"

namespace lumora::platform {

/// Whether a texture of the current context can be that large.
bool FitsTexture(const BufferGeometry& geometry);

/// An EGL image over `texture` of the current context; EGL_NO_IMAGE_KHR on failure.
EGLImageKHR CreateTextureImage(EGLDisplay display, GLuint texture, const EGLint* attributes);

}  // namespace lumora::platform

#endif  // LUMORA_PLATFORM_LINUX_TEXTURE_IMAGE_H_
