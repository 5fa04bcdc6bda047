// SPDX-License-Identifier: Apache-2.0
// The block loop of captures: faces of an HSI picture brought back to the caller's planes.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstring>

#include "engine/engine_images.h"
#include "reference/colour.h"
#include "reference/expand.h"
#include "support/caller_memory.h"
#include "support/log_capture.h"
#include "support/pictures.h"

namespace lumora::test {
namespace {

struct Rect {
  int x, y, width, height;
};

// The blocks of a face, written down anew: from the even place at or behind the face's start, in
// steps of the block size, as long as they start inside face and frame.
std::vector<Rect> BlocksOf(const Rect& face, int frame_width, int frame_height, int block_width,
                           int block_height) {
  const auto first = [](int place) {
    const int inside = std::max(place, 0);
    return inside % 2 == 0 ? inside : inside + 1;
  };
  std::vector<Rect> blocks;
  for (int64_t y = first(face.y);
       y < std::min(int64_t{face.y} + face.height, int64_t{frame_height}); y += block_height) {
    for (int64_t x = first(face.x);
         x < std::min(int64_t{face.x} + face.width, int64_t{frame_width}); x += block_width) {
      const int left = static_cast<int>(x);
      const int top = static_cast<int>(y);
      blocks.push_back({left, top, std::min(block_width, frame_width - left),
                        std::min(block_height, frame_height - top)});
    }
  }
  return blocks;
}

// A capture in block mode whose store holds a random HSI picture.
class Capture {
 public:
  Capture(int width, int height)
      : width_(width), height_(height), before_(NoisePlanes(width, height, 1)) {
    engine_.InitCapture(nullptr, nullptr, width, height, &stride_, true);
    picture_ = NoiseImage(stride_, height, 2);
    if (engine_.m_bLargeCapture) {
      void* store = nullptr;
      engine_.m_spLargeBuffer->lock(0x33, &store);
      std::memcpy(store, picture_.bytes.data(), picture_.bytes.size());
      engine_.m_spLargeBuffer->unlock();
    } else {
      SetPixels(*engine_.m_pWorkImage[1], picture_);
    }
  }
  ~Capture() { engine_.DeInitCapture(); }

  GPUBeautyFace& engine() { return engine_; }
  int stride() const { return stride_; }

  void set_faces(const std::vector<Rect>& faces) {
    for (size_t i = 0; i < faces.size(); ++i) {
      engine_.m_rcFaceProcess[i] = {faces[i].x, faces[i].y, faces[i].width, faces[i].height, 0};
    }
  }

  // Runs the loop over the faces and checks both planes: inside the blocks of `processed` what the
  // model makes of the picture, elsewhere what they held.
  void expect(const std::vector<Rect>& faces, const std::vector<Rect>& processed) {
    set_faces(faces);
    CallerPlanes planes(width_, height_, before_);
    LogCapture log;
    ASSERT_EQ(1, engine_.CopyMemYUVfromSrcTextureLarge(planes.luma(), planes.chroma(), 77,
                                                       static_cast<int>(faces.size())));
    EXPECT_TRUE(LogHas(
        log.lines_of("Lumora"),
        std::vector<LogLine>(processed.size(), Debug("Lumora",
                                                     "[CopyMemYUVfromSrcTextureLarge]process "
                                                     "block"))));
    EXPECT_EQ(processed.size(), log.lines_of("Lumora").size());
    EXPECT_TRUE(planes.intact());

    Bytes low = before_;
    Bytes high = before_;
    for (const Rect& face : processed) {
      for (const Rect& block :
           BlocksOf(face, width_, height_, engine_.m_nSrcWidth, engine_.m_nSrcHeight)) {
        convert(block, &low, &high);
      }
    }
    const Bytes actual = planes.bytes();
    for (size_t i = 0; i < actual.size(); ++i) {
      const size_t luma = LumaSize(width_, height_);
      const size_t place = i < luma ? i : i - luma;
      ASSERT_TRUE(low[i] <= actual[i] && actual[i] <= high[i])
          << (i < luma ? "luma" : "chroma") << " row " << place / static_cast<size_t>(width_)
          << ", byte " << place % static_cast<size_t>(width_) << ": expected " << int{low[i]}
          << " to " << int{high[i]} << ", is " << int{actual[i]};
    }
  }

 private:
  // Mediump programs may compute with half floats: six times the hue has steps of 2^-8.
  static constexpr double kPrecision = 1.0 / 256;

  // Luma is that of the pixel; chroma is packed on the corner of four pixels, any of which may
  // answer.
  void convert(const Rect& block, Bytes* low, Bytes* high) const {
    for (int row = 0; row < block.height; ++row) {
      for (int column = 0; column < block.width; ++column) {
        const int x = block.x + column;
        const int y = block.y + row;
        const size_t at = LumaSize(width_, y) + static_cast<size_t>(x);
        const double luma = reference::HsiToYuv(picture_.at(x, y)).r;
        (*low)[at] = reference::ToByte(luma - kPrecision);
        (*high)[at] = reference::ToByte(luma + kPrecision);
        if (y % 2 != 0 || y / 2 >= height_ / 2) continue;
        const size_t pair =
            LumaSize(width_, height_) + LumaSize(width_, y / 2) + static_cast<size_t>(x);
        double least = 2.0;
        double most = -2.0;
        for (const int corner : {0, 1, 2, 3}) {
          // Pixels beyond the frame repeat its edge.
          const int cx = std::min(x / 2 * 2 + corner % 2, stride_ - 1);
          const int cy = std::min(y + corner / 2, height_ - 1);
          const reference::Texel yuv = reference::HsiToYuv(picture_.at(cx, cy));
          const double value = x % 2 == 0 ? yuv.g : yuv.b;
          least = std::min(least, value);
          most = std::max(most, value);
        }
        (*low)[pair] = reference::ToByte(least - kPrecision);
        (*high)[pair] = reference::ToByte(most + kPrecision);
      }
    }
  }

  int width_, height_;
  Bytes before_;
  Image picture_;
  int stride_ = 0;
  GPUBeautyFace engine_;
};

TEST(CaptureBlocks, TiledCapturesTouchTheBlocksOfFaces) {
  Capture capture(1920, 1080);  // blocks of 384 x 384
  const Rect kFaces[] = {
      {400, 200, 300, 300},   // one block
      {401, 201, 384, 384},   // odd places are raised: one block that ends beyond the face
      {100, 100, 600, 700},   // two by two
      {-50, -30, 200, 200},   // starts at the frame's corner
      {1800, 900, 400, 400},  // runs out of the frame
      {1919, 500, 100, 100},  // raised beyond the right edge: nothing
      {0, 0, 1920, 1080},     // everything
      {600, 600, 54, 54},     // exactly a twentieth of the height
  };
  for (const Rect& face : kFaces) {
    SCOPED_TRACE(testing::Message()
                 << face.x << ", " << face.y << ", " << face.width << " x " << face.height);
    capture.expect({face}, {face});
    if (testing::Test::HasFatalFailure()) return;
  }
}

TEST(CaptureBlocks, FacesBelowATwentiethOfTheHeightAreSkipped) {
  Capture capture(1920, 1080);
  for (const Rect& face : {Rect{600, 600, 53, 300}, Rect{600, 600, 300, 53}, Rect{600, 600, 0, 0},
                           Rect{-1, -1, -1, -1}, Rect{600, 600, -53, 300}}) {
    capture.expect({face}, {});
  }
  // Of the height also across: a twentieth of the width would be 96.
  capture.expect({{600, 600, 54, 54}}, {{600, 600, 54, 54}});
}

TEST(CaptureBlocks, SeveralFacesMayOverlap) {
  Capture capture(1400, 1000);
  const std::vector<Rect> faces = {{100, 100, 300, 300}, {200, 150, 300, 300}, {900, 600, 60, 60}};
  capture.expect({faces[0], faces[1], {5, 5, 10, 10}, faces[2]}, faces);
}

TEST(CaptureBlocks, CapturesThatFitAreOneBlockFromTheFaceOn) {
  Capture capture(1280, 960);
  capture.expect({{300, 200, 200, 200}}, {{300, 200, 200, 200}});
  capture.expect({{-10, -10, 200, 200}}, {{-10, -10, 200, 200}});
  capture.expect({{1201, 901, 200, 200}}, {{1201, 901, 200, 200}});
}

TEST(CaptureBlocks, NarrowHighCapturesGoInBlocksOfTheirWidth) {
  Capture capture(416, 2000);
  EXPECT_EQ(1536, capture.engine().m_nSrcHeight);
  capture.expect({{10, 20, 400, 1900}}, {{10, 20, 400, 1900}});
}

TEST(CaptureBlocks, OddHeightsHaveNoChromaForTheirLastRow) {
  Capture capture(1400, 801);
  capture.expect({{1000, 500, 400, 301}}, {{1000, 500, 400, 301}});
  capture.expect({{0, 760, 1400, 41}}, {{0, 760, 1400, 41}});
}

TEST(CaptureBlocks, RowsThatArePaddedKeepTheirPlace) {
  Capture capture(1300, 700);
  EXPECT_EQ(1312, capture.stride());
  capture.expect({{900, 100, 400, 500}}, {{900, 100, 400, 500}});
}

// The 60-megabyte store is no texture: blocks are copied out of it.
TEST(CaptureBlocks, LargeCapturesAreTakenFromPlainMemory) {
  Capture capture(5000, 3000);
  ASSERT_TRUE(capture.engine().m_bLargeCapture);
  EXPECT_EQ(5024, capture.stride());
  const std::vector<Rect> faces = {
      {2001, 1001, 500, 400}, {-20, -20, 200, 200}, {4800, 2800, 500, 500}, {10, 10, 149, 600}};
  capture.expect(faces, {faces[0], faces[1], faces[2]});
  EXPECT_EQ(2, capture.engine().m_nResultIdx);
}

TEST(CaptureBlocks, MoreThanTenFacesAreTakenAsTen) {
  Capture capture(1400, 1000);
  capture.set_faces(std::vector<Rect>(10, {0, 0, 1, 1}));
  CallerPlanes planes(1400, 1000);
  const Bytes before = planes.bytes();
  LogCapture log;
  for (const int faces : {11, INT_MAX}) {
    EXPECT_EQ(1, capture.engine().CopyMemYUVfromSrcTextureLarge(planes.luma(), planes.chroma(), 0,
                                                                faces));
    const std::vector<LogLine> lines = log.take();
    ASSERT_EQ(1u, lines.size());
    EXPECT_EQ(6, lines[0].priority);
    EXPECT_EQ("Lumora", lines[0].tag);
  }
  EXPECT_EQ(before, planes.bytes());
}

TEST(CaptureBlocks, NoFacesLeaveThePlanes) {
  Capture capture(1400, 1000);
  capture.expect({}, {});
  CallerPlanes planes(1400, 1000);
  EXPECT_EQ(1,
            capture.engine().CopyMemYUVfromSrcTextureLarge(planes.luma(), planes.chroma(), 0, -3));
  EXPECT_EQ(CallerPlanes(1400, 1000).bytes(), planes.bytes());
}

TEST(CaptureBlocks, OnlyBlockModeHasBlocks) {
  GPUBeautyFace engine;
  engine.InitCapture(nullptr, nullptr, 1400, 1000, nullptr, false);
  engine.m_rcFaceProcess[0] = {0, 0, 400, 400, 0};
  CallerPlanes planes(1400, 1000);
  const Bytes before = planes.bytes();
  EXPECT_EQ(0, engine.CopyMemYUVfromSrcTextureLarge(planes.luma(), planes.chroma(), 0, 1));
  EXPECT_EQ(before, planes.bytes());
  engine.DeInitCapture();
}

TEST(CaptureBlocks, RectanglesOfAnyNumbersAreSafe) {
  Capture capture(1400, 1000);
  const int kExtremes[] = {INT_MIN, -1, 0, 1399, INT_MAX};
  for (const int x : kExtremes) {
    for (const int width : kExtremes) {
      for (const Rect& face : {Rect{x, 100, width, 100}, Rect{100, x, 100, width}}) {
        capture.set_faces({face});
        CallerPlanes planes(1400, 1000);
        EXPECT_EQ(1, capture.engine().CopyMemYUVfromSrcTextureLarge(planes.luma(), planes.chroma(),
                                                                    0, 1));
        EXPECT_TRUE(planes.intact());
      }
    }
  }
}

}  // namespace
}  // namespace lumora::test
