// SPDX-License-Identifier: Apache-2.0
#include "pipeline/parity.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

#include "pipeline/faces/landmarks.h"
#include "pipeline/slimming_candidates.h"
#include "pipeline/whitening_candidates.h"

namespace lumora::test {
namespace {

const char* Name(PixelFormat format) {
  return format == PixelFormat::NV21 ? "NV21" : format == PixelFormat::NV12 ? "NV12" : "I420";
}

FrameMemory InputOf(const ParityRequest& request, const Samples& samples) {
  FrameMemory in(request.in_format, request.width, request.height, request.slack);
  in.Fill(samples);
  return in;
}

FrameMemory ResultOf(Pipeline& pipeline, const ParityRequest& request, FrameMemory& in) {
  FrameMemory out(request.out_format, request.width, request.height, request.slack);
  const Status status =
      pipeline.Process({in.const_view(), out.view(), request.faces, request.look, request.chain});
  EXPECT_TRUE(status.ok()) << status.message;
  EXPECT_TRUE(out.GuardsIntact()) << Describe(request);
  return out;
}

Samples SamplesOf(Pipeline& pipeline, const ParityRequest& request, const Samples& samples) {
  FrameMemory in = InputOf(request, samples);
  return ResultOf(pipeline, request, in).Read();
}

}  // namespace

std::string Describe(const ParityRequest& request) {
  std::string text = std::to_string(request.width) + " x " + std::to_string(request.height) +
                     (request.chain == Chain::Capture ? " capture, " : " preview, ") +
                     Name(request.in_format) + " to " + Name(request.out_format) + ", slim " +
                     std::to_string(request.look.slim) + ", whiten " +
                     std::to_string(request.look.whiten) + ", saturate " +
                     std::to_string(request.look.saturate);
  for (const Face& face : request.faces) {
    const PointF left = Centre(face.landmarks.left_eye), right = Centre(face.landmarks.right_eye);
    text += ", eyes (" + std::to_string(left.x) + ", " + std::to_string(left.y) + ") (" +
            std::to_string(right.x) + ", " + std::to_string(right.y) + ")";
  }
  return text;
}

BothBackends::BothBackends()
    : gl_(Pipeline::Create({Device::Gl}, nullptr)),
      cpu_(Pipeline::Create({Device::Cpu}, nullptr)) {}

void BothBackends::ExpectOnePicture(const ParityRequest& request, const Samples& samples,
                                    ParityTally* tally) {
  FrameMemory in = InputOf(request, samples);
  FrameMemory by_gl = ResultOf(*gl_, request, in), by_cpu = ResultOf(*cpu_, request, in);
  const FrameDifference difference = CompareResults(
      in.const_view(), by_gl.const_view(), by_cpu.const_view(), request.faces, request.look);
  const bool slims = request.look.slim > 0, whitens = Whitens(request.look);
  // Faces that overlap are slimmed one after the other.
  const int slimmed = slims ? static_cast<int>(request.faces.size()) * kSlimmingLuma : 0;
  const int whitened = whitens ? static_cast<int>(request.faces.size()) * kWhiteningLuma : 0;
  EXPECT_LE(difference.y.largest, slimmed + whitened) << Describe(request);
  EXPECT_EQ(difference.stray(), 0) << Describe(request);

  ++tally->requests;
  tally->changed += difference.y.changed;
  tally->difference += difference.y.mean * static_cast<double>(difference.y.changed);
  tally->largest_luma = std::max(tally->largest_luma, difference.y.largest);
  tally->largest_chroma = std::max(tally->largest_chroma, difference.largest_chroma());
  if (slims) {
    ExpectSlimmedChroma(request, samples, by_cpu.Read(), tally);
  } else if (whitens && request.faces.size() == 1) {
    const WhiteningCandidates candidates = WhitenedCandidatesOf(
        samples, request.width, request.height, request.faces.front(), request.look, request.chain);
    for (FrameMemory* const result : {&by_gl, &by_cpu}) {
      const int distance = candidates.LargestChromaDistance(result->Read());
      EXPECT_LE(distance, kWhiteningChroma) << Describe(request);
      tally->largest_whitening_chroma = std::max(tally->largest_whitening_chroma, distance);
    }
  }
}

void BothBackends::ExpectSlimmedChroma(const ParityRequest& request, const Samples& samples,
                                       const Samples& result, ParityTally* tally) {
  // Whitening comes first. Slimming works on its result, and each face on what the ones before have
  // left.
  ParityRequest whitening = request;
  whitening.look.slim = 0;
  Samples before = Whitens(request.look) ? SamplesOf(*cpu_, whitening, samples) : samples;
  const Samples whitened = before;
  ParityRequest slimming = request;
  slimming.look = {request.look.slim, 0, 0};
  slimming.faces.clear();
  bool first = true;
  for (const Face& face : request.faces) {
    slimming.faces.push_back(face);
    Samples after = SamplesOf(*cpu_, slimming, whitened);
    const Beyond beyond =
        first || request.chain == Chain::Capture ? Beyond::Mirror : Beyond::Repeat;
    const int distance = CandidatesOf(before, request.width, request.height, face,
                                      request.look.slim, request.chain, beyond)
                             .LargestDistance(after);
    EXPECT_LE(distance, kSlimmingChroma) << Describe(request);
    tally->largest_slimming_chroma = std::max(tally->largest_slimming_chroma, distance);
    before = std::move(after);
    first = first && SlimmingCircle(face, request.width, request.height).radius == 0;
  }
  EXPECT_TRUE(before == result) << Describe(request);
}

}  // namespace lumora::test
