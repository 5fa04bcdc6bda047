// SPDX-License-Identifier: Apache-2.0
// Keystone and radial correction of whole frames.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "lumora/platform/settings.h"
#include "pipeline/pipeline_fixture.h"
#include "pipeline/smooth_samples.h"
#include "reference/rectification.h"
#include "support/scoped.h"

namespace lumora::test {
namespace {

constexpr std::pair<int, int> kSizes[] = {{128, 96}, {97, 133}, {161, 99}, {50, 200}};

/// What the reference says of the middle of a pixel, for luma.
template <typename Map>
void ExpectLuma(const Samples& before, const Samples& after, int width, int height, Map map,
                double tolerance) {
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const reference::Vec2 from = map(reference::Vec2{(x + 0.5) / width, (y + 0.5) / height});
      const double expected =
          Interpolated(before.y, width, height, from.x * width, from.y * height);
      ASSERT_NEAR(after.y[static_cast<size_t>(y * width + x)], expected, tolerance)
          << width << " x " << height << " at " << x << ", " << y;
    }
  }
}

TEST_F(PipelineTest, RectifyMapsTheFrameOntoTheQuadWhateverItsSize) {
  for (const auto& [width, height] : kSizes) {
    const Samples samples = SmoothSamples(width, height);
    for (const int degree : {20, -13, 1, 100, -100}) {
      FrameMemory in(PixelFormat::NV12, width, height, 3), out(PixelFormat::I420, width, height, 7);
      in.Fill(samples);
      Report report;
      const Status status = pipeline_->Rectify(in.const_view(), out.view(), degree, &report);
      ASSERT_TRUE(status.ok()) << status.message;
      EXPECT_EQ(report.chain, ChainUsed::Preview);
      EXPECT_GT(report.engine_ms, 0);
      const auto quad = reference::QuadOfDegree(degree);
      ExpectLuma(
          samples, out.Read(), width, height,
          [&quad](reference::Vec2 at) { return reference::QuadMap(at, quad); }, 2);
      EXPECT_TRUE(out.GuardsIntact());
    }
  }
}

TEST_F(PipelineTest, RectifyByNothingIsAByteCopy) {
  const Samples samples = NoiseSamples(97, 133);
  FrameMemory in(PixelFormat::NV21, 97, 133), out(PixelFormat::NV21, 97, 133);
  in.Fill(samples);
  Report report;
  ASSERT_TRUE(pipeline_->Rectify(in.const_view(), out.view(), 0, &report).ok());
  EXPECT_TRUE(out.Read() == samples);
  EXPECT_EQ(report.chain, ChainUsed::None);
}

/// The radial map of a whole frame: a slight enlargement, then the polynomial.
reference::Vec2 RadialOf(reference::Vec2 at, const reference::RadialCoefficients& k) {
  const reference::Corners corners = reference::CroppedCorners();
  const double low = corners[1].x, high = corners[3].x;
  return reference::RadialMap({low + (high - low) * at.x, low + (high - low) * at.y}, k);
}

TEST_F(PipelineTest, RectifyRadialFollowsThePolynomialAboutTheFramesOwnCentre) {
  const LensCoefficients lenses[] = {{}, {1, 0, 0, 0}, {1.02f, -0.08f, 0.02f, 0.01f}};
  for (const auto& [width, height] :
       {std::pair(128, 96), std::pair(161, 131), std::pair(98, 190)}) {
    const Samples samples = SmoothSamples(width, height);
    for (const LensCoefficients& lens : lenses) {
      FrameMemory in(PixelFormat::NV21, width, height, 3), out(PixelFormat::NV12, width, height, 7);
      in.Fill(samples);
      const Status status = pipeline_->RectifyRadial(in.const_view(), out.view(), lens);
      ASSERT_TRUE(status.ok()) << status.message;
      const reference::RadialCoefficients k = {
          static_cast<double>(lens.k0), static_cast<double>(lens.k1), static_cast<double>(lens.k2),
          static_cast<double>(lens.k3)};
      // Frames that do not fill the engine's are bent by a mean of both directions: within half a
      // pixel in the corners, on waves of up to 20 steps a pixel.
      const bool exact = width % 32 == 0 && height % 32 == 0;
      ExpectLuma(
          samples, out.Read(), width, height, [&k](reference::Vec2 at) { return RadialOf(at, k); },
          exact ? 2 : 12);
      EXPECT_TRUE(out.GuardsIntact());
    }
  }
}

TEST_F(PipelineTest, RectifyRadialWithoutCameraFilesUsesTheDefaultLens) {
  const Samples samples = NoiseSamples(128, 96);
  FrameMemory in(PixelFormat::NV21, 128, 96), out(PixelFormat::NV21, 128, 96),
      with_lens(PixelFormat::NV21, 128, 96);
  in.Fill(samples);
  ASSERT_TRUE(pipeline_->RectifyRadial(in.const_view(), with_lens.view(), LensCoefficients{}).ok());
  for (const Camera camera : {Camera::First, Camera::Second}) {
    ASSERT_TRUE(pipeline_->RectifyRadial(in.const_view(), out.view(), camera).ok());
    EXPECT_TRUE(out.Read() == with_lens.Read());
  }
  EXPECT_FALSE(out.Read() == samples);
}

TEST_F(PipelineTest, RectifyRadialTakesNoCameraFileWithANumberBeyondItsRange) {
  const TempDirectory root;
  platform::SetSystemRoot(root.path());
  WriteFile(root.path() + "/sys/android_camera/sensor", "back one");
  const auto result_with = [&](const std::string& numbers) {
    WriteFile(root.path() + "/system/etc/one_1", "r_param " + numbers);
    FrameMemory in(PixelFormat::NV21, 97, 66), out(PixelFormat::NV21, 97, 66);
    in.Fill(NoiseSamples(97, 66));
    const Status status = pipeline_->RectifyRadial(in.const_view(), out.view(), Camera::First);
    EXPECT_TRUE(status.ok()) << status.message;
    return out.Read();
  };
  const Samples usual = result_with("");
  EXPECT_FALSE(result_with("1.1 0 0 0") == usual) << "no file was read";
  for (const char* numbers : {"1.1 0 0 1e38", "-1001 0 0 0", "1.1 0 3e38 0"}) {
    EXPECT_TRUE(result_with(numbers) == usual) << numbers;
  }
  platform::SetSystemRoot("");
}

TEST_F(PipelineTest, RectificationRefusesWhatItCannotDo) {
  FrameMemory in(PixelFormat::NV21, 64, 64), out(PixelFormat::NV21, 64, 64);
  const auto before = out.Everything();
  for (const int degree : {-101, 101}) {
    const Status status = pipeline_->Rectify(in.const_view(), out.view(), degree);
    EXPECT_EQ(status.code, StatusCode::InvalidArgument);
    EXPECT_THAT(status.message, testing::HasSubstr("degree"));
  }
  LensCoefficients lens;
  lens.k2 = std::numeric_limits<float>::infinity();
  EXPECT_EQ(pipeline_->RectifyRadial(in.const_view(), out.view(), lens).code,
            StatusCode::InvalidArgument);
  lens.k2 = 1e38f;
  EXPECT_EQ(pipeline_->RectifyRadial(in.const_view(), out.view(), lens).code,
            StatusCode::InvalidArgument);
  FrameMemory small(PixelFormat::NV21, 64, 62);
  EXPECT_EQ(pipeline_->Rectify(in.const_view(), small.view(), 5).code, StatusCode::InvalidArgument);
  EXPECT_EQ(out.Everything(), before);
}

TEST_F(PipelineTest, RectificationAndFacesTakeTurns) {
  const Samples samples = NoiseSamples(128, 96);
  const std::vector<Face> faces = {FaceIn(128, 96)};
  Look look = kFull;
  look.whiten = 50;
  const auto rectified = [&] {
    FrameMemory in(PixelFormat::NV21, 128, 96), out(PixelFormat::NV21, 128, 96);
    in.Fill(samples);
    EXPECT_TRUE(pipeline_->Rectify(in.const_view(), out.view(), 10).ok());
    return out.Read();
  };
  const Samples first = rectified();
  const Samples face = Through(*pipeline_, samples, 128, 96, faces, look);
  EXPECT_TRUE(rectified() == first);
  EXPECT_TRUE(Through(*pipeline_, samples, 128, 96, faces, look) == face);
}

TEST_F(PipelineTest, EachCamerasFileGivesWhatItsCoefficientsGive) {
  const TempDirectory root;
  WriteFile(root.file("sys/android_camera/sensor"), "back one\n");
  WriteFile(root.file("sys/android_camera2/sensor"), "front two\n");
  WriteFile(root.file("system/etc/one_1"), "r_param 1.02 -0.08 0.02 0.01\n");
  WriteFile(root.file("system/etc/two_1"), "r_param 0.97 0.06 -0.03 0.02\n");
  const LensCoefficients first = {1.02f, -0.08f, 0.02f, 0.01f};
  const LensCoefficients second = {0.97f, 0.06f, -0.03f, 0.02f};
  const int width = 98, height = 70;  // not all of what the engine gets
  const Samples samples = NoiseSamples(width, height);
  FrameMemory in(PixelFormat::NV21, width, height), out(PixelFormat::NV21, width, height),
      with_lens(PixelFormat::NV21, width, height);
  in.Fill(samples);
  const auto expect_lens = [&](Camera camera, const LensCoefficients& lens) {
    ASSERT_TRUE(pipeline_->RectifyRadial(in.const_view(), out.view(), camera).ok());
    ASSERT_TRUE(pipeline_->RectifyRadial(in.const_view(), with_lens.view(), lens).ok());
    EXPECT_TRUE(out.Read() == with_lens.Read());
  };
  {
    const ScopedEnvironment device("LUMORA_SYSTEM_ROOT", root.path());
    for (int round = 0; round < 2; ++round) {
      expect_lens(Camera::First, first);
      expect_lens(Camera::Second, second);
    }
    EXPECT_FALSE(out.Read() == samples);
  }
  // Nothing is left of the files once they are gone.
  expect_lens(Camera::Second, LensCoefficients{});
  expect_lens(Camera::First, LensCoefficients{});
}

TEST_F(PipelineTest, RectificationBendsChromaAsItBendsLuma) {
  for (const auto& [width, height] : {std::pair(192, 160), std::pair(161, 131)}) {
    // Waves that are the same in all planes, each at its own resolution.
    const int chroma_width = (width + 1) / 2, chroma_height = (height + 1) / 2;
    const auto wave = [](double x, double y) {
      return static_cast<uint8_t>(std::lround(128 + 50 * std::sin(x / 23) + 40 * std::cos(y / 19)));
    };
    Samples samples = NoiseSamples(width, height);
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x) samples.y[static_cast<size_t>(y * width + x)] = wave(x, y);
    }
    for (int y = 0; y < chroma_height; ++y) {
      for (int x = 0; x < chroma_width; ++x) {
        const auto i = static_cast<size_t>(y * chroma_width + x);
        samples.cb[i] = wave(2 * x + 0.5, 2 * y + 0.5);
        samples.cr[i] = static_cast<uint8_t>(255 - samples.cb[i]);
      }
    }
    for (const bool radial : {false, true}) {
      FrameMemory in(PixelFormat::NV12, width, height), out(PixelFormat::I420, width, height);
      in.Fill(samples);
      const Status status =
          radial ? pipeline_->RectifyRadial(in.const_view(), out.view(),
                                            LensCoefficients{1.02f, -0.08f, 0.02f, 0.01f})
                 : pipeline_->Rectify(in.const_view(), out.view(), 20);
      ASSERT_TRUE(status.ok()) << status.message;
      const Samples after = out.Read();
      for (int y = 0; y + 1 < chroma_height; ++y) {
        for (int x = 0; x + 1 < chroma_width; ++x) {
          const auto at = static_cast<size_t>(2 * y * width + 2 * x);
          const double luma =
              (after.y[at] + after.y[at + 1] + after.y[at + static_cast<size_t>(width)] +
               after.y[at + static_cast<size_t>(width) + 1]) /
              4.0;
          const auto i = static_cast<size_t>(y * chroma_width + x);
          // A chroma sample is taken from one of its four pixels: up to two steps of the waves.
          ASSERT_NEAR(after.cb[i], luma, 8) << radial << " at " << x << ", " << y;
          ASSERT_NEAR(after.cr[i], 255 - luma, 8) << radial << " at " << x << ", " << y;
        }
      }
    }
  }
}

TEST_F(PipelineTest, RectifyRadialTakesNumbersOnly) {
  FrameMemory in(PixelFormat::NV21, 64, 64), out(PixelFormat::NV21, 64, 64);
  const float nan = std::numeric_limits<float>::quiet_NaN();
  for (float LensCoefficients::*coefficient : {&LensCoefficients::k0, &LensCoefficients::k1,
                                               &LensCoefficients::k2, &LensCoefficients::k3}) {
    LensCoefficients lens;
    lens.*coefficient = nan;
    EXPECT_EQ(pipeline_->RectifyRadial(in.const_view(), out.view(), lens).code,
              StatusCode::InvalidArgument);
  }
}

TEST_F(PipelineTest, AFrameOfOneColourStaysSoUpToItsBorders) {
  const LensCoefficients farther = {1.2f, 0, 0, 0};  // shows what lies around the frame, too
  for (const auto& [width, height] :
       {std::pair(33, 35), std::pair(97, 133), std::pair(161, 131), std::pair(98, 190)}) {
    Samples samples = NoiseSamples(width, height);
    std::fill(samples.y.begin(), samples.y.end(), uint8_t{120});
    std::fill(samples.cb.begin(), samples.cb.end(), uint8_t{70});
    std::fill(samples.cr.begin(), samples.cr.end(), uint8_t{190});
    for (const PixelFormat format : kAllFormats) {
      FrameMemory in(format, width, height, 3), out(format, width, height, 5);
      in.Fill(samples);
      ASSERT_TRUE(pipeline_->RectifyRadial(in.const_view(), out.view(), farther).ok());
      EXPECT_TRUE(out.Read() == samples) << width << " x " << height;
      ASSERT_TRUE(pipeline_->Rectify(in.const_view(), out.view(), -40).ok());
      EXPECT_TRUE(out.Read() == samples) << width << " x " << height;
    }
  }
}

}  // namespace
}  // namespace lumora::test
