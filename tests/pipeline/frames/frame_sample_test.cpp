// SPDX-License-Identifier: Apache-2.0
// Single samples of a frame are those of the padded frame that is made of it.
#include "pipeline/frames/frame_sample.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>

#include "pipeline/frames/frame_copy.h"
#include "pipeline/frames/frame_memory.h"

namespace lumora::test {
namespace {

TEST(FrameSample, IsThatOfThePaddedFrameInEveryFormat) {
  constexpr int kWidth = 45, kHeight = 39;
  for (const PixelFormat format : kAllFormats) {
    FrameMemory memory(format, kWidth, kHeight, 5);
    memory.Fill(NoiseSamples(kWidth, kHeight));
    const FrameSamples samples(memory.const_view());
    PaddedFrame padded;
    padded.Load(memory.const_view());
    for (int y = 0; y < padded.height(); ++y) {
      for (int x = 0; x < padded.width(); ++x) {
        const YuvSample sample = samples.At(x, y);
        const auto row = static_cast<std::ptrdiff_t>(padded.width());
        const uint8_t* const pair = padded.chroma() + y / 2 * row + x / 2 * 2;
        ASSERT_EQ(sample.y, padded.luma()[y * row + x]) << x << ", " << y;
        ASSERT_EQ(sample.cr, pair[0]) << x << ", " << y;
        ASSERT_EQ(sample.cb, pair[1]) << x << ", " << y;
      }
    }
  }
}

}  // namespace
}  // namespace lumora::test
