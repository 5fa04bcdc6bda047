// SPDX-License-Identifier: Apache-2.0
// Colours of rows: both forms of the kernel, what they must not touch, and the reference.
#include "pipeline/backends/cpu/kernels/colour_rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include "pipeline/backends/cpu/every_target.h"
#include "reference/colour.h"
#include "support/guarded_buffer.h"

namespace lumora::test {
namespace {

using cpu::ColourRows;
using cpu::ImageRows;

class ColourKernel : public EveryTarget {};

INSTANTIATE_TEST_SUITE_P(Targets, ColourKernel, AllTargets(), TargetName);

GuardedBuffer::Guard RandomGuard(std::mt19937& random) {
  return random() % 2 == 0 ? GuardedBuffer::Guard::End : GuardedBuffer::Guard::Begin;
}

/// A row of noise that may only be read.
std::unique_ptr<GuardedBuffer> NoiseRow(size_t size, std::mt19937& random) {
  auto row = std::make_unique<GuardedBuffer>(size, RandomGuard(random));
  // Few values give greys and colours that are almost none.
  const bool few = random() % 3 == 0;
  for (size_t i = 0; i < size; ++i) {
    row->data()[i] = static_cast<uint8_t>(few ? 126 + random() % 4 : random());
  }
  row->protect_from_writing();
  return row;
}

/// Two rows of samples in memory that ends where nothing may be read.
struct Source {
  Source(int columns, std::mt19937& random) {
    const auto pixels = static_cast<size_t>(columns);
    const size_t samples = (pixels + 1) / 2;
    for (auto& row : luma) row = NoiseRow(pixels, random);
    const bool planar = random() % 2 == 0;
    for (auto& row : chroma) row = NoiseRow(planar ? samples : 2 * samples, random);
    const bool cr_first = random() % 2 == 0;
    rows = {{luma[0]->data(), random() % 4 == 0 ? nullptr : luma[1]->data()},
            planar ? chroma[0]->data() : chroma[0]->data() + (cr_first ? 0 : 1),
            planar ? chroma[1]->data() : chroma[0]->data() + (cr_first ? 1 : 0),
            planar ? 1 : 2,
            columns};
  }

  std::unique_ptr<GuardedBuffer> luma[2], chroma[2];
  ColourRows rows{};
};

/// Rows of an image, or no image.
struct Image {
  Image(const ColourRows& source, int image_channels, bool wanted, std::mt19937& random)
      : channels(image_channels) {
    for (size_t row = 0; row < 2; ++row) {
      if (!wanted || source.luma[row] == nullptr) continue;
      const auto bytes = static_cast<size_t>(source.columns * channels);
      memory[row] = std::make_unique<GuardedBuffer>(bytes, RandomGuard(random));
    }
  }
  ImageRows rows() {
    return {{memory[0] ? memory[0]->data() : nullptr, memory[1] ? memory[1]->data() : nullptr},
            channels};
  }
  bool operator==(const Image& other) const {
    for (size_t row = 0; row < 2; ++row) {
      if (memory[row] == nullptr) continue;
      if (!memory[row]->intact() ||
          std::memcmp(memory[row]->data(), other.memory[row]->data(), memory[row]->size()) != 0) {
        return false;
      }
    }
    return true;
  }

  int channels;
  std::unique_ptr<GuardedBuffer> memory[2];
};

TEST_P(ColourKernel, GivesThePlainFormsBytesAndTouchesNothingElse) {
  std::mt19937 random(1);
  for (int round = 0; round < 600; ++round) {
    const int columns = std::uniform_int_distribution<>(1, round < 300 ? 140 : 700)(random);
    const Source source(columns, random);
    const int channels = 3 + round % 2;
    const bool rgb_wanted = round % 5 != 0, hsi_wanted = round % 7 != 0 || !rgb_wanted;
    Image rgb(source.rows, channels, rgb_wanted, random);
    Image hsi(source.rows, 7 - channels, hsi_wanted, random);
    Image plain_rgb(source.rows, channels, rgb_wanted, random);
    Image plain_hsi(source.rows, 7 - channels, hsi_wanted, random);
    cpu::ConvertColours(source.rows, rgb.rows(), hsi.rows());
    cpu::scalar::ConvertColours(source.rows, plain_rgb.rows(), plain_hsi.rows());
    ASSERT_TRUE(rgb == plain_rgb) << columns << " columns, round " << round;
    ASSERT_TRUE(hsi == plain_hsi) << columns << " columns, round " << round;
  }
}

/// Every chroma that there is, in a row of 512 columns for each Cr, with two lumas.
template <typename Visit>
void ForEveryChroma(int luma, Visit visit) {
  constexpr int kColumns = 512;
  const std::vector<uint8_t> first(kColumns, static_cast<uint8_t>(luma));
  const std::vector<uint8_t> second(kColumns, static_cast<uint8_t>(255 - luma));
  std::vector<uint8_t> pairs(kColumns);
  for (int cr = 0; cr < 256; ++cr) {
    for (size_t cb = 0; cb < 256; ++cb) {
      pairs[2 * cb] = static_cast<uint8_t>(cr);
      pairs[2 * cb + 1] = static_cast<uint8_t>(cb);
    }
    visit(ColourRows{{first.data(), second.data()}, pairs.data(), pairs.data() + 1, 2, kColumns});
  }
}

/// Both images of two rows.
struct Results {
  explicit Results(int columns)
      : row_bytes(4 * static_cast<size_t>(columns)), bytes(4 * row_bytes) {}
  ImageRows rgb() { return {{bytes.data(), bytes.data() + row_bytes}, 4}; }
  ImageRows hsi() { return {{bytes.data() + 2 * row_bytes, bytes.data() + 3 * row_bytes}, 4}; }

  size_t row_bytes;
  std::vector<uint8_t> bytes;
};

TEST_P(ColourKernel, GivesThePlainFormsBytesForEveryChroma) {
  for (int luma = 0; luma < 128; luma += 9) {
    ForEveryChroma(luma, [](const ColourRows& rows) {
      Results results(rows.columns), plain(rows.columns);
      cpu::ConvertColours(rows, results.rgb(), results.hsi());
      cpu::scalar::ConvertColours(rows, plain.rgb(), plain.hsi());
      ASSERT_EQ(results.bytes, plain.bytes) << int{rows.luma[0][0]} << ", Cr " << int{*rows.cr};
    });
  }
}

TEST(ColourKernelDefinition, IsTheReferenceRounded) {
  for (int luma = 3; luma < 128; luma += 31) {
    ForEveryChroma(luma, [](const ColourRows& rows) {
      Results results(rows.columns);
      cpu::scalar::ConvertColours(rows, results.rgb(), results.hsi());
      for (int i = 0; i < rows.columns; ++i) {
        const reference::Texel colour = reference::Multiply(
            reference::YuvToRgbMatrix(),
            {rows.luma[i % 2][i] / 255.0, rows.cr[i & ~1] / 255.0, rows.cb[i & ~1] / 255.0, 1.0});
        const uint8_t* const rgb = results.rgb().rows[i % 2] + 4 * i;
        for (int channel = 0; channel < 3; ++channel) {
          ASSERT_EQ(rgb[channel], reference::ToByte(colour[channel])) << i << ", " << channel;
        }
        ASSERT_EQ(rgb[3], 255);
        // Halves may be rounded to either side.
        const reference::Texel tone =
            reference::RgbToHsi({rgb[0] / 255.0, rgb[1] / 255.0, rgb[2] / 255.0, 1.0});
        const uint8_t* const hsi = results.hsi().rows[i % 2] + 4 * i;
        for (int channel = 0; channel < 3; ++channel) {
          ASSERT_NEAR(hsi[channel], 255 * tone[channel], 0.5 + 1e-9) << i << ", " << channel;
        }
        ASSERT_EQ(hsi[3], 255);
      }
    });
  }
}

TEST(ColourKernelDefinition, TellsTheTonesOfPlainColours) {
  struct Case {
    const char* name;
    uint8_t y, cr, cb;
    uint8_t hsi[3];
  };
  const Case cases[] = {
      {"the green of chroma alone", 0, 0, 0, {85, 255, 135}},  // 0, 135, 0
      {"almost white", 255, 128, 128, {213, 1, 255}},  // 255, 254, 255: a half is rounded up
      {"red", 76, 255, 85, {255, 255, 255}},           // 255, 0, 1
      {"blue", 29, 107, 255, {170, 255, 255}},         // 0, 0, 255
      {"the blue of chroma alone", 0, 0, 255, {161, 255, 226}}};  // 0, 47, 226
  for (const Case& colour : cases) {
    Results results(1);
    const ColourRows rows = {{&colour.y, nullptr}, &colour.cr, &colour.cb, 1, 1};
    cpu::scalar::ConvertColours(rows, {{results.rgb().rows[0], nullptr}, 4},
                                {{results.hsi().rows[0], nullptr}, 4});
    for (size_t channel = 0; channel < 3; ++channel) {
      EXPECT_EQ(results.hsi().rows[0][channel], colour.hsi[channel]) << colour.name << channel;
    }
  }
}

}  // namespace
}  // namespace lumora::test
