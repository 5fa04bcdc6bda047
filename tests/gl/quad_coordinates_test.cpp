// SPDX-License-Identifier: Apache-2.0
// The writable texture coordinates that all passes of a thread share.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <thread>

#include "lumora/gl/quad.h"

namespace {

using Coordinates = std::array<float, 8>;
constexpr Coordinates kWhole = {0, 1, 0, 0, 1, 0, 1, 1};

Coordinates Now() {
  Coordinates now;
  std::copy_n(lumora::quad::TextureCoordinates(), now.size(), now.begin());
  return now;
}

TEST(QuadCoordinates, ARectangleStaysUntilItIsReset) {
  EXPECT_EQ(kWhole, Now());
  lumora::quad::SetTextureRectangle(0.25f, 0.5f, 0.75f, 1.5f);
  EXPECT_EQ((Coordinates{0.25f, 1.5f, 0.25f, 0.5f, 0.75f, 0.5f, 0.75f, 1.5f}), Now());
  lumora::quad::ResetTextureCoordinates();
  EXPECT_EQ(kWhole, Now());
}

// Engines of different threads draw at the same time.
TEST(QuadCoordinates, EachThreadHasItsOwn) {
  lumora::quad::SetTextureRectangle(0.25f, 0.5f, 0.75f, 1.5f);
  const Coordinates mine = Now();
  Coordinates others{};
  std::thread([&others] {
    others = Now();
    lumora::quad::SetTextureRectangle(0, 0, 0.5f, 0.5f);
  }).join();
  EXPECT_EQ(kWhole, others);
  EXPECT_EQ(mine, Now());
  lumora::quad::ResetTextureCoordinates();
}

}  // namespace
