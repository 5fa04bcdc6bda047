// SPDX-License-Identifier: Apache-2.0
// The corrections on the processor beside those of the engine.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>

#include "pipeline/backends/backend.h"
#include "pipeline/backends/cpu/corrected_model.h"
#include "pipeline/backends/cpu/random_lens.h"
#include "pipeline/smooth_samples.h"

namespace lumora::test {
namespace {

class BothRectifications : public testing::Test {
 protected:
  void SetUp() override {
    const Status status = MakeGlBackend(&gl_);
    ASSERT_TRUE(status.ok()) << status.message;
    ASSERT_TRUE(MakeCpuBackend(1, &cpu_).ok());
  }

  /// The means are of all frames so far.
  void Compare(const CorrectedModel& model, const Samples& before, const Samples& gl,
               const Samples& cpu) {
    for (size_t i = 0; i < gl.y.size(); ++i) {
      const int difference = std::abs(gl.y[i] - cpu.y[i]);
      ASSERT_LE(difference, 2) << "luma " << i;
      if (gl.y[i] == before.y[i] && cpu.y[i] == before.y[i]) continue;
      ++changed_;
      sum_ += difference;
    }
    for (int row = 0; row < (model.frame.height + 1) / 2; ++row) {
      for (int column = 0; column < (model.frame.width + 1) / 2; ++column) {
        // The engine's packing reads where four texels meet: any of them is right.
        ASSERT_LE(model.ChromaError(gl, column, row), 2) << "engine " << column << ", " << row;
        ASSERT_LE(model.ChromaError(cpu, column, row), 2) << "cpu " << column << ", " << row;
      }
    }
  }

  std::unique_ptr<Backend> gl_, cpu_;
  double changed_ = 0, sum_ = 0;
};

struct Frames {
  Frames(std::mt19937& random, int round)
      : width(std::uniform_int_distribution<>(32, 200)(random)),
        height(std::uniform_int_distribution<>(32, 150)(random)),
        samples(round % 2 == 0 ? NoiseSamples(width, height, static_cast<uint32_t>(round))
                               : SmoothSamples(width, height)),
        in(kAllFormats[random() % 3], width, height, static_cast<int>(random() % 9)),
        gl(kAllFormats[random() % 3], width, height, static_cast<int>(random() % 9)),
        cpu(kAllFormats[random() % 3], width, height, static_cast<int>(random() % 9)) {
    in.Fill(samples);
  }

  int width, height;
  Samples samples;
  FrameMemory in, gl, cpu;
};

TEST_F(BothRectifications, GiveTheSameKeystones) {
  std::mt19937 random(11);
  for (int round = 0; round < 200; ++round) {
    Frames frames(random, round);
    const int degree = std::uniform_int_distribution<>(-100, 100)(random);
    ASSERT_TRUE(gl_->Rectify(frames.in.const_view(), frames.gl.view(), degree, nullptr).ok());
    ASSERT_TRUE(cpu_->Rectify(frames.in.const_view(), frames.cpu.view(), degree, nullptr).ok());
    SCOPED_TRACE(testing::Message() << frames.width << " x " << frames.height << " by " << degree);
    Compare(KeystoneModel(frames.samples, frames.width, frames.height, degree), frames.samples,
            frames.gl.Read(), frames.cpu.Read());
    if (HasFatalFailure()) return;
  }
  EXPECT_LE(sum_ / changed_, 0.25);
  RecordProperty("mean", std::to_string(sum_ / changed_));
}

TEST_F(BothRectifications, GiveTheSameLenses) {
  std::mt19937 random(12);
  for (int round = 0; round < 200; ++round) {
    Frames frames(random, round);
    const LensCoefficients lens = round < 2 ? LensCoefficients{} : RandomLens(random);
    ASSERT_TRUE(gl_->RectifyRadial(frames.in.const_view(), frames.gl.view(), lens, nullptr).ok());
    ASSERT_TRUE(cpu_->RectifyRadial(frames.in.const_view(), frames.cpu.view(), lens, nullptr).ok());
    SCOPED_TRACE(testing::Message()
                 << frames.width << " x " << frames.height << " round " << round);
    Compare(LensModel(frames.samples, frames.width, frames.height, lens), frames.samples,
            frames.gl.Read(), frames.cpu.Read());
    if (HasFatalFailure()) return;
  }
  EXPECT_LE(sum_ / changed_, 0.25);
  RecordProperty("mean", std::to_string(sum_ / changed_));
}

}  // namespace
}  // namespace lumora::test
