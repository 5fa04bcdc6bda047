// SPDX-License-Identifier: Apache-2.0
// Whitening, through both of the engine's chains.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "pipeline/backends/gl/driver_faults.h"
#include "pipeline/frames/touched_area.h"
#include "pipeline/pipeline_fixture.h"

namespace lumora::test {
namespace {

Look LookOf(int slim, int whiten, int saturate = 0, Effect effect = Effect::Auto) {
  Look look;
  look.slim = slim;
  look.whiten = whiten;
  look.saturate = saturate;
  look.effect = effect;
  return look;
}

constexpr Chain kChains[] = {Chain::Preview, Chain::Capture};

/// A frame of skin: luma with gentle waves, one chroma.
Samples SkinSamples(int width, int height, int luma = 150, int wave = 0) {
  Samples samples = NoiseSamples(width, height);
  for (size_t i = 0; i < samples.y.size(); ++i) {
    const int x = static_cast<int>(i) % width, y = static_cast<int>(i) / width;
    samples.y[i] = static_cast<uint8_t>(
        std::lround(luma + wave * (std::sin(x * 0.11) + std::cos(y * 0.13)) / 2));
  }
  std::fill(samples.cb.begin(), samples.cb.end(), uint8_t{110});
  std::fill(samples.cr.begin(), samples.cr.end(), uint8_t{150});
  return samples;
}

class WhiteningTest : public PipelineTest {
 protected:
  static Samples Whitened(const Samples& samples, int width, int height,
                          const std::vector<Face>& faces, const Look& look, Chain chain,
                          Report* report = nullptr) {
    FrameMemory in(PixelFormat::NV21, width, height);
    FrameMemory out(PixelFormat::NV21, width, height);
    in.Fill(samples);
    const Status status =
        pipeline_->Process({in.const_view(), out.view(), faces, look, chain}, report);
    EXPECT_TRUE(status.ok()) << status.message;
    return out.Read();
  }
};

TEST_F(WhiteningTest, ChangesNothingOutsideTheEllipsesAndCirclesInAnyChainOrFormat) {
  const std::pair<int, int> sizes[] = {{33, 47}, {64, 64}, {97, 133}, {161, 120}, {1281, 66}};
  for (const auto& [width, height] : sizes) {
    const Samples samples = NoiseSamples(width, height);
    const float middle = static_cast<float>(width) / 2, third = static_cast<float>(height) / 3;
    const std::vector<Face> faces = {FaceFromEyes({middle - 5, third}, {middle + 5, third})};
    for (const Chain chain : kChains) {
      for (const PixelFormat format : kAllFormats) {
        for (const int slim : {0, 100}) {
          FrameMemory in(format, width, height, 5);
          FrameMemory out(format, width, height, 9);
          in.Fill(samples);
          Report report;
          const Status status = pipeline_->Process(
              {in.const_view(), out.view(), faces, LookOf(slim, 100, 60), chain}, &report);
          ASSERT_TRUE(status.ok()) << status.message;
          EXPECT_EQ(report.chain,
                    chain == Chain::Capture ? ChainUsed::Capture : ChainUsed::Preview);
          const TouchedArea area(faces, slim > 0 ? faces : std::vector<Face>{}, width, height);
          const AreaChanges changes = CountChanges(samples, out.Read(), width, height, area);
          EXPECT_EQ(changes.outside, 0) << width << " x " << height << " slim " << slim;
          EXPECT_GT(changes.inside, 20) << width << " x " << height << " slim " << slim;
          EXPECT_TRUE(out.GuardsIntact());
          EXPECT_TRUE(in.Read() == samples);
        }
      }
    }
  }
}

TEST_F(WhiteningTest, AnyNumberOfFacesAnywhereTouchesOnlyThem) {
  const int width = 352, height = 290;
  const Samples samples = NoiseSamples(width, height);
  std::vector<Face> faces;
  const PointF places[] = {{170, 120}, {2, 2},   {350, 2},   {2, 288},   {350, 288}, {176, 2},
                           {176, 288}, {2, 140}, {350, 140}, {190, 130}, {160, 128}};
  for (const PointF& place : places) {
    // Every face is turned further than the one before.
    const float turn = 0.7f * static_cast<float>(faces.size());
    const PointF half = {12 * std::cos(turn), 12 * std::sin(turn)};
    faces.push_back(
        FaceFromEyes({place.x - half.x, place.y - half.y}, {place.x + half.x, place.y + half.y}));
    for (const Chain chain : kChains) {
      Report report;
      const Samples result =
          Whitened(samples, width, height, faces, LookOf(60, 80, 40), chain, &report);
      EXPECT_LE(report.faces, static_cast<int>(faces.size()));
      const TouchedArea area(faces, faces, width, height);
      const AreaChanges changes = CountChanges(samples, result, width, height, area);
      EXPECT_EQ(changes.outside, 0) << faces.size() << " faces";
      EXPECT_GT(changes.inside, 100) << faces.size() << " faces";
    }
  }
}

TEST_F(WhiteningTest, LosesNoFaceOfMoreThanTen) {
  const int width = 640, height = 160;
  const Samples samples = SkinSamples(width, height);
  std::vector<Face> faces;
  for (int i = 0; i < 12; ++i) {
    const float x = 30.f + 52.f * static_cast<float>(i);
    faces.push_back(FaceFromEyes({x - 8, 60}, {x + 8, 60}));
  }
  for (const Chain chain : kChains) {
    Report report;
    const Samples result = Whitened(samples, width, height, faces, LookOf(0, 100), chain, &report);
    EXPECT_EQ(report.faces, 12);
    EXPECT_EQ(report.tones.size(), 12u);
    for (const Face& face : faces) {
      const PointF nose = face.landmarks.nose_tip;
      const auto at =
          static_cast<size_t>(static_cast<int>(nose.y) * width + static_cast<int>(nose.x));
      EXPECT_GT(result.y[at], samples.y[at] + 10) << nose.x;
    }
  }
}

TEST_F(WhiteningTest, LiftsSkinAlongTheLogisticCurve) {
  // In the hexcone model luma is proportional to intensity, so that the lift can be told from the
  // luma alone. The mask has its plateau of 0.55 up to 0.3 of the way to the outer ellipse.
  const int width = 320, height = 320;
  const Face face = FaceFromEyes({130, 130}, {190, 130});
  const Ellipse outer = WhiteningEllipses(face)[kFaceEllipse];
  for (const int luma : {70, 110, 150}) {
    const Samples samples = SkinSamples(width, height, luma);
    const double red = luma + 1.402 * (150 - 128);
    const double lifted = 255 / (1 + std::exp(-(std::log(red / (255 - red)) + 2.0 * 0.5)));
    const double expected = luma + 0.55 * (lifted / red - 1) * luma;
    for (const Chain chain : kChains) {
      Report report;
      const Samples result =
          Whitened(samples, width, height, {face}, LookOf(0, 50), chain, &report);
      ASSERT_EQ(report.tones.size(), 1u);
      EXPECT_NEAR(report.tones[0].mean_intensity, red, 2);
      EXPECT_TRUE(report.tones[0].intensity_shifted);
      EXPECT_FALSE(report.tones[0].saturation_shifted);
      for (int dx = -15; dx <= 15; dx += 5) {
        const auto at = static_cast<size_t>(static_cast<int>(outer.centre.y) * width +
                                            static_cast<int>(outer.centre.x) + dx);
        EXPECT_NEAR(result.y[at], expected, 3) << "luma " << luma << " at " << dx;
      }
    }
  }
}

TEST_F(WhiteningTest, RaisesSaturationWithoutTouchingTheBrightestChannel) {
  const int width = 320, height = 320;
  const Samples samples = SkinSamples(width, height);
  const Face face = FaceFromEyes({130, 130}, {190, 130});
  const PointF centre = WhiteningEllipses(face)[kFaceEllipse].centre;
  for (const Chain chain : kChains) {
    Report report;
    const Samples result =
        Whitened(samples, width, height, {face}, LookOf(0, 0, 100), chain, &report);
    ASSERT_EQ(report.tones.size(), 1u);
    EXPECT_TRUE(report.tones[0].saturation_shifted);
    const auto at =
        static_cast<size_t>(static_cast<int>(centre.y) * width + static_cast<int>(centre.x));
    const auto chroma_at = static_cast<size_t>(static_cast<int>(centre.y) / 2 * (width / 2) +
                                               static_cast<int>(centre.x) / 2);
    EXPECT_LT(result.y[at], samples.y[at]);
    EXPECT_GT(result.cr[chroma_at], samples.cr[chroma_at] + 3);
    const double red_before = samples.y[at] + 1.402 * (samples.cr[chroma_at] - 128);
    const double red_after = result.y[at] + 1.402 * (result.cr[chroma_at] - 128);
    EXPECT_NEAR(red_after, red_before, 3);
  }
}

TEST_F(WhiteningTest, BothChainsGiveTheSameLook) {
  const int width = 1344, height = 1000;
  const Samples samples = SkinSamples(width, height, 140, 40);
  const std::vector<Face> faces = {FaceFromEyes({500, 400}, {640, 408}),
                                   FaceFromEyes({1000, 300}, {1080, 300})};
  const Look look = LookOf(0, 70, 30);
  const Samples preview = Whitened(samples, width, height, faces, look, Chain::Preview);
  const Samples capture = Whitened(samples, width, height, faces, look, Chain::Capture);
  int largest = 0;
  const auto compare = [&largest](const std::vector<uint8_t>& a, const std::vector<uint8_t>& b) {
    for (size_t i = 0; i < a.size(); ++i) largest = std::max(largest, std::abs(a[i] - b[i]));
  };
  compare(preview.y, capture.y);
  compare(preview.cb, capture.cb);
  compare(preview.cr, capture.cr);
  EXPECT_LE(largest, 3);
  EXPECT_FALSE(preview == samples);
}

TEST_F(WhiteningTest, LeavesAloneAndReportsFacesThatTheEngineCannotShift) {
  const int width = 320, height = 240;
  const Face face = FaceFromEyes({130, 100}, {190, 100});
  for (const int luma : {15, 245}) {
    Samples samples = SkinSamples(width, height, luma);
    std::fill(samples.cb.begin(), samples.cb.end(), uint8_t{128});
    std::fill(samples.cr.begin(), samples.cr.end(), uint8_t{128});
    for (const Chain chain : kChains) {
      Report report;
      EXPECT_TRUE(Whitened(samples, width, height, {face}, LookOf(0, 100, 100), chain, &report) ==
                  samples);
      ASSERT_EQ(report.tones.size(), 1u);
      EXPECT_NEAR(report.tones[0].mean_intensity, luma, 1);
      EXPECT_LE(report.tones[0].mean_saturation, 20);
      EXPECT_FALSE(report.tones[0].intensity_shifted);
      EXPECT_FALSE(report.tones[0].saturation_shifted);
    }
  }
}

TEST_F(WhiteningTest, EffectsApplyTheirOwnPartOnly) {
  const int width = 320, height = 240;
  const Samples samples = SkinSamples(width, height);
  const std::vector<Face> faces = {FaceFromEyes({130, 100}, {190, 100})};
  for (const Chain chain : kChains) {
    const auto with = [&](int whiten, int saturate, Effect effect) {
      return Whitened(samples, width, height, faces, LookOf(0, whiten, saturate, effect), chain);
    };
    EXPECT_TRUE(with(60, 40, Effect::Intensity) == with(60, 0, Effect::Auto));
    EXPECT_TRUE(with(60, 40, Effect::Saturation) == with(0, 40, Effect::Auto));
    EXPECT_TRUE(with(60, 40, Effect::Both) == with(60, 40, Effect::Auto));
    EXPECT_FALSE(with(60, 40, Effect::Both) == with(60, 0, Effect::Auto));
    // The mask goes through the conversions, which round.
    const Samples mask = with(60, 40, Effect::Mask);
    for (size_t i = 0; i < mask.y.size(); ++i) ASSERT_NEAR(mask.y[i], samples.y[i], 2);
  }
}

TEST_F(WhiteningTest, EverythingOffIsAByteCopy) {
  const Samples samples = NoiseSamples(97, 133);
  for (const Chain chain : kChains) {
    Report report;
    EXPECT_TRUE(Whitened(samples, 97, 133, {FaceIn(97, 133)}, LookOf(0, 0), chain, &report) ==
                samples);
    EXPECT_EQ(report.chain, ChainUsed::None);
    EXPECT_TRUE(Whitened(samples, 97, 133, {FaceIn(97, 133)}, LookOf(0, 50, 0, Effect::Saturation),
                         chain, &report) == samples);
    EXPECT_EQ(report.chain, ChainUsed::None);
  }
}

TEST_F(WhiteningTest, AResultDoesNotDependOnWhatCameBefore) {
  const int width = 192, height = 160;
  const Samples samples = NoiseSamples(width, height, 5);
  const std::vector<Face> faces = {FaceIn(width, height, 0.3f), FaceIn(width, height, 0.6f)};
  std::vector<std::pair<Look, Chain>> requests;
  for (const Chain chain : kChains) {
    for (const Look& look : {LookOf(100, 0), LookOf(0, 80), LookOf(70, 50, 30)}) {
      requests.push_back({look, chain});
    }
  }
  std::vector<Samples> first;
  for (const auto& [look, chain] : requests) {
    const auto alone = Pipeline::Create({TestedDevice()}, nullptr);
    FrameMemory in(PixelFormat::NV21, width, height), out(PixelFormat::NV21, width, height);
    in.Fill(samples);
    ASSERT_TRUE(alone->Process({in.const_view(), out.view(), faces, look, chain}).ok());
    first.push_back(out.Read());
  }
  for (int round = 0; round < 2; ++round) {
    for (size_t i = 0; i < requests.size(); ++i) {
      const size_t r = round == 0 ? i : requests.size() - 1 - i;
      EXPECT_TRUE(Whitened(samples, width, height, faces, requests[r].first, requests[r].second) ==
                  first[r])
          << "round " << round << ", request " << r;
    }
  }
}

TEST_F(WhiteningTest, AFrameIsProcessedInPlace) {
  const int width = 161, height = 120;
  const Samples samples = NoiseSamples(width, height);
  const std::vector<Face> faces = {FaceIn(width, height)};
  const Look look = LookOf(50, 60);
  for (const Chain chain : kChains) {
    FrameMemory frame(PixelFormat::I420, width, height, 3);
    frame.Fill(samples);
    ASSERT_TRUE(pipeline_->Process({frame.const_view(), frame.view(), faces, look, chain}).ok());
    EXPECT_TRUE(frame.Read() == Whitened(samples, width, height, faces, look, chain));
    EXPECT_TRUE(frame.GuardsIntact());
  }
}

TEST_F(WhiteningTest, LargeStillsTakeTheCaptureChainInBlocksAroundFaces) {
  const int width = 4000, height = 3000;
  const Samples samples = SkinSamples(width, height, 140, 30);
  const std::vector<Face> faces = {FaceFromEyes({1200, 900}, {1420, 920}),
                                   FaceFromEyes({3800, 2800}, {3900, 2800})};
  Report report;
  const Samples result =
      Whitened(samples, width, height, faces, LookOf(40, 50), Chain::Auto, &report);
  EXPECT_EQ(report.chain, ChainUsed::Capture);
  EXPECT_GT(report.whiten_ms, 0);
  EXPECT_GT(report.slim_ms, 0);
  EXPECT_GE(report.engine_ms, report.whiten_ms);
  const TouchedArea area(faces, faces, width, height);
  const AreaChanges changes = CountChanges(samples, result, width, height, area);
  EXPECT_EQ(changes.outside, 0);
  EXPECT_GT(changes.inside, 100000);
  ASSERT_FALSE(report.blocks.empty());
  int64_t drawn = 0;
  for (const PixelRect& block : report.blocks) {
    EXPECT_GE(block.x, 0);
    EXPECT_GE(block.y, 0);
    EXPECT_LE(block.x + block.width, width);
    EXPECT_LE(block.y + block.height, height);
    EXPECT_LE(block.width, 384);
    drawn += int64_t{block.width} * block.height;
  }
  EXPECT_LT(drawn, int64_t{width} * height) << "more was drawn than the whole frame";
}

TEST_F(WhiteningTest, PreviewsServeUpTo1280PixelsAcrossAndCapturesBeyond) {
  for (const int width : {1280, 1281}) {
    Report report;
    Whitened(SkinSamples(width, 64), width, 64, {FaceFromEyes({600, 24}, {610, 24})}, LookOf(0, 50),
             Chain::Auto, &report);
    EXPECT_EQ(report.chain, width > 1280 ? ChainUsed::Capture : ChainUsed::Preview);
  }
}

TEST_F(WhiteningTest, AnEngineThatCannotDrawFailsWithASentenceAndRecovers) {
  const int width = 96, height = 64;
  const std::vector<Face> faces = {FaceIn(width, height)};
  for (const Chain chain : kChains) {
    for (const Look& look : {LookOf(0, 80), LookOf(80, 0)}) {
      // Of its own, so that the engine has to be set up.
      const auto pipeline = Pipeline::Create({Device::Gl}, nullptr);
      ASSERT_NE(pipeline, nullptr);
      FrameMemory in(PixelFormat::NV21, width, height), out(PixelFormat::NV21, width, height);
      in.Fill(SkinSamples(width, height, 150, 60));
      const auto before = out.Everything();
      Report report;
      {
        const FramebuffersIncomplete fault;
        const Status status =
            pipeline->Process({in.const_view(), out.view(), faces, look, chain}, &report);
        EXPECT_EQ(status.code, StatusCode::EngineFailed);
        EXPECT_THAT(status.message, testing::HasSubstr("set up"));
      }
      EXPECT_EQ(out.Everything(), before);
      EXPECT_EQ(report.chain, ChainUsed::NoCall);
      EXPECT_TRUE(
          pipeline->Process({in.const_view(), out.view(), faces, look, chain}, &report).ok());
      EXPECT_FALSE(out.Read() == in.Read());
    }
  }
}

TEST_F(WhiteningTest, AnEngineWithoutAContextFailsWithASentenceAndRecovers) {
  const int width = 96, height = 64;
  const std::vector<Face> faces = {FaceIn(width, height)};
  const auto pipeline = Pipeline::Create({Device::Gl}, nullptr);
  ASSERT_NE(pipeline, nullptr);
  FrameMemory in(PixelFormat::NV21, width, height), out(PixelFormat::NV21, width, height);
  in.Fill(SkinSamples(width, height, 150, 60));
  const auto before = out.Everything();
  const Look look = LookOf(0, 80);
  {
    const NoContexts fault;
    const Status status =
        pipeline->Process({in.const_view(), out.view(), faces, look, Chain::Preview});
    EXPECT_EQ(status.code, StatusCode::EngineFailed);
    EXPECT_THAT(status.message, testing::HasSubstr("context"));
  }
  EXPECT_EQ(out.Everything(), before);
  EXPECT_FALSE(pipeline->Device().renderer.empty());
  EXPECT_TRUE(pipeline->Process({in.const_view(), out.view(), faces, look, Chain::Preview}).ok());
  EXPECT_FALSE(out.Read() == in.Read());
}

TEST_F(WhiteningTest, TonesNameTheFacesByTheirPlaceAmongThoseThatWereGiven) {
  const int width = 400, height = 240;
  const std::vector<Face> faces = {FaceFromEyes({-300, 20}, {-280, 20}),
                                   FaceFromEyes({90, 100}, {140, 100}), Face{},
                                   FaceFromEyes({270, 100}, {320, 100})};
  for (const Chain chain : kChains) {
    Report report;
    Whitened(SkinSamples(width, height), width, height, faces, LookOf(0, 50), chain, &report);
    EXPECT_EQ(report.faces, 2);
    ASSERT_EQ(report.tones.size(), 2u);
    EXPECT_EQ(report.tones[0].face, 1);
    EXPECT_EQ(report.tones[1].face, 3);
  }
}

TEST_F(WhiteningTest, WhatIsToldToBeShiftedIsAndNothingElse) {
  const int width = 192, height = 160;
  const std::vector<Face> faces = {FaceFromEyes({80, 66}, {112, 66})};
  int shifted = 0, left_alone = 0;
  const auto expect_told = [&](const Samples& samples, const Look& look, const char* what) {
    for (const Chain chain : kChains) {
      Report report;
      const Samples result = Whitened(samples, width, height, faces, look, chain, &report);
      ASSERT_EQ(report.tones.size(), 1u);
      const FaceTone& tone = report.tones[0];
      const bool told = tone.intensity_shifted || tone.saturation_shifted;
      EXPECT_EQ(told, !(result == samples))
          << what << ", intensity " << tone.mean_intensity << ", saturation "
          << tone.mean_saturation << (chain == Chain::Preview ? ", preview" : ", capture");
      ++(told ? shifted : left_alone);
    }
  };
  // Around the ends of what the engine shifts.
  for (const int luma : {40, 48, 49, 50, 51, 52, 53, 60, 200, 207, 208, 209, 210, 211, 220}) {
    Samples samples = SkinSamples(width, height, luma);
    std::fill(samples.cb.begin(), samples.cb.end(), uint8_t{128});
    std::fill(samples.cr.begin(), samples.cr.end(), uint8_t{128});
    expect_told(samples, LookOf(0, 100), "gray");
  }
  for (const int redness : {8, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 22, 26}) {
    for (const int luma : {90, 150}) {
      Samples samples = SkinSamples(width, height, luma);
      std::fill(samples.cb.begin(), samples.cb.end(), static_cast<uint8_t>(128 - redness / 2));
      std::fill(samples.cr.begin(), samples.cr.end(), static_cast<uint8_t>(128 + redness));
      expect_told(samples, LookOf(0, 0, 100), "skin");
    }
  }
  EXPECT_GE(shifted, 20);
  EXPECT_GE(left_alone, 20);
}

}  // namespace
}  // namespace lumora::test
