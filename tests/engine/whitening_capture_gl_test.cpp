// SPDX-License-Identifier: Apache-2.0
// Whitened captures: the store of the whole frame, and the blocks that come back to the caller.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <ostream>

#include "engine/capture_scene.h"
#include "support/compare.h"
#include "support/log_capture.h"
#include "support/pictures.h"

namespace lumora::test {
namespace {

using reference::CaptureSize;
using reference::WhiteningCaptureModel;

// Smooth picture of skin-like colours: faces are neither grey nor too dark to be whitened.
Frame SkinFrame(int width, int height) {
  Frame frame = TextureFrame(width, height);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      frame.y(x, y) = static_cast<uint8_t>(80 + frame.y(x, y) / 3);
      frame.cr(x, y) = static_cast<uint8_t>(148 + (x / 8 + y / 16) % 16);
      frame.cb(x, y) = static_cast<uint8_t>(100 + (x / 16 + y / 8) % 16);
    }
  }
  return frame;
}

constexpr WhiteningRequest kBoth{40, 25, reference::kIntensityAndSaturation};

int WhitenedPixels(const Image& store) {
  int whitened = 0;
  for (size_t i = 3; i < store.bytes.size(); i += 4) whitened += store.bytes[i] != 0;
  return whitened;
}

// Whitens, and compares store, records and the planes that come back.
void ExpectWhitened(CaptureScene& scene, WhiteningCaptureModel& model, const Frame& frame,
                    const std::vector<FaceRecord>& faces, const WhiteningRequest& request) {
  const size_t size = LumaSize(frame.width, frame.height) + ChromaSize(frame.width, frame.height);
  const Bytes bytes(frame.bytes.begin(), frame.bytes.begin() + static_cast<std::ptrdiff_t>(size));
  ASSERT_TRUE(scene.whiten(bytes, faces, request));
  model.whiten(frame, faces, request);
  for (size_t i = 0; i < faces.size(); ++i) {
    const android::FaceProcessRect& actual = scene.engine().m_rcFaceProcess[i];
    const Rectangle& expected = model.rectangles()[i];
    EXPECT_EQ(expected.x, actual.X) << "face " << i;
    EXPECT_EQ(expected.y, actual.Y) << "face " << i;
    EXPECT_EQ(expected.width, actual.Width) << "face " << i;
    EXPECT_EQ(expected.height, actual.Height) << "face " << i;
    EXPECT_EQ(0, actual.nFlag);
  }
  const Image store = scene.store();
  ASSERT_TRUE(WithinImage(model.store(), store, Compare().named("store")));

  const Bytes before = NoisePlanes(frame.width, frame.height, 9);
  reference::PlaneBounds expected(frame.width, frame.height, before);
  for (size_t i = 0; i < faces.size(); ++i) {
    const Rectangle& face = model.rectangles()[i];
    // Bringing back measures both directions by the height.
    const int least = frame.height / 20;
    if (face.width >= least && face.height >= least) {
      PutStore(store, model.size(), face, &expected);
    }
  }
  EXPECT_TRUE(WithinPlanes(expected, scene.brought_back(before, static_cast<int>(faces.size()))));
}

void ExpectWhitened(int width, int height, const std::vector<FaceRecord>& faces,
                    const WhiteningRequest& request = kBoth, int least_whitened = 1) {
  CaptureScene scene(width, height);
  WhiteningCaptureModel model(width, height);
  ExpectWhitened(scene, model, SkinFrame(width, height), faces, request);
  EXPECT_GE(WhitenedPixels(scene.store()), least_whitened);
}

TEST(WhiteningCapture, TheStoreStartsEmpty) {
  for (const auto& [width, height] :
       {std::pair(1280, 960), std::pair(1920, 1080), std::pair(5000, 3000)}) {
    CaptureScene scene(width, height);
    const Image store = scene.store();
    EXPECT_TRUE(
        std::all_of(store.bytes.begin(), store.bytes.end(), [](uint8_t b) { return b == 0; }));
  }
}

TEST(WhiteningCapture, CapturesThatFitAreOneBlock) {
  ExpectWhitened(1280, 960, {PortraitFace(600, 450, 180, 10)}, kBoth, 100000);
}

TEST(WhiteningCapture, SmallCaptures) {
  ExpectWhitened(160, 120, {PortraitFace(80, 55, 30)}, kBoth, 2000);
  ExpectWhitened(96, 160, {PortraitFace(50, 60, 30), PortraitFace(70, 100, 25, -30)}, kBoth, 2000);
}

TEST(WhiteningCapture, NarrowHighCapturesGoInBlocksOfTheirWidth) {
  ExpectWhitened(320, 1700, {PortraitFace(150, 1500, 120)}, kBoth, 20000);
}

TEST(WhiteningCapture, FacesInTheMiddleOfTiledCaptures) {
  ExpectWhitened(1920, 1080, {PortraitFace(900, 500, 150, -15)}, kBoth, 50000);
}

TEST(WhiteningCapture, AFaceWiderThanABlockTakesMoreBlocks) {
  ExpectWhitened(1920, 1080, {PortraitFace(901, 503, 260)}, kBoth, 150000);
}

// All four edges and corners; faces reach out of the frame.
TEST(WhiteningCapture, FacesAtEdgesAndCorners) {
  const int kWidth = 1408;
  const int kHeight = 800;
  const FaceRecord faces[] = {
      PortraitFace(5, 400, 100),        PortraitFace(kWidth - 3, 400, 100),
      PortraitFace(700, 4, 100),        PortraitFace(700, kHeight - 5, 100),
      PortraitFace(2, 3, 100),          PortraitFace(kWidth - 1, 1, 100),
      PortraitFace(1, kHeight - 2, 99), PortraitFace(kWidth + 20, kHeight + 20, 100)};
  for (const FaceRecord& face : faces) {
    ExpectWhitened(kWidth, kHeight, {face}, kBoth, 1000);
  }
}

TEST(WhiteningCapture, FacesOutsideTheFrameWhitenNothing) {
  ExpectWhitened(1408, 800, {PortraitFace(-900, 400, 100), PortraitFace(700, 3000, 100)}, kBoth, 0);
}

// 110 columns remain at the right: the block becomes 128 wide and starts further left, so that it
// reads nothing behind the frame's last row. The rows of the second frame are padded, which the
// block fills with its last column.
TEST(WhiteningCapture, NarrowBlocksAtTheRightEdgeAreWidened) {
  ExpectWhitened(1536, 700, {PortraitFace(1426, 650, 140)}, kBoth, 10000);
  ExpectWhitened(1534, 700, {PortraitFace(1500, 350, 140)}, kBoth, 10000);
  ExpectWhitened(1296, 500, {PortraitFace(1294, 250, 140)}, kBoth, 10000);
}

// The last row of an odd height is drawn like the row before it, even where a block would start
// with it.
TEST(WhiteningCapture, OddHeightsRepeatTheRowBeforeTheLast) {
  // The middle of this face lies 11 pixels below its ears: rectangles start at 316 and 384, their
  // last blocks have 69 rows and 1.
  for (const int y : {700, 768}) {
    CaptureScene scene(1408, 769);
    WhiteningCaptureModel model(1408, 769);
    ExpectWhitened(scene, model, Frame(1408, 769, 120, 150, 105), {PortraitFace(700, y - 11, 120)},
                   kBoth);
    ASSERT_EQ(y - 384, model.rectangles()[0].y);
    const Image store = scene.store();
    for (int x = 400; x < 1000; x += 50) {
      EXPECT_NEAR(store.pixel(x, 767)[2], store.pixel(x, 768)[2], 2) << x;
    }
  }
}

TEST(WhiteningCapture, EffectsAndLevels) {
  const std::vector<FaceRecord> faces = {PortraitFace(80, 55, 30)};
  for (const int effect : {3, 4, 8, 15, 0, -1, 77}) {
    SCOPED_TRACE(effect);
    ExpectWhitened(160, 120, faces, {60, 40, effect}, 2000);
  }
  for (const WhiteningRequest& request :
       {WhiteningRequest{0, 0, 8}, {255, 255, 8}, {-50, -50, 8}, {1000, 1000, 8}}) {
    ExpectWhitened(160, 120, faces, request, 2000);
  }
}

// The later face keeps what the earlier one whitened, and adds its own part.
TEST(WhiteningCapture, OverlappingFaces) {
  ExpectWhitened(1408, 800, {PortraitFace(600, 400, 120), PortraitFace(730, 430, 120, 20)}, kBoth,
                 60000);
}

TEST(WhiteningCapture, TwiceTheSameFaceChangesNothingMore) {
  const FaceRecord face = PortraitFace(600, 400, 120);
  ExpectWhitened(1408, 800, {face, face, face}, kBoth, 30000);
}

// The corners of a block decide whether it meets an earlier face, and a corner on the edge of the
// face's rectangle does not. A store that is full from the start shows which blocks read it.
TEST(WhiteningCapture, RectanglesThatShareAnEdgeDoNotOverlap) {
  const auto side_by_side = [](int x, int second, int third) {
    return std::vector<FaceRecord>{PortraitFace(x, 250, 100), PortraitFace(second, 250, 100),
                                   PortraitFace(third, 250, 100)};
  };
  const auto stacked = [](int y, int second, int third) {
    return std::vector<FaceRecord>{PortraitFace(700, y, 100), PortraitFace(700, second, 100),
                                   PortraitFace(700, third, 100)};
  };
  const struct {
    const char* name;
    int width, height;
    std::vector<FaceRecord> faces;
  } rows[] = {// Rectangles are 768 pixels long.
              {"neighbours", 2400, 500, side_by_side(1200, 432, 1968)},
              {"stacked", 1408, 2400, stacked(1200, 432, 1968)},
              {"neighbours that overlap", 2400, 500, side_by_side(1200, 434, 1966)},
              {"stacked with an overlap", 1408, 2400, stacked(1200, 434, 1966)},
              {"equal, and half a rectangle on", 2400, 500, side_by_side(1200, 1200, 1584)}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    CaptureScene scene(row.width, row.height);
    WhiteningCaptureModel model(row.width, row.height);
    Image full = NoiseImage(scene.stride(), row.height, 8);
    for (size_t i = 3; i < full.bytes.size(); i += 4) full.bytes[i] |= 1;
    scene.set_store(full);
    model.set_store(full);
    ExpectWhitened(scene, model, SkinFrame(row.width, row.height), row.faces, kBoth);
  }
}

TEST(WhiteningCapture, ALaterCallStartsWithoutEarlierFaces) {
  CaptureScene scene(1408, 800);
  WhiteningCaptureModel model(1408, 800);
  const Frame frame = SkinFrame(1408, 800);
  ExpectWhitened(scene, model, frame, {PortraitFace(500, 300, 100), PortraitFace(900, 500, 100)},
                 kBoth);
  ExpectWhitened(scene, model, frame, {PortraitFace(560, 340, 100)}, {10, 0, 3});
  ExpectWhitened(scene, model, frame, {}, kBoth);
}

TEST(WhiteningCapture, SeveralFacesUpToTen) {
  std::vector<FaceRecord> faces;
  for (int i = 0; i < 10; ++i) {
    faces.push_back(PortraitFace(60 + 40 * (i % 5), 70 + 90 * (i / 5), 26, 7.0 * i));
  }
  for (const size_t count : {0u, 1u, 2u, 3u, 9u, 10u}) {
    const std::vector<FaceRecord> some(faces.begin(),
                                       faces.begin() + static_cast<std::ptrdiff_t>(count));
    ExpectWhitened(320, 240, some, kBoth, static_cast<int>(count) * 300);
  }
}

TEST(WhiteningCapture, TheEleventhFaceIsToldAndLeftOut) {
  const Frame frame = SkinFrame(320, 240);
  std::vector<FaceRecord> faces;
  for (int i = 0; i < 11; ++i) {
    faces.push_back(PortraitFace(60 + 40 * (i % 5), 70 + 50 * (i / 5), 26));
  }
  CaptureScene ten(320, 240);
  ASSERT_TRUE(ten.whiten(frame.bytes, {faces.begin(), faces.end() - 1}, kBoth));
  CaptureScene eleven(320, 240);
  LogCapture log;
  ASSERT_TRUE(eleven.whiten(frame.bytes, faces, kBoth));
  EXPECT_EQ(1u, log.lines(6).size());
  EXPECT_TRUE(SameImage(ten.store(), eleven.store()));
}

TEST(WhiteningCapture, LargeCapturesKeepTheirStoreInPlainMemory) {
  CaptureScene scene(5000, 3000);
  WhiteningCaptureModel model(5000, 3000);
  ASSERT_EQ(nullptr, scene.engine().m_pWorkImage[1]);
  ExpectWhitened(scene, model, SkinFrame(5000, 3000),
                 {PortraitFace(2500, 1500, 180), PortraitFace(2600, 1600, 150),
                  PortraitFace(4980, 2980, 150), PortraitFace(0, 0, 150)},
                 kBoth);
  EXPECT_EQ(2, scene.engine().m_nResultIdx);
}

TEST(WhiteningCapture, TwelveMegapixels) {
  ExpectWhitened(4000, 3000, {PortraitFace(2000, 1500, 180), PortraitFace(3950, 40, 150)}, kBoth,
                 80000);
}

// ---- Transcripts --------------------------------------------------------------------------------

constexpr char kTag[] = "Lumora";

std::vector<LogLine> WithoutScales(std::vector<LogLine> lines) {
  lines.erase(std::remove_if(lines.begin(), lines.end(),
                             [](const LogLine& line) { return line.text.find("scaleR") == 0; }),
              lines.end());
  return lines;
}

TEST(WhiteningCaptureTranscript, TellsEachFace) {
  CaptureScene scene(1920, 1080);
  const Frame frame(1920, 1080, 150, 128, 128);  // grey: no saturation shift
  std::vector<FaceRecord> faces = {PortraitFace(900, 500, 150), PortraitFace(300, 300, 40)};
  LogCapture log;
  ASSERT_TRUE(scene.whiten(frame.bytes, faces, {0, 40, 4}));
  const auto face_lines = [](int face, int x, int y) {
    return std::vector<LogLine>{
        Info(kTag, "Face Pass %d", face),
        Debug(kTag, "GPU Face Whitening: fDiffS: 0.000000, fDiffI: 0.000000"),
        Debug(kTag, "GPU Face Whitening Type : 4"),
        Debug(kTag, "GPU Face Whitening Paramters : fDiffS: 0.000000, fDiffI: 0.000000"),
        Debug(kTag,
              "[LumoraLarge Face Whitening]: Process_Rect: X: %d, Y: %d, Width: 768, Height: 768",
              x, y),
        Debug(kTag, "[LumoraLarge]process block")};
  };
  // The portraits' own middles: the chin lies further from the centre than the forehead.
  const android::FaceProcessRect* rects = scene.engine().m_rcFaceProcess;
  std::vector<LogLine> expected = {Info(kTag, "DoFaceWhitening+")};
  for (int i = 0; i < 2; ++i) {
    for (const LogLine& line : face_lines(i, rects[i].X, rects[i].Y)) expected.push_back(line);
  }
  expected.push_back(Info(kTag, "DoFaceWhitening-"));
  EXPECT_EQ(900 - 384, rects[0].X);
  EXPECT_EQ(300 - 384, rects[1].X);
  const std::vector<LogLine> lines = log.lines_of(kTag);
  EXPECT_EQ(14, log.count(Info(kTag, "scaleR = 1.00")));
  EXPECT_TRUE(LogIs(WithoutScales(lines), expected));
}

TEST(WhiteningCaptureTranscript, WithoutFacesThereIsNothingBetween) {
  CaptureScene scene(1920, 1080);
  LogCapture log;
  ASSERT_TRUE(scene.whiten(Frame(1920, 1080).bytes, {}, kBoth));
  EXPECT_TRUE(
      LogIs(log.lines_of(kTag), {Info(kTag, "DoFaceWhitening+"), Info(kTag, "DoFaceWhitening-")}));
}

TEST(WhiteningCaptureTranscript, NegativeCountsAreNoFaces) {
  CaptureScene scene(160, 120);
  const Image before = scene.store();
  CallerFrame caller(Frame(160, 120));
  EXPECT_EQ(1, scene.engine().DoFaceWhiteningLarge(caller.luma(), caller.chroma(), nullptr, -4, 9,
                                                   9, BEAUTYSHOT_EFFECT_BOTH));
  EXPECT_EQ(1, scene.engine().DoFaceWhiteningLarge(caller.luma(), caller.chroma(), nullptr, INT_MIN,
                                                   9, 9, BEAUTYSHOT_EFFECT_BOTH));
  EXPECT_TRUE(SameImage(before, scene.store()));
}

}  // namespace
}  // namespace lumora::test
