// SPDX-License-Identifier: Apache-2.0
// Colours on the processor beside those of the engine's converter.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>

#include "pipeline/backends/backend.h"
#include "pipeline/frames/frame_memory.h"
#include "pipeline/image_memory.h"

namespace lumora::test {
namespace {

/// Of two hues, by the shorter way around.
int HueDifference(int a, int b) {
  const int difference = std::abs(a - b);
  return std::min(difference, 255 - difference);
}

// Tones are those of colours in 8 bits. Renderers that compute with 11 bits give some colours that
// are one off, and the tone of a dark or almost grey one is then quite another: tones are compared
// where the colours are the same.
TEST(BothConverters, GiveTheSameColoursAndOfTheseTheSameTones) {
  std::unique_ptr<ConverterBackend> gl, cpu;
  const Status status = MakeGlConverter(&gl);
  ASSERT_TRUE(status.ok()) << status.message;
  ASSERT_TRUE(MakeCpuConverter(&cpu).ok());
  std::mt19937 random(21);
  int64_t pixels = 0, same = 0;
  for (int round = 0; round < 200; ++round) {
    const int width = std::uniform_int_distribution<>(32, 200)(random);
    const int height = std::uniform_int_distribution<>(32, 100)(random);
    FrameMemory in(kAllFormats[round % 3], width, height, static_cast<int>(random() % 9));
    in.Fill(NoiseSamples(width, height, static_cast<uint32_t>(round)));
    ImageMemory gl_rgb(width, height, 3), gl_hsi(width, height, 3);
    ImageMemory cpu_rgb(width, height, 3), cpu_hsi(width, height, 3);
    ASSERT_TRUE(gl->Convert(in.const_view(), gl_rgb.view(), gl_hsi.view(), nullptr).ok());
    ASSERT_TRUE(cpu->Convert(in.const_view(), cpu_rgb.view(), cpu_hsi.view(), nullptr).ok());
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x) {
        for (int channel = 0; channel < 3; ++channel) {
          ASSERT_LE(std::abs(gl_rgb.at(x, y)[channel] - cpu_rgb.at(x, y)[channel]), 2)
              << "round " << round << " at " << x << ", " << y;
        }
        ++pixels;
        if (std::memcmp(gl_rgb.at(x, y), cpu_rgb.at(x, y), 3) != 0) continue;
        ++same;
        const uint8_t* const expected = gl_hsi.at(x, y);
        const uint8_t* const got = cpu_hsi.at(x, y);
        ASSERT_LE(HueDifference(expected[0], got[0]), 2)
            << "round " << round << ": " << x << ", " << y;
        ASSERT_LE(std::abs(expected[1] - got[1]), 2) << "round " << round << ": " << x << ", " << y;
        ASSERT_EQ(expected[2], got[2]) << "round " << round << ": " << x << ", " << y;
      }
    }
  }
  EXPECT_GT(same, pixels * 3 / 4);
}

}  // namespace
}  // namespace lumora::test
