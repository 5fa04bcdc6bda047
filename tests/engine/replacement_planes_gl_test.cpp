// SPDX-License-Identifier: Apache-2.0
// Destinations that the caller does not name. One executable: the first frame of the process sets
// the size of all replacement planes.
#include <gtest/gtest.h>
#include <malloc.h>

#include <algorithm>
#include <array>
#include <functional>

#include "engine/engine_images.h"
#include "support/caller_memory.h"
#include "support/meant_leaks.h"
#include "support/pictures.h"

namespace lumora::test {
namespace {

constexpr size_t kFirstFrame = 96 * 48;

// Memory checkers count by themselves: this is of use without one.
size_t MemoryInUse() {
  const auto heap = mallinfo2();
  return heap.uordblks + heap.hblkhd;
}

// The driver's threads use the heap, too: what most calls leave over is the call's own.
size_t LeftOverBy(const std::function<void()>& call) {
  std::array<size_t, 5> left_over{};
  for (size_t& bytes : left_over) {
    const size_t before = MemoryInUse();
    call();
    bytes = MemoryInUse() - before;
  }
  std::sort(left_over.begin(), left_over.end());
  return left_over[left_over.size() / 2];
}

void ExpectFrame(GPUBeautyFace& engine, int width, int height) {
  engine.Init(width, height, width, height, nullptr, false);
  const Bytes expected = NoisePlanes(width, height, 3);
  CallerFrame frame(width, height, expected);
  ASSERT_EQ(1, engine.LoadPreviewFrameBuffer(frame.luma()));
  ASSERT_EQ(1, engine.DrawRGBtoYY(-1));
  ASSERT_EQ(1, engine.DrawRGBtoUV(-1));
  glFinish();

  const Bytes untouched(expected.size(), GuardedBuffer::kFill);
  const auto luma_size = static_cast<std::ptrdiff_t>(LumaSize(width, height));
  CallerPlanes only_luma(width, height);
  CallerPlanes only_chroma(width, height);
  {
    const MeantLeaks left_to_nobody;
    EXPECT_EQ(1, engine.MemcpyYUV(only_luma.luma(), nullptr));
    EXPECT_EQ(1, engine.MemcpyYUV(nullptr, only_chroma.chroma()));
    // Two planes of the first frame, whatever this one's size; an allocator adds some bytes to
    // each.
    const size_t left_over =
        LeftOverBy([&engine] { EXPECT_EQ(1, engine.MemcpyYUV(nullptr, nullptr)); });
    if (!MeantLeaks::CheckerRuns()) {
      EXPECT_GE(left_over, kFirstFrame + kFirstFrame / 2);
      EXPECT_LE(left_over, kFirstFrame + kFirstFrame / 2 + 2 * 32);
    }
  }
  Bytes with_luma = untouched;
  std::copy_n(expected.begin(), luma_size, with_luma.begin());
  EXPECT_EQ("", FirstDifference(with_luma, only_luma.bytes(), width, height));
  Bytes with_chroma = untouched;
  std::copy(expected.begin() + luma_size, expected.end(), with_chroma.begin() + luma_size);
  EXPECT_EQ("", FirstDifference(with_chroma, only_chroma.bytes(), width, height));
  EXPECT_TRUE(only_luma.intact() && only_chroma.intact());
}

// Small before large: replacement planes of the first size must not be overrun by the second.
// Builds with a memory checker see that; every build sees that the plane that was named is right.
TEST(ReplacementPlanes, StayInsideTheSizeOfTheFirstFrame) {
  GPUBeautyFace engine;
  for (const int width : {96, 640, 16}) ExpectFrame(engine, width, width / 2);
}

}  // namespace
}  // namespace lumora::test
