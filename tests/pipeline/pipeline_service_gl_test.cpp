// SPDX-License-Identifier: Apache-2.0
// How the pipeline serves: failures, reports, threads, several pipelines.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "pipeline/backends/gl/driver_faults.h"
#include "pipeline/faces/random_faces.h"
#include "pipeline/pipeline_fixture.h"

namespace lumora::test {
namespace {

TEST_F(PipelineTest, LeavesTheOutputAsItWasWhenArgumentsAreWrong) {
  FrameMemory in(PixelFormat::NV21, 64, 64);
  FrameMemory out(PixelFormat::I420, 64, 64, 4);
  const auto before = out.Everything();
  const Face face = FaceIn(64, 64);
  Report report;
  const Status status = pipeline_->Process({in.const_view(), out.view(), face, Look{101}}, &report);
  EXPECT_EQ(status.code, StatusCode::InvalidArgument);
  EXPECT_THAT(status.message, testing::HasSubstr("slim"));
  EXPECT_EQ(out.Everything(), before);
}

TEST_F(PipelineTest, RefusesFramesLargerThanTexturesButStillCopiesThem) {
  const int limit = pipeline_->Device().max_texture_size;
  ASSERT_GT(limit, 0);
  if (limit >= 32768) GTEST_SKIP() << "every frame fits this driver's textures";
  const int width = limit + 1, height = 32;
  FrameMemory in(PixelFormat::NV21, width, height);
  FrameMemory out(PixelFormat::NV21, width, height);
  in.Fill(NoiseSamples(width, height));
  const auto before = out.Everything();
  const std::vector<Face> faces = {FaceFromEyes({100, 8}, {110, 8})};
  const Status status = pipeline_->Process({in.const_view(), out.view(), faces, kFull});
  EXPECT_EQ(status.code, StatusCode::TooLarge);
  EXPECT_THAT(status.message, testing::HasSubstr(std::to_string(limit)));
  EXPECT_EQ(out.Everything(), before);

  EXPECT_TRUE(pipeline_->Process({in.const_view(), out.view(), faces, kOff}).ok());
  EXPECT_TRUE(out.Read() == in.Read());
}

TEST_F(PipelineTest, AnEngineThatCannotDrawFailsWithASentenceAndRecovers) {
  const Samples samples = NoiseSamples(96, 64);
  const std::vector<Face> faces = {FaceIn(96, 64)};
  FrameMemory in(PixelFormat::NV21, 96, 64);
  FrameMemory out(PixelFormat::NV21, 96, 64);
  in.Fill(samples);
  // Another size first, so that the engine has to be set up anew.
  Through(*pipeline_, NoiseSamples(64, 64), 64, 64, {FaceIn(64, 64)}, kFull);
  const auto before = out.Everything();
  {
    const FramebuffersIncomplete fault;
    const Status status = pipeline_->Process({in.const_view(), out.view(), faces, kFull});
    EXPECT_EQ(status.code, StatusCode::EngineFailed);
    EXPECT_FALSE(status.message.empty());
    EXPECT_EQ(out.Everything(), before);
  }
  EXPECT_TRUE(pipeline_->Process({in.const_view(), out.view(), faces, kFull}).ok());
  EXPECT_FALSE(out.Read() == samples);
}

// What a driver that failed has left behind is not known: the next frame finds everything new.
TEST_F(PipelineTest, SetsTheEngineUpAnewAfterAFrameThatFailed) {
  using Run = std::function<Status(const ConstFrameView& in, const FrameView& out)>;
  const std::vector<Face> faces = {FaceIn(160, 120)};
  const struct {
    const char* name;
    Run run;
  } operations[] = {
      {"slimming",
       [&](const ConstFrameView& in, const FrameView& out) {
         return pipeline_->Process({in, out, faces, Look{100}});
       }},
      {"whitening",
       [&](const ConstFrameView& in, const FrameView& out) {
         return pipeline_->Process({in, out, faces, Look{0, 100, 100}});
       }},
      {"keystone", [&](const ConstFrameView& in,
                       const FrameView& out) { return pipeline_->Rectify(in, out, 20); }},
      {"lens", [&](const ConstFrameView& in, const FrameView& out) {
         return pipeline_->RectifyRadial(in, out, LensCoefficients{});
       }}};
  FrameMemory in(PixelFormat::NV21, 160, 120);
  in.Fill(NoiseSamples(160, 120));
  FrameMemory grey(PixelFormat::NV21, 160, 120);  // so that nothing left over looks right
  for (const auto& [name, run] : operations) {
    SCOPED_TRACE(name);
    FrameMemory good(PixelFormat::NV21, 160, 120);
    FrameMemory out(PixelFormat::NV21, 160, 120);
    ASSERT_TRUE(run(in.const_view(), good.view()).ok());
    ASSERT_TRUE(run(grey.const_view(), out.view()).ok());
    const auto before = out.Everything();
    {
      const ProgramsLost fault;
      EXPECT_EQ(run(in.const_view(), out.view()).code, StatusCode::EngineFailed);
    }
    EXPECT_EQ(out.Everything(), before);
    const Status status = run(in.const_view(), out.view());
    EXPECT_TRUE(status.ok()) << status.message;
    EXPECT_EQ(out.Everything(), good.Everything());
  }
}

TEST_F(PipelineTest, ReportsWhatItDid) {
  Report report;
  Through(*pipeline_, NoiseSamples(160, 120), 160, 120, {FaceIn(160, 120)}, kFull, &report);
  EXPECT_EQ(report.chain, ChainUsed::Preview);
  EXPECT_EQ(report.buffer_kind, pipeline_->Device().buffer_kind);
  EXPECT_GT(report.upload_ms, 0);
  EXPECT_GT(report.engine_ms, 0);
  // The processor works in the output.
  EXPECT_EQ(report.download_ms > 0, TestedDevice() == Device::Gl);
}

TEST_F(PipelineTest, TellsWhatItRunsOn) {
  const DeviceInfo device = pipeline_->Device();
  EXPECT_EQ(device.device, TestedDevice());
  EXPECT_FALSE(device.reason.empty());
  if (device.device == Device::Cpu) {
    EXPECT_FALSE(device.simd.empty());
    EXPECT_EQ(device.threads, 1);
    EXPECT_TRUE(device.renderer.empty());
    return;
  }
  EXPECT_NE(device.display, DisplaySource::None);
  EXPECT_FALSE(device.vendor.empty());
  EXPECT_FALSE(device.renderer.empty());
  EXPECT_THAT(device.version, testing::HasSubstr("OpenGL ES"));
  EXPECT_NE(device.buffer_kind, BufferKind::None);
  EXPECT_GE(device.max_texture_size, 2048);
}

TEST_F(PipelineTest, ServesManyThreads) {
  struct Job {
    int width, height;
    Samples samples, expected;
    int wrong = 0;
  };
  std::vector<Job> jobs;
  for (const auto& [width, height] : {std::pair(64, 64), std::pair(97, 133), std::pair(64, 64)}) {
    const Samples samples = NoiseSamples(width, height, static_cast<uint32_t>(jobs.size()));
    jobs.push_back({width, height, samples,
                    Through(*pipeline_, samples, width, height, {FaceIn(width, height)}, kFull)});
  }
  std::vector<std::thread> threads;
  for (Job& job : jobs) {
    threads.emplace_back([&job] {
      for (int i = 0; i < 5; ++i) {
        const std::vector<Face> faces = {FaceIn(job.width, job.height)};
        const Samples result =
            Through(*pipeline_, job.samples, job.width, job.height, faces, kFull);
        if (!(result == job.expected)) ++job.wrong;
        if (pipeline_->Device().device != TestedDevice()) ++job.wrong;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const Job& job : jobs) EXPECT_EQ(job.wrong, 0);
}

TEST_F(PipelineTest, LivesBesideOthersAndOutlivesThem) {
  const Samples samples = NoiseSamples(96, 64);
  const std::vector<Face> faces = {FaceIn(96, 64)};
  const Samples expected = Through(*pipeline_, samples, 96, 64, faces, kFull);

  std::vector<std::unique_ptr<Pipeline>> others;
  for (int i = 0; i < 3; ++i) {
    others.push_back(Pipeline::Create({TestedDevice()}, nullptr));
    ASSERT_NE(others.back(), nullptr);
  }
  std::vector<int> wrong(others.size(), 0);
  std::vector<std::thread> threads;
  for (size_t i = 0; i < others.size(); ++i) {
    threads.emplace_back([&, i] {
      for (int frame = 0; frame < 3; ++frame) {
        if (!(Through(*others[i], samples, 96, 64, faces, kFull) == expected)) ++wrong[i];
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_THAT(wrong, testing::Each(0));

  // Destroyed from the middle, from a thread that did not make it.
  std::thread([&others] { others.erase(others.begin() + 1); }).join();
  EXPECT_TRUE(Through(*others.back(), samples, 96, 64, faces, kFull) == expected);
  others.clear();
  EXPECT_TRUE(Through(*pipeline_, samples, 96, 64, faces, kFull) == expected);
}

TEST(PipelineCreate, WithoutAContextGivesNullAndASentence) {
  const NoContexts fault;
  Status status;
  EXPECT_EQ(Pipeline::Create({Device::Gl}, &status), nullptr);
  EXPECT_EQ(status.code, StatusCode::NoDisplay);
  EXPECT_FALSE(status.message.empty());
  EXPECT_EQ(Pipeline::Create({Device::Gl}, nullptr), nullptr);
}

TEST(PipelineCreate, WorksAgainAndAgain) {
  for (int i = 0; i < 3; ++i) {
    Status status{StatusCode::EngineFailed, "old"};
    const auto pipeline = Pipeline::Create({TestedDevice()}, &status);
    ASSERT_NE(pipeline, nullptr) << status.message;
    EXPECT_TRUE(status.ok());
    EXPECT_TRUE(status.message.empty());
  }
}

TEST_F(PipelineTest, RefusesAFaceWithAnyNumberBeyondItsBounds) {
  FrameMemory in(PixelFormat::NV21, 64, 64), out(PixelFormat::NV21, 64, 64);
  in.Fill(NoiseSamples(64, 64));
  const auto before = out.Everything();
  Face face = FaceIn(64, 64);
  for (size_t i = 0; i < NumbersOf(face).size(); ++i) {
    for (const float far : {1e38f, -1e38f, 1e6f}) {
      std::vector<Face> faces = {face, face};
      *NumbersOf(faces[1])[i] = far;
      for (const Chain chain : {Chain::Preview, Chain::Capture}) {
        const Status status =
            pipeline_->Process({in.const_view(), out.view(), faces, {50, 50, 50}, chain});
        EXPECT_EQ(status.code, StatusCode::InvalidArgument) << i << ", " << far;
        EXPECT_THAT(status.message, testing::HasSubstr("face 1 holds "));
      }
    }
  }
  EXPECT_EQ(out.Everything(), before);
}

}  // namespace
}  // namespace lumora::test
