// SPDX-License-Identifier: Apache-2.0
// Questions to the GL context of the calling thread.
#ifndef LUMORA_PIPELINE_BACKENDS_GL_GL_STATE_H_
#define LUMORA_PIPELINE_BACKENDS_GL_GL_STATE_H_

#include "lumora/pipeline/device.h"
#include "lumora/pipeline/status.h"
#include "lumora/platform/gl_api.h"

namespace lumora {

/// What the context belongs to.
DeviceInfo DeviceHere();

/// How CPU and GPU share memory here.
BufferKind BufferKindHere();

/// Forgets errors of earlier calls.
void ClearGlErrors();
/// A failure when a GL call has failed since the errors were last cleared.
Status CheckGlErrors();

/// TooLarge when a texture of width x height pixels cannot be had.
Status CheckTextureSize(int width, int height);

}  // namespace lumora

#endif  // LUMORA_PIPELINE_BACKENDS_GL_GL_STATE_H_
