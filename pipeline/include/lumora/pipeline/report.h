// SPDX-License-Identifier: Apache-2.0
// What a call of the pipeline did.
#ifndef LUMORA_PIPELINE_REPORT_H_
#define LUMORA_PIPELINE_REPORT_H_

#include <vector>

#include "lumora/geometry/rectangle.h"
#include "lumora/pipeline/chain.h"
#include "lumora/pipeline/device.h"

namespace lumora {

using PixelRect = PixelRectangle;

/// What whitening measured of one face, and whether it could do what it was asked for. Faces that
/// are very dark, very bright or almost without colour are left alone in that respect.
struct FaceTone {
  int face = 0;             ///< index into the faces of the call
  int mean_intensity = 0;   ///< 0..255; intensity is shifted from 51 to 209 only
  int mean_saturation = 0;  ///< 0..255; saturation is shifted from 51 up only
  bool intensity_shifted = false;
  bool saturation_shifted = false;
};

/// What one call did. The caller owns it, and may use one again and again: a call empties it first
/// and keeps its memory. After a failed call it is empty.
struct Report {
  ChainUsed chain = ChainUsed::NoCall;
  BufferKind buffer_kind = BufferKind::None;  ///< gl: how CPU and GPU shared memory
  int faces = 0;                  ///< faces processed: those that can be, see Pipeline::Process
  std::vector<FaceTone> tones;    ///< the faces that were whitened
  std::vector<PixelRect> blocks;  ///< what the chain takes in, clipped to the frame: one rectangle
                                  ///< a block of a capture, the whole frame in the preview chain
  double plan_ms = 0;      ///< working out what the look does to the faces, on the calling thread
  double upload_ms = 0;    ///< copying the caller's frame in; 0 where nothing was done
  double whiten_ms = 0;    ///< whitening with its blending; set-up included; 0 when off
  double slim_ms = 0;      ///< slimming; set-up included; 0 when off
  double engine_ms = 0;    ///< all of the drawing: whitening, slimming, rectifying, converting
  double download_ms = 0;  ///< copying the result out; where nothing was done the whole copy;
                           ///< cpu: 0, which draws in the output
};

}  // namespace lumora

#endif  // LUMORA_PIPELINE_REPORT_H_
