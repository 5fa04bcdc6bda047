// SPDX-License-Identifier: Apache-2.0
// The engine's chains of effects, from a frame to the same frame.
#ifndef LUMORA_PIPELINE_BACKENDS_GL_CHAINS_H_
#define LUMORA_PIPELINE_BACKENDS_GL_CHAINS_H_

#include <vector>

#include "lumora/pipeline/report.h"
#include "lumora/pipeline/status.h"
#include "pipeline/backends/gl/engine_setup.h"
#include "pipeline/frames/frame_copy.h"

namespace lumora {

struct FramePlan;

/// Memory that the chains fill anew for each frame. A frame like the one before needs no more.
struct ChainMemory {
  PaddedFrame work;
  std::vector<FACE_INFO_t> records;
  std::vector<float> weights;
};

/// What a chain works with. `frame` is its input and receives its result; outside of the faces it
/// keeps every byte, whatever the engine makes of the rest, but where ChangesCirclesOnly. On
/// failure its contents are not defined.
struct ChainFrame {
  EngineSetup& setup;
  PaddedFrame& frame;
  ChainMemory& memory;
  Report& report;
};

/// Whole frames at once. Whitening works in colour-convert mode. The set-up then serves slimming as
/// well.
Status WhitenPreview(const ChainFrame& chain, const FramePlan& plan);
/// Needs a copy of the frame where other effects have come before. Without them the frame is the
/// engine's whole result afterwards, and counts within the circles alone.
Status SlimPreview(const ChainFrame& chain, const FramePlan& plan);

/// Whether the result is the input but for the circles of slimmed faces, which the frame holds.
bool ChangesCirclesOnly(const FramePlan& plan);

/// Block by block, for stills. One face after the other, so that there may be any number of them,
/// and each works on what the ones before have left. The set-up is gone afterwards.
Status WhitenCapture(const ChainFrame& chain, const FramePlan& plan);
Status SlimCapture(const ChainFrame& chain, const FramePlan& plan);

}  // namespace lumora

#endif  // LUMORA_PIPELINE_BACKENDS_GL_CHAINS_H_
