// SPDX-License-Identifier: Apache-2.0
#include "lumora/platform/linux/pbuffer_config.h"

namespace lumora::platform {

bool ChoosePbufferConfig(EGLDisplay display, EGLConfig* config) {
  constexpr EGLint kAttributes[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE,
                                    EGL_OPENGL_ES2_BIT, EGL_NONE};
  EGLint count = 0;
  return eglChooseConfig(display, kAttributes, config, 1, &count) == EGL_TRUE && count > 0;
}

}  // namespace lumora::platform
