// SPDX-License-Identifier: Apache-2.0
// A pipeline for tests to use, with frames and faces that suit it.
#ifndef LUMORA_TESTS_PIPELINE_PIPELINE_FIXTURE_H_
#define LUMORA_TESTS_PIPELINE_PIPELINE_FIXTURE_H_

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <vector>

#include "lumora/pipeline/pipeline.h"
#include "pipeline/frames/frame_memory.h"

namespace lumora::test {

constexpr Look kOff{0};
constexpr Look kFull{100};

/// A face of moderate size, somewhat above the middle.
inline Face FaceIn(int width, int height, float at_x = 0.5f) {
  const float w = static_cast<float>(width);
  const float y = 0.42f * static_cast<float>(height);
  return FaceFromEyes({at_x * w - 0.06f * w, y}, {at_x * w + 0.06f * w, y});
}

/// The device that tests of any device are run on: gl, or that of LUMORA_TEST_DEVICE.
inline Device TestedDevice() {
  const char* const name = std::getenv("LUMORA_TEST_DEVICE");
  return name == nullptr ? Device::Gl : FindDevice(name).value();
}

/// All tests share one pipeline.
class PipelineTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    Status status;
    pipeline_ = Pipeline::Create({TestedDevice()}, &status);
    ASSERT_NE(pipeline_, nullptr) << status.message;
  }
  static void TearDownTestSuite() { pipeline_.reset(); }
  void SetUp() override { ASSERT_NE(pipeline_, nullptr); }

  /// `samples` through `pipeline`, in NV21 without any padding.
  static Samples Through(Pipeline& pipeline, const Samples& samples, int width, int height,
                         const std::vector<Face>& faces, Look look, Report* report = nullptr) {
    FrameMemory in(PixelFormat::NV21, width, height);
    FrameMemory out(PixelFormat::NV21, width, height);
    in.Fill(samples);
    const Status status = pipeline.Process({in.const_view(), out.view(), faces, look}, report);
    EXPECT_TRUE(status.ok()) << status.message;
    return out.Read();
  }

  inline static std::unique_ptr<Pipeline> pipeline_;
};

}  // namespace lumora::test

#endif  // LUMORA_TESTS_PIPELINE_PIPELINE_FIXTURE_H_
