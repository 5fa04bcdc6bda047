// SPDX-License-Identifier: Apache-2.0
// Stores, samplers and the quad, against values worked out by hand.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "reference/bounds.h"
#include "reference/image.h"
#include "reference/quad.h"

namespace lumora::reference {
namespace {

// One row with red = 0, 100, 200.
Image Steps() {
  Image image(3, 1);
  for (int x = 0; x < 3; ++x) image.pixel(x, 0)[0] = static_cast<uint8_t>(100 * x);
  return image;
}

double Red(const Sampler& sampler, double texel) {
  return sampler.sample({texel / 3.0, 0.5}).r * 255.0;
}

TEST(StoreModel, RoundsToNearestAndClamps) {
  EXPECT_EQ(ToByte(0.4999 / 255), 0);
  EXPECT_EQ(ToByte(0.5001 / 255), 1);
  EXPECT_EQ(ToByte(-3.0), 0);
  EXPECT_EQ(ToByte(7.0), 255);
  EXPECT_EQ(ToByte(std::numeric_limits<double>::infinity()), 255);
  EXPECT_EQ(ToByte(std::nan("")), 0);
  for (int byte = 0; byte < 256; ++byte) {
    EXPECT_EQ(ToByte(FromByte(static_cast<uint8_t>(byte))), byte);
  }
}

TEST(SamplerModel, NearestTakesTheTexelThatHoldsTheCoordinate) {
  const Image image = Steps();
  const Sampler sampler{&image, Wrap::ClampToEdge, Filter::Nearest};
  EXPECT_DOUBLE_EQ(Red(sampler, 0.999), 0);
  EXPECT_DOUBLE_EQ(Red(sampler, 1.0), 100);
  EXPECT_DOUBLE_EQ(Red(sampler, 2.5), 200);
}

TEST(SamplerModel, LinearInterpolatesBetweenTexelCentres) {
  const Image image = Steps();
  const Sampler sampler{&image, Wrap::ClampToEdge, Filter::Linear};
  EXPECT_NEAR(Red(sampler, 1.5), 100, 1e-9);
  EXPECT_NEAR(Red(sampler, 1.75), 125, 1e-9);
  EXPECT_NEAR(Red(sampler, 1.0), 50, 1e-9);
  EXPECT_NEAR(Red(sampler, 0.1), 0, 1e-9);
}

TEST(SamplerModel, WrapModesContinueTheImageEachInItsWay) {
  const Image image = Steps();
  struct Row {
    Wrap wrap;
    double texel, red;
  };
  for (const Row& row : {Row{Wrap::ClampToEdge, -5.5, 0}, Row{Wrap::ClampToEdge, 9.5, 200},
                         Row{Wrap::Repeat, -0.5, 200}, Row{Wrap::Repeat, 4.5, 100},
                         Row{Wrap::MirroredRepeat, -0.5, 0}, Row{Wrap::MirroredRepeat, -1.5, 100},
                         Row{Wrap::MirroredRepeat, 3.5, 200}, Row{Wrap::MirroredRepeat, 5.5, 0},
                         Row{Wrap::MirroredRepeat, 7.5, 100}}) {
    const Sampler sampler{&image, row.wrap, Filter::Nearest};
    EXPECT_NEAR(Red(sampler, row.texel), row.red, 1e-9) << row.texel;
  }
  const Sampler mirrored{&image, Wrap::MirroredRepeat, Filter::Linear};
  EXPECT_NEAR(Red(mirrored, 0.0), 0, 1e-9);
  const Sampler repeated{&image, Wrap::Repeat, Filter::Linear};
  EXPECT_NEAR(Red(repeated, 0.0), 100, 1e-9);
}

TEST(SampleRange, HoldsBothNeighboursOfABorder) {
  const ImageBounds image(Steps());
  const auto at = [&](double texel, Filter filter) {
    return SampleBounds(image, Wrap::ClampToEdge, filter, {texel / 3.0, 0.5}, 0.1);
  };
  EXPECT_DOUBLE_EQ(at(1.05, Filter::Nearest).low.r * 255, 0);
  EXPECT_DOUBLE_EQ(at(1.05, Filter::Nearest).high.r * 255, 100);
  EXPECT_DOUBLE_EQ(at(1.2, Filter::Nearest).low.r * 255, 100);
  EXPECT_NEAR(at(1.0, Filter::Linear).low.r * 255, 40, 1e-9);
  EXPECT_NEAR(at(1.0, Filter::Linear).high.r * 255, 60, 1e-9);
}

TEST(SampleRange, KeepsThePeakAtATexelCentre) {
  Image peak(3, 1);
  peak.pixel(1, 0)[0] = 200;
  const TexelBounds range =
      SampleBounds(ImageBounds(peak), Wrap::ClampToEdge, Filter::Linear, {1.45 / 3.0, 0.5}, 0.1);
  EXPECT_NEAR(range.high.r * 255, 200, 1e-9);
  EXPECT_NEAR(range.low.r * 255, 170, 1e-9);
}

TEST(SampleRange, CarriesARangeOfTheSourceOn) {
  ImageBounds image(1, 1);
  image.low.pixel(0, 0)[2] = 10;
  image.high.pixel(0, 0)[2] = 30;
  const TexelBounds range =
      SampleBounds(image, Wrap::ClampToEdge, Filter::Nearest, {0.5, 0.5}, 0.01);
  EXPECT_DOUBLE_EQ(range.low.b * 255, 10);
  EXPECT_DOUBLE_EQ(range.high.b * 255, 30);
}

// Writes the texture coordinate as a colour.
Texel ShowCoordinate(Vec2 coordinate) {
  return {coordinate.x, coordinate.y, 0.0, 1.0};
}

TEST(QuadModel, GivesEveryPixelTheCoordinateOfItsCentre) {
  int fragments = 0;
  ForEachFragment({}, 7, 5, 7, 5, [&](int x, int y, Vec2 coordinate) {
    EXPECT_NEAR(coordinate.x, (x + 0.5) / 7, 1e-12);
    EXPECT_NEAR(coordinate.y, (y + 0.5) / 5, 1e-12);
    ++fragments;
  });
  EXPECT_EQ(fragments, 35);
}

TEST(QuadModel, TurnsTheTextureWithRotatedPositions) {
  // The corner with coordinate (0, 0) stands at the top left, (0, 1) at the top right.
  ForEachFragment({kRotatedPositions, kWholeTexture}, 8, 4, 8, 4,
                  [](int x, int y, Vec2 coordinate) {
                    EXPECT_NEAR(coordinate.x, 1.0 - (y + 0.5) / 4, 1e-12);
                    EXPECT_NEAR(coordinate.y, (x + 0.5) / 8, 1e-12);
                  });
}

TEST(QuadModel, DrawsASubRectangle) {
  ForEachFragment({kNormalPositions, TextureRectangle(0.25, 0.5, 0.75, 1.0)}, 2, 2, 2, 2,
                  [](int x, int y, Vec2 coordinate) {
                    EXPECT_NEAR(coordinate.x, x == 0 ? 0.375 : 0.625, 1e-12);
                    EXPECT_NEAR(coordinate.y, y == 0 ? 0.625 : 0.875, 1e-12);
                  });
}

TEST(QuadModel, KeepsPixelsOutsideTheViewportAndClipsAtTheTarget) {
  Image target(4, 4);
  target.fill(9, 9, 9, 9);
  DrawFullQuad(ShowCoordinate, 2, 8, &target);
  EXPECT_EQ(target.pixel(1, 3)[3], 255);
  EXPECT_EQ(target.pixel(2, 0)[3], 9);
  EXPECT_EQ(target.pixel(1, 3)[1], ToByte(3.5 / 8));
}

}  // namespace
}  // namespace lumora::reference
