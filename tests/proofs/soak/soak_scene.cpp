// SPDX-License-Identifier: Apache-2.0
#include "proofs/soak/soak_scene.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>

namespace lumora::test {
namespace {

constexpr int kLevel = 8;
constexpr int kIntensity = 40;
constexpr int kSaturation = 30;

FACE_INFO_t RecordFor(const Frame& frame) {
  return FaceInTheMiddle({frame.width, frame.height}).as<FACE_INFO_t>();
}

Bytes Finish(CallerFrame& caller) {
  EXPECT_TRUE(caller.intact());
  return caller.bytes();
}

}  // namespace

Size SizeOf(int number) {
  std::mt19937 random(static_cast<uint32_t>(number));
  const auto side = [&random] { return 32 + 2 * static_cast<int>(random() % 128); };
  const int width = side();
  return {width, side()};
}

Frame SkinFrame(Size size, int number) {
  Frame frame = TextureFrame(size.width, size.height);
  for (int y = 0; y < size.height; ++y) {
    for (int x = 0; x < size.width; ++x) {
      frame.y(x, y) = static_cast<uint8_t>(70 + number % 16 + frame.y(x, y) / 3);
      frame.cr(x, y) = static_cast<uint8_t>(146 + (x + 2 * y + number) % 20);
      frame.cb(x, y) = static_cast<uint8_t>(96 + (2 * x + y) % 20);
    }
  }
  return frame;
}

FaceRecord FaceInTheMiddle(Size size) {
  return PortraitFace(size.width / 2, size.height / 2, size.width / 8 + 4);
}

Bytes Slimmed(GPUBeautyFace& engine, const Frame& frame) {
  CallerFrame caller(frame);
  EXPECT_EQ(1, engine.FaceProcess(caller.luma(), caller.chroma(), kLevel, RecordFor(frame), 0));
  return Finish(caller);
}

Bytes Whitened(GPUBeautyFace& engine, const Frame& frame) {
  CallerFrame caller(frame);
  FACE_INFO_t face = RecordFor(frame);
  EXPECT_EQ(1, engine.LoadPreviewFrameBuffer(caller.luma()));
  EXPECT_EQ(1, engine.ConvertYUV());
  EXPECT_EQ(1, engine.DoFaceWhitening(&face, 1, kIntensity, kSaturation, BEAUTYSHOT_EFFECT_BOTH));
  EXPECT_EQ(1, engine.ConvertHSItoYUV());
  EXPECT_EQ(1, engine.CopyMemYUVfromSrcTexture(caller.luma(), caller.chroma()));
  return Finish(caller);
}

Bytes WhitenedCapture(GPUBeautyFace& engine, const Frame& frame) {
  CallerFrame caller(frame);
  FACE_INFO_t face = RecordFor(frame);
  EXPECT_EQ(1, engine.DoFaceWhiteningLarge(caller.luma(), caller.chroma(), &face, 1, kIntensity,
                                           kSaturation, BEAUTYSHOT_EFFECT_BOTH));
  EXPECT_EQ(1, engine.CopyMemYUVfromSrcTextureLarge(caller.luma(), caller.chroma(), 0, 1));
  return Finish(caller);
}

Bytes SlimmedCapture(GPUBeautyFace& engine, const Frame& frame) {
  CallerFrame caller(frame);
  FACE_INFO_t face = RecordFor(frame);
  EXPECT_EQ(1, engine.FaceProcessLarge(caller.luma(), caller.chroma(), frame.width, frame.height, 0,
                                       &face, 1, kLevel));
  return Finish(caller);
}

Bytes Converted(android::GPUColorConverter& converter, const Frame& frame) {
  CallerFrame caller(frame);
  EXPECT_EQ(1, converter.ConvertYUV(caller.luma()));
  EXPECT_TRUE(caller.intact());
  const size_t row = static_cast<size_t>((frame.width + 31) / 32 * 32) * 4;
  const size_t size = row * static_cast<size_t>(frame.height);
  Bytes images(2 * size);
  std::memcpy(images.data(), converter.GetRGB_Image(), size);
  std::memcpy(images.data() + size, converter.GetHSI_Image(), size);
  return images;
}

}  // namespace lumora::test
