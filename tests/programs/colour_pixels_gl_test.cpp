// SPDX-License-Identifier: Apache-2.0
// The colour programs, pixel by pixel.
//
// Arithmetic in these shaders is mediump, on some drivers half floats (11 bits): an 8-bit result
// may then be one step off. Hue and saturation are quotients and magnify what is off before them.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

#include "lumora/programs/colour_programs.h"
#include "programs/pixel_test.h"
#include "programs/program_draw.h"
#include "programs/sampling_bounds.h"
#include "reference/colour.h"
#include "support/compare.h"
#include "support/pictures.h"

namespace lumora::test {
namespace {

// Half the distance of two half floats below 1: what reading a texel may lose.
constexpr double kTexelError = 1.0 / 4096;
// A row of the matrix product: four terms below 2, each rounded to 11 bits.
constexpr double kMatrixError = 0.004;

class ColourPixels : public PixelTest {};

Image WithAlpha(Image image, uint8_t alpha) {
  for (size_t i = 3; i < image.bytes.size(); i += 4) image.bytes[i] = alpha;
  return image;
}

// One pixel through a program.
template <typename Program>
std::array<int, 4> Through(Program& program, std::array<uint8_t, 4> input) {
  Image image(1, 1);
  std::copy(input.begin(), input.end(), image.bytes.begin());
  const Texture texture(image);
  const Image drawn = DrawProgram(program, {texture.name()}, 1, 1);
  return {drawn.bytes[0], drawn.bytes[1], drawn.bytes[2], drawn.bytes[3]};
}

void ExpectNear(std::array<int, 4> actual, std::array<double, 4> expected, const char* what) {
  for (size_t i = 0; i < 4; ++i) EXPECT_NEAR(actual[i], expected[i], 1.0) << what << ", " << i;
}

TEST_F(ColourPixels, YuvToRgbOfEveryKindOfPicture) {
  const auto program = Loaded<GLProgYUV2RGB>();
  for (const Image& image : {WithAlpha(NoiseImage(128, 96, 1), 255), GradientImage(100, 60)}) {
    const Texture texture(image);
    EXPECT_TRUE(SameImage(DrawModel(reference::Yuv2Rgb{{&image}}, image.width, image.height),
                          DrawProgram(*program, {texture.name()}, image.width, image.height),
                          Compare().within(1)));
  }
}

TEST_F(ColourPixels, YuvToRgbScalesTheChromaOffsetsByTheInputsAlpha) {
  const auto program = Loaded<GLProgYUV2RGB>();
  const Image image = NoiseImage(128, 96, 2);  // every alpha
  const Texture texture(image);
  const Image drawn = DrawProgram(*program, {texture.name()}, 128, 96);
  EXPECT_TRUE(
      SameImage(DrawModel(reference::Yuv2Rgb{{&image}}, 128, 96), drawn, Compare().within(1)));
  // Grey with alpha 0: no offset is taken off.
  ExpectNear(Through(*program, {0, 128, 128, 0}), {1.402 * 128, 0, 1.772 * 128, 0}, "no alpha");
}

TEST_F(ColourPixels, YuvToRgbUsesTheMembersMatrix) {
  const auto program = Loaded<GLProgYUV2RGB>();
  reference::Yuv2Rgb model;
  for (int i = 0; i < 16; ++i) {
    program->m_fMatYUV2RGB[i] = static_cast<float>((i * 7 % 16) - 4) / 16.0f;
    model.matrix[static_cast<size_t>(i)] = static_cast<double>(program->m_fMatYUV2RGB[i]);
  }
  const Image image = NoiseImage(64, 64, 3);
  model.input.image = &image;
  const Texture texture(image);
  EXPECT_TRUE(SameImage(DrawModel(model, 64, 64), DrawProgram(*program, {texture.name()}, 64, 64),
                        Compare().within(1)));
}

// The range of results when each RGB value before the HSI statements may be off by `error`. Hue is
// free where that decides on which side of a full turn it lies, or where the channels may be equal;
// saturation is free where the largest channel may be zero.
TexelBounds HsiBounds(const Texel& rgb, double error) {
  TexelBounds bounds = TexelBounds::Exactly(reference::RgbToHsi(rgb));
  const double steps[3] = {-error, 0.0, error};
  double smallest_delta = 2.0;
  double smallest_max = 2.0;
  for (const double r : steps) {
    for (const double g : steps) {
      for (const double b : steps) {
        const Texel moved{rgb.r + r, rgb.g + g, rgb.b + b, 0.0};
        const double largest = std::max({moved.r, moved.g, moved.b});
        smallest_max = std::min(smallest_max, largest);
        smallest_delta = std::min(smallest_delta, largest - std::min({moved.r, moved.g, moved.b}));
        bounds.include(reference::RgbToHsi(moved));
      }
    }
  }
  if (bounds.high.r - bounds.low.r > 0.5 || smallest_delta < 2 * error) {
    bounds.low.r = 0.0;
    bounds.high.r = 1.0;
  }
  if (smallest_max < error) {
    bounds.low.g = 0.0;
    bounds.high.g = 1.0;
  }
  return bounds;
}

ImageBounds RgbToHsiBounds(const Image& image) {
  const reference::Sampler input{&image};
  return DrawBounds([&](Vec2 at) { return HsiBounds(input.sample(at), kTexelError); }, image.width,
                    image.height);
}

ImageBounds YuvToHsiBounds(const Image& image) {
  const reference::Yuv2Rgb to_rgb{{&image}};
  return DrawBounds([&](Vec2 at) { return HsiBounds(to_rgb(at), kMatrixError); }, image.width,
                    image.height);
}

// The share of pixels whose hue may be anything.
double FreeHues(const ImageBounds& bounds) {
  int64_t free_hues = 0;
  for (size_t i = 0; i < bounds.low.bytes.size(); i += 4) {
    if (bounds.low.bytes[i] == 0 && bounds.high.bytes[i] == 255) ++free_hues;
  }
  return static_cast<double>(free_hues * 4) / static_cast<double>(bounds.low.bytes.size());
}

TEST_F(ColourPixels, RgbToHsiOfEveryKindOfPicture) {
  const auto program = Loaded<GLProgRGB2HSI>();
  for (const Image& image : {NoiseImage(256, 128, 4), GradientImage(100, 60)}) {
    const Texture texture(image);
    const ImageBounds bounds = RgbToHsiBounds(image);
    EXPECT_LT(FreeHues(bounds), 0.03) << "a loose bound proves nothing";
    EXPECT_TRUE(WithinImage(bounds,
                            DrawProgram(*program, {texture.name()}, image.width, image.height),
                            Compare().within(1)));
  }
}

TEST_F(ColourPixels, RgbToHsiOfGreyAndBlackHasNoHueAndNoSaturation) {
  const auto program = Loaded<GLProgRGB2HSI>();
  for (int grey = 0; grey < 256; ++grey) {
    const auto byte = static_cast<uint8_t>(grey);
    const std::array<int, 4> expected = {0, 0, grey, 0};
    EXPECT_EQ(Through(*program, {byte, byte, byte, 255}), expected);
  }
}

TEST_F(ColourPixels, RgbToHsiGivesTiesToRedThenGreen) {
  const auto program = Loaded<GLProgRGB2HSI>();
  ExpectNear(Through(*program, {200, 200, 0, 255}), {255.0 / 6, 255, 200, 0}, "red and green");
  ExpectNear(Through(*program, {200, 0, 200, 255}), {255.0 * 5 / 6, 255, 200, 0}, "red and blue");
  ExpectNear(Through(*program, {0, 200, 200, 255}), {255.0 / 2, 255, 200, 0}, "green and blue");
}

TEST_F(ColourPixels, RgbToHsiLiftsANegativeHueByOneTurn) {
  const auto program = Loaded<GLProgRGB2HSI>();
  ExpectNear(Through(*program, {255, 0, 100, 255}), {255 * (1 - 100.0 / 255 / 6), 255, 255, 0},
             "red with blue above green");
  ExpectNear(Through(*program, {255, 100, 0, 255}), {255 * (100.0 / 255 / 6), 255, 255, 0},
             "red with green above blue");
  ExpectNear(Through(*program, {255, 0, 0, 255}), {0, 255, 255, 0}, "a hue of exactly 0 stays");
}

TEST_F(ColourPixels, RgbToHsiWritesAlphaZeroWhateverTheInputs) {
  const auto program = Loaded<GLProgRGB2HSI>();
  for (const int alpha : {0, 128, 255}) {
    EXPECT_EQ(Through(*program, {10, 20, 30, static_cast<uint8_t>(alpha)})[3], 0);
  }
}

TEST_F(ColourPixels, YuvToHsiOfEveryYuvTexel) {
  const auto program = Loaded<GLProgYUV2HSI>();
  const Image image = WithAlpha(NoiseImage(256, 128, 5), 255);
  const Texture texture(image);
  const ImageBounds bounds = YuvToHsiBounds(image);
  EXPECT_LT(FreeHues(bounds), 0.1) << "a loose bound proves nothing";
  EXPECT_TRUE(
      WithinImage(bounds, DrawProgram(*program, {texture.name()}, 256, 128), Compare().within(1)));
}

TEST_F(ColourPixels, YuvToHsiOfSmoothColours) {
  const auto program = Loaded<GLProgYUV2HSI>();
  Image image(128, 64);
  for (int y = 0; y < image.height; ++y) {
    for (int x = 0; x < image.width; ++x) {
      // Inside the colour cube, away from grey and from a full turn.
      const auto chroma = static_cast<uint8_t>(70 + y / 4);
      const uint8_t texel[4] = {static_cast<uint8_t>(110 + x / 4), 160, chroma, 255};
      std::copy(texel, texel + 4, image.pixel(x, y));
    }
  }
  const Texture texture(image);
  const ImageBounds bounds = YuvToHsiBounds(image);
  for (size_t i = 0; i < bounds.low.bytes.size(); ++i) {
    ASSERT_LE(bounds.high.bytes[i] - bounds.low.bytes[i], 10) << "a loose bound proves nothing";
  }
  EXPECT_TRUE(
      WithinImage(bounds, DrawProgram(*program, {texture.name()}, 128, 64), Compare().within(1)));
}

TEST_F(ColourPixels, YuvToHsiOfGreyIsItsLuma) {
  // A matrix without rounding: chroma of one half is not a byte.
  const auto program = Loaded<GLProgYUV2HSI>();
  const float luma_only[16] = {1, 1, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1};
  std::copy(std::begin(luma_only), std::end(luma_only), program->m_fMatYUV2RGB);
  for (const int luma : {0, 1, 77, 254, 255}) {
    const std::array<int, 4> expected = {0, 0, luma, 0};
    EXPECT_EQ(Through(*program, {static_cast<uint8_t>(luma), 90, 200, 255}), expected);
  }
}

TEST_F(ColourPixels, HsiToYuvOfEveryKindOfPicture) {
  const auto program = Loaded<GLProgHSI2YUV>();
  for (const Image& image : {NoiseImage(256, 128, 6), GradientImage(100, 60, 0)}) {
    const Texture texture(image);
    EXPECT_TRUE(SameImage(DrawModel(reference::Hsi2Yuv{{&image}}, image.width, image.height),
                          DrawProgram(*program, {texture.name()}, image.width, image.height),
                          Compare().within(1)));
  }
}

TEST_F(ColourPixels, HsiToYuvOfNoSaturationIsGreyWithAlphaOne) {
  const auto program = Loaded<GLProgHSI2YUV>();
  for (const int intensity : {0, 1, 100, 254, 255}) {
    for (const int hue : {0, 99, 255}) {
      ExpectNear(
          Through(*program, {static_cast<uint8_t>(hue), 0, static_cast<uint8_t>(intensity), 0}),
          {static_cast<double>(intensity), 127.5, 127.5, 255}, "grey");
    }
  }
}

TEST_F(ColourPixels, RoundTripThroughHsiKeepsColoursOfTheCube) {
  // The way there has three decimals, the way back full precision: what is lost stays small.
  const auto to_hsi = Loaded<GLProgYUV2HSI>();
  const auto to_yuv = Loaded<GLProgHSI2YUV>();
  Image image(64, 64);
  for (int y = 0; y < 64; ++y) {
    for (int x = 0; x < 64; ++x) {
      const Texel rgb{x / 63.0, y / 63.0, (x + y) / 126.0, 1.0};
      image.set(x, y,
                {0.299 * rgb.r + 0.587 * rgb.g + 0.114 * rgb.b,
                 0.5 * rgb.r - 0.418688 * rgb.g - 0.081312 * rgb.b + 0.5,
                 -0.168736 * rgb.r - 0.331264 * rgb.g + 0.5 * rgb.b + 0.5, 1.0});
    }
  }
  const Texture yuv(image);
  const Image hsi_image = DrawProgram(*to_hsi, {yuv.name()}, 64, 64);
  const Texture hsi(hsi_image);
  EXPECT_TRUE(SameImage(image, DrawProgram(*to_yuv, {hsi.name()}, 64, 64), Compare().within(4)));
}

}  // namespace
}  // namespace lumora::test
