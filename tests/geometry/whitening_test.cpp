// SPDX-License-Identifier: Apache-2.0
// From landmarks and colours to ellipses and shifts.
#include "lumora/geometry/whitening.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <optional>
#include <utility>
#include <vector>

#include "reference/whitening_parameters.h"
#include "support/faces.h"
#include "support/pictures.h"

namespace lumora::test {
namespace {

TEST(LogitOfIntensity, IsTheInverseOfTheLogistic) {
  for (int value = 1; value < 255; ++value) {
    const double logit = static_cast<double>(LogitOfIntensity(value));
    EXPECT_NEAR(value, 255.0 / (1.0 + std::exp(-0.85 * logit)), 1e-3) << value;
  }
  // -ln(255 / 128 - 1) / 0.85 and -ln(255 / 51 - 1) / 0.85
  EXPECT_FLOAT_EQ(0.00922727f, LogitOfIntensity(128));
  EXPECT_FLOAT_EQ(-1.6309345f, LogitOfIntensity(51));
}

TEST(LogitOfIntensity, TheEndsCountAsTheirNeighbours) {
  EXPECT_EQ(LogitOfIntensity(1), LogitOfIntensity(0));
  EXPECT_EQ(LogitOfIntensity(254), LogitOfIntensity(255));
  EXPECT_FLOAT_EQ(6.5145110f, LogitOfIntensity(255));
  EXPECT_FLOAT_EQ(-6.5145110f, LogitOfIntensity(0));
}

HsiSample SampleOf(uint8_t luma, uint8_t cr, uint8_t cb) {
  const uint8_t frame[] = {luma, luma, luma, luma, cr, cb};
  return SampleYuv(frame, 1, 1, 2, 2);
}

void ExpectSample(int hue, int saturation, int intensity, const HsiSample& sample) {
  EXPECT_EQ(hue, sample.hue);
  EXPECT_EQ(saturation, sample.saturation);
  EXPECT_EQ(intensity, sample.intensity);
}

TEST(SampleYuv, ColoursComputedByHand) {
  // Neutral chroma lies half a step above the middle: R 100.70, G 99.47, B 100.88.
  ExpectSample(300, 2, 100, SampleOf(100, 128, 128));
  ExpectSample(0, 0, 0, SampleOf(0, 127, 127));
  // R 254.08, G -0.14, B 0.99
  ExpectSample(0, 255, 254, SampleOf(76, 255, 85));
  // Cr 0 is v = -156.23, Cb 0 is u = -110.74: R clips to 0, G 150 + 43.70 + 90.71, B clips to 0
  ExpectSample(120, 255, 255, SampleOf(150, 0, 0));
  // u = 110.74: R 12.94, G -6.52, B 254.03; 60 (12 - 0) / 254 + 240.5
  ExpectSample(243, 255, 254, SampleOf(29, 116, 255));
  // R 255.70 clips, G 254.47
  ExpectSample(300, 1, 255, SampleOf(255, 128, 128));
}

TEST(SampleYuv, AgreesWithTheModelForManyColours) {
  for (int luma = 0; luma < 256; luma += 3) {
    for (int cr = 0; cr < 256; cr += 5) {
      for (int cb = 0; cb < 256; cb += 5) {
        const uint8_t frame[] = {static_cast<uint8_t>(luma), 0, 0, 0, static_cast<uint8_t>(cr),
                                 static_cast<uint8_t>(cb)};
        const reference::HsiSample expected = reference::SampleYuv(frame, 0, 0, 2, 2);
        const HsiSample actual = SampleYuv(frame, 0, 0, 2, 2);
        ASSERT_EQ(expected.hue, actual.hue) << luma << ' ' << cr << ' ' << cb;
        ASSERT_EQ(expected.saturation, actual.saturation) << luma << ' ' << cr << ' ' << cb;
        ASSERT_EQ(expected.intensity, actual.intensity) << luma << ' ' << cr << ' ' << cb;
      }
    }
  }
}

TEST(SampleYuv, FindsThePixelsOwnBytes) {
  const Frame frame = NoiseFrame(36, 22, 4);
  for (int y = 0; y < frame.height; ++y) {
    for (int x = 0; x < frame.width; ++x) {
      const HsiSample expected = SampleOf(frame.y(x, y), frame.cr(x, y), frame.cb(x, y));
      const HsiSample actual = SampleYuv(frame.bytes.data(), x, y, frame.width, frame.height);
      ASSERT_EQ(expected.hue, actual.hue) << x << ", " << y;
      ASSERT_EQ(expected.intensity, actual.intensity) << x << ", " << y;
    }
  }
}

TEST(SampleTexel, HueIsTheByteAsDegreesCutToAWhole) {
  const unsigned char texel[] = {255, 17, 200, 0};
  ExpectSample(358, 17, 200, SampleTexel(texel));
  const unsigned char half[] = {128, 0, 0, 9};
  ExpectSample(180, 0, 0, SampleTexel(half));
}

using Matrix = std::array<float, 9>;
Matrix MatrixOf(const EllipseAxes& axes, int width, int height) {
  Matrix matrix;
  matrix.fill(77.0f);
  EllipseMatrix(axes, width, height, matrix.data());
  return matrix;
}

void ExpectMatrix(const Matrix& expected, const Matrix& actual) {
  for (size_t i = 0; i < 9; ++i) EXPECT_NEAR(expected[i], actual[i], 1e-5f) << "entry " << i;
}

TEST(EllipseMatrix, UprightEllipse) {
  // Half axes 100 and 50 about (200, 200).
  const EllipseAxes axes{{100, 200, 0}, {300, 200, 0}, {200, 150, 0}, {200, 250, 0}, 0, 1.0f};
  ExpectMatrix({4, 0, 0, 0, 6, 0, -2, -4, 1}, MatrixOf(axes, 400, 300));
}

TEST(EllipseMatrix, PaddingIsAddedAfterScaling) {
  // 10 + 100 * 1.5 and 10 + 50 * 1.5
  const EllipseAxes axes{{100, 200, 0}, {300, 200, 0}, {200, 150, 0}, {200, 250, 0}, 10, 1.5f};
  ExpectMatrix({400 / 160.0f, 0, 0, 0, 300 / 85.0f, 0, -200 / 160.0f, -200 / 85.0f, 1},
               MatrixOf(axes, 400, 300));
}

// Axes of 201 and 101 pixels have halves of 100 and 50.
TEST(EllipseMatrix, HalvesAreCutToWholePixelsBeforeScaling) {
  const EllipseAxes axes{{100, 200, 0}, {301, 200, 0}, {200, 150, 0}, {200, 251, 0}, 10, 1.5f};
  ExpectMatrix({400 / 160.0f, 0, 0, 0, 300 / 85.0f, 0, -200 / 160.0f, -200 / 85.0f, 1},
               MatrixOf(axes, 400, 300));
}

TEST(EllipseMatrix, AxesOfAQuarterTurnSwapTheirRoles) {
  // Direction pi / 2, so u grows along the second axis: (v H - 200) / 100 and (200 - u W) / 50.
  const EllipseAxes axes{{200, 100, 0}, {200, 300, 0}, {150, 200, 0}, {250, 200, 0}, 0, 1.0f};
  ExpectMatrix({0, -8, 0, 3, 0, 0, -2, 4, 1}, MatrixOf(axes, 400, 300));
}

TEST(EllipseMatrix, TheCentreComesFromTheAxisAlongEachCoordinate) {
  // The axes do not meet: x 190 is the middle of the first, y 210 of the second.
  const EllipseAxes level{{90, 200, 0}, {290, 200, 0}, {205, 160, 0}, {205, 260, 0}, 0, 1.0f};
  const Matrix matrix = MatrixOf(level, 400, 300);
  EXPECT_FLOAT_EQ(-1.9f, matrix[6]);
  EXPECT_FLOAT_EQ(-4.2f, matrix[7]);
  // Exchanged: y 200 is the middle of the first, x 205 of the second.
  const EllipseAxes upright{{190, 100, 0}, {190, 300, 0}, {155, 210, 0}, {255, 210, 0}, 0, 1.0f};
  const Matrix turned = MatrixOf(upright, 400, 300);
  EXPECT_NEAR(-2.0, static_cast<double>(turned[6]), 1e-5);
  EXPECT_NEAR(205 / 50.0, static_cast<double>(turned[7]), 1e-5);
}

// The first axis at which single precision gives exactly this direction.
std::optional<fpf_point> AxisOfDirection(float direction) {
  for (int x = 100000; x < 1200000; ++x) {
    for (const int ahead : {1, 2, 3, 4}) {
      const int y = direction < 1.0f ? x + ahead : -x + ahead;
      if (static_cast<float>(std::atan2(y, direction < 1.0f ? x : -x)) == direction)
        return fpf_point{x, y, 0};
    }
  }
  return std::nullopt;
}

TEST(EllipseMatrix, ADirectionExactlyOnTheBoundCountsAsNearerTheVertical) {
  const std::optional<fpf_point> end = AxisOfDirection(0.7854f);
  ASSERT_TRUE(end.has_value());
  // The first axis starts at the origin; the second has the middle (1000, 3000).
  const fpf_point second[] = {{900, 2900, 0}, {1100, 3100, 0}};
  const auto centre_x = [&](fpf_point p1) {
    const EllipseAxes axes{{0, 0, 0}, p1, second[0], second[1], 0, 1.0f};
    const Matrix m = MatrixOf(axes, 100, 100);
    // The matrix takes the centre to (0, 0): solve for u.
    const double determinant = double{m[0]} * double{m[4]} - double{m[3]} * double{m[1]};
    return 100.0 * (double{m[3]} * double{m[7]} - double{m[4]} * double{m[6]}) / determinant;
  };
  EXPECT_NEAR(1000, centre_x(*end), 1.0) << "x of the second axis";
  const fpf_point flatter{end->x + 100, end->y, 0};
  EXPECT_NEAR(flatter.x / 2, centre_x(flatter), flatter.x * 1e-4) << "x of the first axis";
}

TEST(EllipseMatrix, HalfAxesOfTwoPixelsAreNoEllipse) {
  const Matrix none = {99, 0, 0, 0, 99, 0, 0, 0, 1};
  const auto with_lengths = [](int first, int second, int padding, float scale) {
    return MatrixOf({{0, 0, 0}, {first, 0, 0}, {0, 0, 0}, {0, second, 0}, padding, scale}, 400,
                    300);
  };
  EXPECT_EQ(none, with_lengths(5, 100, 0, 1.0f));  // 5 pixels are 2 a side
  EXPECT_EQ(none, with_lengths(100, 5, 0, 1.0f));
  EXPECT_EQ(none, with_lengths(0, 0, 0, 1.0f));
  EXPECT_EQ(none, with_lengths(100, 100, -48, 1.0f));
  EXPECT_EQ(none, with_lengths(10, 10, 0, 0.4f));
  EXPECT_NE(none, with_lengths(6, 6, 0, 1.0f));
  EXPECT_NE(none, with_lengths(5, 100, 0, 1.1f));
  EXPECT_NE(none, with_lengths(0, 0, 10, 1.0f));
}

TEST(EllipseMatrix, TakesAxesOfAnyTurnToTheUnitCircle) {
  for (int degrees = -180; degrees <= 180; degrees += 7) {
    const double angle = degrees * 3.14159265358979 / 180;
    const auto at = [angle](double along, double across) {
      return fpf_point{
          500 + static_cast<int>(std::lround(along * std::cos(angle) - across * std::sin(angle))),
          400 + static_cast<int>(std::lround(along * std::sin(angle) + across * std::cos(angle))),
          0};
    };
    const fpf_point ends[] = {at(-200, 0), at(200, 0), at(0, -120), at(0, 120)};
    const Matrix m = MatrixOf({ends[0], ends[1], ends[2], ends[3], 0, 1.0f}, 1000, 800);
    const double expected[][2] = {{-1, 0}, {1, 0}, {0, -1}, {0, 1}};
    for (int i = 0; i < 4; ++i) {
      const double u = ends[i].x / 1000.0;
      const double v = ends[i].y / 800.0;
      // Points and half lengths are whole pixels: one in 120.
      EXPECT_NEAR(expected[i][0], double{m[0]} * u + double{m[3]} * v + double{m[6]}, 0.015)
          << degrees;
      EXPECT_NEAR(expected[i][1], double{m[1]} * u + double{m[4]} * v + double{m[7]}, 0.015)
          << degrees;
    }
  }
}

TEST(MeasureFace, AFaceComputedByHand) {
  FaceRecord face;
  face.set_landmark(68, {100, 195}).set_landmark(70, {101, 205});  // (100, 200)
  face.set_landmark(69, {220, 198}).set_landmark(71, {221, 203});  // (220, 200)
  face.set_landmark(42, {160, 180}).set_landmark(65, {165, 305});  // extended to (156, 92)
  const FaceGeometry geometry = MeasureFace(face.as<FACE_INFO_t>());
  EXPECT_EQ(100, geometry.side1.x);
  EXPECT_EQ(200, geometry.side1.y);
  EXPECT_EQ(220, geometry.side2.x);
  EXPECT_EQ(200, geometry.side2.y);
  EXPECT_EQ(156, geometry.forehead.x);  // 156.5
  EXPECT_EQ(92, geometry.forehead.y);   // 92.5
  EXPECT_EQ(0, geometry.forehead.reserved);
  EXPECT_EQ(60, geometry.sample_radius);
  EXPECT_EQ(106, geometry.radius);  // 213.2 / 2
  EXPECT_EQ(160, geometry.centre_x);
  EXPECT_EQ(198, geometry.centre_y);  // (92 + 305) / 2
  EXPECT_EQ(60, geometry.half_width);
  EXPECT_EQ(106, geometry.half_height);  // (305 - 92) / 2
  EXPECT_EQ(2, geometry.sample_step);
}

TEST(MeasureFace, HalvesAreCutTowardsZero) {
  FaceRecord face;
  face.set_landmark(68, {-3, -5}).set_landmark(70, {0, 0});
  face.set_landmark(69, {3, 5}).set_landmark(71, {0, 0});
  face.set_landmark(42, {1, 1}).set_landmark(65, {10, 2});
  const FaceGeometry geometry = MeasureFace(face.as<FACE_INFO_t>());
  EXPECT_EQ(-1, geometry.side1.x);
  EXPECT_EQ(-2, geometry.side1.y);
  EXPECT_EQ(1, geometry.side2.x);
  EXPECT_EQ(2, geometry.side2.y);
  EXPECT_EQ(-5, geometry.forehead.x);  // 1 - 6.3
  EXPECT_EQ(0, geometry.forehead.y);   // 1 - 0.7
}

TEST(MeasureFace, TheSamplingStepGrowsWithTheSquare) {
  const auto step = [](int across) {
    FaceRecord face;
    face.set_landmark(69, {across, 0}).set_landmark(71, {across, 0});
    return MeasureFace(face.as<FACE_INFO_t>()).sample_step;
  };
  EXPECT_EQ(1, step(0));
  EXPECT_EQ(1, step(59));   // radius 29
  EXPECT_EQ(1, step(60));   // 30
  EXPECT_EQ(1, step(119));  // 59
  EXPECT_EQ(2, step(120));  // 60
  EXPECT_EQ(33, step(2000));
}

TEST(MeasureFace, TheLongerAxisSetsTheRadius) {
  FaceRecord face = PortraitFace(500, 400, 100);
  EXPECT_EQ(110, MeasureFace(face.as<FACE_INFO_t>()).radius);  // chin to forehead: 220 or 221
  face.set_landmark(69, {800, 390}).set_landmark(71, {800, 415});
  EXPECT_EQ(200, MeasureFace(face.as<FACE_INFO_t>()).radius);
}

WhiteningShifts ShiftsOf(int intensity, int saturation, int intensity_level, int saturation_level) {
  return ComputeShifts({intensity * 10, saturation * 10, 10}, intensity_level, saturation_level);
}

// In single precision, for as many samples as there can be.
TEST(ColourSums, MeansAreThoseOfWholeNumbers) {
  for (int count = 1; count <= 15000; count += count < 1000 ? 1 : 37) {
    const ColourSums sums{0, 0, count};
    for (int mean = 0; mean < 255; ++mean) {
      const int last = (mean + 1) * count - 1;  // the largest sum that still has that mean
      ASSERT_EQ(mean, sums.mean(mean * count)) << count;
      ASSERT_EQ(mean, sums.mean(last)) << last << " / " << count;
    }
  }
  EXPECT_EQ(0, ColourSums{}.mean(7));
}

// An axis whose ends are whole numbers, and so is its length: the root must not fall short of it.
TEST(EllipseShapes, AreMeasuredInWholePixels) {
  const fpf_point origin{0, 0, 0};
  for (int m = 2; m < 60; ++m) {
    for (int n = 1; n < m; ++n) {
      const int32_t a = m * m - n * n, b = 2 * m * n, c = m * m + n * n;
      for (const int32_t scale : {2, 38, 140}) {
        const EllipseShape shape = ShapeOf(
            {{-scale * a, scale * b, 0}, origin, origin, {scale * a - 1, scale * b, 0}, 0, 1.0f});
        ASSERT_EQ(static_cast<float>(scale * c / 2), shape.half_first) << a << ", " << b;
        ASSERT_LT(shape.half_second, shape.half_first);
        ASSERT_FALSE(shape.empty());
      }
    }
  }
}

TEST(ComputeShifts, ALiftIsADifferenceOfLogits) {
  const WhiteningShifts shifts = ShiftsOf(100, 120, 50, 33);
  EXPECT_FLOAT_EQ(0.9352116f, shifts.intensity);  // (ln 1.55 - ln 0.7) / 0.85
  EXPECT_EQ(33.0f, shifts.saturation);
}

TEST(ComputeShifts, FacesTooDarkOrTooBrightAreNotLifted) {
  for (const int mean : {0, 1, 50, 210, 255})
    EXPECT_EQ(0.0f, ShiftsOf(mean, 100, 40, 9).intensity) << mean;
  for (const int mean : {51, 52, 208, 209})
    EXPECT_GT(ShiftsOf(mean, 100, 40, 9).intensity, 0.0f) << mean;
}

TEST(ComputeShifts, GreyFacesKeepTheirSaturation) {
  for (const int mean : {0, 50}) EXPECT_EQ(0.0f, ShiftsOf(100, mean, 40, 9).saturation) << mean;
  for (const int mean : {51, 255}) EXPECT_EQ(9.0f, ShiftsOf(100, mean, 40, 9).saturation) << mean;
}

TEST(ComputeShifts, MeansAreCutToWholes) {
  EXPECT_EQ(0.0f, ComputeShifts({509, 509, 10}, 40, 9).intensity);  // 50.9
  EXPECT_EQ(0.0f, ComputeShifts({509, 509, 10}, 40, 9).saturation);
  EXPECT_GT(ComputeShifts({2099, 519, 10}, 40, 9).intensity, 0.0f);  // 209.9
  EXPECT_EQ(9.0f, ComputeShifts({2099, 519, 10}, 40, 9).saturation);
}

TEST(ComputeShifts, TargetsAreCappedJustBelowWhite) {
  const float most = LogitOfIntensity(254) - LogitOfIntensity(200);
  EXPECT_EQ(most, ShiftsOf(200, 100, 54, 0).intensity);
  EXPECT_EQ(most, ShiftsOf(200, 100, 55, 0).intensity);
  EXPECT_EQ(most, ShiftsOf(200, 100, 100000, 0).intensity);
  EXPECT_EQ(most, ShiftsOf(200, 100, INT_MAX, 0).intensity);
}

TEST(ComputeShifts, NothingIsDarkened) {
  for (const int level : {0, -1, -99, -100, -101, INT_MIN}) {
    EXPECT_EQ(0.0f, ShiftsOf(100, 100, level, 0).intensity) << level;
  }
  EXPECT_EQ(-20.0f, ShiftsOf(100, 100, 0, -20).saturation);
}

TEST(ComputeShifts, WithoutSamplesNothingIsShifted) {
  const WhiteningShifts shifts = ComputeShifts({}, 40, 9);
  EXPECT_EQ(0.0f, shifts.intensity);
  EXPECT_EQ(0.0f, shifts.saturation);
}

void ExpectPoint(int x, int y, const fpf_point& point) {
  EXPECT_EQ(x, point.x);
  EXPECT_EQ(y, point.y);
}

TEST(FaceEllipses, EachTakesItsLandmarks) {
  FaceRecord face;
  for (int i = 12; i <= 75; ++i) face.set_landmark(i, {1000 + i, 3000 + 2 * i});
  FaceGeometry geometry{};
  geometry.side1 = {1, 2, 0};
  geometry.side2 = {3, 4, 0};
  geometry.forehead = {5, 6, 0};
  const auto ellipses = FaceEllipses(face.as<FACE_INFO_t>(), geometry, 1.1f);
  ExpectPoint(1, 2, ellipses[0].p0);
  ExpectPoint(3, 4, ellipses[0].p1);
  ExpectPoint(5, 6, ellipses[0].p2);
  ExpectPoint(1065, 3130, ellipses[0].p3);
  ExpectPoint(1059, 3118, ellipses[1].p2);  // between 57 and 61
  const int landmarks[7][4] = {{0, 0, 0, 65},    {70, 71, 0, 43},  {60, 59, 57, 58},
                               {64, 63, 61, 62}, {12, 13, 14, 15}, {34, 33, 35, 36},
                               {39, 38, 40, 41}};
  const int paddings[7] = {0, 0, 10, 10, 0, 10, 10};
  for (size_t i = 0; i < 7; ++i) {
    SCOPED_TRACE(i);
    const fpf_point points[4] = {ellipses[i].p0, ellipses[i].p1, ellipses[i].p2, ellipses[i].p3};
    for (int j = 0; j < 4; ++j) {
      const int landmark = landmarks[i][j];
      if (landmark != 0) ExpectPoint(1000 + landmark, 3000 + 2 * landmark, points[j]);
    }
    EXPECT_EQ(paddings[i], ellipses[i].padding);
    EXPECT_EQ(i == 0 ? 1.1f : 1.0f, ellipses[i].scale);
  }
}

TEST(FaceEllipses, TheMiddleOfTheEyesIsCutTowardsZero) {
  FaceRecord face;
  face.set_landmark(57, {-3, 10}).set_landmark(61, {0, 5});
  const auto ellipses = FaceEllipses(face.as<FACE_INFO_t>(), {}, 1.0f);
  ExpectPoint(-1, 7, ellipses[1].p2);
}

TEST(WhiteningParameters, AgreeWithTheModelForFacesOfAnyTurn) {
  const Frame frame = TextureFrame(640, 480);
  using Places = std::vector<std::pair<int, int>>;
  Places sampled;
  const auto sample = [&](int x, int y) {
    sampled.emplace_back(x, y);
    return reference::SampleYuv(frame.bytes.data(), x, y, frame.width, frame.height);
  };
  std::mt19937 random(3);
  for (int i = 0; i < 200; ++i) {
    const FaceRecord face =
        PortraitFace(static_cast<int>(random() % 640), static_cast<int>(random() % 480),
                     3 + static_cast<int>(random() % 200), static_cast<double>(random() % 360));
    sampled.clear();
    const auto expected = reference::MeasureFace(face, 30, 20, 8, 640, 480, sample);
    const FACE_INFO_t record = face.as<FACE_INFO_t>();
    const FaceGeometry geometry = MeasureFace(record);
    EXPECT_EQ(expected.radius, geometry.radius);
    EXPECT_EQ(expected.half_width, geometry.half_width);
    EXPECT_EQ(expected.half_height, geometry.half_height);
    EXPECT_EQ(expected.centre.x, geometry.centre_x);
    EXPECT_EQ(expected.centre.y, geometry.centre_y);
    Places places;
    ForEachSample(geometry, 640, 480, [&](int x, int y) { places.emplace_back(x, y); });
    EXPECT_EQ(sampled, places);
    const auto ellipses = FaceEllipses(record, geometry, 1.0f);
    for (size_t e = 0; e < 7; ++e) {
      const Matrix matrix = MatrixOf(ellipses[e], 640, 480);
      for (size_t k = 0; k < 9; ++k) {
        const double entry = expected.uniforms.ellipses[e][k];
        EXPECT_NEAR(entry, static_cast<double>(matrix[k]), 1e-5 * (1 + std::abs(entry)));
      }
    }
  }
}

// Sanitizer builds watch the arithmetic.
TEST(WhiteningParameters, AnyRecordIsArithmeticallySafe) {
  std::mt19937 random(11);
  for (int i = 0; i < 3000; ++i) {
    const FACE_INFO_t record = GarbageRecord(random);
    const FaceGeometry geometry = MeasureFace(record);
    EXPECT_GE(geometry.sample_step, 1);
    EXPECT_GE(geometry.sample_radius, 0);
    EXPECT_GE(geometry.half_width, 0);
    EXPECT_GE(geometry.half_height, 0);
    ForEachSample(geometry, 640, 480, [](int x, int y) {
      ASSERT_TRUE(x >= 0 && y >= 0 && x < 640 && y < 480) << x << ", " << y;
    });
    for (const EllipseAxes& axes : FaceEllipses(record, geometry, 1.1f)) {
      EXPECT_EQ(1.0f, MatrixOf(axes, 640, 480)[8]);
    }
  }
}

}  // namespace
}  // namespace lumora::test
