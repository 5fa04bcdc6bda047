// SPDX-License-Identifier: Apache-2.0
// Layout and fingerprints of image memory, and buffers where there is no GL context at all.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <vector>

#include "lumora/platform/buffer/buffer_geometry.h"
#include "lumora/platform/buffer/pixel_digest.h"
#include "lumora/platform/gralloc.h"
#include "lumora/platform/graphic_buffer.h"

namespace {

using namespace lumora::platform;  // NOLINT(google-build-using-namespace)

constexpr uint32_t kUsage = GRALLOC_USAGE_SW_WRITE_OFTEN | GRALLOC_USAGE_HW_TEXTURE;

TEST(BufferGeometry, RowsAreMultiplesOf32Pixels) {
  const struct {
    uint32_t width, stride;
  } rows[] = {{1, 32}, {31, 32}, {32, 32}, {33, 64}, {640, 640}, {641, 672}, {1920, 1920}};
  for (const auto& row : rows) EXPECT_EQ(LayOut(row.width, 8).stride, row.stride) << row.width;
}

TEST(BufferGeometry, SlackHoldsWiderRowsAndTwoMore) {
  EXPECT_EQ(LayOut(32, 2).size, 128u * 4 * (2 + 2));
  EXPECT_EQ(LayOut(129, 3).size, 256u * 4 * (4 + 2));
  EXPECT_EQ(LayOut(640, 480).size, 640u * 4 * (480 + 2));
}

TEST(BufferGeometry, ImagesBeyondTheHandlesSizeHaveNoMemory) {
  EXPECT_GT(LayOut(16384, 16384).size, 0u);
  EXPECT_EQ(LayOut(32768, 32768).size, 0u);
  EXPECT_EQ(LayOut(UINT32_MAX, UINT32_MAX).size, 0u);
  EXPECT_EQ(LayOut(1, UINT32_MAX).size, 0u);
}

TEST(PixelDigest, AnyChangedByteChangesIt) {
  constexpr size_t kRowBytes = 44, kRows = 3, kStride = 64;
  std::vector<unsigned char> pixels(kStride * kRows, 9);
  const auto digest = [&] { return PixelDigest(pixels.data(), kRowBytes, kRows, kStride); };
  const uint64_t before = digest();
  for (size_t row = 0; row < kRows; ++row) {
    for (size_t column = 0; column < kRowBytes; ++column) {
      unsigned char& byte = pixels[row * kStride + column];
      byte ^= 1;
      EXPECT_NE(digest(), before) << row << ", " << column;
      byte ^= 1;
    }
  }
  EXPECT_EQ(digest(), before);
}

TEST(PixelDigest, ExchangedPixelsChangeIt) {
  std::vector<unsigned char> pixels(64, 0);
  pixels[3] = 1;
  const uint64_t first = PixelDigest(pixels.data(), 64, 1, 64);
  std::swap(pixels[3], pixels[35]);
  EXPECT_NE(PixelDigest(pixels.data(), 64, 1, 64), first);
}

TEST(PixelDigest, BytesBetweenRowsDoNotCount) {
  std::vector<unsigned char> pixels(128, 5);
  const uint64_t before = PixelDigest(pixels.data(), 40, 2, 64);
  pixels[40] = pixels[63] = pixels[104] = 77;
  EXPECT_EQ(PixelDigest(pixels.data(), 40, 2, 64), before);
}

TEST(BufferWithoutContext, IsZeroedMemoryWithTheAllocatorsHandle) {
  const sp<GraphicBuffer> buffer = new GraphicBuffer(100, 7, HAL_PIXEL_FORMAT_RGBA_8888, kUsage);
  const PrivateHandle& handle = buffer->handle();
  ASSERT_NE(handle.base, nullptr);
  EXPECT_EQ(handle.flags, 0x130);
  EXPECT_EQ(handle.size, 128 * 4 * 10);
  EXPECT_EQ(handle.offset, 0);
  EXPECT_EQ(handle.fd, -1);
  EXPECT_EQ(buffer->stride(), 128u);
  const auto* bytes = static_cast<const unsigned char*>(handle.base);
  EXPECT_THAT(std::vector<unsigned char>(bytes, bytes + handle.size), testing::Each(0));

  void* address = nullptr;
  EXPECT_EQ(buffer->lock(GRALLOC_USAGE_SW_READ_OFTEN, &address), 0);
  EXPECT_EQ(address, handle.base);
  std::memset(address, 0xAB, static_cast<size_t>(handle.size));  // all of the slack is usable
  EXPECT_EQ(buffer->unlock(), 0);
  EXPECT_EQ(buffer->lockPixels(), handle.base);
  EXPECT_EQ(buffer->kind(), BufferKind::Staged);
  EXPECT_LT(buffer->lock(GRALLOC_USAGE_SW_READ_OFTEN, nullptr), 0);
}

TEST(BufferWithoutContext, NothingIsDrawnOrShown) {
  const sp<GraphicBuffer> buffer = new GraphicBuffer(64, 4, HAL_PIXEL_FORMAT_RGBA_8888, kUsage);
  BeforeDraw();
  NoteColorAttachment(1);
  EXPECT_EQ(buffer->createImage(EGL_NO_DISPLAY, nullptr), EGL_NO_IMAGE_KHR);
  EXPECT_EQ(buffer->lockPixels(), buffer->handle().base);
}

TEST(BufferWithoutMemory, EveryOperationFailsQuietly) {
  const sp<GraphicBuffer> buffers[] = {
      new GraphicBuffer(UINT32_MAX, UINT32_MAX, HAL_PIXEL_FORMAT_RGBA_8888, kUsage),
      new GraphicBuffer(64, 64, HAL_PIXEL_FORMAT_RGBA_8888 + 4, kUsage)};
  for (const sp<GraphicBuffer>& buffer : buffers) {
    EXPECT_EQ(buffer->handle().base, nullptr);
    EXPECT_EQ(buffer->lockPixels(), nullptr);
    void* address = nullptr;
    EXPECT_LT(buffer->lock(0, &address), 0);
    EXPECT_LT(buffer->clean(), 0);
    EXPECT_EQ(buffer->createImage(EGL_NO_DISPLAY, nullptr), EGL_NO_IMAGE_KHR);
  }
}

TEST(Gralloc, CleansLiveBuffersByTheirBaseAddress) {
  const sp<gralloc::IAllocController> controller = gralloc::IAllocController::getInstance();
  const sp<gralloc::IMemAlloc> allocator = controller->getAllocator(0x130);
  ASSERT_TRUE(allocator);
  sp<GraphicBuffer> buffer = new GraphicBuffer(64, 4, HAL_PIXEL_FORMAT_RGBA_8888, kUsage);
  void* const base = buffer->handle().base;
  const auto clean = [&](void* address, int operation) {
    return allocator->clean_buffer(address, 64 * 4 * 4, 0, -1, operation);
  };
  EXPECT_EQ(clean(base, gralloc::CACHE_CLEAN), 0);
  EXPECT_LT(clean(base, gralloc::CACHE_CLEAN + 1), 0);
  EXPECT_LT(clean(static_cast<char*>(base) + 4, gralloc::CACHE_CLEAN), 0);
  EXPECT_LT(clean(nullptr, gralloc::CACHE_CLEAN), 0);
  buffer.clear();
  EXPECT_LT(clean(base, gralloc::CACHE_CLEAN), 0);
}

TEST(StrongPointer, LastReferenceDeletes) {
  struct Counted : RefBase {
    explicit Counted(int& deaths) : deaths_(deaths) {}
    ~Counted() override { ++deaths_; }
    int& deaths_;
  };
  int deaths = 0;
  sp<Counted> first = new Counted(deaths);
  sp<Counted> second = first;
  first = nullptr;
  EXPECT_EQ(deaths, 0);
  sp<Counted> third = std::move(second);
  EXPECT_FALSE(second);  // NOLINT(bugprone-use-after-move)
  const sp<Counted>& same = third;
  third = same;
  EXPECT_EQ(deaths, 0);
  third.clear();
  EXPECT_EQ(deaths, 1);
}

}  // namespace
