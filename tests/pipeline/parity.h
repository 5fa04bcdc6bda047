// SPDX-License-Identifier: Apache-2.0
// One request for both backends, and how far their pictures may be apart.
#ifndef LUMORA_TESTS_PIPELINE_PARITY_H_
#define LUMORA_TESTS_PIPELINE_PARITY_H_

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "lumora/pipeline/pipeline.h"
#include "pipeline/frames/frame_memory.h"
#include "pipeline/plan/frame_difference.h"

namespace lumora::test {

struct ParityRequest {
  int width = 0;
  int height = 0;
  std::vector<Face> faces;
  Look look;
  Chain chain = Chain::Preview;  ///< or Capture
  PixelFormat in_format = PixelFormat::NV21;
  PixelFormat out_format = PixelFormat::NV21;
  int slack = 0;  ///< bytes behind each row
};

std::string Describe(const ParityRequest& request);

/// How far two backends' samples may be apart, in steps of 1/255, for each face. Whitening passes
/// colours on in 8 bits between its steps, slimming weighs four samples: what each adds.
constexpr int kSlimmingLuma = 2;
constexpr int kWhiteningLuma = 3;
constexpr double kMeanLuma = 0.25;  ///< over the changed samples, for each of the two
/// From the nearest of a sample's candidates, and from what lies between them.
constexpr int kSlimmingChroma = 2;
constexpr int kWhiteningChroma = 3;

/// What was compared so far.
struct ParityTally {
  int64_t requests = 0;
  int64_t changed = 0;    ///< luma samples that gl changed
  double difference = 0;  ///< the sum of their differences
  int largest_luma = 0;   ///< of all differences
  int largest_chroma = 0;
  int largest_whitening_chroma = 0;  ///< from the candidates
  int largest_slimming_chroma = 0;

  double mean() const { return changed > 0 ? difference / static_cast<double>(changed) : 0; }
};

/// A pipeline on each backend.
class BothBackends {
 public:
  /// Null pipelines where the machine has none.
  BothBackends();

  Pipeline* gl() const { return gl_.get(); }
  Pipeline* cpu() const { return cpu_.get(); }

  /// Expects the two to make one picture of `samples`: within the bounds above, and the same where
  /// no face may change anything. Adds what it saw to `tally`.
  void ExpectOnePicture(const ParityRequest& request, const Samples& samples, ParityTally* tally);

 private:
  void ExpectSlimmedChroma(const ParityRequest& request, const Samples& samples,
                           const Samples& result, ParityTally* tally);

  std::unique_ptr<Pipeline> gl_, cpu_;
};

}  // namespace lumora::test

#endif  // LUMORA_TESTS_PIPELINE_PARITY_H_
