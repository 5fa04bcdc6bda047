// SPDX-License-Identifier: Apache-2.0
// How bright and how colourful a face is.
#ifndef LUMORA_PIPELINE_PLAN_FACE_MEANS_H_
#define LUMORA_PIPELINE_PLAN_FACE_MEANS_H_

#include "lumora/geometry/whitening.h"
#include "lumora/pipeline/frame.h"
#include "pipeline/frames/frame_sample.h"

namespace lumora {

/// Two of the three numbers of HsiOfYuv, equal to its own for every colour, at a fraction of its
/// time: by tables of whole numbers, and without the hue.
struct Tone {
  int intensity = 0;
  int saturation = 0;
};
Tone ToneOf(const YuvSample& sample);

/// Means over the places in the middle of a face where the engine samples it, 0..255; 0 where none
/// lies in the frame. `geometry` is measured in the padded frame, which the engine works in.
struct FaceMeans {
  int intensity = 0;
  int saturation = 0;
  int luma = 0;
};
FaceMeans MeansOf(const ConstFrameView& frame, const FaceGeometry& geometry);

}  // namespace lumora

#endif  // LUMORA_PIPELINE_PLAN_FACE_MEANS_H_
