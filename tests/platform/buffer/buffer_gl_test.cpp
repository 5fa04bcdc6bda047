// SPDX-License-Identifier: Apache-2.0
// Bytes on their way between CPU and GPU, for every kind of buffer.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <vector>

#include "lumora/platform/gralloc.h"
#include "platform/buffer/test_image.h"
#include "support/compare.h"

namespace lumora::test {
namespace {

using platform::BufferKind;
using platform::GraphicBuffer;
using platform::HAL_PIXEL_FORMAT_RGBA_8888;
using platform::sp;
using reference::Image;

class Buffer : public BufferTest {};
INSTANTIATE_TEST_SUITE_P(Kinds, Buffer, kBufferKinds, KindName);

TEST_P(Buffer, HasRowsOf32PixelsAndZeroedMemoryWithSlack) {
  for (const uint32_t width : {1u, 31u, 32u, 33u, 384u, 640u, 1000u}) {
    const sp<GraphicBuffer> buffer =
        new GraphicBuffer(width, 37, HAL_PIXEL_FORMAT_RGBA_8888, 0x130);
    const size_t row = (width + 127) / 128 * 128 * 4;
    const size_t size = row * (38 + 2);
    ASSERT_NE(buffer->handle().base, nullptr);
    EXPECT_EQ(buffer->stride(), (width + 31) / 32 * 32);
    EXPECT_EQ(buffer->handle().size, static_cast<int>(size));
    EXPECT_EQ(buffer->handle().flags, 0x130);
    auto* const bytes = static_cast<unsigned char*>(buffer->handle().base);
    EXPECT_THAT(std::vector<unsigned char>(bytes, bytes + size), testing::Each(0)) << width;
    std::memset(bytes, 0xEE, size);
  }
}

TEST_P(Buffer, BytesPassThroughTheGpuUnchanged) {
  for (const int width : {1, 5, 16, 17, 31, 32, 33, 96, 100, 384, 640, 720, 1000, 1280, 1920}) {
    const int height = width % 2 == 0 ? 29 : 6;
    TestImage source(width, height);
    TestImage target(width, height);
    for (unsigned round = 0; round < 3; ++round) {
      const Image picture = Pattern(width, height, round);
      source.upload(picture);
      Draw(source.texture(), target, width, height);
      EXPECT_TRUE(SameImage(picture, target.read())) << width << ", round " << round;
    }
  }
  EXPECT_TRUE(TakeGlErrors().empty());
}

TEST_P(Buffer, UsualWidthsHaveTheKindThatWasChosen) {
  for (const uint32_t width : {32u, 96u, 160u, 384u, 640u, 736u, 1280u, 1920u, 4096u}) {
    const sp<GraphicBuffer> buffer = new GraphicBuffer(width, 8, HAL_PIXEL_FORMAT_RGBA_8888, 0x130);
    EXPECT_EQ(buffer->kind(), GetParam()) << width;
  }
}

TEST_P(Buffer, AddressStaysThroughImagesAndDraws) {
  TestImage image(64, 8);
  void* const base = image.buffer().handle().base;
  EXPECT_EQ(image.buffer().lockPixels(), base);
  Clear(image, 9);
  EXPECT_EQ(image.buffer().lockPixels(), base);
  image.upload(Pattern(64, 8, 1));
  EXPECT_EQ(image.buffer().handle().base, base);
}

TEST_P(Buffer, BytesOutsideTheImageAreNeverTouchedByTheGpu) {
  TestImage image(50, 7);
  const sp<GraphicBuffer> hold = &image.buffer();
  auto* const bytes = static_cast<unsigned char*>(hold->handle().base);
  const auto size = static_cast<size_t>(hold->handle().size);
  const size_t row_bytes = size_t{hold->stride()} * 4;
  hold->lockPixels();
  std::memset(bytes, 0x5A, size);
  hold->clean();
  Clear(image, 0xC0);
  hold->lockPixels();
  for (size_t i = 0; i < size; ++i) {
    const bool inside = i / row_bytes < 7 && i % row_bytes < 50 * 4;
    // A renderer may store whole tiles; rows directly below the image are slack for it.
    const bool tile = i / row_bytes >= 7 && i / row_bytes < 8;
    if (tile) continue;
    ASSERT_EQ(bytes[i], inside ? 0xC0 : 0x5A) << "byte " << i;
  }
}

TEST_P(Buffer, SamplesLikeAnOrdinaryTextureWhenMirroredAndFiltered) {
  constexpr int kWide = 96, kHigh = 40;
  const Image picture = Pattern(kWide, kHigh, 3);
  TestImage source(kWide, kHigh);
  TestImage target(kWide, kHigh);
  source.upload(picture);
  glBindTexture(GL_TEXTURE_2D, source.texture());
  for (const int wrap : {GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T}) {
    glTexParameteri(GL_TEXTURE_2D, static_cast<GLenum>(wrap), GL_MIRRORED_REPEAT);
  }
  for (const int filter : {GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER}) {
    glTexParameteri(GL_TEXTURE_2D, static_cast<GLenum>(filter), GL_LINEAR);
  }
  const Texture ordinary(picture, Filter::Linear, Wrap::MirroredRepeat);
  Draw(ordinary.name(), target, kWide, kHigh, -1.3f, 2.2f);
  const Image expected = target.read();
  Draw(source.texture(), target, kWide, kHigh, -1.3f, 2.2f);
  EXPECT_TRUE(SameImage(expected, target.read()));
  EXPECT_FALSE(SameImage(picture, expected)) << "the coordinates select the picture itself";
}

TEST_P(Buffer, BytesWrittenBeforeTheImageExistsAreShown) {
  const sp<GraphicBuffer> buffer = new GraphicBuffer(64, 2, HAL_PIXEL_FORMAT_RGBA_8888, 0x130);
  std::memset(buffer->lockPixels(), 0x71, 64 * 2 * 4);
  EXPECT_EQ(buffer->clean(), 0);
  const EGLDisplay display = eglGetCurrentDisplay();
  const EGLImageKHR image = buffer->createImage(display, nullptr);
  ASSERT_NE(image, EGL_NO_IMAGE_KHR);
  GLuint texture = 0;
  glGenTextures(1, &texture);
  glBindTexture(GL_TEXTURE_2D, texture);
  gl::Extensions().glEGLImageTargetTexture2DOES(GL_TEXTURE_2D, image);
  EXPECT_TRUE(SameImage(Plain(64, 2, 0x71), ReadTexture(texture, 64, 2)));
  glDeleteTextures(1, &texture);
  gl::Extensions().eglDestroyImageKHR(display, image);
}

TEST_P(Buffer, ImagesThatNoTextureCanHoldFailWithAReason) {
  GLint largest = 0;
  glGetIntegerv(GL_MAX_TEXTURE_SIZE, &largest);
  const sp<GraphicBuffer> buffer =
      new GraphicBuffer(32, static_cast<uint32_t>(largest) + 1, HAL_PIXEL_FORMAT_RGBA_8888, 0x130);
  ASSERT_NE(buffer->lockPixels(), nullptr);
  EXPECT_EQ(buffer->createImage(eglGetCurrentDisplay(), nullptr), EGL_NO_IMAGE_KHR);
  EXPECT_NE(eglGetError(), EGL_SUCCESS);
  EXPECT_EQ(buffer->clean(), 0);
  EXPECT_TRUE(TakeGlErrors().empty());
}

TEST_P(Buffer, CleaningByBaseAddressShowsTheCpusBytes) {
  TestImage source(64, 8);
  TestImage target(64, 8);
  const Image picture = Pattern(64, 8, 4);
  source.write(source.buffer().lockPixels(), picture);
  const platform::PrivateHandle& handle = source.buffer().handle();
  const auto allocator =
      platform::gralloc::IAllocController::getInstance()->getAllocator(handle.flags);
  EXPECT_EQ(allocator->clean_buffer(handle.base, static_cast<size_t>(handle.size), handle.offset,
                                    handle.fd, platform::gralloc::CACHE_CLEAN),
            0);
  Draw(source.texture(), target, 64, 8);
  EXPECT_TRUE(SameImage(picture, target.read()));
}

TEST_P(Buffer, ImagesDieUnderDrawsThatAreStillPending) {
  constexpr int kSize = 512;
  for (unsigned round = 0; round < 10; ++round) {
    const GlContext other;
    ASSERT_TRUE(other.ok());
    TestImage target(kSize, kSize);
    {
      TestImage source(kSize, kSize);
      source.upload(Pattern(kSize, kSize, round));
      Draw(source.texture(), target, kSize, kSize);
    }
    ASSERT_TRUE(SameImage(Pattern(kSize, kSize, round), target.read()));
  }
}

// The whole life of many buffers, in contexts that come and go.
TEST_P(Buffer, ManyBuffersComeAndGo) {
  for (unsigned round = 0; round < 20; ++round) {
    const GlContext other;
    ASSERT_TRUE(other.ok());
    TestImage first(64, 8);
    TestImage second(64, 8);
    first.upload(Pattern(64, 8, round));
    Draw(first.texture(), second, 64, 8);
    ASSERT_TRUE(SameImage(Pattern(64, 8, round), second.read()));
  }
}

}  // namespace
}  // namespace lumora::test
