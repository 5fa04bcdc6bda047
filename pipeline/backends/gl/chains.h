// SPDX-License-Identifier: Apache-2.0
// The engine's chains of effects, from a frame to the same frame.
#ifndef LUMORA_PIPELINE_BACKENDS_GL_CHAINS_H_
#define LUMORA_PIPELINE_BACKENDS_GL_CHAINS_H_

#include <vector>

#include "lumora/geometry/rectangle.h"
#include "lumora/pipeline/status.h"
#include "pipeline/backends/gl/crop_setups.h"
#include "pipeline/backends/gl/crops.h"
#include "pipeline/backends/gl/engine_setup.h"
#include "pipeline/frames/frame_copy.h"

namespace lumora {

struct FramePlan;

/// Memory that the chains fill anew for each frame. A frame like the one before needs no more.
struct ChainMemory {
  PaddedFrame work;
  PaddedFrame part;  // of the frame
  std::vector<PixelRectangle> reaches;
  std::vector<Crop> crops;
  std::vector<FACE_INFO_t> records;
  std::vector<float> weights;
  bool whole_frames = false;  // are whitened in one piece, for comparison
};

/// What a chain works with. `frame` is its input and receives its result; outside of the faces it
/// keeps every byte, whatever the engine makes of the rest, but where ChangesCirclesOnly. On
/// failure its contents are not defined.
struct ChainFrame {
  EngineSetup& setup;
  CropSetups& crop_setups;
  PaddedFrame& frame;
  ChainMemory& memory;
};

/// In one piece around the faces that are whitened, or in a few, each with a set-up in
/// colour-convert mode.
Status WhitenPreview(const ChainFrame& chain, const FramePlan& plan);
/// Whole frames at once, since the warp is measured in shares of them. Needs a copy of the frame
/// where other effects have come before. Without them the frame is the engine's whole result
/// afterwards, and counts within the circles alone.
Status SlimPreview(const ChainFrame& chain, const FramePlan& plan);

/// Whether the result is the input but for the circles of slimmed faces, which the frame holds.
bool ChangesCirclesOnly(const FramePlan& plan);

/// Block by block, for stills. One face after the other, so that there may be any number of them,
/// and each works on what the ones before have left. The set-up is gone afterwards.
Status WhitenCapture(const ChainFrame& chain, const FramePlan& plan);
Status SlimCapture(const ChainFrame& chain, const FramePlan& plan);

}  // namespace lumora

#endif  // LUMORA_PIPELINE_BACKENDS_GL_CHAINS_H_
