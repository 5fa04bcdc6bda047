// SPDX-License-Identifier: Apache-2.0
// Both backends make one picture: of random faces in random frames, by every look, in both chains.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>
#include <vector>

#include "pipeline/faces/random_faces.h"
#include "pipeline/parity.h"
#include "pipeline/smooth_samples.h"

namespace lumora::test {
namespace {

/// Moves the chroma of any samples to colours of skin.
void ToneLikeSkin(Samples& samples, RandomFaces& random) {
  const auto tone = [](std::vector<uint8_t>& plane, int middle, int reach) {
    for (uint8_t& sample : plane) {
      sample = static_cast<uint8_t>(middle + (sample - 128) * reach / 128);
    }
  };
  const int reach = random.WholeBetween(1, 12);
  tone(samples.cb, random.WholeBetween(93, 113), reach);
  tone(samples.cr, random.WholeBetween(143, 165), reach);
}

/// Skin as a camera sees it: shaded, with a little noise.
Samples SkinSamples(int width, int height, RandomFaces& random) {
  Samples samples = NoiseSamples(width, height, static_cast<uint32_t>(random.WholeBetween(1, 99)));
  const int middle = random.WholeBetween(50, 215), noise = random.WholeBetween(1, 12);
  const float turn = random.Between(0, 6.28f), slope = random.Between(0, 60);
  const float across = slope * std::cos(turn) / static_cast<float>(width);
  const float down = slope * std::sin(turn) / static_cast<float>(height);
  for (size_t i = 0; i < samples.y.size(); ++i) {
    const int x = static_cast<int>(i) % width, y = static_cast<int>(i) / width;
    const float light = across * static_cast<float>(x) + down * static_cast<float>(y);
    const int luma = middle + static_cast<int>(light) + samples.y[i] % (2 * noise + 1) - noise;
    samples.y[i] = static_cast<uint8_t>(std::clamp(luma, 0, 255));
  }
  ToneLikeSkin(samples, random);
  return samples;
}

/// For whitening in colours of skin alone: where colours are all but grey or pure, the last bit of
/// a renderer's numbers decides over the hue.
Samples AnySamples(int width, int height, bool skin, RandomFaces& random) {
  switch (random.WholeBetween(skin ? 1 : 0, 3)) {
    case 0:
      return NoiseSamples(width, height, static_cast<uint32_t>(random.WholeBetween(1, 1000)));
    case 1: {
      Samples samples = SmoothSamples(width, height);
      if (skin) ToneLikeSkin(samples, random);
      return samples;
    }
    default:
      return SkinSamples(width, height, random);
  }
}

class ParityTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() { backends_ = std::make_unique<BothBackends>(); }
  static void TearDownTestSuite() { backends_.reset(); }
  void SetUp() override {
    ASSERT_NE(backends_->gl(), nullptr);
    ASSERT_NE(backends_->cpu(), nullptr);
  }

  /// Compares random requests of one kind. `kind` says which scales are on, by not being 0.
  static void CompareRandomly(const Look& kind, Chain chain, int requests, int seed,
                              int largest_side) {
    RandomFaces random(static_cast<uint32_t>(seed));
    ParityTally tally;
    const auto scale = [&random](int on) { return on > 0 ? random.WholeBetween(1, 100) : 0; };
    for (int i = 0; i < requests; ++i) {
      ParityRequest request;
      request.width = random.WholeBetween(32, largest_side);
      request.height = random.WholeBetween(32, largest_side * 3 / 4);
      request.look = {scale(kind.slim), scale(kind.whiten), scale(kind.saturate)};
      request.chain = chain;
      request.in_format = kAllFormats[random.WholeBetween(0, 2)];
      request.out_format = kAllFormats[random.WholeBetween(0, 2)];
      request.slack = random.WholeBetween(0, 1) * random.WholeBetween(0, 40);
      const int faces = random.WholeBetween(0, 3) == 0 ? random.WholeBetween(2, 4) : 1;
      if (kind.slim > 0 && faces > 1) {
        // What gl has beyond the frame, up to its own size, is that of before the first face.
        request.width = request.width / 32 * 32;
        request.height = request.height / 32 * 32;
      }
      for (int left = faces; left > 0; --left) {
        request.faces.push_back(random.In(request.width, request.height));
      }
      backends_->ExpectOnePicture(
          request, AnySamples(request.width, request.height, Whitens(kind), random), &tally);
    }
    EXPECT_GT(tally.changed, requests * 20);
    const int effects = (kind.slim > 0 ? 1 : 0) + (Whitens(kind) ? 1 : 0);
    EXPECT_LE(tally.mean(), kMeanLuma * effects);
  }

  inline static std::unique_ptr<BothBackends> backends_;
};

constexpr Look kSlimming{1, 0, 0}, kWhitening{0, 1, 0}, kSaturating{0, 1, 1}, kEverything{1, 1, 1};

TEST_F(ParityTest, OfSlimmedPreviews) {
  CompareRandomly(kSlimming, Chain::Preview, 400, 1, 200);
}
TEST_F(ParityTest, OfSlimmedCaptures) {
  CompareRandomly(kSlimming, Chain::Capture, 150, 2, 200);
}
TEST_F(ParityTest, OfWhitenedPreviews) {
  CompareRandomly(kWhitening, Chain::Preview, 300, 3, 160);
  CompareRandomly(kSaturating, Chain::Preview, 150, 4, 160);
}
TEST_F(ParityTest, OfWhitenedCaptures) {
  CompareRandomly(kWhitening, Chain::Capture, 100, 5, 160);
  CompareRandomly(kSaturating, Chain::Capture, 60, 6, 160);
}
TEST_F(ParityTest, OfEverythingAtOnce) {
  CompareRandomly(kEverything, Chain::Preview, 150, 7, 160);
  CompareRandomly(kEverything, Chain::Capture, 60, 8, 160);
}

TEST_F(ParityTest, ManyOfSlimmedFrames) {
  CompareRandomly(kSlimming, Chain::Preview, 6000, 11, 320);
  CompareRandomly(kSlimming, Chain::Capture, 1500, 12, 320);
}
TEST_F(ParityTest, ManyOfWhitenedFrames) {
  CompareRandomly(kSaturating, Chain::Preview, 1500, 13, 320);
  CompareRandomly(kSaturating, Chain::Capture, 500, 14, 320);
}
TEST_F(ParityTest, ManyOfEverythingAtOnce) {
  CompareRandomly(kEverything, Chain::Preview, 1000, 15, 320);
  CompareRandomly(kEverything, Chain::Capture, 300, 16, 320);
}

/// Frames of the sizes that are streamed, and one whose blocks split the face.
TEST_F(ParityTest, OfLargeFrames) {
  RandomFaces random(9);
  for (const auto& [width, height] : {std::pair(640, 480), std::pair(1281, 721)}) {
    for (const Chain chain : {Chain::Preview, Chain::Capture}) {
      for (const Look& look : {Look{50, 0, 0}, Look{0, 40, 20}}) {
        const auto w = static_cast<float>(width), h = static_cast<float>(height);
        const Face face = FaceFromEyes({0.43f * w, 0.41f * h}, {0.56f * w, 0.44f * h});
        ParityTally tally;
        backends_->ExpectOnePicture({width, height, {face}, look, chain},
                                    SkinSamples(width, height, random), &tally);
        EXPECT_GT(tally.changed, 5000);
        EXPECT_LE(tally.mean(), kMeanLuma) << width;
      }
    }
  }
}

}  // namespace
}  // namespace lumora::test
