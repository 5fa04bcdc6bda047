// SPDX-License-Identifier: Apache-2.0
// The rectification programs, pixel by pixel.
#include <algorithm>
#include <cmath>
#include <vector>

#include "lumora/programs/rectification_programs.h"
#include "programs/pixel_test.h"
#include "programs/program_draw.h"
#include "programs/sampling_bounds.h"
#include "reference/rectification.h"
#include "support/compare.h"
#include "support/pictures.h"

namespace lumora::test {
namespace {

using reference::RadialCoefficients;
using reference::RectificationQuad;

class RectificationPixels : public PixelTest {};

constexpr RectificationQuad kIdentity = {{{0, 0}, {1, 0}, {0, 1}, {1, 1}}};

/// Sets the corners and returns them as the program has them.
RectificationQuad SetQuad(GLProgRectificaton& program, const RectificationQuad& quad) {
  RectificationQuad set;
  for (size_t i = 0; i < 4; ++i) {
    program.m_fvQuad[i][0] = static_cast<float>(quad[i].x);
    program.m_fvQuad[i][1] = static_cast<float>(quad[i].y);
    set[i] = {program.m_fvQuad[i][0], program.m_fvQuad[i][1]};
  }
  return set;
}

RadialCoefficients SetCoefficients(GLProgRadialDistortion& program, const RadialCoefficients& k) {
  RadialCoefficients set;
  for (size_t i = 0; i < 4; ++i) {
    program.m_fvKval[i] = static_cast<float>(k[i]);
    set[i] = program.m_fvKval[i];
  }
  return set;
}

TEST_F(RectificationPixels, UnitQuadIsTheIdentity) {
  const Image noise = NoiseImage(96, 64, 31);
  const Texture texture(noise);
  const auto program = Loaded<GLProgRectificaton>(false);
  SetQuad(*program, kIdentity);
  EXPECT_TRUE(SameImage(noise, DrawProgram(*program, {texture.name()}, 96, 64)));
}

TEST_F(RectificationPixels, QuadsMapAsTheModelDoes) {
  const Image noise = NoiseImage(96, 64, 32);
  std::vector<RectificationQuad> quads = {
      {{{0.1, 0.05}, {0.8, 0.2}, {-0.1, 0.9}, {1.2, 1.1}}},  // any four corners
      {{{1, 0}, {0, 0}, {1, 1}, {0, 1}}},                    // mirrored
  };
  for (const int degree : {-3, -1, 2, 3}) quads.push_back(reference::QuadOfDegree(degree));
  const auto program = Loaded<GLProgRectificaton>(false);
  for (const Wrap wrap : {Wrap::ClampToEdge, Wrap::MirroredRepeat}) {
    const Texture texture(noise, Filter::Nearest, wrap);
    const WarpInput input(noise, wrap);
    for (const RectificationQuad& quad : quads) {
      const RectificationQuad set = SetQuad(*program, quad);
      const ImageBounds bounds =
          DrawBounds([&](Vec2 at) { return input.at(QuadMap(at, set)); }, 96, 64);
      EXPECT_LT(DoubtfulShare(bounds), 0.2);
      EXPECT_TRUE(WithinImage(bounds, DrawProgram(*program, {texture.name()}, 96, 64)));
    }
  }
}

TEST_F(RectificationPixels, CornersBelongToTheirEnds) {
  // Four colours, one a quarter of the input; each output corner shows the one of its quad corner.
  Image quarters(2, 2);
  for (int i = 0; i < 4; ++i) quarters.pixel(i % 2, i / 2)[0] = static_cast<uint8_t>(10 + i);
  const Texture texture(quarters);
  const auto program = Loaded<GLProgRectificaton>(false);
  SetQuad(*program, {{{0.75, 0.75}, {0.25, 0.75}, {0.75, 0.25}, {0.25, 0.25}}});  // half a turn
  const Image drawn = DrawProgram(*program, {texture.name()}, 64, 64);
  EXPECT_EQ(drawn.pixel(0, 0)[0], 13);
  EXPECT_EQ(drawn.pixel(63, 0)[0], 12);
  EXPECT_EQ(drawn.pixel(0, 63)[0], 11);
  EXPECT_EQ(drawn.pixel(63, 63)[0], 10);
}

// The red pixels that the mask variant draws on black.
Image Dot(GLProgRectificaton& program, float degree) {
  Image black(200, 200);
  black.fill(0, 0, 0, 255);
  const Texture texture(black);
  program.m_fDegree = degree;
  return DrawProgram(program, {texture.name()}, 200, 200);
}

TEST_F(RectificationPixels, DotShowsTheDegree) {
  const auto program = Loaded<GLProgRectificaton>(true);
  SetQuad(*program, kIdentity);
  const struct {
    float degree;
    double x, y;
  } dots[] = {{1, 0.1, 0.1},  {-1, 0.1, 0.9}, {2, 0.5, 0.1},
              {-2, 0.5, 0.9}, {3, 0.9, 0.1},  {-3, 0.9, 0.9}};
  for (const auto& dot : dots) {
    const Image drawn = Dot(*program, dot.degree);
    int red = 0;
    for (int y = 0; y < 200; ++y) {
      for (int x = 0; x < 200; ++x) {
        const double distance = std::hypot((x + 0.5) / 200 - dot.x, (y + 0.5) / 200 - dot.y);
        if (std::abs(distance - 0.03) < 1e-4) continue;  // on the dot's line
        EXPECT_EQ(drawn.pixel(x, y)[0], distance < 0.03 ? 255 : 0) << x << ", " << y;
        red += drawn.pixel(x, y)[0] == 255 ? 1 : 0;
      }
    }
    EXPECT_GT(red, 90) << "degree " << dot.degree;
  }
}

TEST_F(RectificationPixels, DotOfDegreeZeroLiesOutside) {
  const auto program = Loaded<GLProgRectificaton>(true);
  SetQuad(*program, kIdentity);
  Image black(200, 200);
  black.fill(0, 0, 0, 255);
  EXPECT_TRUE(SameImage(black, Dot(*program, 0.0f)));
}

TEST_F(RectificationPixels, MaskVariantMapsLikeThePlainOne) {
  const Image noise = NoiseImage(96, 64, 33);
  const Texture texture(noise);
  const auto plain = Loaded<GLProgRectificaton>(false);
  const auto mask = Loaded<GLProgRectificaton>(true);
  SetQuad(*plain, reference::QuadOfDegree(2));
  SetQuad(*mask, reference::QuadOfDegree(2));
  mask->m_fDegree = 2.0f;
  const auto outside = [](int x, int y) {
    return reference::DistanceFromDot({(x + 0.5) / 96, (y + 0.5) / 64}, 2.0) > 1e-4;
  };
  EXPECT_TRUE(SameImage(DrawProgram(*plain, {texture.name()}, 96, 64),
                        DrawProgram(*mask, {texture.name()}, 96, 64), Compare().only(outside)));
}

TEST_F(RectificationPixels, RadialOfOneIsTheIdentity) {
  const Image noise = NoiseImage(96, 64, 34);
  const Texture texture(noise);
  const auto program = Loaded<GLProgRadialDistortion>();
  SetCoefficients(*program, {1, 0, 0, 0});
  EXPECT_TRUE(SameImage(noise, DrawProgram(*program, {texture.name()}, 96, 64)));
}

TEST_F(RectificationPixels, RadialBendsAsTheModelDoes) {
  const Image noise = NoiseImage(128, 96, 35);
  const std::vector<RadialCoefficients> all = {reference::DefaultRadialCoefficients(),
                                               {1.0, -0.2, 0.1, -0.05},
                                               {0.8, 0.3, 0.0, 0.4},
                                               {0.5, 0.0, 0.0, 0.0}};
  const auto program = Loaded<GLProgRadialDistortion>();
  Geometry cropped;
  cropped.coordinates = reference::CroppedCorners();
  for (const Wrap wrap : {Wrap::ClampToEdge, Wrap::MirroredRepeat}) {
    const Texture texture(noise, Filter::Nearest, wrap);
    const WarpInput input(noise, wrap);
    for (const RadialCoefficients& k : all) {
      const RadialCoefficients set = SetCoefficients(*program, k);
      for (const Geometry& geometry : {Geometry(), cropped}) {
        const ImageBounds bounds =
            DrawBounds([&](Vec2 at) { return input.at(RadialMap(at, set)); }, 128, 96, geometry);
        EXPECT_LT(DoubtfulShare(bounds), 0.25);
        EXPECT_TRUE(
            WithinImage(bounds, DrawProgram(*program, {texture.name()}, 128, 96, geometry)));
      }
    }
  }
}

TEST_F(RectificationPixels, RadialCornerIsScaledByTheCoefficientsSum) {
  // The corner lies at radius 1: it samples 0.5 + 0.5 * 0.9375 = 0.96875, the middle of texel 15
  // of 16.
  Image ramp(16, 16);
  for (int y = 0; y < 16; ++y) {
    for (int x = 0; x < 16; ++x) {
      ramp.pixel(x, y)[0] = static_cast<uint8_t>(10 * x);
      ramp.pixel(x, y)[1] = static_cast<uint8_t>(10 * y);
    }
  }
  const Texture texture(ramp);
  const auto program = Loaded<GLProgRadialDistortion>();
  SetCoefficients(*program, {0.5, 0.25, 0.125, 0.0625});
  const auto at = [&](double s, double t) {
    return DrawProgram(*program, {texture.name()}, 1, 1, EverywhereAt(s, t)).bytes;
  };
  EXPECT_EQ(at(1, 1)[0], 150);
  EXPECT_EQ(at(1, 1)[1], 150);
  EXPECT_EQ(at(0, 0)[0], 0);
  EXPECT_EQ(at(0, 1)[1], 150);
  SetCoefficients(*program, {0.25, 0.125, 0.0625, 0.0});  // sum 0.4375: 0.71875, texel 11
  EXPECT_EQ(at(1, 0)[0], 110);
}

}  // namespace
}  // namespace lumora::test
