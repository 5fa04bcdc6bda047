// SPDX-License-Identifier: Apache-2.0
// What slimming may make of the chroma of a frame: the warp in double precision, and the places
// where a renderer is free.
#ifndef LUMORA_TESTS_PIPELINE_SLIMMING_CANDIDATES_H_
#define LUMORA_TESTS_PIPELINE_SLIMMING_CANDIDATES_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "lumora/pipeline/chain.h"
#include "lumora/pipeline/face.h"
#include "pipeline/frames/frame_memory.h"

namespace lumora::test {

/// The engine warps chroma at full size: in a preview that of every pixel, repeated; in a capture
/// the plane's own samples, smoothly. What it gives back is one of the four pixels that a sample
/// stands for: it looks up the border between them, where a renderer may take either.
struct SlimmingCandidates {
  std::array<std::vector<uint8_t>, 4> cb, cr;

  /// How far a sample is from the nearest of its candidates.
  static int Distance(const std::array<std::vector<uint8_t>, 4>& candidates, size_t sample,
                      uint8_t value);
  /// The same for the farthest sample of both planes.
  int LargestDistance(const Samples& result) const;
};

/// What is seen beyond a frame whose sides are whole multiples of 32.
enum class Beyond {
  Mirror,  ///< the frame in a mirror: for the first face of a preview, and in captures
  Repeat,  ///< its outermost pixels: for the other faces of a preview
};

/// `chain` is Preview or Capture. Of one face: the next one works on what was chosen.
SlimmingCandidates CandidatesOf(const Samples& in, int width, int height, const Face& face,
                                int slim, Chain chain, Beyond beyond);

}  // namespace lumora::test

#endif  // LUMORA_TESTS_PIPELINE_SLIMMING_CANDIDATES_H_
