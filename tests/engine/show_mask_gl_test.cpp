// SPDX-License-Identifier: Apache-2.0
// The property that selects the shader variants with diagnostic marks.
#include <gtest/gtest.h>

#include <optional>

#include "engine/engine_images.h"
#include "support/property_override.h"

namespace lumora::test {
namespace {

struct Value {
  std::optional<std::string> text;
  bool shown;
};

// The text is read as decimal digits up to the first other character, as the C library does.
const Value kValues[] = {{std::nullopt, false}, {"", false},   {"0", false},  {"1", true},
                         {"2", false},          {"-1", false}, {"10", false}, {"01", true},
                         {" 1", true},          {"1x", true},  {"x1", false}, {"true", false},
                         {"4294967297", false}};

class ShowMask : public testing::TestWithParam<Value> {
 protected:
  ShowMask() {
    if (GetParam().text) property_.emplace(kShowMaskProperty, *GetParam().text);
  }

  std::optional<ScopedProperty> property_;
};

TEST_P(ShowMask, PreviewsHandItToTheWarpAndTheRectification) {
  GPUBeautyFace engine;
  engine.Init(32, 16, 32, 16, nullptr, false);
  EXPECT_EQ(GetParam().shown, engine.m_bShowMask);
  EXPECT_EQ(GetParam().shown, static_cast<GLProgWarp*>(engine.m_pProgCheekSlimmer)->m_bShowMask);
  EXPECT_EQ(GetParam().shown,
            static_cast<GLProgRectificaton*>(engine.m_pProgRectification)->m_bShowMask);
}

TEST_P(ShowMask, CapturesHandItToTheWarp) {
  GPUBeautyFace engine;
  engine.InitCapture(nullptr, nullptr, 32, 16, nullptr, false);
  EXPECT_EQ(GetParam().shown, engine.m_bShowMask);
  EXPECT_EQ(GetParam().shown, static_cast<GLProgWarp*>(engine.m_pProgCheekSlimmer)->m_bShowMask);
  engine.DeInitCapture();
}

INSTANTIATE_TEST_SUITE_P(Values, ShowMask, testing::ValuesIn(kValues),
                         [](const testing::TestParamInfo<Value>& row) {
                           return "row" + std::to_string(row.index);
                         });

TEST(ShowMaskChanges, EverySetUpReadsTheValueAnew) {
  GPUBeautyFace engine;
  engine.Init(32, 16, 32, 16, nullptr, false);
  EXPECT_FALSE(engine.m_bShowMask);
  {
    const ScopedProperty property(kShowMaskProperty, "1");
    engine.Init(32, 16, 32, 16, nullptr, false);
    EXPECT_TRUE(engine.m_bShowMask);
  }
  engine.Init(32, 16, 32, 16, nullptr, false);
  EXPECT_FALSE(engine.m_bShowMask);
}

}  // namespace
}  // namespace lumora::test
