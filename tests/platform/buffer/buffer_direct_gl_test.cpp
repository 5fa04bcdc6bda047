// SPDX-License-Identifier: Apache-2.0
// Pixels that go straight between a buffer and memory of the caller's, and frames that replace what
// the GPU has drawn.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "platform/buffer/test_image.h"
#include "support/compare.h"

namespace lumora::test {
namespace {

using platform::NoteColorAttachment;
using platform::PixelRectangle;
using reference::Image;

constexpr int kStride = 71;  // pixels a row in the caller's memory
constexpr unsigned char kUntouched = 0xa5;

class BufferDirect : public BufferTest {};
INSTANTIATE_TEST_SUITE_P(Kinds, BufferDirect, kBufferKinds, KindName);

/// Memory of a caller's, with rows of kStride pixels.
class CallerRows {
 public:
  CallerRows() : bytes_(size_t{kStride} * kHeight * 4, kUntouched) {}
  explicit CallerRows(const Image& picture) : CallerRows() {
    for (int y = 0; y < kHeight; ++y) {
      std::copy_n(picture.pixel(0, y), kWidth * 4, bytes_.begin() + y * kStride * 4);
    }
  }

  unsigned char* pixels() { return bytes_.data(); }
  /// Whether `part` holds the picture's pixels and no other byte was written.
  testing::AssertionResult hold(const Image& picture, const PixelRectangle& part) const {
    for (int y = 0; y < kHeight; ++y) {
      for (int x = 0; x < kStride; ++x) {
        const bool inside =
            x >= part.x && y >= part.y && x < part.x + part.width && y < part.y + part.height;
        for (int i = 0; i < 4; ++i) {
          const int byte = bytes_[static_cast<size_t>((y * kStride + x) * 4 + i)];
          if (byte != (inside ? picture.pixel(x, y)[i] : kUntouched)) {
            return testing::AssertionFailure() << "byte " << i << " of (" << x << ", " << y << ")";
          }
        }
      }
    }
    return testing::AssertionSuccess();
  }

 private:
  std::vector<unsigned char> bytes_;
};

TEST_P(BufferDirect, ReadsWhatWasDrawnAndLeavesItToBeLocked) {
  TestImage source(kWidth, kHeight);
  source.upload(PatternImage(1));
  TestImage image(kWidth, kHeight);
  for (const PixelRectangle& part : {kWhole, kPart}) {
    Draw(source.texture(), image, kWidth, kHeight);
    CallerRows rows;
    EXPECT_EQ(0, image.buffer().readInto(part, rows.pixels(), kStride));
    EXPECT_TRUE(rows.hold(PatternImage(1), part));
    EXPECT_TRUE(SameImage(PatternImage(1), image.read()));
    Clear(image, 50);
  }
}

TEST_P(BufferDirect, ReadsWhatTheCpuWrote) {
  TestImage image(kWidth, kHeight);
  image.upload(PatternImage(2));
  CallerRows rows;
  EXPECT_EQ(0, image.buffer().readInto(kPart, rows.pixels(), kStride));
  EXPECT_TRUE(rows.hold(PatternImage(2), kPart));
  image.write(image.buffer().lockPixels(), PatternImage(3));
  CallerRows unclean;
  EXPECT_EQ(0, image.buffer().readInto(kWhole, unclean.pixels(), kStride));
  EXPECT_TRUE(unclean.hold(PatternImage(3), kWhole));
}

TEST_P(BufferDirect, ReadsDrawsWithoutNoticeIntoAttachedImages) {
  TestImage image(kWidth, kHeight);
  NoteColorAttachment(image.texture());
  image.upload(PatternImage(4));
  Clear(image, 60, Notice::Silent);
  CallerRows rows;
  EXPECT_EQ(0, image.buffer().readInto(kWhole, rows.pixels(), kStride));
  EXPECT_TRUE(rows.hold(PlainImage(60), kWhole));
}

TEST_P(BufferDirect, WritesReachTheTextureAndLaterLocks) {
  for (const bool attached : {false, true}) {
    TestImage image(kWidth, kHeight);
    if (attached) NoteColorAttachment(image.texture());
    image.upload(PatternImage(5));
    CallerRows rows(PatternImage(6));
    EXPECT_EQ(0, image.buffer().writeFrom(kPart, rows.pixels(), kStride));
    const Image expected = Patched(PatternImage(5), PatternImage(6), kPart);
    EXPECT_TRUE(SameImage(expected, Shown(image)));
    EXPECT_EQ(0, image.buffer().clean()) << "writes nothing over it";
    EXPECT_TRUE(SameImage(expected, Shown(image)));
    EXPECT_TRUE(SameImage(expected, image.read()));
  }
}

TEST_P(BufferDirect, WritesGoOverDraws) {
  TestImage image(kWidth, kHeight);
  CallerRows rows(PatternImage(7));
  for (unsigned char level = 10; level < 14; ++level) {
    Clear(image, level);
    EXPECT_EQ(0, image.buffer().writeFrom(kPart, rows.pixels(), kStride));
    EXPECT_TRUE(SameImage(Patched(PlainImage(level), PatternImage(7), kPart), image.read()));
  }
}

TEST_P(BufferDirect, RectanglesAreCutAtTheBorders) {
  TestImage image(kWidth, kHeight);
  image.upload(PatternImage(8));
  const struct {
    PixelRectangle asked, cut;
  } kCases[] = {{{-5, -2, 10, 4}, {0, 0, 5, 2}},
                {{60, 6, 100, 100}, {60, 6, 4, 2}},
                {{64, 0, 4, 4}, {64, 0, 0, 0}},
                {{3, 3, -2, 2}, {3, 3, 0, 0}}};
  for (const auto& row : kCases) {
    for (const bool drawn : {false, true}) {
      if (drawn) platform::BeforeDraw();
      CallerRows rows;
      EXPECT_EQ(0, image.buffer().readInto(row.asked, rows.pixels(), kStride));
      EXPECT_TRUE(rows.hold(PatternImage(8), row.cut));
    }
  }
}

TEST_P(BufferDirect, WithoutATextureOrItsContextNothingIsCopied) {
  platform::GraphicBuffer alone(kWidth, kHeight, platform::HAL_PIXEL_FORMAT_RGBA_8888, 0);
  CallerRows rows;
  EXPECT_GT(0, alone.writeFrom(kWhole, rows.pixels(), kStride));
  TestImage image(kWidth, kHeight);
  Clear(image, 70);
  {
    const GlContext other;
    ASSERT_TRUE(other.ok());
    EXPECT_GT(0, image.buffer().readInto(kWhole, rows.pixels(), kStride));
    EXPECT_GT(0, image.buffer().writeFrom(kWhole, rows.pixels(), kStride));
  }
  ASSERT_TRUE(context().make_current());
  EXPECT_TRUE(rows.hold(PatternImage(1), {0, 0, 0, 0}));
  EXPECT_TRUE(SameImage(PlainImage(70), image.read()));
}

TEST_P(BufferDirect, OverwrittenImagesShowTheNewPicture) {
  for (const bool attached : {false, true}) {
    TestImage image(kWidth, kHeight);
    if (attached) NoteColorAttachment(image.texture());
    for (unsigned frame = 0; frame < 4; ++frame) {
      Clear(image, 80, frame % 2 == 0 || !attached ? Notice::Announced : Notice::Silent);
      image.write(image.buffer().lockForOverwrite(), PatternImage(9));
      EXPECT_EQ(0, image.buffer().clean());
      EXPECT_TRUE(SameImage(PatternImage(9), Shown(image)));
      EXPECT_TRUE(SameImage(PatternImage(9), image.read()));
    }
  }
}

}  // namespace
}  // namespace lumora::test
