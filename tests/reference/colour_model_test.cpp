// SPDX-License-Identifier: Apache-2.0
// Colour spaces and packers against values worked out by hand.
#include <gtest/gtest.h>

#include <cmath>

#include "reference/colour.h"
#include "reference/expand.h"
#include "reference/quad.h"

namespace lumora::reference {
namespace {

void ExpectTexel(const Texel& actual, const Texel& expected, double tolerance = 1e-9) {
  for (int channel = 0; channel < 4; ++channel) {
    EXPECT_NEAR(actual[channel], expected[channel], tolerance) << "channel " << channel;
  }
}

TEST(YuvModel, NeutralChromaGivesGrey) {
  ExpectTexel(Multiply(YuvToRgbMatrix(), {0.25, 0.5, 0.5, 1.0}), {0.25, 0.25, 0.25, 1.0}, 1e-6);
}

TEST(YuvModel, CrFeedsRedAndCbFeedsBlue) {
  ExpectTexel(Multiply(YuvToRgbMatrix(), {0.5, 0.6, 0.5, 1.0}),
              {0.5 + 0.1402, 0.5 - 0.0714, 0.5, 1.0}, 1e-6);
  ExpectTexel(Multiply(YuvToRgbMatrix(), {0.5, 0.5, 0.7, 1.0}),
              {0.5, 0.5 - 0.0688, 0.5 + 0.3544, 1.0}, 1e-6);
}

TEST(YuvModel, AlphaCarriesTheChromaOffsets) {
  ExpectTexel(Multiply(YuvToRgbMatrix(), {0.5, 0.0, 0.0, 0.5}),
              {0.5 - 0.3505, 0.5 + 0.2645, 0.5 - 0.443, 0.5}, 1e-6);
}

TEST(HsiModel, GreyAndBlackHaveNeitherHueNorSaturation) {
  ExpectTexel(RgbToHsi({0.3, 0.3, 0.3, 1.0}), {0, 0, 0.3, 0.0});
  ExpectTexel(RgbToHsi({0, 0, 0, 1.0}), {0, 0, 0, 0.0});
}

TEST(HsiModel, SixPureColoursLieSixtyDegreesApart) {
  const Texel colours[6] = {{1, 0, 0, 1}, {1, 1, 0, 1}, {0, 1, 0, 1},
                            {0, 1, 1, 1}, {0, 0, 1, 1}, {1, 0, 1, 1}};
  for (int i = 0; i < 6; ++i) ExpectTexel(RgbToHsi(colours[i], 1.0), {i / 6.0, 1, 1, 1.0});
}

TEST(HsiModel, SaturationIsTheShareOfTheRange) {
  ExpectTexel(RgbToHsi({0.8, 0.2, 0.5, 1.0}), {1.0 - 0.5 / 6.0, 0.75, 0.8, 0.0});
}

TEST(HsiModel, BackToYuvUsesTheWeightsOfThePureColours) {
  ExpectTexel(HsiToYuv({0, 1, 1, 0}), {0.299, 1.0, 0.331273, 1.0});
  ExpectTexel(HsiToYuv({1.0 / 3, 1, 1, 0}), {0.587, 0.0813171, 0.16873853, 1.0});
  ExpectTexel(HsiToYuv({2.0 / 3, 1, 1, 0}), {0.114, 0.4186911, 1.0, 1.0});
}

TEST(HsiModel, WithoutSaturationIsGreyWhateverTheHue) {
  for (const double hue : {0.0, 0.2, 0.77}) {
    ExpectTexel(HsiToYuv({hue, 0, 0.6, 0.3}), {0.6, 0.5, 0.5, 1.0}, 1e-5);
  }
}

TEST(HsiModel, RoundTripThroughRgbComesBack) {
  const Texel rgb{0.7, 0.4, 0.3, 1.0};
  const Texel yuv = HsiToYuv(RgbToHsi(rgb));
  EXPECT_NEAR(yuv.r, 0.299 * 0.7 + 0.587 * 0.4 + 0.114 * 0.3, 1e-9);
  EXPECT_NEAR(yuv.g - 0.5, 0.5 * 0.7 - 0.4186829 * 0.4 - 0.0813089 * 0.3, 1e-9);
  EXPECT_NEAR(yuv.b - 0.5, -0.168727 * 0.7 - 0.33126147 * 0.4 + 0.5 * 0.3, 1e-9);
}

TEST(PackerModel, ShiftsAreMultiplesOfATexel) {
  const auto luma = LumaShifts(64, false);
  EXPECT_DOUBLE_EQ(luma[0].x, -1.5 / 64);
  EXPECT_DOUBLE_EQ(luma[3].x, 1.5 / 64);
  EXPECT_DOUBLE_EQ(luma[3].y, 0.0);
  const auto turned = LumaShifts(64, true);
  EXPECT_DOUBLE_EQ(turned[1].x, 0.0);
  EXPECT_DOUBLE_EQ(turned[1].y, -0.5 / 64);
  const auto chroma = ChromaShifts(64, 32, false);
  EXPECT_DOUBLE_EQ(chroma[0].x, -1.0 / 64);
  EXPECT_DOUBLE_EQ(chroma[1].x, 1.0 / 64);
  EXPECT_DOUBLE_EQ(ChromaShifts(64, 32, true)[1].y, 1.0 / 32);
}

TEST(PackerModel, PackedTargetsHoldTheFrame) {
  Frame frame(32, 4);
  for (size_t i = 0; i < frame.bytes.size(); ++i) frame.bytes[i] = static_cast<uint8_t>(i * 7);
  const Image yuv = Expanded(frame);
  const Sampler input{&yuv, Wrap::ClampToEdge, Filter::Nearest};
  Image luma(8, 4);
  Image chroma(8, 2);
  DrawFullQuad(LumaPacker{input, LumaShifts(32, false)}, 8, 4, &luma);
  DrawFullQuad(ChromaPacker{input, ChromaShifts(32, 4, false)}, 8, 2, &chroma);
  EXPECT_EQ(Unpack(luma, chroma, 32, 4).bytes, frame.bytes);
}

TEST(ExpandModel, FourPixelsShareAPairCrFirst) {
  Frame frame(16, 2);
  frame.y(3, 1) = 77;
  frame.chroma()[2] = 10;
  frame.chroma()[3] = 20;
  const Image image = Expanded(frame, 32);
  for (int y = 0; y < 2; ++y) {
    for (int x = 2; x < 4; ++x) {
      EXPECT_EQ(image.pixel(x, y)[1], 10);
      EXPECT_EQ(image.pixel(x, y)[2], 20);
      EXPECT_EQ(image.pixel(x, y)[3], 255);
    }
  }
  EXPECT_EQ(image.pixel(3, 1)[0], 77);
  EXPECT_EQ(image.pixel(4, 1)[1], 128);
  EXPECT_EQ(image.pixel(16, 1)[3], 0) << "the rest of the row is left alone";
  EXPECT_EQ(ToFrame(image, 16, 2).bytes, frame.bytes);
}

TEST(FrameModel, StartsAsOneColour) {
  const Frame frame(4, 2, 1, 2, 3);
  EXPECT_EQ(frame.bytes, (std::vector<uint8_t>{1, 1, 1, 1, 1, 1, 1, 1, 2, 3, 2, 3}));
  EXPECT_EQ(frame.cb(3, 1), 3);
}

}  // namespace
}  // namespace lumora::reference
