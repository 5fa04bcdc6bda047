// SPDX-License-Identifier: Apache-2.0
// Frames that go through the engine without an effect.
#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>

#include "engine/engine_images.h"
#include "reference/bounds.h"
#include "reference/colour.h"
#include "reference/expand.h"
#include "reference/sp2yuvxs_model.h"
#include "support/caller_memory.h"
#include "support/pictures.h"

namespace lumora::test {
namespace {

struct Size {
  int width, height;
};
void PrintTo(const Size& size, std::ostream* out) {
  *out << size.width << "x" << size.height;
}

std::string NameOf(const testing::TestParamInfo<Size>& info) {
  return testing::PrintToString(info.param);
}

// Widths of whole 16-pixel groups and even heights: the expansion is exact, luma is packed at texel
// centres, and the packed chroma is read between pixels that share it.
class ExactRoundTrip : public testing::TestWithParam<Size> {
 protected:
  ExactRoundTrip() {
    engine_.Init(size_.width, size_.height, size_.width, size_.height, nullptr, false);
  }

  const Size size_ = GetParam();
  GPUBeautyFace engine_;
};

TEST_P(ExactRoundTrip, NoFacesGiveTheFrameBackInPlace) {
  for (uint32_t frame_number = 1; frame_number <= 3; ++frame_number) {
    const Bytes expected = NoisePlanes(size_.width, size_.height, frame_number);
    CallerFrame frame(size_.width, size_.height, expected);
    ASSERT_EQ(1, engine_.FaceProcessMultiface(frame.luma(), frame.chroma(), 5, nullptr, 0, 0));
    EXPECT_EQ("", FirstDifference(expected, frame.bytes(), size_.width, size_.height));
    EXPECT_TRUE(frame.intact());
  }
}

TEST_P(ExactRoundTrip, NoFacesGiveTheChromaToASeparatePlane) {
  const Bytes expected = NoisePlanes(size_.width, size_.height, 4);
  CallerFrame frame(size_.width, size_.height, expected);
  CallerPlanes planes(size_.width, size_.height);
  ASSERT_EQ(1, engine_.FaceProcessMultiface(frame.luma(), planes.chroma(), 5, nullptr, 0, 0));
  EXPECT_EQ(expected, frame.bytes()) << "luma is overwritten with itself, chroma is not written";
  const Bytes result = planes.bytes();
  const auto luma_size = static_cast<std::ptrdiff_t>(LumaSize(size_.width, size_.height));
  EXPECT_TRUE(std::equal(expected.begin() + luma_size, expected.end(), result.begin() + luma_size));
  EXPECT_TRUE(frame.intact() && planes.intact());
}

TEST_P(ExactRoundTrip, TheLoadedFrameCanBeCopiedBack) {
  for (uint32_t frame_number = 5; frame_number <= 6; ++frame_number) {
    const Bytes expected = NoisePlanes(size_.width, size_.height, frame_number);
    CallerFrame frame(size_.width, size_.height, expected);
    CallerPlanes planes(size_.width, size_.height);
    ASSERT_EQ(1, engine_.LoadPreviewFrameBuffer(frame.luma()));
    ASSERT_EQ(1, engine_.CopyMemYUVfromSrcTexture(planes.luma(), planes.chroma()));
    EXPECT_EQ("", FirstDifference(expected, planes.bytes(), size_.width, size_.height));
    EXPECT_EQ(expected, frame.bytes());
    EXPECT_TRUE(planes.intact());
  }
}

INSTANTIATE_TEST_SUITE_P(Sizes, ExactRoundTrip,
                         testing::Values(Size{16, 2}, Size{32, 32}, Size{48, 34}, Size{96, 66},
                                         Size{160, 120}, Size{176, 144}, Size{208, 10},
                                         Size{640, 480}, Size{720, 480}, Size{1008, 250},
                                         Size{1280, 720}),
                         NameOf);

// Other sizes follow the expansion's row arithmetic: with widths that are no multiple of 16 each
// pair of rows starts a little earlier than the one before, pixels beyond the last whole group keep
// what they held, and so does the last row of an odd height.
class DisplacedRoundTrip : public testing::TestWithParam<Size> {
 protected:
  const Size size_ = GetParam();
  const int row_ = reference::RoundUp(size_.width, 32);

  // The input image after the frame was expanded over `before`.
  Image Expanded(const Image& before, const Bytes& frame) const {
    Arena texels(before.bytes.size() + 4096);
    std::copy(before.bytes.begin(), before.bytes.end(), texels.origin());
    Arena planes(frame.size());
    std::copy(frame.begin(), frame.end(), planes.origin());
    ModelSp2yuvxs(Form::kA, texels, planes, planes,
                  {row_, 0, size_.width, size_.height, 0, 0, size_.width, size_.height});
    Image after = before;
    std::copy_n(texels.origin(), after.bytes.size(), after.bytes.begin());
    return after;
  }

  // Luma comes from the pixel itself. Chroma is read on the corner of four pixels: any of them may
  // answer, and here they may differ.
  void ExpectPacked(const Image& image, const Bytes& actual) const {
    const int width = size_.width;
    for (int y = 0; y < size_.height; ++y) {
      for (int x = 0; x < width; ++x) {
        ASSERT_EQ(image.pixel(x, y)[0], actual[LumaSize(width, y) + static_cast<size_t>(x)])
            << "luma at " << x << ", " << y;
      }
    }
    const reference::ImageBounds bounds(image);
    for (int y = 0; y < size_.height / 2; ++y) {
      for (int x = 0; x < width; ++x) {
        const reference::Vec2 place{(x / 2 * 2 + 1.0) / row_, (y + 0.5) / (size_.height / 2)};
        const reference::TexelBounds pair = reference::SampleBounds(
            bounds, reference::Wrap::MirroredRepeat, reference::Filter::Nearest, place, 1.0 / 256);
        const size_t at =
            LumaSize(width, size_.height) + LumaSize(width, y) + static_cast<size_t>(x);
        const int channel = x % 2 == 0 ? 1 : 2;
        ASSERT_LE(reference::ToByte(pair.low[channel]), actual[at])
            << "chroma at " << x << ", " << y;
        ASSERT_GE(reference::ToByte(pair.high[channel]), actual[at])
            << "chroma at " << x << ", " << y;
      }
    }
  }
};

TEST_P(DisplacedRoundTrip, RowsAreWhereTheExpansionPutsThem) {
  GPUBeautyFace engine;
  engine.Init(size_.width, size_.height, size_.width, size_.height, nullptr, false);
  Image image = NoiseImage(row_, size_.height, 40);
  SetPixels(*engine.m_pRGBImage, image);
  for (uint32_t frame_number = 1; frame_number <= 2; ++frame_number) {
    const Bytes frame = NoisePlanes(size_.width, size_.height, frame_number);
    CallerFrame caller(size_.width, size_.height, frame);
    ASSERT_EQ(1, engine.FaceProcessMultiface(caller.luma(), caller.chroma(), 0, nullptr, 0, 0));
    image = Expanded(image, frame);
    ExpectPacked(image, caller.bytes());
    EXPECT_TRUE(caller.intact());
  }
}

INSTANTIATE_TEST_SUITE_P(Sizes, DisplacedRoundTrip,
                         testing::Values(Size{18, 20}, Size{20, 20}, Size{30, 31}, Size{34, 16},
                                         Size{64, 35}, Size{100, 80}, Size{126, 61}, Size{854, 48},
                                         Size{1000, 60}, Size{96, 3}),
                         NameOf);

TEST(PreviewRoundTrip, ALaterInitTakesFramesOfItsOwnSize) {
  GPUBeautyFace engine;
  for (const Size& size : {Size{320, 240}, Size{64, 48}, Size{640, 480}}) {
    engine.Init(size.width, size.height, size.width, size.height, nullptr, false);
    const Bytes expected = NoisePlanes(size.width, size.height, 9);
    CallerFrame frame(size.width, size.height, expected);
    ASSERT_EQ(1, engine.FaceProcessMultiface(frame.luma(), frame.chroma(), 5, nullptr, 0, 0));
    EXPECT_EQ("", FirstDifference(expected, frame.bytes(), size.width, size.height));
  }
}

TEST(PreviewRoundTrip, PackingReadsTheImageThatItsNumberNames) {
  constexpr int kNarrow = 64;
  constexpr int kLow = 8;
  GPUBeautyFace engine;
  engine.Init(kNarrow, kLow, kNarrow, kLow, nullptr, false);
  const auto fill = [](SEGLImage& image, uint8_t value) {
    Image pixels(kNarrow, kLow);
    pixels.fill(value, static_cast<uint8_t>(value + 1), static_cast<uint8_t>(value + 2), 255);
    SetPixels(image, pixels);
  };
  fill(*engine.m_pRGBImage, 10);
  fill(*engine.m_pWorkImage[0], 20);
  fill(*engine.m_pWorkImage[1], 30);
  const struct {
    int number;
    uint8_t luma;
  } kRows[] = {{-1, 10}, {0, 10}, {1, 20}, {2, 30}, {3, 20}, {4, 30}};
  for (const auto& row : kRows) {
    ASSERT_EQ(1, engine.DrawRGBtoYY(row.number));
    ASSERT_EQ(1, engine.DrawRGBtoUV(row.number));
    CallerPlanes planes(kNarrow, kLow);
    ASSERT_EQ(1, engine.MemcpyYUV(planes.luma(), planes.chroma()));
    EXPECT_EQ(reference::Frame(kNarrow, kLow, row.luma, static_cast<uint8_t>(row.luma + 1),
                               static_cast<uint8_t>(row.luma + 2))
                  .bytes,
              planes.bytes())
        << row.number;
  }
}

}  // namespace
}  // namespace lumora::test
