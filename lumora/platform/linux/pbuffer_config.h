// SPDX-License-Identifier: Apache-2.0
// The least that a display must offer to be drawn with.
#ifndef LUMORA_PLATFORM_LINUX_PBUFFER_CONFIG_H_
#define LUMORA_PLATFORM_LINUX_PBUFFER_CONFIG_H_

#include <EGL/egl.h>

namespace lumora::platform {

/// Whether the display has a configuration for pbuffers and OpenGL ES 2. Stores the first one.
bool ChoosePbufferConfig(EGLDisplay display, EGLConfig* config);

}  // namespace lumora::platform

#endif  // LUMORA_PLATFORM_LINUX_PBUFFER_CONFIG_H_
