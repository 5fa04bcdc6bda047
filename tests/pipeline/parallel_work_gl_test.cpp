// SPDX-License-Identifier: Apache-2.0
// Work of every kind at the same time, each on a thread with a pipeline of its own.
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <thread>
#include <utility>
#include <vector>

#include "lumora/pipeline/converter.h"
#include "pipeline/pipeline_fixture.h"

namespace lumora::test {
namespace {

constexpr int kWidth = 160, kHeight = 120;

Look SlimAndWhiten() {
  Look look;
  look.slim = 60;
  look.whiten = 80;
  return look;
}

/// The bytes of all planes or images.
using Bytes = std::vector<std::vector<uint8_t>>;

/// What a pipeline, made for it, makes of a frame, in NV21.
using Call =
    std::function<Status(Pipeline& pipeline, const ConstFrameView& in, const FrameView& out)>;

Call Beautify(Look look, Chain chain) {
  return [=](Pipeline& pipeline, const ConstFrameView& in, const FrameView& out) {
    const Face face = FaceIn(kWidth, kHeight);
    return pipeline.Process({in, out, face, look, chain});
  };
}

Bytes By(Pipeline& pipeline, const Call& call) {
  FrameMemory in(PixelFormat::NV21, kWidth, kHeight), out(PixelFormat::NV21, kWidth, kHeight);
  in.Fill(NoiseSamples(kWidth, kHeight));
  const Status status = call(pipeline, in.const_view(), out.view());
  EXPECT_TRUE(status.ok()) << status.message;
  return out.Everything();
}

Bytes ByPipeline(const Call& call) {
  Status status;
  const auto pipeline = Pipeline::Create({TestedDevice()}, &status);
  EXPECT_NE(pipeline, nullptr) << status.message;
  return pipeline ? By(*pipeline, call) : Bytes();
}

Bytes ByConverter() {
  Status status;
  const auto converter = Converter::Create(TestedDevice(), &status);
  FrameMemory in(PixelFormat::NV21, kWidth, kHeight);
  in.Fill(NoiseSamples(kWidth, kHeight));
  Bytes images(2, std::vector<uint8_t>(size_t{kWidth} * kHeight * 3));
  const auto view = [&](size_t i) {
    return ImageView{images[i].data(), kWidth, kHeight, 3, kWidth * 3};
  };
  if (converter) status = converter->Convert(in.const_view(), view(0), view(1));
  EXPECT_TRUE(status.ok()) << status.message;
  return images;
}

Status Keystone(Pipeline& pipeline, const ConstFrameView& in, const FrameView& out) {
  return pipeline.Rectify(in, out, 20);
}

Status ThroughALens(Pipeline& pipeline, const ConstFrameView& in, const FrameView& out) {
  return pipeline.RectifyRadial(in, out, LensCoefficients{});
}

TEST(ParallelWork, EveryKindGivesWhatItGivesAlone) {
  using Work = std::function<Bytes()>;
  const auto by_pipeline = [](Call call) {
    return [call = std::move(call)] { return ByPipeline(call); };
  };
  const std::vector<Work> works = {
      by_pipeline(Beautify(kFull, Chain::Preview)),
      by_pipeline(Beautify(SlimAndWhiten(), Chain::Preview)),
      by_pipeline(Beautify(SlimAndWhiten(), Chain::Capture)),
      by_pipeline(Keystone),
      by_pipeline(ThroughALens),
      ByConverter,
  };
  // At the same time first: nothing in the process has been made or asked for yet.
  constexpr int kRounds = 3;
  std::vector<std::vector<Bytes>> results(works.size());
  std::vector<std::thread> threads;
  for (size_t i = 0; i < works.size(); ++i) {
    threads.emplace_back([&, i] {
      for (int round = 0; round < kRounds; ++round) results[i].push_back(works[i]());
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (size_t i = 0; i < works.size(); ++i) {
    EXPECT_TRUE(results[i] == std::vector<Bytes>(kRounds, works[i]())) << "work " << i;
  }
}

TEST(ParallelWork, CallsOfOnePipelineGiveWhatTheyGiveAlone) {
  const std::vector<Call> calls = {Beautify(kFull, Chain::Preview),
                                   Beautify(SlimAndWhiten(), Chain::Preview),
                                   Beautify(SlimAndWhiten(), Chain::Capture),
                                   Beautify(kOff, Chain::Preview),
                                   Keystone,
                                   ThroughALens};
  for (const int workers : {1, 2}) {  // on one frame
    Status status;
    const auto pipeline = Pipeline::Create({TestedDevice(), workers}, &status);
    ASSERT_NE(pipeline, nullptr) << status.message;
    constexpr size_t kThreads = 4, kRounds = 4;
    // Every thread makes all of the calls, beginning with another one.
    std::vector<std::vector<Bytes>> results(kThreads);
    std::vector<std::thread> threads;
    for (size_t thread = 0; thread < kThreads; ++thread) {
      threads.emplace_back([&, thread] {
        for (size_t i = 0; i < kRounds * calls.size(); ++i) {
          results[thread].push_back(By(*pipeline, calls[(thread + i) % calls.size()]));
        }
      });
    }
    for (std::thread& thread : threads) thread.join();
    std::vector<Bytes> alone;
    for (const Call& call : calls) alone.push_back(By(*pipeline, call));
    for (size_t thread = 0; thread < kThreads; ++thread) {
      for (size_t i = 0; i < results[thread].size(); ++i) {
        EXPECT_TRUE(results[thread][i] == alone[(thread + i) % calls.size()])
            << "thread " << thread << ", call " << i << ", " << workers << " workers";
      }
    }
  }
}

}  // namespace
}  // namespace lumora::test
