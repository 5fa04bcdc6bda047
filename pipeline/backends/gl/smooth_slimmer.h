// SPDX-License-Identifier: Apache-2.0
// The capture's slimming program with smooth sampling.
#ifndef LUMORA_PIPELINE_BACKENDS_GL_SMOOTH_SLIMMER_H_
#define LUMORA_PIPELINE_BACKENDS_GL_SMOOTH_SLIMMER_H_

#include "lumora/programs/cheek_slimmer_programs.h"

namespace lumora {

/// The engine samples the planes of a capture without filtering, which breaks edges into steps
/// where the warp bends them. Takes the place of the engine's own program.
class SmoothSlimmer : public GLProgCheekSlimmerLarge {
 public:
  bool Use() override;
};

}  // namespace lumora

#endif  // LUMORA_PIPELINE_BACKENDS_GL_SMOOTH_SLIMMER_H_
