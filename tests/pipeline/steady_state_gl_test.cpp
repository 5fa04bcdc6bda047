// SPDX-License-Identifier: Apache-2.0
// A frame like the one before it needs no memory that the one before did not have, neither on the
// caller's thread nor on the pipeline's.
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <vector>

#include "lumora/pipeline/converter.h"
#include "pipeline/pipeline_fixture.h"
#include "support/allocation_count.h"

namespace lumora::test {
namespace {

constexpr int kWidth = 160, kHeight = 120;

class SteadyState : public PipelineTest {
 protected:
  SteadyState() { in_.Fill(NoiseSamples(kWidth, kHeight)); }

  using Call = std::function<Status(const FrameView& out, Report* report)>;

  // With a report and without, and as another format: into memory of its own and into the input's.
  void ExpectNoAllocations(const Call& call) {
    FrameMemory nv21(PixelFormat::NV21, kWidth, kHeight);
    FrameMemory planar(PixelFormat::I420, kWidth, kHeight, 3);
    Report kept;
    for (Report* report : {&kept, static_cast<Report*>(nullptr)}) {
      for (const FrameView& out : {nv21.view(), planar.view(), in_.view()}) {
        bool worked = true;
        EXPECT_EQ(0, SteadyAllocationsOf([&] { worked = worked && call(out, report).ok(); }));
        EXPECT_TRUE(worked);
      }
    }
    EXPECT_NE(ChainUsed::NoCall, kept.chain);
  }

  void ExpectNoAllocations(const std::vector<Face>& faces, const Look& look) {
    ExpectNoAllocations([&](const FrameView& out, Report* report) {
      return pipeline_->Process({in_.const_view(), out, faces, look, Chain::Preview}, report);
    });
  }

  FrameMemory in_{PixelFormat::NV21, kWidth, kHeight};
  const std::vector<Face> one_ = {FaceIn(kWidth, kHeight)};
  const std::vector<Face> some_ = {FaceIn(kWidth, kHeight, 0.25f), FaceIn(kWidth, kHeight, 0.5f),
                                   FaceIn(kWidth, kHeight, 0.75f)};
};

TEST_F(SteadyState, CopiedFrames) {
  ExpectNoAllocations({}, kFull);
  ExpectNoAllocations(one_, kOff);
}

TEST_F(SteadyState, SlimmedFrames) {
  ExpectNoAllocations(one_, kFull);
  ExpectNoAllocations(some_, kFull);
}

TEST_F(SteadyState, WhitenedFrames) {
  ExpectNoAllocations(one_, {0, 60, 30});
  ExpectNoAllocations(some_, {0, 60, 30});
}

TEST_F(SteadyState, FramesWithBoth) {
  ExpectNoAllocations(one_, {50, 60, 30});
  ExpectNoAllocations(some_, {50, 60, 30});
}

TEST_F(SteadyState, RectifiedFrames) {
  ExpectNoAllocations([&](const FrameView& out, Report* report) {
    return pipeline_->Rectify(in_.const_view(), out, 20, report);
  });
  ExpectNoAllocations([&](const FrameView& out, Report* report) {
    return pipeline_->RectifyRadial(in_.const_view(), out, LensCoefficients{}, report);
  });
}

TEST_F(SteadyState, ConvertedFrames) {
  const auto converter = Converter::Create(TestedDevice(), nullptr);
  ASSERT_NE(nullptr, converter);
  std::vector<uint8_t> pixels(static_cast<size_t>(kWidth * kHeight) * 3);
  const ImageView image{pixels.data(), kWidth, kHeight, 3, kWidth * 3};
  Report report;
  EXPECT_EQ(0, SteadyAllocationsOf(
                   [&] { converter->Convert(in_.const_view(), image, ImageView{}, &report); }));
  EXPECT_EQ(ChainUsed::Convert, report.chain);
}

}  // namespace
}  // namespace lumora::test
