// SPDX-License-Identifier: Apache-2.0
// Slimmed captures: from the capture's planes, and from the HSI store that whitening leaves.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <memory>

#include "engine/capture_scene.h"
#include "lumora/programs/cheek_slimmer_programs.h"
#include "reference/slimming_capture.h"
#include "support/log_capture.h"
#include "support/pictures.h"

namespace lumora::test {
namespace {

using reference::PlaneBounds;
using reference::SlimmingCaptureModel;
using reference::SlimmingFace;

constexpr char kTag[] = "Lumora";

size_t Changed(const Bytes& a, const Bytes& b) {
  size_t changed = 0;
  for (size_t i = 0; i < a.size(); ++i) changed += a[i] != b[i];
  return changed;
}

/// An engine outside block mode that holds a capture's planes as textures.
class PlaneChain {
 public:
  PlaneChain(int width, int height, const Bytes& capture) : width_(width), height_(height) {
    CallerPlanes planes(width, height, capture);
    engine_.InitCapture(planes.luma(), planes.chroma(), width, height, nullptr, false);
  }
  ~PlaneChain() { engine_.DeInitCapture(); }

  GPUBeautyFace& engine() { return engine_; }

  Bytes slim(const Bytes& before, const std::vector<FaceRecord>& faces, int level) {
    CallerPlanes planes(width_, height_, before);
    std::vector<FACE_INFO_t> records = RecordsFrom(faces);
    EXPECT_EQ(1, engine_.FaceProcessLarge(planes.luma(), planes.chroma(), width_, height_, 5,
                                          records.data(), static_cast<int>(records.size()), level));
    EXPECT_TRUE(planes.intact());
    return planes.bytes();
  }

 private:
  int width_, height_;
  GPUBeautyFace engine_;
};

/// Slims faces of a capture into planes of noise: outside the blocks the noise stays.
void ExpectSlimmed(int width, int height, const std::vector<FaceRecord>& faces, int level) {
  Bytes capture = NoisePlanes(width, height, 3);
  const Bytes before = NoisePlanes(width, height, 4);
  PlaneChain chain(width, height, capture);
  const Bytes actual = chain.slim(before, faces, level);

  SlimmingCaptureModel model(width, height, false);
  PlaneBounds expected(width, height, before);
  for (const FaceRecord& face : faces) {
    model.set_face(face, level);
    model.slim(capture, model.rectangle_of(face), &expected);
  }
  EXPECT_TRUE(WithinPlanes(expected, actual));
}

TEST(SlimmingCapture, SmallCapturesAreOneBlock) {
  ExpectSlimmed(160, 120, {SlimmingFace(80, 60, 40, 40)}, 5);
  ExpectSlimmed(160, 120, {SlimmingFace(90, 50, 20, 45, 90, 0.7f)}, 12);
  ExpectSlimmed(416, 300, {SlimmingFace(200, 160, 100, 90, 0)}, 8);
}

TEST(SlimmingCapture, CapturesThatFit) {
  ExpectSlimmed(1280, 960, {SlimmingFace(600, 500, 260, 240)}, 8);
}

TEST(SlimmingCapture, TiledCaptures) {
  ExpectSlimmed(1920, 1080, {SlimmingFace(900, 500, 300, 280, 200)}, 8);
}

TEST(SlimmingCapture, FacesAtTheEdgesAndCorners) {
  const int kWidth = 1408;
  const int kHeight = 600;
  const FaceRecord faces[] = {
      SlimmingFace(3, 300, 100, 100),         SlimmingFace(kWidth - 2, 300, 100, 100),
      SlimmingFace(700, 2, 100, 100),         SlimmingFace(701, kHeight - 1, 100, 100),
      SlimmingFace(1, 1, 100, 100),           SlimmingFace(kWidth, kHeight, 100, 100),
      SlimmingFace(kWidth + 300, 300, 90, 90)};
  for (const FaceRecord& face : faces) ExpectSlimmed(kWidth, kHeight, {face}, 8);
}

// A later face's blocks are warped from the capture, not from what the earlier face left.
TEST(SlimmingCapture, OverlappingFacesReplaceEachOther) {
  ExpectSlimmed(1408, 800, {SlimmingFace(500, 300, 150, 150), SlimmingFace(650, 350, 120, 150)}, 8);
}

TEST(SlimmingCapture, ManyFaces) {
  std::vector<FaceRecord> faces;
  for (int i = 0; i < 12; ++i)
    faces.push_back(SlimmingFace(20 + 10 * i, 20 + 7 * i, 15, 15, 15 * i));
  ExpectSlimmed(160, 120, faces, 8);
}

// Where a coordinate's 16 bits are 1/22 of a pixel apart.
TEST(SlimmingCapture, SixMegapixels) {
  ExpectSlimmed(3000, 2000, {SlimmingFace(1400, 700, 300, 280)}, 10);
}

TEST(SlimmingCapture, TwelveMegapixels) {
  ExpectSlimmed(4000, 3000, {SlimmingFace(3900, 2950, 380, 300)}, 8);
}

TEST(SlimmingCapture, WiderThanAnyStore) {
  ExpectSlimmed(5000, 3000, {SlimmingFace(4950, 100, 300, 300)}, 8);
}

// Rejected faces keep the warp of the face before, but have blocks of their own.
TEST(SlimmingCapture, RejectedFacesKeepTheWarpOfTheOneBefore) {
  FaceRecord rejected = SlimmingFace(300, 300, 60, 60);
  rejected.set(FaceRecord::kDistValid, 0);
  ExpectSlimmed(1408, 600, {SlimmingFace(600, 300, 150, 150), rejected}, 8);
  ExpectSlimmed(1408, 600, {rejected}, 8);
}

TEST(SlimmingCapture, FacesWithoutSizeHaveNoBlocks) {
  const Bytes before = NoisePlanes(160, 120, 4);
  PlaneChain chain(160, 120, NoisePlanes(160, 120, 3));
  EXPECT_EQ(before, chain.slim(before, {SlimmingFace(80, 60, 0, 0)}, 8));
  EXPECT_EQ(before, chain.slim(before, {SlimmingFace(80, 60, -40, -40)}, 8));
  EXPECT_EQ(before, chain.slim(before, {}, 8));
  EXPECT_NE(before, chain.slim(before, {SlimmingFace(80, 60, 40, 40)}, 8));
}

// The rows of a block go on behind the true width up to the padded one. Planes end where they end.
TEST(SlimmingCapture, OddSizesStayInsideThePlanes) {
  for (const auto& [width, height] :
       {std::pair(1310, 500), std::pair(1300, 501), std::pair(1299, 401), std::pair(1283, 399),
        std::pair(162, 121), std::pair(101, 77)}) {
    SCOPED_TRACE(testing::Message() << width << " x " << height);
    const Bytes before = NoisePlanes(width, height, 4);
    PlaneChain chain(width, height, NoisePlanes(width, height, 3));
    for (const int x : {1, width / 2, width - 1, width, width + 3, width + 384}) {
      const Bytes after = chain.slim(before, {SlimmingFace(x, height - 1, 60, 60)}, 8);
      EXPECT_EQ(before.size(), after.size());
    }
  }
}

// A block that starts in the padding has no columns.
TEST(SlimmingCapture, BlocksBehindTheTrueWidthCopyNothing) {
  const Bytes before = NoisePlanes(1310, 400, 4);
  PlaneChain chain(1310, 400, NoisePlanes(1310, 400, 3));
  LogCapture log;
  // From 1310 on: inside the padded rows of 1312.
  EXPECT_EQ(before, chain.slim(before, {SlimmingFace(1310 + 384, 384, 100, 100)}, 8));
  EXPECT_EQ(1, log.count(Debug(kTag, "[LumoraLarge Cheek Slimmer Output: 1310 0 size=0 384")));
}

TEST(SlimmingCapture, TellsFacesAndBlocks) {
  PlaneChain chain(1408, 600, NoisePlanes(1408, 600, 3));
  LogCapture log;
  chain.slim(NoisePlanes(1408, 600, 4),
             {SlimmingFace(1001, 301, 100, 80), SlimmingFace(20, 20, 384, 90)}, 5);
  std::vector<LogLine> expected;
  const auto face = [&expected](int x, int y, int dist, int chin) {
    SlimmingCaptureModel model(1408, 600, false);
    reference::WarpRequest request =
        reference::RequestOf(SlimmingFace(x, y, dist, chin), 5, 1408, 600, true);
    expected.push_back(Info(kTag, "dist_level = %.2f, dist_level_ratio = %.2f",
                            static_cast<double>(reference::WarpStrength(request)), 1.0));
    expected.push_back(Info(kTag,
                            "loc_x = %d, loc_y = %d, dist = %d, roll =%d, chin_dist = %d, "
                            "Beauty_Level = %d, shapetype = %d",
                            x, y, dist, 180, chin, 5, 0));
    expected.push_back(Debug(
        kTag, "[LumoraLarge CheekSlimmer YUV]: Process_Rect: X: %d, Y: %d, Width: 768, Height: 768",
        x - 384, y - 384));
    expected.push_back(Debug(kTag, "[LumoraLarge]process block"));
  };
  const auto block = [&expected](int run, int x, int y, int width, int height) {
    expected.push_back(Debug(kTag, "[LumoraLarge Cheek Slimmer]:current run %d", run));
    expected.push_back(
        Debug(kTag, "[LumoraLarge Cheek Slimmer Output: %d %d size=%d %d", x, y, width, height));
  };
  face(1001, 301, 100, 80);
  block(0, 618, 0, 384, 384);  // odd 617 is raised
  block(1, 1002, 0, 384, 384);
  // 1386 lies behind the rectangle's end at 1385
  block(2, 618, 384, 384, 216);
  block(3, 1002, 384, 384, 216);
  face(20, 20, 384, 90);
  block(0, 0, 0, 384, 384);
  block(1, 384, 0, 384, 384);
  block(2, 0, 384, 384, 216);
  block(3, 384, 384, 384, 216);
  std::vector<LogLine> lines = log.lines_of(kTag);
  // The line with the two distances and their quotient comes first of each face's.
  lines.erase(std::remove_if(lines.begin(), lines.end(),
                             [](const LogLine& line) {
                               return line.priority == 4 &&
                                      line.text.find("_level") == std::string::npos &&
                                      line.text.find("Beauty") == std::string::npos;
                             }),
              lines.end());
  EXPECT_TRUE(LogIs(lines, expected));
}

// ---- From the HSI store -------------------------------------------------------------------------

/// A capture in block mode with a random store and the warp that callers bring themselves.
class StoreChain {
 public:
  StoreChain(int width, int height, bool with_program) : scene_(width, height) {
    store_ = NoiseImage(scene_.stride(), height, 6);
    scene_.set_store(store_);
    if (!with_program) return;
    auto program = std::make_unique<GLProgCheekSlimmerLarge_HSI>();
    EXPECT_TRUE(program->Load());
    scene_.engine().m_pProgCheekSlimmer = program.release();
  }

  CaptureScene& scene() { return scene_; }
  const Image& store() const { return store_; }

  Bytes slim(const Bytes& before, const std::vector<FaceRecord>& faces,
             const std::vector<Rectangle>& rectangles, int width, int height, int level) {
    for (size_t i = 0; i < std::min<size_t>(rectangles.size(), 10); ++i) {
      const Rectangle& r = rectangles[i];
      scene_.engine().m_rcFaceProcess[i] = {r.x, r.y, r.width, r.height, 0};
    }
    CallerPlanes planes(width, height, before);
    std::vector<FACE_INFO_t> records = RecordsFrom(faces);
    EXPECT_EQ(1, scene_.engine().FaceProcessLarge(planes.luma(), planes.chroma(), width, height, 0,
                                                  records.data(), static_cast<int>(records.size()),
                                                  level));
    EXPECT_TRUE(planes.intact());
    return planes.bytes();
  }

 private:
  CaptureScene scene_;
  Image store_;
};

void ExpectSlimmedStore(int width, int height, const std::vector<FaceRecord>& faces,
                        const std::vector<Rectangle>& rectangles) {
  StoreChain chain(width, height, true);
  const Bytes before = NoisePlanes(width, height, 4);
  const Bytes actual = chain.slim(before, faces, rectangles, width, height, 8);
  SlimmingCaptureModel model(width, height, true);
  PlaneBounds expected(width, height, before);
  const int least = height / 20;
  for (size_t i = 0; i < faces.size(); ++i) {
    model.set_face(faces[i], 8);
    if (rectangles[i].width < least || rectangles[i].height < least) continue;
    model.slim(chain.store(), rectangles[i], &expected);
  }
  EXPECT_TRUE(WithinPlanes(expected, actual));
  EXPECT_TRUE(chain.store().bytes == chain.scene().store().bytes) << "the store was written to";
}

TEST(SlimmingStore, WithoutAProgramNothingHappens) {
  for (const auto& [width, height] : {std::pair(160, 120), std::pair(1408, 600)}) {
    StoreChain chain(width, height, false);
    ASSERT_EQ(nullptr, chain.scene().engine().m_pProgCheekSlimmer);
    const Bytes before = NoisePlanes(width, height, 4);
    EXPECT_EQ(before,
              chain.slim(before, {SlimmingFace(80, 60, 40, 40), SlimmingFace(90, 60, 40, 40)},
                         {{0, 0, 160, 120}, {0, 0, 160, 120}}, width, height, 8));
    EXPECT_EQ(0, chain.scene().engine().DrawFaceDistLarge());
  }
}

TEST(SlimmingStore, SmallCaptures) {
  ExpectSlimmedStore(160, 120, {SlimmingFace(80, 60, 40, 40)}, {{-80, -60, 320, 240}});
  ExpectSlimmedStore(416, 300, {SlimmingFace(200, 160, 100, 90, 0)}, {{10, 10, 300, 200}});
}

TEST(SlimmingStore, TiledCapturesAndSeveralFaces) {
  ExpectSlimmedStore(1920, 1080,
                     {SlimmingFace(700, 500, 200, 180), SlimmingFace(1500, 600, 200, 200, 90),
                      SlimmingFace(1800, 1000, 150, 150)},
                     {{501, 301, 400, 384}, {1400, 500, 53, 300}, {1700, 901, 384, 384}});
}

TEST(SlimmingStore, RowsThatArePadded) {
  ExpectSlimmedStore(1310, 500, {SlimmingFace(1200, 300, 200, 180)}, {{1000, 100, 700, 384}});
}

TEST(SlimmingStore, SlimsWhatWhiteningLeft) {
  CaptureScene scene(1408, 800);
  const Bytes frame = [] {
    Frame warm(1408, 800, 120, 155, 105);
    for (int y = 0; y < 800; ++y) {
      for (int x = 0; x < 1408; ++x) warm.y(x, y) = static_cast<uint8_t>(90 + (x / 3 + y / 5) % 80);
    }
    return warm.bytes;
  }();
  const FaceRecord face = PortraitFace(700, 380, 150);
  ASSERT_TRUE(scene.whiten(frame, {face}, {40, 20, 8}));
  auto program = std::make_unique<GLProgCheekSlimmerLarge_HSI>();
  ASSERT_TRUE(program->Load());
  scene.engine().m_pProgCheekSlimmer = program.release();
  const Image store = scene.store();
  FACE_INFO_t record = face.as<FACE_INFO_t>();
  CallerPlanes planes(1408, 800, frame);
  LogCapture log;
  EXPECT_EQ(1, scene.engine().FaceProcessLarge(planes.luma(), planes.chroma(), 1408, 800, 0,
                                               &record, 1, 8));
  const android::FaceProcessRect& rect = scene.engine().m_rcFaceProcess[0];
  EXPECT_EQ(1, log.count(Debug(kTag,
                               "[LumoraLarge CheekSlimmer HSI]: Process_Rect: X: %d, Y: %d, Width: "
                               "%d, Height: %d",
                               rect.X, rect.Y, rect.Width, rect.Height)));
  EXPECT_EQ(1, log.count(Debug(kTag, "[LumoraLarge Cheek Slimmer]:current run 3")));
  EXPECT_EQ(0, log.count(Debug(kTag, "[LumoraLarge Cheek Slimmer]:current run 9")));
  SlimmingCaptureModel model(1408, 800, true);
  model.set_face(face, 8);
  PlaneBounds expected(1408, 800, frame);
  model.slim(store, {rect.X, rect.Y, rect.Width, rect.Height}, &expected);
  EXPECT_TRUE(WithinPlanes(expected, planes.bytes()));
  EXPECT_GT(Changed(frame, planes.bytes()), 100000u);
}

TEST(SlimmingStore, TheEleventhFaceIsToldAndLeftOut) {
  StoreChain chain(160, 120, true);
  const std::vector<Rectangle> rectangles(10, {0, 0, 160, 120});
  std::vector<FaceRecord> faces;
  for (int i = 0; i < 11; ++i) faces.push_back(SlimmingFace(30 + 9 * i, 60, 40, 40));
  const Bytes before = NoisePlanes(160, 120, 4);
  const Bytes ten = chain.slim(before, {faces.begin(), faces.end() - 1}, rectangles, 160, 120, 8);
  LogCapture log;
  EXPECT_EQ(ten, chain.slim(before, faces, rectangles, 160, 120, 8));
  EXPECT_EQ(1u, log.lines(6).size());
}

// Captures that fit no texture have no store that the warp could read.
TEST(SlimmingStore, LargeCapturesAreLeftAlone) {
  StoreChain chain(5000, 300, true);
  const Bytes before = NoisePlanes(5000, 300, 4);
  EXPECT_EQ(before, chain.slim(before, {SlimmingFace(700, 150, 100, 100)}, {{500, 0, 384, 300}},
                               5000, 300, 8));
}

TEST(SlimmingStore, AnyRectangleIsSafe) {
  StoreChain chain(1408, 600, true);
  const Bytes before = NoisePlanes(1408, 600, 4);
  const int kExtremes[] = {INT_MIN, -1, 0, 1407, INT_MAX};
  for (const int place : kExtremes) {
    for (const int length : kExtremes) {
      chain.slim(before, {SlimmingFace(700, 300, 100, 100)}, {{place, 100, length, 100}}, 1408, 600,
                 8);
      chain.slim(before, {SlimmingFace(700, 300, 100, 100)}, {{100, place, 100, length}}, 1408, 600,
                 8);
    }
  }
}

}  // namespace
}  // namespace lumora::test
