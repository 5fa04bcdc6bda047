// SPDX-License-Identifier: Apache-2.0
// Whitening and its measuring against values worked out by hand.
#include <gtest/gtest.h>

#include <cmath>

#include "reference/expand.h"
#include "reference/whitening.h"
#include "reference/whitening_parameters.h"

namespace lumora::reference {
namespace {

constexpr EllipseMatrix kNowhere = {0, 0, 0, 0, 0, 0, 5, 0, 1};     // distance 5 everywhere
constexpr EllipseMatrix kEverywhere = {0, 0, 0, 0, 0, 0, 0, 0, 1};  // distance 0 everywhere

WhiteningUniforms Uniforms(const std::vector<size_t>& inside) {
  WhiteningUniforms u;
  u.ellipses.fill(kNowhere);
  u.ellipses[0] = kEverywhere;
  for (const size_t ellipse : inside) u.ellipses[ellipse] = kEverywhere;
  return u;
}

double Alpha(const std::vector<size_t>& inside) {
  return Whiten({0.1, 0.2, 0.5, 0.0}, {0.5, 0.5}, Uniforms(inside)).a;
}

TEST(WhitenModel, AlphaTellsTheInnerEllipses) {
  EXPECT_NEAR(Alpha({}), 1.0, 1e-12);
  EXPECT_NEAR(Alpha({1}), 0.6, 1e-12);
  EXPECT_NEAR(Alpha({4}), 0.4, 1e-12);
  for (const size_t eye : {5u, 6u}) EXPECT_NEAR(Alpha({eye}), 0.3, 1e-12);
  for (const size_t eye : {2u, 3u}) EXPECT_NEAR(Alpha({eye}), 0.1, 1e-12);
  EXPECT_NEAR(Alpha({1, 4}), 0.0, 1e-12);
  EXPECT_NEAR(Alpha({5, 4}), -0.3, 1e-12);
  EXPECT_NEAR(Alpha({3, 4}), -0.5, 1e-12);
}

TEST(WhitenModel, LiftsIntensityInLogitSpace) {
  WhiteningUniforms u = Uniforms({});
  u.intensity_shift = std::log(3.0) / 0.85;  // trebles the odds: 1/2 becomes 3/4
  u.saturation_shift = 0.25;
  const Texel out = Whiten({0.1, 0.2, 0.5, 0.0}, {0, 0}, u);
  EXPECT_NEAR(out.r, 0.1, 1e-12);
  EXPECT_NEAR(out.g, 0.45, 1e-12);
  EXPECT_NEAR(out.b, 0.75, 1e-12);
  EXPECT_EQ(ToByte(Whiten({0, 0, 1.0, 0}, {0, 0}, u).b), 255);
  EXPECT_EQ(ToByte(Whiten({0, 0, 0.0, 0}, {0, 0}, u).b), 0);
}

TEST(WhitenModel, FadesTowardTheBorderAndPassesThroughOutside) {
  WhiteningUniforms u = Uniforms({});
  u.saturation_shift = 0.4;
  u.ellipses[0] = {2, 0, 0, 0, 2, 0, -1, -1, 1};  // radius one half round the centre
  EXPECT_NEAR(Whiten({0, 0.1, 0.5, 0}, {0.5, 0.5}, u).g, 0.5, 1e-12);
  EXPECT_NEAR(Whiten({0, 0.1, 0.5, 0}, {0.75, 0.5}, u).g, 0.3, 1e-12);
  EXPECT_NEAR(Whiten({0, 0.1, 0.5, 0.2}, {1.0, 0.5}, u).g, 0.1, 1e-12);
  EXPECT_NEAR(Whiten({0, 0.1, 0.5, 0.2}, {1.0, 0.5}, u).a, 0.2, 1e-12);
}

TEST(WhitenModel, TilesMapToTheFrameAndKeepEarlierResults) {
  Image fresh(2, 1);
  Image before(2, 1);
  fresh.fill(10, 20, 30, 0);
  before.fill(1, 2, 3, 0);
  before.pixel(1, 0)[3] = 1;
  FaceWhiteningLarge tile{{&fresh}, {&before}, Uniforms({})};
  tile.uniforms.ellipses[0] = {100, 0, 0, 0, 100, 0, -75, -50, 1};
  tile.uniforms.tile_scale = {0.5, 1.0};
  tile.uniforms.tile_offset = {0.625, 0.0};
  EXPECT_NEAR(tile({0.25, 0.5}).a, 1.0, 1e-12) << "frame place (0.75, 0.5), inside";
  EXPECT_NEAR(tile({0.75, 0.5}).r, 1.0 / 255, 1e-12) << "kept";
}

TEST(EllipseModel, MapsTheEndsOfItsAxesToTheUnitCircle) {
  const EllipseMatrix m =
      EllipseTransform({100, 80}, {140, 80}, {120, 50}, {120, 110}, 320, 200, 0, 1);
  const auto at = [&](double x, double y) { return EllipseDistance(m, {x / 320, y / 200}); };
  EXPECT_NEAR(at(120, 80), 0.0, 1e-9);
  EXPECT_NEAR(at(100, 80), 1.0, 1e-9);
  EXPECT_NEAR(at(120, 110), 1.0, 1e-9);
  EXPECT_NEAR(at(120, 140), 2.0, 1e-9);
}

TEST(EllipseModel, TurnsWithItsFirstAxis) {
  // Diagonal first axis of length 56 (half 28), second of 28 (half 14), padding 2, scale 0.5.
  const EllipseMatrix m =
      EllipseTransform({80, 80}, {120, 120}, {110, 90}, {90, 110}, 200, 200, 2, 0.5f);
  const double step = 16 / std::sqrt(2.0);
  EXPECT_NEAR(EllipseDistance(m, {(100 + step) / 200, (100 + step) / 200}), 1.0, 1e-6);
  const double side = 9 / std::sqrt(2.0);
  EXPECT_NEAR(EllipseDistance(m, {(100 - side) / 200, (100 + side) / 200}), 1.0, 1e-6);
}

TEST(EllipseModel, TheAxisNearerACoordinateGivesItsCentre) {
  // First axis nearer the horizontal: x of its middle, y of the other's.
  const EllipseMatrix flat = EllipseTransform({0, 40}, {60, 60}, {50, 0}, {50, 80}, 100, 100, 0, 1);
  EXPECT_NEAR(EllipseDistance(flat, {0.30, 0.40}), 0.0, 1e-9);
  // Nearer the vertical: the other way round.
  const EllipseMatrix steep =
      EllipseTransform({40, 0}, {60, 60}, {0, 50}, {80, 50}, 100, 100, 0, 1);
  EXPECT_NEAR(EllipseDistance(steep, {0.40, 0.30}), 0.0, 1e-9);
}

TEST(EllipseModel, ShortAxesGiveTheEmptyEllipse) {
  const EllipseMatrix m = EllipseTransform({0, 0}, {5, 0}, {0, 0}, {0, 50}, 100, 100, 0, 1);
  EXPECT_EQ(m, (EllipseMatrix{99, 0, 0, 0, 99, 0, 0, 0, 1}));
  const EllipseMatrix padded = EllipseTransform({0, 0}, {5, 0}, {0, 0}, {0, 50}, 100, 100, 1, 1);
  EXPECT_NE(padded[0], 99) << "padding makes it three pixels";
}

TEST(LogitModel, IsTheInverseOfTheLogisticAndLimitsItsEnds) {
  for (const int value : {1, 60, 128, 254}) {
    const double logit = static_cast<double>(LogitOfByte(value));
    EXPECT_NEAR(255.0 / (1.0 + std::exp(-0.85 * logit)), value, 1e-4);
  }
  EXPECT_EQ(LogitOfByte(0), LogitOfByte(1));
  EXPECT_EQ(LogitOfByte(255), LogitOfByte(254));
}

TEST(PixelModel, ReadsAYuvFrameAsHsi) {
  Frame frame(16, 4, 100, 127, 127);
  const HsiSample grey = SampleYuv(frame.bytes.data(), 5, 3, 16, 4);
  EXPECT_EQ(grey.intensity, 100);
  EXPECT_LE(grey.saturation, 2);
  // v = (228 - 127.5) / 208.1 * 255 = 123.15, u = -0.43: red 240, green 28, blue 99.
  frame.cr(5, 3) = 228;
  const HsiSample red = SampleYuv(frame.bytes.data(), 5, 3, 16, 4);
  EXPECT_EQ(red.intensity, 240);
  EXPECT_EQ(red.saturation, 225);
  EXPECT_EQ(red.hue, 340);
}

TEST(PixelModel, ReadsAnHsiImage) {
  Image image(4, 2);
  image.pixel(1, 1)[0] = 128;
  image.pixel(1, 1)[1] = 7;
  image.pixel(1, 1)[2] = 9;
  const HsiSample hsi = SampleHsi(image.bytes.data(), 1, 1, 4);
  EXPECT_EQ(hsi.hue, 180);
  EXPECT_EQ(hsi.saturation, 7);
  EXPECT_EQ(hsi.intensity, 9);
}

// Upright: cross axis 120..200 at y 100, long axis from y 66 (extended) to y 160.
FaceRecord UprightFace() {
  FaceRecord face;
  face.set_landmark(68, {120, 96}).set_landmark(70, {120, 104});
  face.set_landmark(69, {200, 96}).set_landmark(71, {200, 104});
  return face.set_landmark(42, {160, 101}).set_landmark(65, {160, 151});
}

WhiteningParameters Measured(int intensity_level, int saturation_level, int32_t effect, int mean_i,
                             int mean_s) {
  return MeasureFace(UprightFace(), intensity_level, saturation_level, effect, 320, 240,
                     [=](int, int) {
                       return HsiSample{0, mean_s, mean_i};
                     });
}

TEST(MeasureModel, FindsTheFacesBox) {
  const WhiteningParameters p = Measured(0, 0, kIntensityOnly, 100, 100);
  EXPECT_EQ(p.centre.x, 160);
  EXPECT_EQ(p.centre.y, (66 + 151) / 2);
  EXPECT_EQ(p.radius, 42);
  EXPECT_EQ(p.half_width, 40);
  EXPECT_EQ(p.half_height, 42);
  EXPECT_FLOAT_EQ(p.aspect_ratio, 0.75f);
}

TEST(MeasureModel, SamplesASquareByItsStep) {
  // Half the cross axis is 40: every pixel of 80 x 80 in steps of 1.
  int samples = 0;
  MeasureFace(UprightFace(), 0, 0, kIntensityOnly, 320, 240, [&](int x, int y) {
    EXPECT_TRUE(x >= 120 && x < 200 && y >= 68 && y < 148);
    ++samples;
    return HsiSample{};
  });
  EXPECT_EQ(samples, 80 * 80);
}

TEST(MeasureModel, TheEffectChoosesTheShifts) {
  const double lift = static_cast<double>(LogitOfByte(140) - LogitOfByte(100));
  EXPECT_NEAR(Measured(40, 51, kIntensityOnly, 100, 100).uniforms.intensity_shift, lift, 1e-6);
  EXPECT_EQ(Measured(40, 51, kIntensityOnly, 100, 100).uniforms.saturation_shift, 0.0);
  EXPECT_EQ(Measured(40, 51, kSaturationOnly, 100, 100).uniforms.intensity_shift, 0.0);
  EXPECT_NEAR(Measured(40, 51, kSaturationOnly, 100, 100).uniforms.saturation_shift, 0.2, 1e-6);
  EXPECT_NEAR(Measured(40, 51, kIntensityAndSaturation, 100, 100).uniforms.intensity_shift, lift,
              1e-6);
  const WhiteningParameters enlarged = Measured(40, 51, kEnlargedOuterEllipse, 100, 100);
  EXPECT_EQ(enlarged.uniforms.intensity_shift, 0.0);
  EXPECT_NEAR(EllipseDistance(enlarged.uniforms.ellipses[0], {204.0 / 320, 108.0 / 240}), 1.0,
              1e-6);
}

TEST(MeasureModel, OnlyMiddlingFacesAreShifted) {
  const auto lifted = [](int mean) {
    return Measured(40, 50, kIntensityAndSaturation, mean, 100).uniforms.intensity_shift > 0;
  };
  EXPECT_FALSE(lifted(50));
  EXPECT_TRUE(lifted(51));
  EXPECT_TRUE(lifted(209));
  EXPECT_FALSE(lifted(210));
  const auto coloured = [](int mean) {
    return Measured(40, 50, kIntensityAndSaturation, 100, mean).uniforms.saturation_shift > 0;
  };
  EXPECT_FALSE(coloured(50));
  EXPECT_TRUE(coloured(51));
}

TEST(MeasureModel, AFaceOutsideTheFrameIsNotShifted) {
  const WhiteningParameters p =
      MeasureFace(UprightFace(), 40, 40, kIntensityAndSaturation, 100, 60, [](int, int) {
        return HsiSample{0, 100, 100};
      });
  EXPECT_EQ(p.mean_intensity, 0);
  EXPECT_EQ(p.uniforms.intensity_shift, 0.0);
}

}  // namespace
}  // namespace lumora::reference
