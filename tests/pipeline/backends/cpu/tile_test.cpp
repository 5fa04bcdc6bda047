// SPDX-License-Identifier: Apache-2.0
// Parts of frames for kernels: every sample in and around them.
#include "pipeline/backends/cpu/tile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "pipeline/frames/frame_memory.h"

namespace lumora::test {
namespace {

using cpu::Beyond;
using cpu::Tile;

int RoundedUp(int size) {
  return (size + 31) / 32 * 32;
}

/// The pixel of an axis that is seen at `at`: the frame, what goes on up to a multiple of 32, and
/// what is beyond, counted step by step.
int SeenPixel(int at, int size, Beyond beyond) {
  const int padded = RoundedUp(size);
  while (at < 0 || at >= padded) {
    if (beyond == Beyond::Repeat) return at < 0 ? 0 : size - 1;
    at = at < 0 ? -1 - at : 2 * padded - 1 - at;
  }
  return std::min(at, size - 1);
}

TEST(Tile, HoldsTheFrameAndWhatLiesAroundIt) {
  std::mt19937 random(3);
  const auto whole = [&random](int least, int most) {
    return std::uniform_int_distribution<>(least, most)(random);
  };
  Tile tile;
  cpu::Workers workers(2);
  for (int i = 0; i < 200; ++i) {
    const int width = whole(32, 150), height = whole(32, 120);
    FrameMemory memory(kAllFormats[i % 3], width, height, whole(0, 9));
    const Samples samples = NoiseSamples(width, height, static_cast<uint32_t>(i));
    memory.Fill(samples);
    // From beyond the frame to beyond it, like the surroundings of a face with its centre inside.
    const int left = whole(-16, width / 4) * 2, top = whole(-16, height / 4) * 2;
    const PixelRectangle place = {left, top, 32 * whole(3, 6), 2 * whole(24, 80)};
    if (place.x >= width || place.y >= height) continue;
    const Beyond beyond = i % 2 == 0 ? Beyond::Repeat : Beyond::Mirror;
    tile.SetPlace(place);
    tile.Load(memory.const_view(), beyond, workers);
    ASSERT_EQ(tile.stride(), place.width);
    const int chroma_width = (width + 1) / 2;
    for (int y = 0; y < place.height; ++y) {
      for (int x = 0; x < place.width; ++x) {
        const int column = SeenPixel(place.x + x, width, beyond);
        const int row = SeenPixel(place.y + y, height, beyond);
        // What is seen in a mirror must have been copied, too.
        if (column >= place.x + place.width || row >= place.y + place.height) continue;
        if (column < place.x || row < place.y) continue;
        ASSERT_EQ(samples.y[static_cast<size_t>(row * width + column)],
                  tile.luma()[y * tile.stride() + x])
            << x << " " << y << " of " << place.x << " " << place.y;
        const auto chroma = static_cast<size_t>(row / 2 * chroma_width + column / 2);
        const uint8_t* const pair = tile.chroma() + y / 2 * tile.stride() + x / 2 * 2;
        ASSERT_EQ(samples.cr[chroma], pair[0]) << x << " " << y;
        ASSERT_EQ(samples.cb[chroma], pair[1]) << x << " " << y;
      }
    }
  }
}

}  // namespace
}  // namespace lumora::test
