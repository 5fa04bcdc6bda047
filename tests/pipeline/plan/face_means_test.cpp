// SPDX-License-Identifier: Apache-2.0
// What is measured of a face are the engine's own numbers.
#include "pipeline/plan/face_means.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>

#include "lumora/geometry/rounding.h"
#include "pipeline/faces/landmark_record.h"
#include "pipeline/faces/random_faces.h"
#include "pipeline/frames/frame_memory.h"

namespace lumora::test {
namespace {

TEST(ToneOf, IsTheEnginesForEveryColour) {
  int different = 0;
  for (int colour = 0; colour < 1 << 24; ++colour) {
    const YuvSample sample = {static_cast<uint8_t>(colour), static_cast<uint8_t>(colour >> 8),
                              static_cast<uint8_t>(colour >> 16)};
    const HsiSample expected = HsiOfYuv(sample.y, sample.cr, sample.cb);
    const Tone tone = ToneOf(sample);
    different += tone.intensity != expected.intensity || tone.saturation != expected.saturation;
  }
  EXPECT_EQ(different, 0);
}

TEST(MeansOf, AreThoseOfThePlacesWhereTheEngineSamples) {
  RandomFaces random(23);
  int measured = 0;
  for (int i = 0; i < 600; ++i) {
    const int width = random.WholeBetween(16, 700), height = random.WholeBetween(16, 500);
    const Samples samples = NoiseSamples(width, height, static_cast<uint32_t>(i));
    FrameMemory memory(kAllFormats[i % 3], width, height, i % 5);
    memory.Fill(samples);
    const FaceGeometry geometry = MeasureFace(LandmarkRecord(random.In(width, height)));
    ColourSums sums;
    int luma = 0;
    const int chroma_width = (width + 1) / 2;
    ForEachSample(geometry, RoundUpTo32(width), RoundUpTo32(height), [&](int x, int y) {
      const int column = std::min(x, width - 1), row = std::min(y, height - 1);
      const auto pixel = static_cast<size_t>(row * width + column);
      const auto chroma = static_cast<size_t>(row / 2 * chroma_width + column / 2);
      const HsiSample sample = HsiOfYuv(samples.y[pixel], samples.cr[chroma], samples.cb[chroma]);
      sums.intensity += sample.intensity;
      sums.saturation += sample.saturation;
      luma += samples.y[pixel];
      ++sums.count;
    });
    const FaceMeans means = MeansOf(memory.const_view(), geometry);
    ASSERT_EQ(means.intensity, sums.mean(sums.intensity)) << i;
    ASSERT_EQ(means.saturation, sums.mean(sums.saturation)) << i;
    ASSERT_EQ(means.luma, sums.mean(luma)) << i;
    measured += sums.count > 0;
  }
  EXPECT_GT(measured, 300);
}

}  // namespace
}  // namespace lumora::test
