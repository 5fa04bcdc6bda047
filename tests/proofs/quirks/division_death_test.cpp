// SPDX-License-Identifier: Apache-2.0
// Sizes that the callers keep away from: the library divides by zero, where the processor minds.
#include <gtest/gtest.h>

#include "lumora/lumora.h"
#include "support/caller_memory.h"

namespace lumora::test {
namespace {

using android::GPUBeautyFace;

class DivisionDeathTest : public testing::Test {
 protected:
  DivisionDeathTest() { testing::GTEST_FLAG(death_test_style) = "threadsafe"; }
  void SetUp() override {
#if !defined(__x86_64__)
    GTEST_SKIP() << "this processor answers divisions by zero with a number";
#endif
  }
};

/// Brings a face that covers the whole capture back.
void BringBack(int width, int height) {
  GPUBeautyFace engine;
  engine.InitCapture(nullptr, nullptr, width, height, nullptr, true);
  engine.m_rcFaceProcess[0] = {0, 0, width, height, 0};
  CallerPlanes planes(width, height);
  EXPECT_EQ(1, engine.CopyMemYUVfromSrcTextureLarge(planes.luma(), planes.chroma(), 0, 1));
  engine.DeInitCapture();
}

TEST_F(DivisionDeathTest, CapturesOfFewerThanTwentyRows) {
  EXPECT_DEATH(BringBack(320, 18), "");
  EXPECT_DEATH(BringBack(1400, 2), "");
  BringBack(320, 20);
}

TEST_F(DivisionDeathTest, PatternsOnePixelWideOrHigh) {
  char pixels[8 * 4] = {};
  EXPECT_DEATH(CreateTestPattern(1, 8, 1, pixels), "");
  EXPECT_DEATH(CreateTestPattern(8, 1, 1, pixels), "");
  CreateTestPattern(2, 2, 1, pixels);
}

}  // namespace
}  // namespace lumora::test
