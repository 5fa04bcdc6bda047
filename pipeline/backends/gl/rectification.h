// SPDX-License-Identifier: Apache-2.0
// The engine's corrections of whole frames, for frames that fill a part of the engine's only.
#ifndef LUMORA_PIPELINE_BACKENDS_GL_RECTIFICATION_H_
#define LUMORA_PIPELINE_BACKENDS_GL_RECTIFICATION_H_

#include "lumora/pipeline/lens.h"
#include "pipeline/backends/gl/engine_setup.h"
#include "pipeline/support/lens_share.h"

namespace lumora {

/// Draws the keystone correction from the input image to the first work image. The frame lies in
/// the upper left. Returns whether the engine did.
bool DrawKeystone(EngineSetup& setup, int degree, const FrameShare& share);

/// Draws the radial correction. The frame lies in the middle.
bool DrawRadial(EngineSetup& setup, const Lens& lens, const FrameShare& share);

}  // namespace lumora

#endif  // LUMORA_PIPELINE_BACKENDS_GL_RECTIFICATION_H_
