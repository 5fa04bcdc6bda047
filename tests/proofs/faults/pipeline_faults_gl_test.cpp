// SPDX-License-Identifier: Apache-2.0
// Every call of the pipeline's operations, made to fail: a frame comes back as it should be, or
// with a sentence and untouched.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <vector>

#include "lumora/pipeline/pipeline.h"
#include "pipeline/frames/frame_memory.h"
#include "proofs/faults/fault_layer.h"
#include "proofs/faults/fault_test.h"
#include "support/log_capture.h"

namespace lumora::test {
namespace {

constexpr int kWidth = 96;
constexpr int kHeight = 64;

struct Operation {
  const char* name;
  Status (*run)(Pipeline& pipeline, const ConstFrameView& in, const FrameView& out);
};

Face FaceIn(const ConstFrameView& frame) {
  const auto w = static_cast<float>(frame.width);
  const auto h = static_cast<float>(frame.height);
  return FaceFromEyes({0.4f * w, 0.4f * h}, {0.6f * w, 0.4f * h});
}

template <int slim, int whiten>
Status Preview(Pipeline& pipeline, const ConstFrameView& in, const FrameView& out) {
  const Face face = FaceIn(in);
  return pipeline.Process({in, out, face, Look{slim, whiten, whiten}});
}
template <int slim, int whiten>
Status Capture(Pipeline& pipeline, const ConstFrameView& in, const FrameView& out) {
  const Face face = FaceIn(in);
  return pipeline.Process({in, out, face, Look{slim, whiten, whiten}, Chain::Capture});
}

const Operation kOperations[] = {
    {"SlimPreview", Preview<100, 0>},
    {"BothPreview", Preview<60, 60>},
    {"SlimCapture", Capture<100, 0>},
    {"WhitenCapture", Capture<0, 80>},
    {"Rectify", [](Pipeline& p, const ConstFrameView& in,
                   const FrameView& out) { return p.Rectify(in, out, 10); }},
    {"RectifyRadial", [](Pipeline& p, const ConstFrameView& in, const FrameView& out) {
       return p.RectifyRadial(in, out, LensCoefficients{});
     }}};

// Some uniforms are checked by no Load, and a last program without one is linked all the same: the
// picture may differ.
bool MayDifferSilently(const Fault& fault) {
  return fault.call == Call::FindUniform;
}

class PipelineFaults : public testing::TestWithParam<int> {
 protected:
  PipelineFaults() { cache_.prepare(Cache::Warm); }

  const Operation& operation() const { return kOperations[GetParam()]; }

  // Makes the engine set itself up anew at the next frame.
  void ChangeSize() {
    FrameMemory in(PixelFormat::NV21, 32, 32);
    FrameMemory out(PixelFormat::NV21, 32, 32);
    in.Fill(NoiseSamples(32, 32));
    const Status status = pipeline_->Rectify(in.const_view(), out.view(), 5);
    EXPECT_TRUE(status.ok()) << status.message;
  }

  // The frame's samples, or nothing on failure; a frame that failed is untouched.
  struct Result {
    Status status;
    Samples samples;
  };
  Result Run() {
    FrameMemory in(PixelFormat::NV21, kWidth, kHeight);
    FrameMemory out(PixelFormat::NV21, kWidth, kHeight);
    in.Fill(NoiseSamples(kWidth, kHeight));
    const auto before = out.Everything();
    Result result{operation().run(*pipeline_, in.const_view(), out.view()), {}};
    if (result.status.ok()) {
      result.samples = out.Read();
    } else {
      EXPECT_FALSE(result.status.message.empty());
      EXPECT_TRUE(out.Everything() == before);
    }
    return result;
  }

  CacheFolder cache_;
  LogCapture log_;
  std::unique_ptr<Pipeline> pipeline_;
};

TEST_P(PipelineFaults, GiveTheFrameOrASentence) {
  pipeline_ = Pipeline::Create({Device::Gl}, nullptr);
  ASSERT_NE(nullptr, pipeline_);
  Run();
  ChangeSize();
  CallCounts counts{};
  Samples good;
  {
    const FaultScope scope;
    good = Run().samples;
    counts = scope.counts();
  }
  const std::vector<Fault> faults = FaultsOf(counts);
  for (const Fault& fault : faults) {
    SCOPED_TRACE(testing::Message() << fault);
    ChangeSize();
    {
      const FaultScope scope(fault);
      const Result result = Run();
      EXPECT_EQ(1, scope.failed());
      if (result.status.ok() && !MayDifferSilently(fault)) {
        EXPECT_TRUE(result.samples == good);
      }
    }
    if (MayDifferSilently(fault)) ChangeSize();
    const Result again = Run();
    EXPECT_TRUE(again.status.ok()) << again.status.message;
    EXPECT_TRUE(again.samples == good);
  }
  TellInjected(faults.size());
}

INSTANTIATE_TEST_SUITE_P(Operations, PipelineFaults, testing::Range(0, 6),
                         [](const testing::TestParamInfo<int>& row) {
                           return kOperations[row.param].name;
                         });

TEST(PipelineCreation, GivesAPipelineOrASentence) {
  const LogCapture log;
  CallCounts counts{};
  Pipeline::Create({Device::Gl}, nullptr);
  {
    const FaultScope scope;
    Pipeline::Create({Device::Gl}, nullptr);
    counts = scope.counts();
  }
  const std::vector<Fault> faults = FaultsOf(counts);
  ASSERT_GE(faults.size(), 8u);
  for (const Fault& fault : faults) {
    SCOPED_TRACE(testing::Message() << fault);
    {
      const FaultScope scope(fault);
      Status status;
      const std::unique_ptr<Pipeline> pipeline = Pipeline::Create({Device::Gl}, &status);
      EXPECT_EQ(pipeline != nullptr, status.ok());
      EXPECT_EQ(status.ok(), status.message.empty());
      EXPECT_EQ(1, scope.failed());
    }
    EXPECT_NE(nullptr, Pipeline::Create({Device::Gl}, nullptr));
  }
  TellInjected(faults.size());
}

}  // namespace
}  // namespace lumora::test
