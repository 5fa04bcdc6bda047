// SPDX-License-Identifier: Apache-2.0
// The whitening programs, pixel by pixel.
#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "lumora/programs/face_whitening_programs.h"
#include "programs/pixel_test.h"
#include "programs/program_draw.h"
#include "reference/whitening.h"
#include "support/compare.h"
#include "support/pictures.h"

namespace lumora::test {
namespace {

using reference::EllipseMatrix;
using reference::Vec2;
using reference::WhiteningUniforms;

class WhiteningPixels : public PixelTest {};

// An ellipse by its centre, half axes and turn.
EllipseMatrix Ellipse(double x, double y, double a, double b, double turn) {
  const double c = std::cos(turn);
  const double s = std::sin(turn);
  return {c / a, -s / b, 0, s / a, c / b, 0, -(c * x + s * y) / a, (s * x - c * y) / b, 1};
}

// Of one distance everywhere.
constexpr EllipseMatrix Constant(double distance) {
  return {0, 0, 0, 0, 0, 0, distance, 0, 1};
}

// A face with its seven ellipses, some of which overlap.
const std::array<EllipseMatrix, 7> kFace = {
    Ellipse(0.5, 0.5, 0.4, 0.45, 0.2),   Ellipse(0.5, 0.6, 0.15, 0.25, 0.2),
    Ellipse(0.38, 0.4, 0.07, 0.05, 0.1), Ellipse(0.62, 0.42, 0.07, 0.05, -0.1),
    Ellipse(0.5, 0.72, 0.2, 0.1, 0),     Ellipse(0.38, 0.4, 0.12, 0.1, 0.1),
    Ellipse(0.62, 0.42, 0.12, 0.1, -0.1)};

template <typename Program>
void SetEllipses(Program& program, const std::array<EllipseMatrix, 7>& ellipses) {
  for (size_t ellipse = 0; ellipse < 7; ++ellipse) {
    for (size_t i = 0; i < 9; ++i) {
      program.m_fEllipseController[ellipse][i] = static_cast<float>(ellipses[ellipse][i]);
    }
  }
}

// The model with the program's own single-precision values.
WhiteningUniforms ModelOf(const GLProgWhiteningBase& program) {
  WhiteningUniforms u;
  for (size_t ellipse = 0; ellipse < 7; ++ellipse) {
    for (size_t i = 0; i < 9; ++i)
      u.ellipses[ellipse][i] = program.m_fEllipseController[ellipse][i];
  }
  u.intensity_shift = program.m_fDiffI;
  u.saturation_shift = program.m_fDiffS;
  return u;
}

// Pixels nearer than this to an ellipse's line may fall on either side.
constexpr double kLineSlack = 1e-4;

bool OffAllLines(const WhiteningUniforms& uniforms, Vec2 place) {
  return std::all_of(uniforms.ellipses.begin(), uniforms.ellipses.end(),
                     [&](const EllipseMatrix& ellipse) {
                       return std::abs(EllipseDistance(ellipse, place) - 1.0) > kLineSlack;
                     });
}

TEST_F(WhiteningPixels, WholeFramesWhitenAsTheModelDoes) {
  const auto program = Loaded<GLProgFaceWhitening>();
  SetEllipses(*program, kFace);
  const float shifts[][2] = {{1.5f, 0.1f}, {-1.0f, -0.2f}, {0.0f, 0.0f}, {2.0f, 0.0f}};
  for (const Image& image : {NoiseImage(160, 120, 21), GradientImage(160, 120, 90)}) {
    const Texture texture(image);
    for (const auto& shift : shifts) {
      program->m_fDiffI = shift[0];
      program->m_fDiffS = shift[1];
      const WhiteningUniforms uniforms = ModelOf(*program);
      const auto certain = [&](int x, int y) {
        return OffAllLines(uniforms, {(x + 0.5) / 160, (y + 0.5) / 120});
      };
      EXPECT_TRUE(SameImage(DrawModel(reference::FaceWhitening{{&image}, uniforms}, 160, 120),
                            DrawProgram(*program, {texture.name()}, 160, 120),
                            Compare().within(1).only(certain)));
    }
  }
}

TEST_F(WhiteningPixels, TilesWhitenAsTheModelDoesAndKeepWhatIsDone) {
  const auto program = Loaded<GLProgFaceWhiteningLarge>();
  SetEllipses(*program, kFace);
  program->m_fDiffI = 1.2f;
  program->m_fDiffS = 0.15f;
  Image previous = NoiseImage(96, 96, 22);
  for (size_t i = 3; i < previous.bytes.size(); i += 8) previous.bytes[i] = 0;  // every other one
  const Image image = NoiseImage(96, 96, 23);
  const Texture input(image);
  const Texture before(previous);
  const float tiles[][4] = {{1, 1, 0, 0}, {0.5f, 0.5f, 0.25f, 0.3f}, {0.25f, 0.4f, 0.6f, 0.05f}};
  for (const auto& tile : tiles) {
    std::copy(tile, tile + 4, program->m_fScaleController);
    WhiteningUniforms uniforms = ModelOf(*program);
    uniforms.tile_scale = {tile[0], tile[1]};
    uniforms.tile_offset = {tile[2], tile[3]};
    const auto certain = [&](int x, int y) {
      return OffAllLines(uniforms,
                         {uniforms.tile_offset.x + uniforms.tile_scale.x * (x + 0.5) / 96,
                          uniforms.tile_offset.y + uniforms.tile_scale.y * (y + 0.5) / 96});
    };
    const Image drawn = DrawProgram(*program, {input.name(), before.name()}, 96, 96);
    EXPECT_TRUE(
        SameImage(DrawModel(reference::FaceWhiteningLarge{{&image}, {&previous}, uniforms}, 96, 96),
                  drawn, Compare().within(1).only(certain)));
    EXPECT_TRUE(SameImage(previous, drawn, Compare().only([&](int x, int y) {
      return previous.pixel(x, y)[3] != 0;
    }))) << "kept, byte for byte";
  }
}

// One texel in a place that lies inside the ellipses named, at their very centres.
std::array<int, 4> Whitened(GLProgFaceWhitening& program, std::array<uint8_t, 4> hsi,
                            const std::vector<size_t>& inside, double outer = 0.0) {
  std::array<EllipseMatrix, 7> ellipses;
  ellipses.fill(Constant(5.0));
  ellipses[0] = Constant(outer);
  for (const size_t ellipse : inside) ellipses[ellipse] = Constant(0.0);
  SetEllipses(program, ellipses);
  Image image(1, 1);
  std::copy(hsi.begin(), hsi.end(), image.bytes.begin());
  const Texture texture(image);
  const Image drawn = DrawProgram(program, {texture.name()}, 1, 1);
  return {drawn.bytes[0], drawn.bytes[1], drawn.bytes[2], drawn.bytes[3]};
}

TEST_F(WhiteningPixels, AlphaTellsTheInnerEllipses) {
  const auto program = Loaded<GLProgFaceWhitening>();
  const auto alpha = [&](const std::vector<size_t>& inside) {
    return Whitened(*program, {1, 2, 100, 7}, inside)[3];
  };
  EXPECT_EQ(alpha({}), 255);
  EXPECT_NEAR(alpha({1}), 0.6 * 255, 1);
  EXPECT_NEAR(alpha({4}), 0.4 * 255, 1);
  for (const size_t eye : {5u, 6u}) EXPECT_NEAR(alpha({eye}), 0.3 * 255, 1);
  for (const size_t eye : {2u, 3u}) EXPECT_NEAR(alpha({eye}), 0.1 * 255, 1);
  EXPECT_NEAR(alpha({1, 4}), 0, 1) << "1 - 0.4 - 0.6, but for the last bit";
  for (const size_t eye : {2u, 3u, 5u, 6u})
    EXPECT_EQ(alpha({eye, 4}), 0) << "negative, stored as 0";
  EXPECT_NEAR(alpha({1, 2, 3, 5, 6}), 0.1 * 255, 1) << "ellipses nest";
}

TEST_F(WhiteningPixels, IntensityIsLiftedInLogitSpaceAndSaturationAdded) {
  const auto program = Loaded<GLProgFaceWhitening>();
  program->m_fDiffI = static_cast<float>(std::log(3.0) / 0.85);  // trebles the odds
  program->m_fDiffS = 0.25f;
  const std::array<int, 4> centre = Whitened(*program, {33, 40, 51, 0}, {});
  EXPECT_EQ(centre[0], 33) << "hue never changes";
  EXPECT_NEAR(centre[1], 40 + 0.25 * 255, 1);
  EXPECT_NEAR(centre[2], 255 * (0.75 / 1.75), 1) << "odds of 1 to 4 become 3 to 4";
  const std::array<int, 4> halfway = Whitened(*program, {33, 40, 51, 0}, {}, 0.5);
  EXPECT_NEAR(halfway[1], 40 + 0.125 * 255, 1);
  EXPECT_NEAR(halfway[2], (51 + 255 * (0.75 / 1.75)) / 2, 1);
}

TEST_F(WhiteningPixels, IntensitiesOfZeroAndOneStay) {
  const auto program = Loaded<GLProgFaceWhitening>();
  for (const float shift : {-1.0f, 0.0f, 1.5f}) {
    program->m_fDiffI = shift;
    EXPECT_EQ(Whitened(*program, {9, 9, 255, 0}, {})[2], 255);
    EXPECT_EQ(Whitened(*program, {9, 9, 0, 0}, {})[2], 0);
  }
}

TEST_F(WhiteningPixels, OnTheOuterLineNothingChanges) {
  const auto program = Loaded<GLProgFaceWhitening>();
  program->m_fDiffI = 2.0f;
  program->m_fDiffS = 0.5f;
  const std::array<int, 4> unchanged = {10, 20, 30, 40};
  EXPECT_EQ(Whitened(*program, {10, 20, 30, 40}, {1, 2}, 1.0), unchanged);
  EXPECT_EQ(Whitened(*program, {10, 20, 30, 40}, {1, 2}, 3.0), unchanged);
  EXPECT_NE(Whitened(*program, {10, 20, 30, 40}, {1, 2}, 0.999), unchanged);
}

TEST_F(WhiteningPixels, EmptyEllipseStillHoldsTheOrigin) {
  const auto program = Loaded<GLProgFaceWhitening>();
  std::array<EllipseMatrix, 7> ellipses;
  ellipses.fill(Constant(5.0));
  ellipses[0] = Constant(0.0);
  ellipses[1] = {99, 0, 0, 0, 99, 0, 0, 0, 99};
  SetEllipses(*program, ellipses);
  const Image image(256, 256);
  const Texture texture(image);
  const Image drawn = DrawProgram(*program, {texture.name()}, 256, 256);
  EXPECT_NEAR(drawn.pixel(0, 0)[3], 0.6 * 255, 1) << "at 0.28 of its line";
  EXPECT_EQ(drawn.pixel(0, 3)[3], 255);
  EXPECT_EQ(drawn.pixel(128, 128)[3], 255);
}

TEST_F(WhiteningPixels, AnyPreviousAlphaButZeroBlocksTheNewValue) {
  const auto program = Loaded<GLProgFaceWhiteningLarge>();
  SetEllipses(*program, kFace);
  program->m_fDiffI = 1.0f;
  const float whole[4] = {1, 1, 0, 0};
  std::copy(whole, whole + 4, program->m_fScaleController);
  Image previous(256, 1);
  for (int x = 0; x < 256; ++x) {
    uint8_t* const texel = previous.pixel(x, 0);
    texel[0] = 1;
    texel[1] = 2;
    texel[2] = 3;
    texel[3] = static_cast<uint8_t>(x);
  }
  Image fresh(256, 1);
  fresh.fill(100, 100, 100, 0);
  const Texture input(fresh);
  const Texture before(previous);
  const Image drawn = DrawProgram(*program, {input.name(), before.name()}, 256, 1);
  EXPECT_EQ(drawn.pixel(0, 0)[0], 100);
  for (int x = 1; x < 256; ++x) EXPECT_EQ(drawn.pixel(x, 0)[0], 1) << "previous alpha " << x;
}

}  // namespace
}  // namespace lumora::test
