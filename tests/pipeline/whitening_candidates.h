// SPDX-License-Identifier: Apache-2.0
// What whitening may make of a frame: every step in double precision, and the place where a
// renderer is free.
#ifndef LUMORA_TESTS_PIPELINE_WHITENING_CANDIDATES_H_
#define LUMORA_TESTS_PIPELINE_WHITENING_CANDIDATES_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "lumora/pipeline/chain.h"
#include "lumora/pipeline/face.h"
#include "lumora/pipeline/look.h"
#include "pipeline/frames/frame_memory.h"

namespace lumora::test {

/// The engine whitens every pixel with its own luma and gives back the chroma of one of the four
/// that a sample stands for, as with slimming. Their mean is as good.
struct WhiteningCandidates {
  Samples result;  ///< with the mean chroma
  std::array<std::vector<uint8_t>, 4> cb, cr;

  /// How far the farthest chroma sample is from what lies between its candidates.
  int LargestChromaDistance(const Samples& samples) const;
  /// How far the farthest luma sample is.
  int LargestLumaDistance(const Samples& samples) const;
};

/// `chain` is Preview or Capture.
WhiteningCandidates WhitenedCandidatesOf(const Samples& in, int width, int height, const Face& face,
                                         const Look& look, Chain chain);

}  // namespace lumora::test

#endif  // LUMORA_TESTS_PIPELINE_WHITENING_CANDIDATES_H_
