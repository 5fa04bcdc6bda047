// SPDX-License-Identifier: Apache-2.0
// Whitening crops of a frame gives the picture that whitening the whole frame gives.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "pipeline/backends/gl/engine_host.h"
#include "pipeline/faces/landmarks.h"
#include "pipeline/faces/random_faces.h"
#include "pipeline/frames/frame_memory.h"
#include "pipeline/plan/frame_difference.h"
#include "pipeline/plan/frame_plan.h"

namespace lumora::test {
namespace {

/// Noise in the colours of pictures, whose luma is the same in the four pixels of a chroma sample:
/// which of them the engine takes its chroma from changes with their place in the image.
Samples PairedNoise(int width, int height, uint32_t seed) {
  Samples samples = NoiseSamples(width, height, seed);
  const int columns = (width + 1) / 2;
  const Samples coarse = NoiseSamples(columns, (height + 1) / 2, seed + 1);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      samples.y[static_cast<size_t>(y * width + x)] =
          coarse.y[static_cast<size_t>(y / 2 * columns + x / 2)];
    }
  }
  for (std::vector<uint8_t>* plane : {&samples.cb, &samples.cr}) {
    for (uint8_t& sample : *plane) sample = static_cast<uint8_t>(104 + sample % 48);
  }
  return samples;
}

struct CropRequest {
  int width = 0;
  int height = 0;
  std::vector<Face> faces;
  Look look;
  PixelFormat format = PixelFormat::NV21;
};

/// How far the two ways may be apart. A face that lies over another takes what that one's rounding
/// has left and lifts it once more, and the weights of a tiny face are others from pixel to pixel
/// of one chroma sample.
int BoundFor(const std::vector<Face>& faces) {
  constexpr int kOnce = 3, kSeveralTimes = 6;
  std::vector<Ellipse> drawn;
  for (const Face& face : faces) {
    const Ellipse outer = WhiteningEllipses(face)[kFaceEllipse];
    if (outer.half_along == 0) continue;
    const float longer = std::max(outer.half_along, outer.half_across);
    if (std::min(outer.half_along, outer.half_across) < 8) return kSeveralTimes;
    for (const Ellipse& other : drawn) {
      const float apart = Length(other.centre - outer.centre);
      if (apart < longer + std::max(other.half_along, other.half_across)) return kSeveralTimes;
    }
    drawn.push_back(outer);
  }
  return kOnce;
}

class CropsTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    crops_ = std::make_unique<EngineHost>();
    whole_ = std::make_unique<EngineHost>();
    whole_->WhitenWholeFrames();
  }
  static void TearDownTestSuite() {
    whole_.reset();
    crops_.reset();
  }
  void SetUp() override { ASSERT_TRUE(crops_->ready() && whole_->ready()); }

  static Report Run(EngineHost& host, const CropRequest& request, FrameMemory& in,
                    FrameMemory& out) {
    FramePlan plan;
    PlanFrame(in.const_view(), request.faces, request.look, Chain::Preview, &plan);
    Report report;
    if (plan.faces.empty()) {
      out.Fill(in.Read());
      return report;
    }
    const Status status = host.Apply(plan, in.const_view(), out.view(), &report);
    EXPECT_TRUE(status.ok()) << status.message;
    return report;
  }

  /// How far both ways are apart.
  static FrameDifference Compare(const CropRequest& request, const Samples& samples) {
    const auto memory = [&request](int slack) {
      return FrameMemory(request.format, request.width, request.height, slack);
    };
    FrameMemory in = memory(1), cropped = memory(3), whole = memory(0);
    in.Fill(samples);
    Run(*crops_, request, in, cropped);
    Run(*whole_, request, in, whole);
    EXPECT_TRUE(cropped.GuardsIntact());
    return CompareResults(in.const_view(), cropped.const_view(), whole.const_view(), request.faces,
                          request.look);
  }

  /// Many faces and looks in frames of one size; returns how many luma samples were changed.
  static int64_t ExpectTheSame(int width, int height, int frames, RandomFaces& random) {
    const Samples samples =
        PairedNoise(width, height, static_cast<uint32_t>(random.WholeBetween(0, 1000)));
    int64_t changed = 0;
    for (int i = 0; i < frames; ++i) {
      CropRequest request{width, height, {}, {}, kAllFormats[random.WholeBetween(0, 2)]};
      for (int faces = random.WholeBetween(1, 4); faces > 0; --faces) {
        request.faces.push_back(random.In(width, height));
      }
      request.look.whiten = random.WholeBetween(0, 100);
      request.look.saturate = random.WholeBetween(0, 100);
      request.look.slim = std::max(0, random.WholeBetween(-100, 100));
      const FrameDifference difference = Compare(request, samples);
      SCOPED_TRACE(std::to_string(width) + " x " + std::to_string(height) + ", frame " +
                   std::to_string(i) + ", slim " + std::to_string(request.look.slim));
      const int bound = BoundFor(request.faces);
      EXPECT_LE(difference.y.largest, bound);
      EXPECT_LE(difference.y.mean, 0.25);
      EXPECT_EQ(difference.stray(), 0);
      // The warp mixes pixels of other chroma samples in.
      if (request.look.slim == 0) {
        EXPECT_LE(difference.largest_chroma(), bound);
      }
      changed += difference.y.changed;
    }
    return changed;
  }

  inline static std::unique_ptr<EngineHost> crops_, whole_;
};

TEST_F(CropsTest, GiveThePictureOfWholeFrames) {
  RandomFaces random(7);
  int64_t changed = 0;
  for (const auto& [width, height] : {std::pair(33, 47), std::pair(96, 64), std::pair(161, 211),
                                      std::pair(320, 240), std::pair(447, 301)}) {
    changed += ExpectTheSame(width, height, 12, random);
  }
  EXPECT_GT(changed, 100000);
}

TEST_F(CropsTest, GiveThePictureOfWholeFramesForThousandsOfRandomFaces) {
  RandomFaces random(8);
  int64_t changed = 0;
  for (int size = 0; size < 70; ++size) {
    const int width = random.WholeBetween(16, 520), height = random.WholeBetween(16, 400);
    changed += ExpectTheSame(width, height, 30, random);
  }
  EXPECT_GT(changed, 10000000);
}

TEST_F(CropsTest, GiveTheSameForFacesAtEveryBorder) {
  const int width = 301, height = 233;
  const Samples samples = PairedNoise(width, height, 5);
  for (const float x : {-6.f, 4.f, 150.f, 297.f, 306.f}) {
    for (const float y : {-6.f, 4.f, 117.f, 229.f, 238.f}) {
      const CropRequest request{
          width, height, {FaceFromEyes({x - 15, y + 2}, {x + 15, y - 2})}, {0, 80, 50}};
      const FrameDifference difference = Compare(request, samples);
      EXPECT_LE(difference.y.largest, 3) << x << ", " << y;
      EXPECT_LE(difference.largest_chroma(), 3) << x << ", " << y;
      EXPECT_EQ(difference.stray(), 0) << x << ", " << y;
    }
  }
}

TEST_F(CropsTest, GiveTheSameForFacesThatOverlapAmongOthersThatDoNot) {
  // What the engine measures of a face depends on how many were drawn before it.
  const int width = 640, height = 320;
  const Samples samples = PairedNoise(width, height, 6);
  const auto face = [](float x, float y) { return FaceFromEyes({x - 14, y}, {x + 14, y}); };
  const std::vector<Face> faces = {face(90, 100), face(560, 90),  face(100, 110), face(330, 220),
                                   face(84, 96),  face(550, 250), face(342, 214), face(112, 104)};
  for (size_t count = 1; count <= faces.size(); ++count) {
    const CropRequest request{
        width, height, {faces.begin(), faces.begin() + static_cast<ptrdiff_t>(count)}, {0, 100, 0}};
    const FrameDifference difference = Compare(request, samples);
    const int bound = BoundFor(request.faces);
    EXPECT_LE(difference.y.largest, bound) << count;
    EXPECT_LE(difference.y.mean, 0.05) << count;
    EXPECT_LE(difference.largest_chroma(), bound) << count;
    EXPECT_GT(difference.y.changed, 1000) << count;
  }
}

TEST_F(CropsTest, AreSetUpOnceForAFaceThatMoves) {
  const int width = 640, height = 480;
  FrameMemory in(PixelFormat::NV21, width, height), out(PixelFormat::NV21, width, height);
  in.Fill(NoiseSamples(width, height));
  const auto move = [&] {
    for (int frame = 0; frame < 60; ++frame) {
      const float x = 20 + 10.f * static_cast<float>(frame);
      const float y = 200 + 3.f * static_cast<float>(frame % 7);
      const float half = 25 + 0.3f * static_cast<float>(frame % 3);  // it trembles
      Run(*crops_, {width, height, {FaceFromEyes({x - half, y}, {x + half, y})}, {50, 60, 0}}, in,
          out);
    }
  };
  int before = crops_->crop_setups_made();
  move();
  EXPECT_LE(crops_->crop_setups_made() - before, 4);
  before = crops_->crop_setups_made();
  move();
  EXPECT_EQ(crops_->crop_setups_made(), before);
}

}  // namespace
}  // namespace lumora::test
