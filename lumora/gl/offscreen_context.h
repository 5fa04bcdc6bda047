// The private off-screen context of an engine: a 1 x 1 pbuffer, OpenGL ES 2.
#ifndef LUMORA_GL_OFFSCREEN_CONTEXT_H_
#define LUMORA_GL_OFFSCREEN_CONTEXT_H_

#include "lumora/platform/gl_api.h"

namespace lumora {

/// The EGL members of an engine, by reference: the engine owns what they name.
struct OffscreenHandles {
  EGLDisplay& display;
  EGLConfig& config;
  EGLSurface& surface;
  EGLContext& context;
  bool& display_referenced;  ///< whether the display was initialised, so must be terminated
};

/// Called with the name of a step: after its success when building, before it when tearing down.
using EglStepLog = void (*)(const char* step);

/// Builds display, configuration, context and surface and makes them current on this thread.
/// Returns false at the first failure; what was made until then stays in the handles.
bool CreateOffscreenContext(const OffscreenHandles& handles, EglStepLog done);

/// Undoes CreateOffscreenContext, complete or not, and clears the handles. Nothing happens without
/// a display.
void DestroyOffscreenContext(const OffscreenHandles& handles, EglStepLog about_to);

}  // namespace lumora

#endif  // LUMORA_GL_OFFSCREEN_CONTEXT_H_
