// SPDX-License-Identifier: Apache-2.0
// What lies outside of the circles and ellipses that are told keeps every sample, whatever the
// faces.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "pipeline/faces/landmarks.h"
#include "pipeline/faces/random_faces.h"
#include "pipeline/frames/touched_area.h"
#include "pipeline/pipeline_fixture.h"

namespace lumora::test {
namespace {

struct Request {
  int width = 0;
  int height = 0;
  std::vector<Face> faces;
  Look look;
  Chain chain = Chain::Preview;
  PixelFormat format = PixelFormat::NV21;
};

std::string Describe(const Request& request) {
  std::string text = std::to_string(request.width) + " x " + std::to_string(request.height) +
                     (request.chain == Chain::Capture ? " capture" : " preview") + ", slim " +
                     std::to_string(request.look.slim) + ", whiten " +
                     std::to_string(request.look.whiten);
  for (const Face& face : request.faces) {
    const PointF left = Centre(face.landmarks.left_eye), right = Centre(face.landmarks.right_eye);
    text += ", eyes (" + std::to_string(left.x) + ", " + std::to_string(left.y) + ") (" +
            std::to_string(right.x) + ", " + std::to_string(right.y) + ")";
  }
  return text;
}

class UntouchedPixelsTest : public PipelineTest {
 protected:
  static AreaChanges ChangesOf(const Request& request, const Samples& samples) {
    FrameMemory in(request.format, request.width, request.height);
    FrameMemory out(request.format, request.width, request.height);
    in.Fill(samples);
    const Status status = pipeline_->Process(
        {in.const_view(), out.view(), request.faces, request.look, request.chain});
    EXPECT_TRUE(status.ok()) << status.message;
    const std::vector<Face> none;
    const TouchedArea area(Whitens(request.look) ? request.faces : none,
                           request.look.slim > 0 ? request.faces : none, request.width,
                           request.height);
    return CountChanges(samples, out.Read(), request.width, request.height, area);
  }

  /// Runs `frames` frames of one size with random faces; returns how many samples changed inside.
  static int ExpectNothingChangedOutside(Request request, int frames, RandomFaces& random) {
    const Samples samples = NoiseSamples(request.width, request.height);
    int inside = 0;
    for (int i = 0; i < frames; ++i) {
      request.faces.clear();
      for (int faces = random.WholeBetween(1, 4); faces > 0; --faces) {
        request.faces.push_back(random.In(request.width, request.height));
      }
      if (request.look.slim > 0) request.look.slim = random.WholeBetween(1, 100);
      if (request.look.whiten > 0) request.look.whiten = random.WholeBetween(1, 100);
      request.format = kAllFormats[random.WholeBetween(0, 2)];
      const AreaChanges changes = ChangesOf(request, samples);
      EXPECT_EQ(changes.outside, 0) << Describe(request);
      inside += changes.inside;
    }
    return inside;
  }
};

constexpr Look kLooks[] = {{1, 0, 0}, {0, 1, 0}, {1, 1, 50}};
constexpr std::pair<int, int> kSmall[] = {{32, 32}, {64, 64}, {33, 47}, {97, 66}};
constexpr std::pair<int, int> kLarge[] = {{640, 480}, {641, 359}};

TEST_F(UntouchedPixelsTest, OfRandomFacesInPreviews) {
  RandomFaces random(1);
  for (const Look& look : kLooks) {
    for (const auto& [width, height] : kSmall) {
      EXPECT_GT(ExpectNothingChangedOutside({width, height, {}, look}, 120, random), 1000);
    }
    for (const auto& [width, height] : kLarge) {
      EXPECT_GT(ExpectNothingChangedOutside({width, height, {}, look}, 12, random), 1000);
    }
  }
}

TEST_F(UntouchedPixelsTest, OfRandomFacesInCaptures) {
  RandomFaces random(2);
  for (const Look& look : kLooks) {
    for (const auto& [width, height] : kSmall) {
      const Request request = {width, height, {}, look, Chain::Capture};
      EXPECT_GT(ExpectNothingChangedOutside(request, 20, random), 1000);
    }
    for (const auto& [width, height] : kLarge) {
      const Request request = {width, height, {}, look, Chain::Capture};
      EXPECT_GT(ExpectNothingChangedOutside(request, 4, random), 1000);
    }
  }
}

TEST_F(UntouchedPixelsTest, OfTinyFacesInLargeFrames) {
  for (const auto& [width, height] : {std::pair(1280, 720), std::pair(1920, 1080)}) {
    const Samples samples = NoiseSamples(width, height);
    const float x = 0.4f * static_cast<float>(width), y = 0.6f * static_cast<float>(height);
    for (const float eyes : {1.f, 2.f, 8.f, 32.f}) {
      const Face face = FaceFromEyes({x - eyes / 2, y}, {x + eyes / 2, y});
      const Request request = {width, height, {face}, kFull};
      const AreaChanges changes = ChangesOf(request, samples);
      EXPECT_EQ(changes.outside, 0) << Describe(request);
      if (eyes > 1) {
        EXPECT_GT(changes.inside, 0) << Describe(request);
      }
    }
  }
}

}  // namespace
}  // namespace lumora::test
