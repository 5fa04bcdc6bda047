// SPDX-License-Identifier: Apache-2.0
// Off-screen contexts of the library's own: a 1 x 1 pbuffer, OpenGL ES 2. Nobody else makes any.
#ifndef LUMORA_PLATFORM_OFFSCREEN_CONTEXT_H_
#define LUMORA_PLATFORM_OFFSCREEN_CONTEXT_H_

#include "lumora/platform/gl_api.h"

namespace lumora::platform {

/// EGL members of an owner, by reference: it owns what they name.
struct OffscreenHandles {
  EGLDisplay& display;
  EGLConfig& config;
  EGLSurface& surface;
  EGLContext& context;
};

/// Called with the name of a step: after its success when building, before it when tearing down.
using EglStepLog = void (*)(const char* step);

/// Builds display, configuration, context and surface and makes them current on this thread.
/// Returns false at the first failure; what was made until then stays in the handles.
/// `display_referenced` becomes true when the display was initialised, so must be terminated.
bool CreateOffscreenContext(const OffscreenHandles& handles, bool& display_referenced,
                            EglStepLog done);

/// Undoes CreateOffscreenContext, complete or not, and clears the handles and
/// `display_referenced`. Nothing happens without a display.
void DestroyOffscreenContext(const OffscreenHandles& handles, bool& display_referenced,
                             EglStepLog about_to);

/// The inner half of each, for a display and a configuration that are there: context and surface
/// are made and become current; surface and context go, whether or not they are current.
bool MakeContextCurrent(const OffscreenHandles& handles, EglStepLog done);
void DestroyContext(const OffscreenHandles& handles, EglStepLog about_to);

}  // namespace lumora::platform

#endif  // LUMORA_PLATFORM_OFFSCREEN_CONTEXT_H_
