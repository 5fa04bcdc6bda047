// SPDX-License-Identifier: Apache-2.0
// The library in an application that has functions of the same names: each keeps to its own.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "lumora/convert/gpu_color_converter.h"
#include "lumora/engine/gpu_beauty_face.h"
#include "platform/clashing_names.h"
#include "support/scoped.h"

namespace lumora::test {
namespace {

constexpr int kWidth = 64, kHeight = 32;

class ClashingNames : public testing::Test {
 protected:
  TempDirectory cache_;  // empty: every program is compiled
  ScopedEnvironment environment_{"LUMORA_CACHE_DIR", cache_.path()};
};

TEST_F(ClashingNames, DoNotKeepTheEngineFromWorking) {
  {
    android::GPUBeautyFace engine;
    ASSERT_EQ(engine.Init(kWidth, kHeight, kWidth, kHeight, nullptr, false), 1);
    std::vector<uint8_t> frame(kWidth * kHeight * 3 / 2, 100), chroma(kWidth * kHeight / 2, 0);
    EXPECT_EQ(engine.FaceProcessMultiface(frame.data(), chroma.data(), 0, nullptr, 0, 0), 1);
    EXPECT_EQ(chroma, std::vector<uint8_t>(chroma.size(), 100)) << "no face: as it was";
    EXPECT_EQ(engine.DeInit(), 1);
    EXPECT_EQ(engine.InitCapture(nullptr, nullptr, kWidth, kHeight, nullptr, true), 1);
    EXPECT_EQ(engine.DeInitCapture(), 1);
  }
  EXPECT_EQ(CallsOfTheApplication(), 0);
}

TEST_F(ClashingNames, DoNotKeepTheConverterFromWorking) {
  {
    android::GPUColorConverter converter;
    EXPECT_EQ(converter.Init(kWidth, kHeight, nullptr), 1);
    std::vector<uint8_t> frame(kWidth * kHeight * 3 / 2, 100);
    EXPECT_EQ(converter.ConvertYUV(frame.data()), 1);
  }
  EXPECT_EQ(CallsOfTheApplication(), 0);
}

}  // namespace
}  // namespace lumora::test
