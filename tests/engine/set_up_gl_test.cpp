// SPDX-License-Identifier: Apache-2.0
// What an engine is set up for, as told from its members.
#include "lumora/engine/internal/set_up.h"

#include <gtest/gtest.h>

#include <vector>

#include "engine/engine_images.h"

namespace lumora::test {
namespace {

using engine::GoesByHsi;
using engine::IsPreview;
using engine::SetUp;
using engine::SetUpOf;

TEST(SetUps, EachIsToldFromTheOthers) {
  const std::vector<unsigned char> planes(64 * 48 * 2, 128);
  auto* const bytes = const_cast<unsigned char*>(planes.data());
  GPUBeautyFace engine;
  EXPECT_EQ(SetUp::None, SetUpOf(engine));

  engine.Init(64, 48, 64, 48, nullptr, false);
  EXPECT_EQ(SetUp::Preview, SetUpOf(engine));
  engine.DeInit();
  EXPECT_EQ(SetUp::None, SetUpOf(engine));

  engine.Init(64, 48, 64, 48, nullptr, true);
  EXPECT_EQ(SetUp::PreviewColour, SetUpOf(engine));
  engine.DeInit();

  engine.InitCapture(bytes, bytes, 64, 48, nullptr, true);
  EXPECT_EQ(SetUp::CaptureBlocks, SetUpOf(engine));
  engine.DeInitCapture();
  EXPECT_EQ(SetUp::None, SetUpOf(engine));

  engine.InitCapture(bytes, bytes, 64, 48, nullptr, false);
  EXPECT_EQ(SetUp::CapturePlanes, SetUpOf(engine));
  engine.DeInitCapture();
  EXPECT_EQ(SetUp::None, SetUpOf(engine));
}

// Other code writes the mode: whatever else is there, it decides about the way of frames.
TEST(SetUps, FramesGoByHsiWhereTheModeSaysSo) {
  GPUBeautyFace engine;
  for (const bool preview : {false, true}) {
    if (preview) engine.Init(64, 48, 64, 48, nullptr, false);
    for (const bool colour : {false, true}) {
      engine.m_bColorCvtMode = colour;
      EXPECT_EQ(colour, GoesByHsi(SetUpOf(engine)));
      EXPECT_EQ(preview, IsPreview(SetUpOf(engine)));
    }
  }
}

}  // namespace
}  // namespace lumora::test
