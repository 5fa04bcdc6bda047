// SPDX-License-Identifier: Apache-2.0
// Rows of whitened faces: both forms of the kernel, what they must not touch, and the formula.
#include "pipeline/backends/cpu/kernels/whiten_rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <random>
#include <vector>

#include "pipeline/backends/cpu/every_target.h"
#include "reference/colour.h"
#include "reference/image.h"
#include "reference/whitening.h"
#include "support/guarded_buffer.h"

namespace lumora::test {
namespace {

using cpu::WhitenRows;
using cpu::WhitenTone;

class WhitenKernel : public EveryTarget {};

INSTANTIATE_TEST_SUITE_P(Targets, WhitenKernel, AllTargets(), TargetName);

/// Two rows of a face: noise, or the same colour with every luma.
class WhitenScene {
 public:
  explicit WhitenScene(unsigned seed) : random_(seed) {
    columns_ = cpu::kWhitenColumns * std::uniform_int_distribution<>(1, 5)(random_);
    bytes_.resize(3 * static_cast<size_t>(columns_));
    for (uint8_t& byte : bytes_) byte = static_cast<uint8_t>(random_());
    weights_.resize(2 * static_cast<size_t>(columns_));
    for (float& weight : weights_) weight = random_() % 3 == 0 ? 0.f : Between(0, 1);
    // Groups without any weight.
    if (seed % 4 == 0) std::fill(weights_.begin(), weights_.end(), 0.f);
    tone = {Between(-0.05f, 0.05f), Between(-0.05f, 0.05f), Between(-0.05f, 0.05f),
            Between(-0.05f, 0.05f), Between(1, 12),         Between(0, 1),
            Between(0, 80),         1 / Between(1, 120),    seed % 2 == 0};
    x_ = Between(-60, 60);
    y_ = Between(-60, 60);
  }

  template <typename Draw>
  std::vector<uint8_t> Drawn(const Draw& draw) const {
    GuardedBuffer out(bytes_.size());
    std::copy(bytes_.begin(), bytes_.end(), out.data());
    GuardedBuffer weights(weights_.size() * sizeof(float));
    std::memcpy(weights.data(), weights_.data(), weights.size());
    weights.protect_from_writing();
    const auto* const numbers = reinterpret_cast<const float*>(weights.data());
    uint8_t* const rows = out.data();
    draw(tone, WhitenRows{x_,
                          y_,
                          columns_,
                          {numbers, numbers + columns_},
                          {rows, rows + columns_},
                          rows + 2 * columns_});
    EXPECT_TRUE(out.intact());
    return {out.data(), out.data() + out.size()};
  }

  /// What whitening makes of one pixel, in double precision with images between the passes.
  reference::Texel Whitened(int column, int row) const {
    using reference::FromByte;
    using reference::ToByte;
    const auto stored = [](const reference::Texel& texel) {
      return reference::Texel{FromByte(ToByte(texel.r)), FromByte(ToByte(texel.g)),
                              FromByte(ToByte(texel.b)), FromByte(ToByte(texel.a))};
    };
    const size_t pair = 2 * static_cast<size_t>(columns_) + static_cast<size_t>(column / 2 * 2);
    const reference::Texel yuv = {FromByte(bytes_[static_cast<size_t>(row * columns_ + column)]),
                                  FromByte(bytes_[pair]), FromByte(bytes_[pair + 1]), 1};
    reference::Texel rgb = reference::Multiply(reference::YuvToRgbMatrix(), yuv);
    if (tone.round_rgb) rgb = stored(rgb);
    const reference::Texel hsi = stored(reference::RgbToHsi(rgb, 0));
    reference::WhiteningUniforms uniforms;
    for (auto& ellipse : uniforms.ellipses) ellipse = {0, 0, 0, 0, 0, 0, 9, 9, 1};
    uniforms.ellipses[0] = {static_cast<double>(tone.along_x),
                            static_cast<double>(tone.across_x),
                            0,
                            static_cast<double>(tone.along_y),
                            static_cast<double>(tone.across_y),
                            0,
                            0,
                            0,
                            1};
    uniforms.intensity_shift = std::log(static_cast<double>(tone.gain)) / 0.85;
    uniforms.saturation_shift = static_cast<double>(tone.saturation);
    const reference::Vec2 place = {static_cast<double>(x_) + column, static_cast<double>(y_) + row};
    return stored(reference::HsiToYuv(stored(reference::Whiten(hsi, place, uniforms))));
  }

  double WeightAt(int column, int row) const {
    const size_t at = static_cast<size_t>(row * columns_ + column);
    const double t = std::clamp(
        (bytes_[at] - static_cast<double>(tone.darkest)) * static_cast<double>(tone.luma_scale),
        0.0, 1.0);
    return static_cast<double>(weights_[at]) * t * t * (3 - 2 * t);
  }

  int columns() const { return columns_; }
  const std::vector<uint8_t>& bytes() const { return bytes_; }

  WhitenTone tone{};

 private:
  float Between(float least, float most) {
    return std::uniform_real_distribution<float>(least, most)(random_);
  }

  std::mt19937 random_;
  int columns_;
  std::vector<uint8_t> bytes_;  // luma, luma, pairs
  std::vector<float> weights_;
  float x_, y_;
};

TEST_P(WhitenKernel, GivesTheBytesOfItsDefinitionAndReadsNothingElse) {
  for (unsigned seed = 0; seed < 600; ++seed) {
    const WhitenScene scene(seed);
    ASSERT_EQ(scene.Drawn(cpu::scalar::DrawWhitening), scene.Drawn(cpu::DrawWhitening)) << seed;
  }
}

// A colour that lies just between two steps of an image on its way may fall on either side, which
// is a step or two in the end where it is nearly grey or dark; nearly all agree.
TEST(WhitenKernelFormula, MovesLumaAsTheModelDoes) {
  int pixels = 0, apart = 0;
  double sum = 0;
  for (unsigned seed = 1; seed < 200; ++seed) {
    const WhitenScene scene(seed);
    const std::vector<uint8_t> drawn = scene.Drawn(cpu::scalar::DrawWhitening);
    for (int row = 0; row < 2; ++row) {
      for (int column = 0; column < scene.columns(); ++column) {
        const size_t at = static_cast<size_t>(row * scene.columns() + column);
        const double before = scene.bytes()[at];
        const double to = scene.Whitened(column, row).r * 255;
        const double exact = before + scene.WeightAt(column, row) * (to - before);
        ASSERT_NEAR(exact, drawn[at], 4) << seed << " at " << column << ", " << row;
        apart += std::abs(exact - drawn[at]) > 0.52 ? 1 : 0;
        sum += drawn[at] - exact;
        ++pixels;
      }
    }
  }
  EXPECT_LT(apart, pixels / 100);
  EXPECT_NEAR(0, sum / pixels, 0.01);
}

TEST(WhitenKernelFormula, MovesChromaToTheMeanOfItsPixels) {
  int samples = 0, apart = 0;
  for (unsigned seed = 1; seed < 200; ++seed) {
    const WhitenScene scene(seed);
    const std::vector<uint8_t> drawn = scene.Drawn(cpu::scalar::DrawWhitening);
    for (int column = 0; column < scene.columns(); column += 2) {
      double weight = 0, sums[2] = {};
      for (int i = 0; i < 4; ++i) {
        const reference::Texel texel = scene.Whitened(column + i % 2, i / 2);
        weight += scene.WeightAt(column + i % 2, i / 2) / 4;
        sums[0] += texel.g * 255 / 4;
        sums[1] += texel.b * 255 / 4;
      }
      for (int i = 0; i < 2; ++i) {
        const auto at = static_cast<size_t>(2 * scene.columns() + column + i);
        const double before = scene.bytes()[at];
        const double exact = before + weight * (sums[i] - before);
        ASSERT_NEAR(exact, drawn[at], 4) << seed << " at " << column;
        apart += std::abs(exact - drawn[at]) > 0.52 ? 1 : 0;
        ++samples;
      }
    }
  }
  EXPECT_LT(apart, samples / 50);
}

TEST_P(WhitenKernel, ChangesNothingWithoutWeight) {
  const WhitenScene scene(4);
  EXPECT_EQ(scene.bytes(), scene.Drawn(cpu::DrawWhitening));
}

}  // namespace
}  // namespace lumora::test
