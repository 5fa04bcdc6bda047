// SPDX-License-Identifier: Apache-2.0
#include "lumora/convert/sp2yuvxs.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>
#include <string>
#include <vector>

#include "hwy/highway.h"
#include "hwy/targets.h"
#include "lumora/convert/sp2yuvxs_scalar.h"
#include "lumora/convert/sp2yuvxs_simd.h"
#include "reference/sp2yuvxs_model.h"
#include "support/guarded_buffer.h"

namespace {

using lumora::test::GuardedBuffer;
using Bytes = std::vector<std::uint8_t>;
using Texel = std::array<int, 4>;

constexpr std::array<Form, 3> kForms = {Form::kA, Form::kB, Form::kC};

template <class Range>
void Randomize(Range&& bytes, unsigned seed) {
  std::minstd_rand random(seed);
  for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random() >> 8);
}

Bytes RandomBytes(std::size_t size, unsigned seed) {
  Bytes bytes(size);
  Randomize(bytes, seed);
  return bytes;
}

void Call(Form form, void* dst, const void* luma, const void* chroma, const Geometry& g) {
  switch (form) {
    case Form::kA:
      return sp2yuvxs(dst, g.dstStride, luma, g.srcStride, g.srcHeight, g.x, g.y, g.w, g.h);
    case Form::kB:
      return sp2yuvxs(dst, g.dstStride, g.dstHeight, luma, g.srcStride, g.srcHeight, g.x, g.y, g.w,
                      g.h);
    case Form::kC:
      return sp2yuvxs(dst, g.dstStride, g.dstHeight, luma, chroma, g.srcStride, g.srcHeight, g.x,
                      g.y, g.w, g.h);
  }
}

Arena RandomArena(std::size_t bytes_on_each_side, unsigned seed) {
  Arena arena(bytes_on_each_side);
  Randomize(arena.bytes(), seed);
  return arena;
}

// Runs the call and the model on the same random bytes and compares everything around the origin.
void ExpectModel(Form form, const Geometry& g) {
  static Arena luma = RandomArena(16 << 10, 1);
  static Arena chroma = RandomArena(16 << 10, 2);
  static const Arena untouched = RandomArena(64 << 10, 3);
  Arena expected = untouched;
  Arena actual = untouched;

  ModelSp2yuvxs(form, expected, luma, form == Form::kC ? chroma : luma, g);
  Call(form, actual.origin(), luma.origin(), chroma.origin(), g);

  const auto [a, e] =
      std::mismatch(actual.bytes().begin(), actual.bytes().end(), expected.bytes().begin());
  EXPECT_TRUE(a == actual.bytes().end())
      << "form "
      << "ABC"[static_cast<int>(form)] << ", " << g << ": byte " << (&*a - actual.origin())
      << " is " << int(*a) << ", not " << int(*e);
}

Texel TexelAt(const Bytes& dst, int stride, int column, int row) {
  const auto* texel = &dst.at(static_cast<std::size_t>(4 * (row * stride + column)));
  return {texel[0], texel[1], texel[2], texel[3]};
}

// The texel of a source pixel, for a frame whose chroma plane starts after `height` rows.
Texel PixelOf(const Bytes& src, int stride, int height, int column, int row) {
  const auto pair = static_cast<std::size_t>((height + row / 2) * stride + column / 2 * 2);
  return {src.at(static_cast<std::size_t>(row * stride + column)), src.at(pair), src.at(pair + 1),
          255};
}

constexpr Texel kUntouched = {0xA5, 0xA5, 0xA5, 0xA5};

Bytes UntouchedTexels(int count) {
  return Bytes(static_cast<std::size_t>(4 * count), 0xA5);
}

// Every test runs with every instruction set that this processor has, the plain form included.
class Sp2yuvxs : public testing::TestWithParam<std::int64_t> {
 protected:
  void SetUp() override {
    hwy::SetSupportedTargetsForTest(GetParam());
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
  }
  void TearDown() override {
    hwy::SetSupportedTargetsForTest(0);
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
  }
};

INSTANTIATE_TEST_SUITE_P(Targets, Sp2yuvxs, testing::ValuesIn(hwy::SupportedAndGeneratedTargets()),
                         [](const auto& target) {
                           return std::string(hwy::TargetName(target.param));
                         });

TEST_P(Sp2yuvxs, ExpandsEachPixelWithTheChromaOfItsSquare) {
  const Bytes src = RandomBytes(32 * 3, 1);
  Bytes dst = UntouchedTexels(64 + 16);
  sp2yuvxs(dst.data(), 32, src.data(), 32, 2, 0, 0, 32, 2);
  for (int row = 0; row < 2; ++row) {
    for (int column = 0; column < 32; ++column) {
      EXPECT_EQ(TexelAt(dst, 32, column, row), PixelOf(src, 32, 2, column, row));
    }
  }
  for (int column = 0; column < 16; ++column) EXPECT_EQ(TexelAt(dst, 32, column, 2), kUntouched);
}

TEST_P(Sp2yuvxs, LeavesTexelsRightOfTheRectangleAloneWithoutFill) {
  const Bytes src = RandomBytes(48 * 6, 2);
  Bytes dst = UntouchedTexels(64 * 4);
  sp2yuvxs(dst.data(), 64, src.data(), 48, 4, 0, 0, 48, 4);
  for (int row = 0; row < 4; ++row) {
    for (int column = 48; column < 64; ++column) {
      EXPECT_EQ(TexelAt(dst, 64, column, row), kUntouched);
    }
  }
}

TEST_P(Sp2yuvxs, NarrowRectangleStillWritesOneGroup) {
  for (int w : {-1, 0, 1, 8, 15}) {
    const Bytes src = RandomBytes(32 * 3, 3);
    Bytes dst = UntouchedTexels(64);
    sp2yuvxs(dst.data(), 32, src.data(), 32, 2, 0, 0, w, 2);
    for (int column = 0; column < 32; ++column) {
      const Texel expected = column < 16 ? PixelOf(src, 32, 2, column, 1) : kUntouched;
      EXPECT_EQ(TexelAt(dst, 32, column, 1), expected) << "w " << w << " column " << column;
    }
    for (Form form : kForms) ExpectModel(form, {32, 6, 48, 8, 2, 0, w, 6});
  }
}

TEST_P(Sp2yuvxs, LessThanTwoRowsStillHandleAPair) {
  for (int h : {-3, 0, 1}) {
    const Bytes src = RandomBytes(16 * 3, 4);
    Bytes dst = UntouchedTexels(16 * 3);
    sp2yuvxs(dst.data(), 16, src.data(), 16, 2, 0, 0, 16, h);
    EXPECT_EQ(TexelAt(dst, 16, 15, 1), PixelOf(src, 16, 2, 15, 1)) << "h " << h;
    EXPECT_EQ(TexelAt(dst, 16, 0, 2), kUntouched) << "h " << h;
    for (Form form : kForms) ExpectModel(form, {48, 4, 48, 8, 0, 0, 32, h});
  }
}

TEST_P(Sp2yuvxs, FillRepeatsTheLastTexelAndTheLastRow) {
  constexpr int kWidth = 32, kHeight = 4, kStride = kWidth + 32, kRows = kHeight + 3;
  const Bytes src = RandomBytes(kWidth * kHeight * 3 / 2, 5);
  Bytes dst = UntouchedTexels(kStride * (kRows + 1));
  sp2yuvxs(dst.data(), kStride, kRows, src.data(), kWidth, kHeight, 0, 0, kWidth, kHeight);
  for (int row = 0; row < kRows; ++row) {
    for (int column = 0; column < kStride; ++column) {
      EXPECT_EQ(
          TexelAt(dst, kStride, column, row),
          PixelOf(src, kWidth, kHeight, std::min(column, kWidth - 1), std::min(row, kHeight - 1)))
          << column << ", " << row;
    }
  }
  EXPECT_EQ(TexelAt(dst, kStride, 0, kRows), kUntouched);
}

TEST_P(Sp2yuvxs, OddHeightWithFillLeavesTheLastRowUnwritten) {
  const Bytes src = RandomBytes(16 * 6, 6);
  Bytes dst = UntouchedTexels(16 * 6);
  sp2yuvxs(dst.data(), 16, 6, src.data(), 16, 4, 0, 0, 16, 3);
  for (int row = 0; row < 5; ++row) {
    EXPECT_EQ(TexelAt(dst, 16, 7, row), PixelOf(src, 16, 4, 7, std::min(row, 1))) << row;
  }
  EXPECT_EQ(TexelAt(dst, 16, 7, 5), kUntouched);
}

TEST_P(Sp2yuvxs, SeparatePlanesDoNotUseTheSourceHeight) {
  const Bytes luma = RandomBytes(32 * 4, 7);
  const Bytes chroma = RandomBytes(32 * 2, 8);
  Bytes expected = UntouchedTexels(48 * 6);
  sp2yuvxs(expected.data(), 48, 6, luma.data(), chroma.data(), 32, 4, 0, 0, 32, 4);
  for (int srcHeight : {-2147483647 - 1, -1, 0, 1, 1000, 2147483647}) {
    Bytes dst = UntouchedTexels(48 * 6);
    sp2yuvxs(dst.data(), 48, 6, luma.data(), chroma.data(), 32, srcHeight, 0, 0, 32, 4);
    EXPECT_EQ(dst, expected) << srcHeight;
  }
}

TEST_P(Sp2yuvxs, OffsetSelectsTheSourceAndNeverMovesTheDestination) {
  constexpr int kStride = 64, kHeight = 12;
  const Bytes src = RandomBytes(kStride * kHeight * 3 / 2, 9);
  for (int x : {0, 2, 14, 32}) {
    for (int y : {0, 2, 8}) {
      Bytes dst = UntouchedTexels(32 * 4);
      sp2yuvxs(dst.data(), 32, src.data(), kStride, kHeight, x, y, 32, 4);
      for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 32; ++column) {
          ASSERT_EQ(TexelAt(dst, 32, column, row),
                    PixelOf(src, kStride, kHeight, x + column, y + row));
        }
      }
    }
  }
}

TEST_P(Sp2yuvxs, OddFirstRowStartsWithTheChromaRowAboveIt) {
  const Bytes src = RandomBytes(16 * 12, 10);
  Bytes dst = UntouchedTexels(32);
  sp2yuvxs(dst.data(), 16, src.data(), 16, 8, 0, 3, 16, 2);
  EXPECT_EQ(TexelAt(dst, 16, 0, 0), PixelOf(src, 16, 8, 0, 3));
  const Texel second_row = {src[16 * 4], src[16 * 9], src[16 * 9 + 1], 255};
  EXPECT_EQ(TexelAt(dst, 16, 0, 1), second_row) << "both rows of a pair share a chroma row";
}

// The source may be read in the rectangle only; the destination written where the header says.
TEST_P(Sp2yuvxs, TouchesNothingOutsideRegularBuffers) {
  using Guard = GuardedBuffer::Guard;
  constexpr int kRight = 32;  // source bytes and destination texels right of the rectangle
  constexpr int kBelow = 2;   // rows of bottom fill
  for (Guard guard : {Guard::Begin, Guard::End}) {
    for (int w : {16, 32, 48, 80, 112, 640}) {
      for (int h : {2, 4, 10}) {
        const int stride = w + kRight;
        // `rows` rows of which the last one ends with the rectangle.
        const auto bytes = [=](int rows) {
          return static_cast<std::size_t>((rows - 1) * stride + w);
        };
        GuardedBuffer frame(bytes(h + h / 2), guard);
        GuardedBuffer luma(bytes(h), guard);
        GuardedBuffer chroma(bytes(h / 2), guard);
        GuardedBuffer rectangle(4 * bytes(h), guard);
        GuardedBuffer filled(static_cast<std::size_t>(4 * stride * (h + kBelow)), guard);
        for (auto* source : {&frame, &luma, &chroma}) source->protect_from_writing();
        const Geometry g = {stride, h + kBelow, stride, h, 0, 0, w, h};
        Call(Form::kA, rectangle.data(), frame.data(), nullptr, g);
        Call(Form::kB, filled.data(), frame.data(), nullptr, g);
        Call(Form::kC, filled.data(), luma.data(), chroma.data(), g);
        EXPECT_TRUE(rectangle.intact());
        EXPECT_TRUE(filled.intact());
        EXPECT_EQ(rectangle.data()[rectangle.size() - 1], 255) << "the last texel is written";
        EXPECT_EQ(filled.data()[filled.size() - 1], 255) << "the last texel is written";
      }
    }
  }
}

TEST_P(Sp2yuvxs, FollowsTheRowArithmeticForAnyGeometry) {
  std::mt19937 random(20);
  const auto between = [&random](int low, int high) {
    return std::uniform_int_distribution<int>(low, high)(random);
  };
  for (int round = 0; round < 400; ++round) {
    Geometry g = {};
    g.w = between(0, 2) != 0 ? between(-20, 200) : 16 * between(1, 12);
    g.h = between(-3, 11);
    g.dstStride = between(0, 1) != 0 ? between(-64, 256) : (g.w + 31) / 32 * 32;
    g.dstHeight = g.h + between(-2, 6);
    g.srcStride = between(0, 1) != 0 ? between(-100, 160) : g.w;
    g.srcHeight = between(-4, 24);
    g.x = between(-9, 40);
    g.y = between(-4, 12);
    for (Form form : kForms) ExpectModel(form, g);
    ASSERT_FALSE(HasFailure());
  }
}

// Destinations of this size are written with other stores; in one of the two calls the rows do not
// start at vector boundaries.
TEST_P(Sp2yuvxs, LargeDestinationsHoldTheSameBytes) {
  constexpr int kWidth = 4000, kHeight = 1200, kStride = 4000;
  const Bytes src = RandomBytes(std::size_t{kWidth} * kHeight * 3 / 2, 14);
  Bytes expected(std::size_t{4} * kStride * kHeight);
  for (int row = 0; row < kHeight; ++row) {
    const std::uint8_t* const luma = src.data() + row * kWidth;
    const std::uint8_t* const chroma = src.data() + (kHeight + row / 2) * kWidth;
    std::uint8_t* texel = expected.data() + 4 * row * kStride;
    for (int column = 0; column < kWidth; ++column, texel += 4) {
      texel[0] = luma[column];
      texel[1] = chroma[column & ~1];
      texel[2] = chroma[column | 1];
      texel[3] = 255;
    }
  }
  for (int shift : {0, 4}) {
    GuardedBuffer dst(expected.size() + 4, GuardedBuffer::Guard::Begin);
    sp2yuvxs(dst.data() + shift, kStride, src.data(), kWidth, kHeight, 0, 0, kWidth, kHeight);
    EXPECT_TRUE(std::equal(expected.begin(), expected.end(), dst.data() + shift)) << shift;
  }
}

TEST_P(Sp2yuvxs, RowsEqualThePlainFormWithEitherKindOfStore) {
  constexpr std::ptrdiff_t kMost = 33;
  const Bytes luma = RandomBytes(lumora::kBlockPixels * kMost + 1, 15);
  const Bytes chroma = RandomBytes(lumora::kBlockPixels * kMost + 1, 16);
  for (lumora::Stores stores : {lumora::Stores::Cached, lumora::Stores::Streaming}) {
    for (std::ptrdiff_t blocks = 0; blocks <= kMost; ++blocks) {
      for (int shift : {0, 1, 16, 32}) {
        alignas(64) std::uint8_t expected[lumora::kBlockBytes * kMost + 64] = {};
        alignas(64) std::uint8_t actual[lumora::kBlockBytes * kMost + 64] = {};
        lumora::ExpandRowScalar(expected + shift, luma.data() + 1, chroma.data() + 1, blocks);
        lumora::ExpandRow(actual + shift, luma.data() + 1, chroma.data() + 1, blocks, stores);
        ASSERT_TRUE(std::equal(std::begin(expected), std::end(expected), std::begin(actual)))
            << blocks << " blocks at " << shift;
      }
    }
  }
}

}  // namespace
