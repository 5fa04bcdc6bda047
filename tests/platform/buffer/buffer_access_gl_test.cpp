// SPDX-License-Identifier: Apache-2.0
// The CPU's scoped uses of a buffer's pixels.
#include <gtest/gtest.h>

#include <algorithm>

#include "lumora/platform/buffer/cpu_access.h"
#include "platform/buffer/test_image.h"
#include "support/compare.h"

namespace lumora::test {
namespace {

using platform::CpuAccess;
using platform::CpuUse;
using platform::PixelRectangle;
using reference::Image;

class BufferAccess : public BufferTest {};
INSTANTIATE_TEST_SUITE_P(Kinds, BufferAccess, kBufferKinds, KindName);

/// Writes `part` of a picture as wide as the buffer's rows.
void Write(unsigned char* pixels, const Image& picture, const PixelRectangle& part) {
  for (int y = part.y; y < part.y + part.height; ++y) {
    std::copy_n(picture.pixel(part.x, y), part.width * 4, pixels + (y * kWidth + part.x) * 4);
  }
}

TEST_P(BufferAccess, ToAPartSeesWhatWasDrawnThereAndShowsWhatIsWritten) {
  for (const CpuUse use : {CpuUse::Write, CpuUse::Overwrite}) {
    TestImage image(kWidth, kHeight);
    image.upload(PatternImage(1));
    Clear(image, 60);
    CpuAccess access(&image.buffer(), use, kPart);
    ASSERT_NE(access.pixels(), nullptr);
    if (use == CpuUse::Write) {
      EXPECT_EQ(60, access.pixels()[(2 * kWidth + 5) * 4]);
    }
    Write(access.pixels(), PatternImage(2), kPart);
    EXPECT_TRUE(access.End());
    EXPECT_EQ(access.pixels(), nullptr);
    const Image expected = Patched(PlainImage(60), PatternImage(2), kPart);
    EXPECT_TRUE(SameImage(expected, Shown(image)));
    EXPECT_TRUE(SameImage(expected, image.read()));
  }
}

TEST_P(BufferAccess, ToTheWholeReplacesWhatWasDrawn) {
  TestImage image(kWidth, kHeight);
  Clear(image, 61);
  CpuAccess access(&image.buffer(), CpuUse::Overwrite);
  ASSERT_NE(access.pixels(), nullptr);
  Write(access.pixels(), PatternImage(3), kWhole);
  EXPECT_TRUE(access.End());
  EXPECT_TRUE(SameImage(PatternImage(3), Shown(image)));
}

TEST_P(BufferAccess, ToReadLeavesTheGpusSideAlone) {
  TestImage image(kWidth, kHeight);
  image.upload(PatternImage(4));
  Clear(image, 62);
  {
    CpuAccess part(&image.buffer(), CpuUse::Read, kPart);
    ASSERT_NE(part.pixels(), nullptr);
    EXPECT_EQ(62, part.pixels()[(2 * kWidth + 5) * 4]);
    EXPECT_TRUE(part.End());
    CpuAccess whole(&image.buffer(), CpuUse::Read);
    ASSERT_NE(whole.pixels(), nullptr);
    EXPECT_EQ(62, whole.pixels()[0]);
  }
  EXPECT_TRUE(SameImage(PlainImage(62), Shown(image)));
}

TEST_P(BufferAccess, ThatWasNotEndedPublishesNothing) {
  TestImage image(kWidth, kHeight);
  Clear(image, 63);
  {
    const CpuAccess access(&image.buffer(), CpuUse::Write);
    Write(access.pixels(), PatternImage(5), kWhole);
  }
  if (GetParam() == platform::BufferKind::Staged) {
    EXPECT_TRUE(SameImage(PlainImage(63), Shown(image)));
  }
  EXPECT_EQ(0, image.buffer().clean()) << "the bytes stayed with the CPU";
  EXPECT_TRUE(SameImage(PatternImage(5), Shown(image)));
}

TEST_P(BufferAccess, TellsThatPixelsAreNotToBeHad) {
  TestImage image(kWidth, kHeight);
  Clear(image, 64);
  {
    const GlContext other;
    ASSERT_TRUE(other.ok());
    for (const CpuUse use : {CpuUse::Read, CpuUse::Write, CpuUse::Overwrite}) {
      CpuAccess part(&image.buffer(), use, kPart);
      EXPECT_EQ(part.pixels(), nullptr);
      EXPECT_FALSE(part.End());
      CpuAccess whole(&image.buffer(), use);
      EXPECT_EQ(whole.pixels(), nullptr);
      EXPECT_FALSE(whole.End());
    }
  }
  CpuAccess nothing(nullptr, CpuUse::Read);
  EXPECT_EQ(nothing.pixels(), nullptr);
  EXPECT_FALSE(nothing.End());
  ASSERT_TRUE(context().make_current());
  EXPECT_TRUE(SameImage(PlainImage(64), image.read()));
}

TEST_P(BufferAccess, TellsThatWhatWasWrittenCouldNotBePublished) {
  if (GetParam() != platform::BufferKind::Staged) GTEST_SKIP() << "nothing has to move";
  TestImage image(kWidth, kHeight);
  image.upload(PatternImage(6));
  {
    CpuAccess part(&image.buffer(), CpuUse::Write, kPart);
    CpuAccess whole(&image.buffer(), CpuUse::Write);
    Write(whole.pixels(), PatternImage(7), kWhole);
    const GlContext other;
    ASSERT_TRUE(other.ok());
    EXPECT_FALSE(part.End());
    EXPECT_FALSE(whole.End());
  }
  ASSERT_TRUE(context().make_current());
  EXPECT_TRUE(SameImage(PatternImage(6), Shown(image)));
  EXPECT_EQ(0, image.buffer().clean()) << "the bytes are still the newer ones";
  EXPECT_TRUE(SameImage(PatternImage(7), Shown(image)));
}

}  // namespace
}  // namespace lumora::test
