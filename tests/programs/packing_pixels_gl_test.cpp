// SPDX-License-Identifier: Apache-2.0
// The packing programs: copies of bytes, so every one has to be exact.
#include <algorithm>
#include <string>

#include "lumora/programs/colour_programs.h"
#include "programs/pixel_test.h"
#include "programs/program_draw.h"
#include "reference/colour.h"
#include "reference/expand.h"
#include "support/compare.h"
#include "support/pictures.h"

namespace lumora::test {
namespace {

class PackingPixels : public PixelTest {};

template <typename Program, typename Shifts>
void SetShifts(Program& program, const Shifts& shifts) {
  for (size_t i = 0; i < shifts.size(); ++i) {
    program.m_fShift[2 * i] = static_cast<float>(shifts[i].x);
    program.m_fShift[2 * i + 1] = static_cast<float>(shifts[i].y);
  }
}

TEST_F(PackingPixels, FramesComeBackByteForByte) {
  const auto luma = Loaded<GLProgRGBtoY>();
  const auto chroma = Loaded<GLProgRGBtoUV>();
  const int sizes[][2] = {{32, 2}, {64, 48}, {96, 64}, {320, 240}, {1280, 720}, {4096, 16}};
  for (const auto& size : sizes) {
    const int width = size[0];
    const int height = size[1];
    const Frame frame = NoiseFrame(width, height, 7);
    const Texture texture(reference::Expanded(frame));
    SetShifts(*luma, reference::LumaShifts(width, false));
    SetShifts(*chroma, reference::ChromaShifts(width, height, false));
    const Image packed_luma = DrawProgram(*luma, {texture.name()}, width / 4, height);
    const Image packed_chroma = DrawProgram(*chroma, {texture.name()}, width / 4, height / 2);
    EXPECT_TRUE(SameFrame(frame, reference::Unpack(packed_luma, packed_chroma, width, height),
                          Compare().named(std::to_string(width) + " wide")));
  }
}

TEST_F(PackingPixels, LumaReadsRedOnlyAndChromaGreenAndBlue) {
  Image image(8, 2);
  for (int y = 0; y < 2; ++y) {
    for (int x = 0; x < 8; ++x) {
      uint8_t* const texel = image.pixel(x, y);
      texel[0] = static_cast<uint8_t>(10 * x + y);
      texel[1] = static_cast<uint8_t>(100 + x / 2);
      texel[2] = static_cast<uint8_t>(200 + x / 2);
      texel[3] = 5;
    }
  }
  const Texture texture(image);
  const auto luma = Loaded<GLProgRGBtoY>();
  SetShifts(*luma, reference::LumaShifts(8, false));
  const Image rows = DrawProgram(*luma, {texture.name()}, 2, 2);
  const std::vector<uint8_t> expected_luma = {0, 10, 20, 30, 40, 50, 60, 70,
                                              1, 11, 21, 31, 41, 51, 61, 71};
  EXPECT_EQ(rows.bytes, expected_luma);

  const auto chroma = Loaded<GLProgRGBtoUV>();
  SetShifts(*chroma, reference::ChromaShifts(8, 2, false));
  const Image pairs = DrawProgram(*chroma, {texture.name()}, 2, 1);
  const std::vector<uint8_t> expected_chroma = {100, 200, 101, 201, 102, 202, 103, 203};
  EXPECT_EQ(pairs.bytes, expected_chroma);
}

// Frames that lie across: the quad is turned, and packed samples follow each other along t.
TEST_F(PackingPixels, TurnedFramesPackAsTheModelDoes) {
  const Frame frame = NoiseFrame(64, 64, 8);
  const Image image = reference::Expanded(frame);
  const Texture texture(image);
  Geometry turned;
  turned.positions = reference::kRotatedPositions;

  const auto luma = Loaded<GLProgRGBtoY>();
  SetShifts(*luma, reference::LumaShifts(64, true));
  const reference::LumaPacker luma_model{{&image}, reference::LumaShifts(64, true)};
  EXPECT_TRUE(SameImage(DrawModel(luma_model, 16, 64, turned),
                        DrawProgram(*luma, {texture.name()}, 16, 64, turned)));

  const auto chroma = Loaded<GLProgRGBtoUV>();
  SetShifts(*chroma, reference::ChromaShifts(64, 64, true));
  const reference::ChromaPacker chroma_model{{&image}, reference::ChromaShifts(64, 64, true)};
  EXPECT_TRUE(SameImage(DrawModel(chroma_model, 16, 32, turned),
                        DrawProgram(*chroma, {texture.name()}, 16, 32, turned)));
}

// The offsets along t are multiples of 1 / width as well: on a frame twice as wide as high they
// reach half as far as the four rows need, so the two inner rows are read twice.
TEST_F(PackingPixels, TurnedLumaOffsetsGoByTheWidth) {
  Image image(64, 32);
  for (int y = 0; y < 32; ++y) {
    for (int x = 0; x < 64; ++x) image.pixel(x, y)[0] = static_cast<uint8_t>(y);
  }
  const Texture texture(image);
  const auto luma = Loaded<GLProgRGBtoY>();
  SetShifts(*luma, reference::LumaShifts(64, true));
  Geometry turned;
  turned.positions = reference::kRotatedPositions;
  const Image drawn = DrawProgram(*luma, {texture.name()}, 8, 64, turned);
  // Texel x covers four rows; which four depends on the direction of the turn.
  for (int x = 0; x < 8; ++x) {
    const uint8_t* const texel = drawn.pixel(x, 20);
    const int first = texel[0] / 4 * 4;
    const std::vector<uint8_t> expected = {
        static_cast<uint8_t>(first + 1), static_cast<uint8_t>(first + 1),
        static_cast<uint8_t>(first + 2), static_cast<uint8_t>(first + 2)};
    EXPECT_EQ(std::vector<uint8_t>(texel, texel + 4), expected) << "texel " << x;
  }
  EXPECT_NE(drawn.pixel(0, 20)[0], drawn.pixel(7, 20)[0]);
}

}  // namespace
}  // namespace lumora::test
