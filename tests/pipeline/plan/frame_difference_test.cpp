// SPDX-License-Identifier: Apache-2.0
// Differences that are put into frames are found where they are.
#include "pipeline/plan/frame_difference.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "pipeline/faces/random_faces.h"
#include "pipeline/frames/frame_memory.h"
#include "pipeline/frames/touched_area.h"

namespace lumora::test {
namespace {

constexpr int kColumns = 97, kRows = 75, kPairColumns = (kColumns + 1) / 2;

Samples GreySamples() {
  const size_t pixels = size_t{kColumns} * kRows;
  const size_t pairs = size_t{kPairColumns} * ((kRows + 1) / 2);
  return {std::vector<uint8_t>(pixels, 100), std::vector<uint8_t>(pairs, 100),
          std::vector<uint8_t>(pairs, 100)};
}

FrameMemory MemoryOf(const Samples& samples, PixelFormat format) {
  FrameMemory memory(format, kColumns, kRows, 7);
  memory.Fill(samples);
  return memory;
}

/// Compares results in formats of their own with a grey frame.
FrameDifference Compared(const Samples& first, const Samples& second, FaceSpan faces,
                         const Look& look, size_t formats = 0) {
  FrameMemory in = MemoryOf(GreySamples(), kAllFormats[formats % 3]);
  FrameMemory a = MemoryOf(first, kAllFormats[(formats + 1) % 3]);
  FrameMemory b = MemoryOf(second, kAllFormats[(formats + 2) % 3]);
  return CompareResults(in.const_view(), a.const_view(), b.const_view(), faces, look);
}

Face FaceAt(PointF at) {
  return FaceFromEyes({at.x - 6, at.y}, {at.x + 6, at.y});
}

TEST(FrameDifference, CountsStepsOfEachPlaneInEveryFormat) {
  for (size_t formats = 0; formats < 3; ++formats) {
    Samples first = GreySamples(), second = GreySamples();
    first.y[0] = 103;  // 3 steps apart, changed by the first
    second.y[5] = 98;  // 2 steps apart, left by the first
    first.y.back() = second.y.back() = 120;
    first.cb.back() = 90;
    second.cb.back() = 97;
    second.cr[1] = 255;
    const FrameDifference d = Compared(first, second, {}, Look{}, formats);
    EXPECT_EQ(d.y.largest, 3);
    EXPECT_EQ(d.y.histogram[0], kColumns * kRows - 2);
    EXPECT_EQ(d.y.histogram[2], 1);
    EXPECT_EQ(d.y.histogram[3], 1);
    EXPECT_EQ(d.y.changed, 2);
    EXPECT_EQ(d.y.mean, 1.5);
    EXPECT_EQ(d.cb.largest, 7);
    EXPECT_EQ(d.cb.changed, 1);
    EXPECT_EQ(d.cb.mean, 7);
    EXPECT_EQ(d.cr.largest, 155);
    EXPECT_EQ(d.cr.histogram[155], 1);
    EXPECT_EQ(d.cr.changed, 0);
    EXPECT_EQ(d.cr.mean, 0);
    EXPECT_EQ(d.largest_chroma(), 155);
    EXPECT_EQ(d.stray(), 5) << "without faces nothing may change";
  }
}

TEST(FrameDifference, IsNothingForEqualResults) {
  const FrameDifference d = Compared(GreySamples(), GreySamples(), {}, Look{50, 50, 0});
  EXPECT_EQ(d.y.largest + d.largest_chroma(), 0);
  EXPECT_EQ(d.y.changed + d.stray(), 0);
}

TEST(FrameDifference, CallsChangesStrayOutsideOfCirclesAndEllipsesAlone) {
  RandomFaces random(1);
  Samples all = GreySamples();
  for (std::vector<uint8_t>* plane : {&all.y, &all.cb, &all.cr}) {
    for (uint8_t& sample : *plane) ++sample;
  }
  std::vector<Face> faces = {FaceAt({40, 30})};
  for (int i = 0; i < 40; ++i) faces.push_back(random.In(kColumns, kRows));
  for (size_t i = 0; i < faces.size(); ++i) {
    const std::vector<Face> none, some = {faces[i], faces[faces.size() - 1 - i]};
    for (const Look& look : {Look{50, 0, 0}, Look{0, 50, 0}, Look{50, 50, 0}}) {
      const TouchedArea area(look.whiten > 0 ? some : none, look.slim > 0 ? some : none, kColumns,
                             kRows);
      int pixels = 0, pairs = 0;
      for (int y = 0; y < kRows; ++y) {
        for (int x = 0; x < kColumns; ++x) pixels += area.HoldsPixel(x, y) ? 0 : 1;
      }
      for (int y = 0; y < (kRows + 1) / 2; ++y) {
        for (int x = 0; x < kPairColumns; ++x) pairs += area.HoldsChroma(x, y) ? 0 : 1;
      }
      for (const auto& [first, second] :
           {std::pair(all, GreySamples()), std::pair(GreySamples(), all), std::pair(all, all)}) {
        const FrameDifference d = Compared(first, second, some, look, i);
        ASSERT_EQ(d.y.stray, pixels) << "face " << i;
        ASSERT_EQ(d.cb.stray, pairs) << "face " << i;
        ASSERT_EQ(d.cr.stray, pairs) << "face " << i;
      }
    }
  }
}

}  // namespace
}  // namespace lumora::test
