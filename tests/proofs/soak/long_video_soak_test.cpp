// SPDX-License-Identifier: Apache-2.0
// A long video through the pipeline.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "lumora/pipeline/pipeline.h"
#include "pipeline/frames/touched_area.h"
#include "proofs/soak/soak.h"
#include "proofs/soak/street_scene.h"

namespace lumora::test {
namespace {

constexpr Look kLook = {80, 60, 40};

/// A pipeline with frames to take from and to write to.
class Projector {
 public:
  Projector() : pipeline_(Pipeline::Create({Device::Gl}, nullptr)) {}

  Samples show(const StreetFrame& frame, Report* report = nullptr, Chain chain = Chain::Auto) {
    in_.Fill(frame.samples);
    const Status status =
        pipeline_->Process({in_.const_view(), out_.view(), frame.faces, kLook, chain}, report);
    EXPECT_TRUE(status.ok()) << status.message;
    return out_.Read();
  }

 private:
  std::unique_ptr<Pipeline> pipeline_;
  FrameMemory in_{PixelFormat::NV21, kStreetWidth, kStreetHeight};
  FrameMemory out_{PixelFormat::NV12, kStreetWidth, kStreetHeight};
};

bool IsInside(PointF point) {
  return point.x >= 0 && point.y >= 0 && point.x < kStreetWidth && point.y < kStreetHeight;
}

/// How many of the faces have their middle in the frame.
int FacesInside(const StreetFrame& frame) {
  return static_cast<int>(
      std::count_if(frame.faces.begin(), frame.faces.end(), [](const Face& face) {
        const FaceLandmarks& at = face.landmarks;
        return IsInside({(at.nasion.x + at.chin.x) / 2, (at.nasion.y + at.chin.y) / 2});
      }));
}

/// The first showing: each frame changes where its faces are and nowhere else.
std::vector<Samples> FirstRound(Projector& projector, const std::vector<StreetFrame>& street) {
  std::vector<Samples> results;
  int empty = 0, alone = 0, together = 0, bordering = 0;
  for (size_t i = 0; i < street.size(); ++i) {
    SCOPED_TRACE(testing::Message() << "frame " << i);
    const StreetFrame& frame = street[i];
    Report report;
    results.push_back(projector.show(frame, &report));
    const int inside = FacesInside(frame);
    empty += frame.faces.empty() ? 1 : 0;
    alone += inside == 1 ? 1 : 0;
    together += inside > 1 ? 1 : 0;
    bordering += inside < static_cast<int>(frame.faces.size()) ? 1 : 0;

    const TouchedArea area(frame.faces, frame.faces, kStreetWidth, kStreetHeight);
    const AreaChanges changes =
        CountChanges(frame.samples, results[i], kStreetWidth, kStreetHeight, area);
    EXPECT_EQ(changes.outside, 0);
    if (frame.faces.empty()) {
      EXPECT_EQ(report.chain, ChainUsed::None);
      EXPECT_TRUE(results[i] == frame.samples);
    }
    EXPECT_GE(changes.inside, inside > 0 ? 50 : 0);
  }
  EXPECT_GT(empty, 5);
  EXPECT_GT(alone, 20);
  EXPECT_GT(together, 20);
  EXPECT_GT(bordering, 10);
  return results;
}

TEST(LongVideoSoak, PeopleWalkBy) {
  const std::vector<StreetFrame> street = DrawStreet();
  Projector projector;
  const std::vector<Samples> expected = FirstRound(projector, street);
  int wrong = 0;
  Soak("pipeline: a long video", Cycles(), [&](int number) {
    // To the end and back: what a frame becomes does not depend on those before it.
    const size_t round = static_cast<size_t>(number) / street.size();
    const size_t at = static_cast<size_t>(number) % street.size();
    const size_t frame = round % 2 == 0 ? at : street.size() - 1 - at;
    wrong += projector.show(street[frame]) == expected[frame] ? 0 : 1;
  });
  EXPECT_EQ(wrong, 0);
}

// Each still sets the engine up for its capture, and the video sets it up again. The two programs
// that are compiled each time leave their shaders.
TEST(LongVideoSoak, StillsInBetween) {
  const std::vector<StreetFrame> street = DrawStreet();
  const StreetFrame& met = street[60];
  Projector projector;
  const Samples preview = projector.show(met);
  const Samples still = projector.show(met, nullptr, Chain::Capture);
  int wrong = 0;
  Kept kept = {{{"shader", 4}}};
  kept.bytes = 8192;
  Soak(
      "pipeline: video and stills", Cycles(20),
      [&](int) {
        wrong += projector.show(met) == preview ? 0 : 1;
        wrong += projector.show(met, nullptr, Chain::Capture) == still ? 0 : 1;
      },
      kept);
  EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace lumora::test
