// SPDX-License-Identifier: Apache-2.0
// How far two results of one request are apart: those of two backends, chains or renderers.
#ifndef LUMORA_PIPELINE_PLAN_FRAME_DIFFERENCE_H_
#define LUMORA_PIPELINE_PLAN_FRAME_DIFFERENCE_H_

#include <array>
#include <cstdint>

#include "lumora/pipeline/face.h"
#include "lumora/pipeline/frame.h"
#include "lumora/pipeline/look.h"

namespace lumora {

/// The differences of one plane, in steps of 1/255.
struct PlaneDifference {
  std::array<int64_t, 256> histogram{};  ///< how many samples are so many steps apart
  int largest = 0;                       ///< the last step with a sample
  int64_t changed = 0;                   ///< samples in which the first result is not the input
  double mean = 0;                       ///< over the samples that are `changed`; 0 without any
  int64_t stray = 0;                     ///< samples that the first or the second result changed
                                         ///< although no face may: outside of Pipeline::Process's
                                         ///< circles and ellipses
};

struct FrameDifference {
  PlaneDifference y, cb, cr;

  int64_t stray() const { return y.stray + cb.stray + cr.stray; }
  int largest_chroma() const { return cb.largest > cr.largest ? cb.largest : cr.largest; }
};

/// Compares `first` and `second`, which were made of `in` with `look` applied to `faces`. The three
/// have one size, in any formats; their memory is only read.
///
/// Thread: any. Failure: throws where memory is short.
FrameDifference CompareResults(const ConstFrameView& in, const ConstFrameView& first,
                               const ConstFrameView& second, FaceSpan faces, const Look& look);

}  // namespace lumora

#endif  // LUMORA_PIPELINE_PLAN_FRAME_DIFFERENCE_H_
