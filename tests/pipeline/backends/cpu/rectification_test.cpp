// SPDX-License-Identifier: Apache-2.0
// The corrections on the processor against the reference, which computes in double precision.
#include "pipeline/backends/cpu/rectification.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "lumora/platform/settings.h"
#include "pipeline/backends/backend.h"
#include "pipeline/backends/cpu/corrected_model.h"
#include "pipeline/backends/cpu/random_lens.h"
#include "pipeline/frames/frame_memory.h"
#include "support/scoped.h"

namespace lumora::test {
namespace {

/// Sizes from the smallest on, odd ones too.
struct Size {
  int width, height;
};

Size RandomSize(std::mt19937& random) {
  const auto side = [&random] { return std::uniform_int_distribution<>(32, 180)(random); };
  return {side(), side()};
}

PixelFormat RandomFormat(std::mt19937& random) {
  return kAllFormats[random() % 3];
}

int RandomSlack(std::mt19937& random) {
  return static_cast<int>(random() % 40);
}

/// Positions and weights are whole 1/256 on the processor: half of one in both directions, and the
/// rounding of both results, are less than 2 on any picture.
void ExpectModel(const CorrectedModel& model, const Samples& after, const std::string& what) {
  const int width = model.frame.width, height = model.frame.height;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const int got = after.y[static_cast<size_t>(y * width + x)];
      ASSERT_LE(std::abs(got - model.luma(x, y)), 2) << what << " luma " << x << ", " << y;
    }
  }
  // The pixel of a chroma sample is the nearest to the middle.
  const int columns = (width + 1) / 2, rows = (height + 1) / 2;
  for (int row = 0; row < rows; ++row) {
    for (int column = 0; column < columns; ++column) {
      const auto at = static_cast<size_t>(row * columns + column);
      const int x = 2 * column + (2 * (2 * column + 1) < width ? 1 : 0);
      const int y = 2 * row + (2 * (2 * row + 1) < height ? 1 : 0);
      ASSERT_LE(std::abs(after.cr[at] - model.cr(x, y)), 2)
          << what << " Cr " << column << ", " << row;
      ASSERT_LE(std::abs(after.cb[at] - model.cb(x, y)), 2)
          << what << " Cb " << column << ", " << row;
    }
  }
}

/// With one thread and with several, in turn.
class CpuRectification : public testing::Test {
 protected:
  CpuRectification() {
    EXPECT_TRUE(MakeCpuBackend(1, &one_).ok());
    EXPECT_TRUE(MakeCpuBackend(3, &three_).ok());
  }

  void Rectify(const ConstFrameView& in, const FrameView& out, int degree, Report* report) {
    EXPECT_TRUE(Next().Rectify(in, out, degree, report).ok());
  }
  void RectifyRadial(const ConstFrameView& in, const FrameView& out, const Lens& lens,
                     Report* report) {
    EXPECT_TRUE(Next().RectifyRadial(in, out, lens, report).ok());
  }

 private:
  Backend& Next() {
    one_.swap(three_);
    return *one_;
  }

  std::unique_ptr<Backend> one_, three_;
};

TEST_F(CpuRectification, KeystonesAreThoseOfTheReference) {
  std::mt19937 random(1);
  for (int round = 0; round < 150; ++round) {
    const auto [width, height] = RandomSize(random);
    const int degree = std::uniform_int_distribution<>(-100, 100)(random);
    const Samples samples = NoiseSamples(width, height, static_cast<uint32_t>(round));
    FrameMemory in(RandomFormat(random), width, height, RandomSlack(random));
    FrameMemory out(RandomFormat(random), width, height, RandomSlack(random));
    in.Fill(samples);
    Report report;
    Rectify(in.const_view(), out.view(), degree, &report);
    ExpectModel(
        KeystoneModel(samples, width, height, degree), out.Read(),
        std::to_string(width) + " x " + std::to_string(height) + " by " + std::to_string(degree));
    EXPECT_TRUE(out.GuardsIntact());
    ASSERT_EQ(report.blocks.size(), 1u);
    EXPECT_EQ(report.blocks[0].width, width);
    EXPECT_EQ(report.blocks[0].height, height);
    EXPECT_GT(report.engine_ms, 0);
  }
}

TEST_F(CpuRectification, LensesAreThoseOfTheReference) {
  std::mt19937 random(2);
  for (int round = 0; round < 150; ++round) {
    const auto [width, height] = RandomSize(random);
    const LensCoefficients lens = round == 0 ? LensCoefficients{} : RandomLens(random);
    const Samples samples = NoiseSamples(width, height, static_cast<uint32_t>(round));
    FrameMemory in(RandomFormat(random), width, height, RandomSlack(random));
    FrameMemory out(RandomFormat(random), width, height, RandomSlack(random));
    in.Fill(samples);
    RectifyRadial(in.const_view(), out.view(), lens, nullptr);
    ExpectModel(
        LensModel(samples, width, height, lens), out.Read(),
        std::to_string(width) + " x " + std::to_string(height) + " round " + std::to_string(round));
    EXPECT_TRUE(out.GuardsIntact());
  }
}

// Beyond the engine's frame everything is mirrored, again and again.
TEST_F(CpuRectification, LensesThatShowFarMoreThanTheFrameMirrorIt) {
  std::mt19937 random(3);
  for (const float factor : {2.f, -3.f, 7.f, -12.5f}) {
    const auto [width, height] = RandomSize(random);
    const LensCoefficients lens = {factor, 0, 0, 0};
    // Smooth, as steps of many pixels magnify what float loses.
    Samples samples = NoiseSamples(width, height);
    for (size_t i = 0; i < samples.y.size(); ++i) {
      samples.y[i] =
          static_cast<uint8_t>(i % static_cast<size_t>(width) + i / static_cast<size_t>(width) / 2);
    }
    FrameMemory in(PixelFormat::I420, width, height), out(PixelFormat::NV12, width, height);
    in.Fill(samples);
    RectifyRadial(in.const_view(), out.view(), lens, nullptr);
    ExpectModel(LensModel(samples, width, height, lens), out.Read(), std::to_string(factor));
  }
}

TEST_F(CpuRectification, TheLargestCoefficientsStayWithinTheFrame) {
  const float most = kLargestCoefficient;
  for (const LensCoefficients& lens :
       {LensCoefficients{most, most, most, most}, LensCoefficients{-most, most, -most, most},
        LensCoefficients{0, 0, 0, most}, LensCoefficients{0, 0, 0, 0}}) {
    for (const PixelFormat format : kAllFormats) {
      FrameMemory in(format, 33, 47), out(format, 33, 47, 3);
      Samples samples = NoiseSamples(33, 47);
      for (auto* plane : {&samples.y, &samples.cb, &samples.cr}) {
        plane->assign(plane->size(), uint8_t{77});
      }
      in.Fill(samples);
      RectifyRadial(in.const_view(), out.view(), lens, nullptr);
      EXPECT_TRUE(out.Read() == samples);
      EXPECT_TRUE(out.GuardsIntact());
    }
  }
}

TEST_F(CpuRectification, NothingToBendIsACopy) {
  for (const auto [width, height] : {Size{97, 133}, Size{64, 32}, Size{33, 35}}) {
    const Samples samples = NoiseSamples(width, height);
    for (const PixelFormat from : kAllFormats) {
      for (const PixelFormat to : kAllFormats) {
        FrameMemory in(from, width, height, 5), out(to, width, height, 2);
        in.Fill(samples);
        Rectify(in.const_view(), out.view(), 0, nullptr);
        EXPECT_TRUE(out.Read() == samples);
        EXPECT_TRUE(out.GuardsIntact());
      }
    }
  }
}

TEST_F(CpuRectification, AFrameMayLieOverItsSource) {
  std::mt19937 random(4);
  for (int round = 0; round < 24; ++round) {
    const auto [width, height] = RandomSize(random);
    const Samples samples = NoiseSamples(width, height, static_cast<uint32_t>(round));
    const PixelFormat format = RandomFormat(random);
    FrameMemory in(format, width, height, 16), apart(format, width, height);
    in.Fill(samples);
    const bool lens = round % 2 == 0;
    const auto rectify = [&](const FrameView& out, Report* report) {
      if (lens) {
        RectifyRadial(in.const_view(), out, LensCoefficients{}, report);
      } else {
        Rectify(in.const_view(), out, 17, report);
      }
    };
    rectify(apart.view(), nullptr);
    Report report;
    FrameView over = in.view();
    if (round % 3 == 0) ++over.planes[0];  // shifted against the source
    rectify(over, &report);
    EXPECT_GT(report.upload_ms, 0);
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x) {
        ASSERT_EQ(over.planes[0][y * over.strides[0] + x],
                  apart.view().planes[0][y * apart.view().strides[0] + x])
            << round << " at " << x << ", " << y;
      }
    }
    const Samples chroma = in.Read();
    EXPECT_EQ(chroma.cr, apart.Read().cr);
    EXPECT_EQ(chroma.cb, apart.Read().cb);
  }
}

TEST_F(CpuRectification, RowsDrawnApartAreThoseOfTheWhole) {
  const Samples samples = NoiseSamples(161, 131);
  FrameMemory in(PixelFormat::NV21, 161, 131), whole(PixelFormat::NV12, 161, 131),
      parts(PixelFormat::NV12, 161, 131);
  in.Fill(samples);
  RectifyRadial(in.const_view(), whole.view(), LensCoefficients{}, nullptr);
  const cpu::Remap remap = cpu::LensRemap(161, 131, LensCoefficients{});
  const int pairs = cpu::RowPairs(in.const_view());
  for (const auto& [begin, end] : {std::pair(40, pairs), std::pair(0, 13), std::pair(13, 40)}) {
    cpu::DrawRowPairs(remap, in.const_view(), parts.view(), begin, end);
  }
  EXPECT_TRUE(parts.Read() == whole.Read());
}

TEST(CpuLens, CamerasAreWhatTheirFilesSay) {
  const TempDirectory root;
  WriteFile(root.file("sys/android_camera/sensor"), "back one\n");
  WriteFile(root.file("sys/android_camera2/sensor"), "front two\n");
  WriteFile(root.file("system/etc/one_1"), "r_param 1.02 -0.08 0.02 0.01\n");
  WriteFile(root.file("system/etc/two_1"), "r_param 1.1 0 0 1e38\n");
  const auto expect = [](const Lens& lens, const LensCoefficients& expected) {
    const LensCoefficients got = cpu::CoefficientsOf(lens);
    EXPECT_EQ(got.k0, expected.k0);
    EXPECT_EQ(got.k1, expected.k1);
    EXPECT_EQ(got.k2, expected.k2);
    EXPECT_EQ(got.k3, expected.k3);
  };
  const LensCoefficients first = {1.02f, -0.08f, 0.02f, 0.01f};
  expect(Camera::First, LensCoefficients{});
  {
    const ScopedEnvironment device("LUMORA_SYSTEM_ROOT", root.path() + "//");
    expect(Camera::First, first);
    expect(Camera::Second, LensCoefficients{});  // one number is beyond its range
  }
  platform::SetSystemRoot(root.path());
  expect(Camera::First, first);
  platform::SetSystemRoot("");
  expect(Camera::First, LensCoefficients{});
  expect(first, first);
}

}  // namespace
}  // namespace lumora::test
