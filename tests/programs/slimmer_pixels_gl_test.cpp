// SPDX-License-Identifier: Apache-2.0
// The slimming warps, pixel by pixel.
#include <cmath>
#include <random>
#include <string>

#include "lumora/programs/cheek_slimmer_programs.h"
#include "programs/pixel_test.h"
#include "programs/program_draw.h"
#include "programs/sampling_bounds.h"
#include "reference/colour.h"
#include "reference/slimmer.h"
#include "support/compare.h"
#include "support/pictures.h"

namespace lumora::test {
namespace {

using reference::SlimmerUniforms;
using reference::WarpPoint;

// A ratio nearer than this to 0.95 or 1 may be marked or not: the last bits decide.
constexpr double kRatioSlack = 1e-4;

class SlimmerPixels : public PixelTest {};

struct Face {
  float x, y, strength, radius, direction, distance, scale;
};

constexpr Face kFaces[] = {
    {0.5f, 0.45f, 0.8f, 0.3f, 1.5708f, 0.5f, 1.2f},  // chin below
    {0.3f, 0.6f, 1.6f, 0.45f, -0.7f, 0.9f, 0.8f},    // tilted, wide
    {0.05f, 0.1f, 0.5f, 0.25f, 3.0f, 0.3f, 2.0f},    // next to a corner
    {0.62f, 0.41f, -0.4f, 0.35f, 4.0f, 0.7f, 1.0f},  // pushes outward
};

template <typename Program>
void SetFace(Program& program, const Face& face, int width, int height) {
  const float controller[4] = {face.x, face.y, face.strength, face.radius};
  const float limiter[3] = {face.direction, face.distance, face.scale};
  std::copy(controller, controller + 4, program.m_fvController);
  std::copy(limiter, limiter + 3, program.m_fvAngleLimiter);
  program.m_fAspectRatio = static_cast<float>(height) / static_cast<float>(width);
}

// The block [x0, x0 + w) x [y0, y0 + h) of the frame, in texture coordinates.
void SetBlock(GLProgWarp& program, float x0, float y0, float w, float h) {
  program.m_fvScale[0] = w;
  program.m_fvScale[1] = h;
  program.m_fvShift[0] = program.m_fvController[0] - x0;
  program.m_fvShift[1] = program.m_fvController[1] - y0;
}

SlimmerUniforms ModelOf(const GLProgWarp& p, float edge_fix) {
  SlimmerUniforms u;
  u.centre = {p.m_fvController[0], p.m_fvController[1]};
  u.strength = p.m_fvController[2];
  u.radius = p.m_fvController[3];
  u.aspect_ratio = p.m_fAspectRatio;
  u.limiter_direction = p.m_fvAngleLimiter[0];
  u.limiter_distance = p.m_fvAngleLimiter[1];
  u.limiter_scale = p.m_fvAngleLimiter[2];
  u.edge_fix = edge_fix;
  u.block_scale = {p.m_fvScale[0], p.m_fvScale[1]};
  u.block_shift = {p.m_fvShift[0], p.m_fvShift[1]};
  return u;
}

/// The colour of a pixel, given what is sampled, in the plain or the mask variant.
TexelBounds Marked(const WarpPoint& point, const TexelBounds& sampled, bool mask) {
  if (!mask) return sampled;
  const bool unsure =
      std::abs(point.ratio - 0.95) < kRatioSlack || std::abs(point.unclamped - 1.0) < kRatioSlack;
  if (!unsure && !reference::MaskMarks(point)) return sampled;
  TexelBounds result = TexelBounds::Exactly(reference::kMaskRed);
  if (unsure) result.include(sampled);
  return result;
}

int RedPixels(const Image& image) {
  int count = 0;
  for (size_t i = 0; i < image.bytes.size(); i += 4) {
    const uint8_t* const b = &image.bytes[i];
    if (b[0] == 255 && b[1] == 0 && b[2] == 0 && b[3] == 255) ++count;
  }
  return count;
}

TEST_F(SlimmerPixels, PreviewWarpsAsTheModelDoes) {
  const Image noise = NoiseImage(96, 64, 11);
  const Texture texture(noise);
  const WarpInput input(noise);
  for (const bool mask : {false, true}) {
    const auto program = Loaded<GLProgCheekSlimmer>(mask);
    for (const Face& face : kFaces) {
      SetFace(*program, face, 96, 64);
      const SlimmerUniforms uniforms = ModelOf(*program, 0.2f);
      const ImageBounds bounds = DrawBounds(
          [&](Vec2 at) {
            const WarpPoint point = WarpFrame(at, uniforms);
            return Marked(point, input.at(point.coordinate), mask);
          },
          96, 64);
      EXPECT_LT(DoubtfulShare(bounds), 0.2);
      const Image drawn = DrawProgram(*program, {texture.name()}, 96, 64);
      EXPECT_TRUE(WithinImage(bounds, drawn, Compare().named(mask ? "mask" : "plain")));
      EXPECT_EQ(RedPixels(drawn) > 0, mask) << "noise has no such red of its own";
    }
  }
}

TEST_F(SlimmerPixels, PreviewFiltersAndWrapsAsItsTextureSays) {
  const Image smooth = GradientImage(96, 64);
  const auto program = Loaded<GLProgCheekSlimmer>(false);
  for (const Wrap wrap : {Wrap::ClampToEdge, Wrap::MirroredRepeat}) {
    const Texture texture(smooth, Filter::Linear, wrap);
    const WarpInput input(smooth, wrap, Filter::Linear);
    for (const Face& face : kFaces) {
      SetFace(*program, face, 96, 64);
      const SlimmerUniforms uniforms = ModelOf(*program, 0.2f);
      const ImageBounds bounds =
          DrawBounds([&](Vec2 at) { return input.at(WarpFrame(at, uniforms).coordinate); }, 96, 64);
      EXPECT_TRUE(WithinImage(bounds, DrawProgram(*program, {texture.name()}, 96, 64),
                              Compare().within(1)));
    }
  }
}

TEST_F(SlimmerPixels, StrengthZeroSamplesEveryPixelItself) {
  const Image noise = NoiseImage(96, 64, 12);
  const Texture texture(noise);
  const auto preview = Loaded<GLProgCheekSlimmer>(false);
  SetFace(*preview, kFaces[0], 96, 64);
  preview->m_fvController[2] = 0.0f;
  EXPECT_TRUE(SameImage(noise, DrawProgram(*preview, {texture.name()}, 96, 64)));

  const auto planes = Loaded<GLProgCheekSlimmerLarge>(false);
  SetFace(*planes, kFaces[0], 96, 64);
  planes->m_fvController[2] = 0.0f;
  SetBlock(*planes, 0, 0, 1, 1);
  const Image drawn = DrawProgram(*planes, {texture.name(), texture.name()}, 96, 64);
  Image expected(96, 64);
  for (size_t i = 0; i < noise.bytes.size(); i += 4) {
    const uint8_t texel[4] = {noise.bytes[i], noise.bytes[i], noise.bytes[i + 3], 255};
    std::copy(texel, texel + 4, &expected.bytes[i]);
  }
  EXPECT_TRUE(SameImage(expected, drawn));
}

TEST_F(SlimmerPixels, PreviewsBorderDoublesTheRatio) {
  // One pixel on the left border, where the fade factor is 2; the ratio of the point is set by the
  // radius: distance / radius, with the limiter far away.
  const Image noise = NoiseImage(64, 64, 13);
  const Texture texture(noise);
  const auto program = Loaded<GLProgCheekSlimmer>(false);
  const double row = (40 + 0.5) / 64;
  for (const float ratio : {0.5f, 0.6f, 0.9f, 0.25f}) {
    const float distance = 0.3f;
    SetFace(*program,
            {distance, static_cast<float>(row), 2.0f, distance / ratio, 0.0f, 0.001f, 0.001f}, 64,
            64);
    const SlimmerUniforms uniforms = ModelOf(*program, 0.2f);
    const WarpPoint point = WarpFrame({0.0, row}, uniforms);
    EXPECT_NEAR(point.ratio, std::min(1.0, 2.0 * static_cast<double>(ratio)), 1e-6);
    const Image drawn = DrawProgram(*program, {texture.name()}, 1, 1, EverywhereAt(0.0, row));
    const ImageBounds bounds =
        DrawBounds([&](Vec2) { return WarpInput(noise).at(point.coordinate); }, 1, 1);
    EXPECT_TRUE(WithinImage(bounds, drawn));
    if (ratio >= 0.5f) {
      EXPECT_EQ(drawn.bytes, std::vector<uint8_t>(noise.pixel(0, 40), noise.pixel(0, 40) + 4))
          << "unwarped";
    }
  }
}

TEST_F(SlimmerPixels, MaskMarksExactlyTheOuterRim) {
  // On a black picture, red is the mask's. Outside the face, where the ratio is 1, there is none.
  Image black(128, 128);
  black.fill(0, 0, 0, 255);
  const Texture texture(black);
  const auto program = Loaded<GLProgCheekSlimmer>(true);
  SetFace(*program, kFaces[0], 128, 128);
  const SlimmerUniforms uniforms = ModelOf(*program, 0.2f);
  const Image drawn = DrawProgram(*program, {texture.name()}, 128, 128);
  int marked = 0;
  int outside = 0;
  reference::ForEachFragment({}, 128, 128, 128, 128, [&](int x, int y, Vec2 at) {
    const WarpPoint point = WarpFrame(at, uniforms);
    const bool unsure =
        std::abs(point.ratio - 0.95) < kRatioSlack || std::abs(point.unclamped - 1.0) < kRatioSlack;
    if (unsure) return;
    const bool in_rim = point.ratio > 0.95 && point.ratio < 1.0;
    EXPECT_EQ(drawn.pixel(x, y)[0], in_rim ? 255 : 0) << x << ", " << y;
    marked += in_rim ? 1 : 0;
    outside += point.ratio >= 1.0 ? 1 : 0;
  });
  EXPECT_GT(marked, 100);
  EXPECT_GT(outside, 1000);
}

// Blocks of a frame of 128 x 96: place in texture coordinates and size in pixels.
struct Block {
  float x0, y0;
  int width, height;
};
constexpr Block kBlocks[] = {{0, 0, 128, 96}, {0.25f, 0.25f, 64, 48}, {0.5f, 0, 64, 72}};

void SetBlock(GLProgWarp& program, const Block& block) {
  SetBlock(program, block.x0, block.y0, static_cast<float>(block.width) / 128.0f,
           static_cast<float>(block.height) / 96.0f);
}

TEST_F(SlimmerPixels, PlanesWarpAsTheModelDoes) {
  const std::vector<uint8_t> luma_bytes = NoiseBytes(128 * 96, 14);
  const std::vector<uint8_t> chroma_bytes = NoiseBytes(64 * 48 * 2, 15);
  const Texture luma(GL_LUMINANCE, 128, 96, luma_bytes.data());
  const Texture chroma(GL_LUMINANCE_ALPHA, 64, 48, chroma_bytes.data());
  Image luma_image(128, 96);
  for (size_t i = 0; i < luma_bytes.size(); ++i) luma_image.bytes[4 * i] = luma_bytes[i];
  Image chroma_image(64, 48);
  for (size_t i = 0; i < chroma_bytes.size() / 2; ++i) {
    chroma_image.bytes[4 * i] = chroma_bytes[2 * i];
    chroma_image.bytes[4 * i + 3] = chroma_bytes[2 * i + 1];
  }
  const WarpInput luma_input(luma_image);
  const WarpInput chroma_input(chroma_image);
  for (const bool mask : {false, true}) {
    const auto program = Loaded<GLProgCheekSlimmerLarge>(mask);
    for (const Face& face : kFaces) {
      for (const Block& block : kBlocks) {
        SetFace(*program, face, 128, 96);
        SetBlock(*program, block);
        const SlimmerUniforms uniforms = ModelOf(*program, 0.0f);
        const ImageBounds bounds = DrawBounds(
            [&](Vec2 at) {
              const WarpPoint point = WarpBlock(at, uniforms);
              const TexelBounds y = luma_input.at(point.coordinate);
              const TexelBounds c = chroma_input.at(point.coordinate);
              return Marked(point,
                            {{y.low.r, c.low.r, c.low.a, 1.0}, {y.high.r, c.high.r, c.high.a, 1.0}},
                            mask);
            },
            block.width, block.height);
        EXPECT_LT(DoubtfulShare(bounds), 0.3);
        EXPECT_TRUE(WithinImage(bounds, DrawProgram(*program, {luma.name(), chroma.name()},
                                                    block.width, block.height)));
      }
    }
  }
}

TEST_F(SlimmerPixels, HsiBlocksWarpAsTheModelDoes) {
  const Image noise = NoiseImage(128, 96, 16);
  const Texture texture(noise);
  const WarpInput input(noise);
  for (const bool mask : {false, true}) {
    const auto program = Loaded<GLProgCheekSlimmerLarge_HSI>(mask);
    for (const Face& face : kFaces) {
      for (const Block& block : kBlocks) {
        SetFace(*program, face, 128, 96);
        SetBlock(*program, block);
        const SlimmerUniforms uniforms = ModelOf(*program, 0.0f);
        const ImageBounds bounds = DrawBounds(
            [&](Vec2 at) {
              const WarpPoint point = WarpBlock(at, uniforms);
              return Marked(point, input.at(point.coordinate, reference::HsiToYuv), mask);
            },
            block.width, block.height);
        EXPECT_LT(DoubtfulShare(bounds), 0.3);
        EXPECT_TRUE(WithinImage(bounds,
                                DrawProgram(*program, {texture.name()}, block.width, block.height),
                                Compare().within(1)));
      }
    }
  }
}

TEST_F(SlimmerPixels, HsiBlocksNeverReadTheirSecondInput) {
  const Image noise = NoiseImage(64, 64, 17);
  const Texture texture(noise);
  const Texture other(NoiseImage(64, 64, 18));
  const auto program = Loaded<GLProgCheekSlimmerLarge_HSI>(false);
  SetFace(*program, kFaces[0], 64, 64);
  SetBlock(*program, 0, 0, 1, 1);
  const Image alone = DrawProgram(*program, {texture.name()}, 64, 64);
  EXPECT_TRUE(SameImage(alone, DrawProgram(*program, {texture.name(), other.name()}, 64, 64)));
  EXPECT_NE(BoundTexture(1), other.name());
}

}  // namespace
}  // namespace lumora::test
