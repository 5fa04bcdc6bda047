// SPDX-License-Identifier: Apache-2.0
// The weights of skin masks by vectors: the mask's own.
#include "pipeline/backends/cpu/kernels/mask_weights.h"

#include <gtest/gtest.h>

#include <vector>

#include "pipeline/backends/cpu/every_target.h"
#include "pipeline/faces/random_faces.h"

namespace lumora::test {
namespace {

class MaskKernel : public EveryTarget {};

INSTANTIATE_TEST_SUITE_P(Targets, MaskKernel, AllTargets(), TargetName);

TEST_P(MaskKernel, GivesTheWeightsOfTheMask) {
  RandomFaces random(11);
  cpu::MaskTaps taps;
  int rows = 0;
  for (int i = 0; i < 60; ++i) {
    const int width = random.WholeBetween(32, 1500), height = random.WholeBetween(32, 1100);
    const float eyes = random.Between(2, static_cast<float>(width) / 2);
    const float x = random.Between(0, static_cast<float>(width));
    const float y = random.Between(0, static_cast<float>(height));
    const Face face = FaceFromEyes({x - eyes / 2, y}, {x + eyes / 2, y});
    const SkinMask mask(face, WhiteningEllipses(face)[0], 140, width, height);
    const PixelRectangle& bounds = mask.bounds();
    if (bounds.width <= 0 || bounds.height <= 0) continue;
    const int begin = random.WholeBetween(0, bounds.width / 2);
    const int groups = (bounds.width - begin + cpu::kMaskColumns - 1) / cpu::kMaskColumns;
    const RowSpan columns = {begin, begin + groups * cpu::kMaskColumns};
    std::vector<float> expected(static_cast<size_t>(bounds.width));
    std::vector<float> weights(static_cast<size_t>(columns.end - columns.begin));
    for (int at = bounds.y; at < bounds.y + bounds.height; at += 7) {
      const MaskRow row = mask.RowAt(at);
      taps.Set(row.step, static_cast<size_t>(columns.end));
      mask.Row(at, expected.data());
      cpu::MaskWeights(row, taps, columns, weights.data());
      for (int column = columns.begin; column < columns.end; ++column) {
        const bool held = column >= row.held.begin && column < row.held.end;
        const float wanted = held ? expected[static_cast<size_t>(column)] : 0;
        ASSERT_EQ(wanted, weights[static_cast<size_t>(column - begin)]) << at << " " << column;
      }
      ++rows;
    }
  }
  EXPECT_GT(rows, 500);
}

}  // namespace
}  // namespace lumora::test
