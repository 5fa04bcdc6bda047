// SPDX-License-Identifier: Apache-2.0
// Copies between blocks and whole frames.
#include <gtest/gtest.h>

#include <cstring>

#include "engine/engine_images.h"
#include "support/caller_memory.h"
#include "support/log_capture.h"
#include "support/pictures.h"

namespace lumora::test {
namespace {

using reference::Image;

struct Block {
  const char* name;
  int x, y, width, height;
  int rows;  // rows to copy
};
constexpr int kFullWidth = 50;
constexpr int kFullHeight = 40;
constexpr Block kBlocks[] = {
    {"inside", 3, 5, 8, 6, 6},
    {"first corner", 0, 0, 16, 16, 16},
    {"over the right edge", 44, 8, 16, 7, 7},
    {"one column left", 49, 8, 16, 7, 7},
    {"on the right edge", 50, 8, 16, 7, 7},
    {"beyond the right edge", 60, 8, 16, 7, 7},
    {"all of it", 0, 0, 50, 40, 40},
    {"wider than all", 0, 0, 64, 40, 40},
    {"one pixel", 7, 9, 1, 1, 1},
    {"last rows only", 2, 37, 9, 16, 3},
};

Image InGuardedMemory(GuardedBuffer& memory, int width, int height) {
  Image image(width, height);
  std::memcpy(image.bytes.data(), memory.data(), image.bytes.size());
  return image;
}

TEST(BlockCopyRgba, ABlockGoesToItsPlaceInTheFullImage) {
  for (const Block& row : kBlocks) {
    SCOPED_TRACE(row.name);
    const Image block = NoiseImage(row.width, row.height, 1);
    Image expected = NoiseImage(kFullWidth, kFullHeight, 2);
    GuardedBuffer full(expected.bytes.size());
    std::memcpy(full.data(), expected.bytes.data(), full.size());
    for (int y = 0; y < row.rows; ++y) {
      for (int x = 0; x < row.width && row.x + x < kFullWidth; ++x) {
        std::memcpy(expected.pixel(row.x + x, row.y + y), block.pixel(x, y), 4);
      }
    }
    GPUBeautyFace::BlockCopyRGBA8888(block.bytes.data(), full.data(), row.x, row.y, row.width,
                                     row.rows, kFullWidth, -1);
    EXPECT_EQ(expected.bytes, InGuardedMemory(full, kFullWidth, kFullHeight).bytes);
    EXPECT_TRUE(full.intact());
  }
}

TEST(BlockCopyRgba, ABlockIsFilledFromItsPlaceInTheFullImage) {
  for (const Block& row : kBlocks) {
    SCOPED_TRACE(row.name);
    const Image full = NoiseImage(kFullWidth, kFullHeight, 3);
    Image expected = NoiseImage(row.width, row.height, 4);
    GuardedBuffer block(expected.bytes.size());
    std::memcpy(block.data(), expected.bytes.data(), block.size());
    for (int y = 0; y < row.rows; ++y) {
      for (int x = 0; x < row.width && row.x + x < kFullWidth; ++x) {
        std::memcpy(expected.pixel(x, y), full.pixel(row.x + x, row.y + y), 4);
      }
    }
    GPUBeautyFace::BlockCopyRGBA8888DrawBack(full.bytes.data(), block.data(), row.x, row.y,
                                             row.width, row.rows, kFullWidth, -1);
    EXPECT_EQ(expected.bytes, InGuardedMemory(block, row.width, row.height).bytes);
    EXPECT_TRUE(block.intact());
  }
}

// An engine for captures of an odd height, its packed targets filled by hand.
class BlockCopyYuv : public testing::Test {
 protected:
  static constexpr int kWidth = 1300;
  static constexpr int kHeight = 401;

  BlockCopyYuv() {
    engine_.InitCapture(nullptr, nullptr, kWidth, kHeight, nullptr, true);
    SetPixels(*engine_.m_pYYYYImage, luma_);
    SetPixels(*engine_.m_pUVUVImage, chroma_);
  }
  ~BlockCopyYuv() override { engine_.DeInitCapture(); }

  // The bytes of the copy: chroma rows go with the even rows of the frame, as far as there are any.
  Bytes expected(int x, int y, int width, int rows) const {
    Bytes bytes = before_;
    for (int row = 0; row < rows; ++row) {
      for (int column = 0; column < width; ++column) {
        const size_t place = static_cast<size_t>(x + column);
        bytes[LumaSize(kWidth, y + row) + place] = luma_.pixel(0, row)[column];
        if ((y + row) % 2 != 0 || (y + row) / 2 >= kHeight / 2) continue;
        bytes[LumaSize(kWidth, kHeight) + LumaSize(kWidth, (y + row) / 2) + place] =
            chroma_.pixel(0, row / 2)[column];
      }
    }
    return bytes;
  }

  GPUBeautyFace engine_;
  const Image luma_ = NoiseImage(384 / 4, 384, 5);
  const Image chroma_ = NoiseImage(384 / 4, 384 / 2, 6);
  const Bytes before_ = NoisePlanes(kWidth, kHeight, 7);
};

TEST_F(BlockCopyYuv, RowsGoToTheirPlaceInBothPlanes) {
  const struct {
    const char* name;
    int x, y, width, rows;
  } kRows[] = {{"whole block", 0, 0, 384, 384},   {"inside", 200, 10, 300, 100},
               {"odd sizes", 202, 10, 33, 7},     {"odd places", 201, 11, 30, 8},
               {"odd rows", 200, 10, 64, 7},      {"one row", 8, 12, 32, 1},
               {"right edge", 916, 16, 384, 384}, {"last rows", 384, 384, 384, 17},
               {"last row alone", 0, 400, 64, 1}, {"no rows", 0, 0, 64, 0},
               {"no columns", 0, 0, 0, 64}};
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    CallerPlanes planes(kWidth, kHeight, before_);
    EXPECT_EQ(1, engine_.BlockCopyYUV(planes.luma(), planes.chroma(), kWidth, -1, row.x, row.y,
                                      row.width, row.rows));
    EXPECT_EQ("", FirstDifference(expected(row.x, row.y, row.width, row.rows), planes.bytes(),
                                  kWidth, kHeight));
    EXPECT_TRUE(planes.intact());
  }
}

TEST_F(BlockCopyYuv, NoMoreIsReadThanThePackedTargetsHold) {
  CallerPlanes planes(kWidth, kHeight, before_);
  EXPECT_EQ(1, engine_.BlockCopyYUV(planes.luma(), planes.chroma(), kWidth, -1, 10, 4, 900, 390));
  EXPECT_EQ("", FirstDifference(expected(10, 4, 384, 384), planes.bytes(), kWidth, kHeight));
}

TEST_F(BlockCopyYuv, MissingDestinationsAreNamed) {
  CallerPlanes planes(kWidth, kHeight, before_);
  const auto low_word = [](const void* pointer) {
    return static_cast<unsigned>(reinterpret_cast<uintptr_t>(pointer));
  };
  LogCapture log;
  EXPECT_EQ(0, engine_.BlockCopyYUV(nullptr, planes.chroma(), kWidth, -1, 0, 0, 64, 64));
  EXPECT_EQ(0, engine_.BlockCopyYUV(planes.luma(), nullptr, kWidth, -1, 0, 0, 64, 64));
  EXPECT_EQ(0, engine_.BlockCopyYUV(nullptr, nullptr, kWidth, -1, 0, 0, 64, 64));
  constexpr char kText[] = "[BlockCopyYUV] pDstYStart (%u) or pDstUVStart (%u) is NULL\n";
  EXPECT_TRUE(LogIs(
      log, {Error("Lumora", kText, 0u, low_word(planes.chroma())),
            Error("Lumora", kText, low_word(planes.luma()), 0u), Error("Lumora", kText, 0u, 0u)}));
  EXPECT_EQ(before_, planes.bytes());
}

TEST(CacheMaintenance, CleaningKnowsTheBuffersOfTheLibrary) {
  GPUBeautyFace engine;
  engine.Init(64, 48, 64, 48, nullptr, false);
  const auto& handle = engine.m_pYYYYImage->m_spBuffer->handle();
  LogCapture log;
  EXPECT_EQ(1,
            engine.clean_buffer(handle.base, handle.flags, handle.offset, handle.fd, handle.size));
  EXPECT_TRUE(LogIs(log, {}));
  char foreign = 0;
  EXPECT_EQ(0, engine.clean_buffer(&foreign, handle.flags, 0, -1, 1));
  EXPECT_TRUE(LogIs(log, {Debug("Lumora", "[clean_buffer] clean buffer error")}));
  EXPECT_EQ(1, engine.clear_cache(handle.base, handle.fd, 64, 48));
  EXPECT_TRUE(LogIs(log, {}));
  EXPECT_EQ(1, engine.clear_cache(&foreign, -1, 64, 48)) << "the result is not looked at";
  EXPECT_TRUE(LogIs(log, {Debug("Lumora", "[clean_buffer] clean buffer error")}));
}

TEST(CropVertex, TheEngineMovesCornersByTheLensPolynomial) {
  GPUBeautyFace engine;
  float out[2] = {-9, -9};
  EXPECT_EQ(1, engine.SetCropVertexCoord(0.0f, 1.0f, out));
  EXPECT_NEAR(0.01066364, static_cast<double>(out[0]), 1e-6);
  EXPECT_NEAR(0.98933636, static_cast<double>(out[1]), 1e-6);
}

}  // namespace
}  // namespace lumora::test
