// SPDX-License-Identifier: Apache-2.0
// EGL display and configuration, in EGL's own shape, with the fall-backs a platform needs.
//
// The engines call these four functions where they would call EGL, so their steps read the same
// everywhere. On Android they are plain calls. On Linux they find a display that works without a
// screen and count references to it, so that the end of one engine does not end another.
#ifndef LUMORA_PLATFORM_DISPLAY_H_
#define LUMORA_PLATFORM_DISPLAY_H_

#include <EGL/egl.h>

#include "lumora/export.h"

namespace lumora::platform {

/// The display to draw with, or EGL_NO_DISPLAY when none works. Linux: the default display; else
/// the EGL devices, hardware before software; else the surfaceless platform. The first that
/// initialises and offers a pbuffer configuration for OpenGL ES 2 wins. Thread-safe.
EGLDisplay GetDisplay();

/// eglInitialize, once per display: takes one reference. `major` and `minor` may be null.
EGLBoolean Initialize(EGLDisplay display, EGLint* major, EGLint* minor);

/// eglChooseConfig; an answer of zero configurations is asked again without EGL_WINDOW_BIT.
EGLBoolean ChooseConfig(EGLDisplay display, const EGLint* attributes, EGLConfig* configs,
                        EGLint capacity, EGLint* count);

/// Drops one reference; the last one terminates the display, unless the application had initialised
/// it before the library did, or it is kept.
EGLBoolean Terminate(EGLDisplay display);

/// Drops one reference and leaves the display as it is, whichever was the last: for who may not end
/// it, so that the next one who may does. Linux only counts.
void Forget(EGLDisplay display);

/// Leaves a display that the library initialised so for the life of the process. EGL counts no
/// references on most systems: the host program may have begun to use the display since, and
/// terminating it would end the host's contexts too. An engine's host knows when its engines end;
/// who makes engines of its own (the pipeline) keeps their display. Thread-safe.
LUMORA_API void KeepDisplay(EGLDisplay display);

/// How GetDisplay found its display, for diagnostics: "default display", "EGL device",
/// "EGL device (software)", "surfaceless platform", or "none".
LUMORA_API const char* DisplayOrigin();

}  // namespace lumora::platform

#endif  // LUMORA_PLATFORM_DISPLAY_H_
