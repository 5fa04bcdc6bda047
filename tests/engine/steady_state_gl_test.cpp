// SPDX-License-Identifier: Apache-2.0
// A frame like the one before it needs no memory that the one before did not have.
#include <gtest/gtest.h>

#include <vector>

#include "lumora/lumora.h"
#include "support/allocation_count.h"
#include "support/faces.h"
#include "support/pictures.h"

namespace lumora::test {
namespace {

using android::GPUBeautyFace;

constexpr int kWidth = 160;
constexpr int kHeight = 120;

TEST(SteadyState, SlimmedFramesAllocateNothing) {
  GPUBeautyFace engine;
  engine.Init(kWidth, kHeight, kWidth, kHeight, nullptr, false);
  std::vector<uint8_t> frame = TextureFrame(kWidth, kHeight).bytes;
  std::vector<FACE_INFO_t> faces =
      RecordsFrom({PortraitFace(50, 60, 20), PortraitFace(110, 60, 25)});
  uint8_t* const chroma = frame.data() + kWidth * kHeight;
  EXPECT_EQ(0,
            SteadyAllocationsOf([&] { engine.FaceProcess(frame.data(), chroma, 5, faces[0], 0); }));
  EXPECT_EQ(0, SteadyAllocationsOf([&] {
              engine.FaceProcessMultiface(frame.data(), chroma, 5, faces.data(), 2, 0);
            }));
  EXPECT_EQ(0, SteadyAllocationsOf([&] { engine.Rectification(frame.data(), chroma, 2, 0); }));
}

TEST(SteadyState, WhitenedFramesAllocateNothing) {
  GPUBeautyFace engine;
  engine.Init(kWidth, kHeight, kWidth, kHeight, nullptr, true);
  std::vector<uint8_t> frame = TextureFrame(kWidth, kHeight).bytes;
  std::vector<FACE_INFO_t> faces = RecordsFrom({PortraitFace(80, 60, 30)});
  EXPECT_EQ(0, SteadyAllocationsOf([&] {
              engine.LoadPreviewFrameBuffer(frame.data());
              engine.ConvertYUV();
              engine.DoFaceWhitening(faces.data(), 1, 40, 20, BEAUTYSHOT_EFFECT_BOTH);
              engine.ConvertHSItoYUV();
              engine.CopyMemYUVfromSrcTexture(frame.data(), frame.data() + kWidth * kHeight);
            }));
}

}  // namespace
}  // namespace lumora::test
