// SPDX-License-Identifier: Apache-2.0
// Slimmed preview frames, whole, against the model.
#include <gtest/gtest.h>

#include <cmath>
#include <ostream>

#include "engine/slimming_scene.h"
#include "support/compare.h"
#include "support/pictures.h"

namespace lumora::test {
namespace {

using reference::SlimmingFace;

// An upright face in the middle of a frame.
FaceRecord MiddleFace(int width, int height) {
  return SlimmingFace(width / 2, height / 2, width / 6, width / 6, 0);
}

struct Case {
  const char* name;
  int width, height;
  FaceRecord face;
  int level;
};
void PrintTo(const Case& one, std::ostream* out) {
  *out << one.name;
}

const Case kCases[] = {
    {"Middle", 320, 240, MiddleFace(320, 240), 5},
    {"GentlestLevel", 160, 120, MiddleFace(160, 120), 0},
    {"StrongLevel", 160, 120, MiddleFace(160, 120), 30},
    {"LevelThatPushesOutward", 160, 120, MiddleFace(160, 120), -20},
    {"RowsThatArePadded", 176, 144, MiddleFace(176, 144), 8},
    {"RowsOfHalfAGroup", 48, 34, MiddleFace(48, 34), 8},
    {"Portrait", 112, 160, MiddleFace(112, 160), 8},
    {"RollRight", 160, 120, SlimmingFace(80, 60, 30, 30, 90), 8},
    {"RollUpsideDown", 160, 120, SlimmingFace(80, 60, 30, 30, 180), 8},
    {"RollSlightLeft", 160, 120, SlimmingFace(80, 60, 30, 30, -25), 8},
    {"CappedRadius", 160, 120, SlimmingFace(80, 60, 150, 100, 0), 8},
    {"LongChin", 160, 120, SlimmingFace(80, 60, 20, 45, 0), 8},
    {"ShortChin", 160, 120, SlimmingFace(80, 60, 40, 10, 0), 8},
    {"NoChin", 160, 120, SlimmingFace(80, 60, 40, 0, 0), 8},
    {"NegativeChin", 160, 120, SlimmingFace(80, 60, 40, -10, 0), 8},
    {"TopLeftCorner", 160, 120, SlimmingFace(1, 1, 40, 40, 0), 8},
    {"BottomRightCorner", 160, 120, SlimmingFace(159, 119, 40, 40, 0), 8},
    {"RightEdge", 160, 120, SlimmingFace(160, 60, 40, 40, 0), 8},
    {"OutsideTheFrame", 160, 120, SlimmingFace(190, 60, 40, 40, 0), 8},
    {"HalfStrength", 160, 120, SlimmingFace(80, 60, 30, 30, 0, 0.5f), 8},
    {"NoStrength", 160, 120, SlimmingFace(80, 60, 30, 30, 0, 0.0f), 8},
    {"ShapeTwo", 160, 120, FaceRecord(MiddleFace(160, 120)).set(FaceRecord::kShapeType, 2), 8},
    {"TinyFace", 160, 120, SlimmingFace(80, 60, 1, 1, 0), 8},
};

class Slimming : public testing::TestWithParam<Case> {};

// The first frame samples the input linearly, all later ones take the nearest texel.
TEST_P(Slimming, FramesAreWarpedAsTheModelWarpsThem) {
  const Case& one = GetParam();
  SlimmingScene scene(one.width, one.height);
  EXPECT_EQ(reference::Filter::Linear, scene.model().input_filter());
  EXPECT_TRUE(scene.slims(TextureFrame(one.width, one.height), one.level, one.face)) << "first";
  EXPECT_EQ(reference::Filter::Nearest, scene.model().input_filter());
  EXPECT_TRUE(scene.slims(NoiseFrame(one.width, one.height, 2), one.level, one.face)) << "second";
}

TEST_P(Slimming, TheMaskVariantMarksTheRim) {
  const Case& one = GetParam();
  SlimmingScene scene(one.width, one.height, true);
  EXPECT_TRUE(scene.slims(TextureFrame(one.width, one.height), one.level, one.face)) << "first";
  EXPECT_TRUE(scene.slims(TextureFrame(one.width, one.height), one.level, one.face)) << "second";
}

INSTANTIATE_TEST_SUITE_P(Faces, Slimming, testing::ValuesIn(kCases),
                         [](const testing::TestParamInfo<Case>& row) { return row.param.name; });

TEST(SlimmingSizes, VgaFrames) {
  SlimmingScene scene(640, 480);
  EXPECT_TRUE(scene.slims(TextureFrame(640, 480), 5, MiddleFace(640, 480)));
  EXPECT_TRUE(scene.slims(TextureFrame(640, 480), 5, MiddleFace(640, 480)));
}

int ChangedLuma(const Frame& before, const Frame& after) {
  int changed = 0;
  for (size_t i = 0; i < before.luma_size(); ++i) changed += before.bytes[i] != after.bytes[i];
  return changed;
}

// That the comparisons above compare something: a face changes the frame, and the mask shows.
TEST(SlimmingEffect, AFaceMovesPixelsAndTheMaskPaintsThem) {
  const Frame frame = TextureFrame(160, 120);
  Frame plain;
  {
    SlimmingScene scene(160, 120);
    ASSERT_TRUE(scene.slims(frame, 8, MiddleFace(160, 120)));
    plain = scene.result();
  }
  EXPECT_GT(ChangedLuma(frame, plain), 500);
  SlimmingScene masked(160, 120, true);
  ASSERT_TRUE(masked.slims(frame, 8, MiddleFace(160, 120)));
  EXPECT_GT(ChangedLuma(plain, masked.result()), 50);
}

TEST(SlimmingEffect, NoStrengthAndNoChinGiveTheFrameBack) {
  const Frame frame = NoiseFrame(160, 120, 5);
  for (const FaceRecord& face :
       {SlimmingFace(80, 60, 30, 30, 0, 0.0f), SlimmingFace(80, 60, 30, 0, 0)}) {
    SlimmingScene scene(160, 120);
    ASSERT_TRUE(scene.slims(TextureFrame(160, 120), 8, face));
    ASSERT_TRUE(scene.slims(frame, 8, face));
    EXPECT_TRUE(SameFrame(frame, scene.result()));
  }
}

TEST(SlimmingEffect, PixelsBeyondTheRadiusStay) {
  constexpr int kWidth = 320;
  constexpr int kHeight = 240;
  const Frame frame = NoiseFrame(kWidth, kHeight, 6);
  SlimmingScene scene(kWidth, kHeight);
  ASSERT_TRUE(scene.slims(frame, 8, MiddleFace(kWidth, kHeight)));
  ASSERT_TRUE(scene.slims(frame, 8, MiddleFace(kWidth, kHeight)));
  const double radius = 1.15 * (kWidth / 6);
  const auto beyond = [=](int x, int y) {
    return std::hypot(x + 0.5 - kWidth / 2, y + 0.5 - kHeight / 2) > radius + 1;
  };
  EXPECT_TRUE(SameFrame(frame, scene.result(), Compare().only(beyond)));
}

TEST(SlimmingSeveralFaces, EachWarpsTheResultOfTheOneBefore) {
  const std::vector<FaceRecord> faces = {
      SlimmingFace(50, 40, 25, 25, 0), SlimmingFace(80, 60, 30, 20, 30),
      SlimmingFace(110, 80, 25, 30, -30), SlimmingFace(60, 90, 20, 20, 90),
      SlimmingFace(120, 30, 30, 30, 180)};
  for (size_t count = 1; count <= faces.size(); ++count) {
    SCOPED_TRACE(count);
    const std::vector<FaceRecord> some(faces.begin(),
                                       faces.begin() + static_cast<std::ptrdiff_t>(count));
    {
      SlimmingScene scene(160, 120);
      EXPECT_TRUE(scene.slims_all(TextureFrame(160, 120), 8, some)) << "first frame";
      EXPECT_TRUE(scene.slims_all(TextureFrame(160, 120), 8, some)) << "second frame";
    }
    SlimmingScene masked(160, 120, true);
    EXPECT_TRUE(masked.slims_all(TextureFrame(160, 120), 8, some)) << "with the mask";
  }
}

TEST(SlimmingSeveralFaces, OneOfSeveralEqualsTheSingleFaceCall) {
  const Frame frame = TextureFrame(176, 144);
  std::vector<Frame> single;
  {
    SlimmingScene scene(176, 144);
    for (int i = 0; i < 2; ++i) {
      ASSERT_TRUE(scene.slims(frame, 8, MiddleFace(176, 144)));
      single.push_back(scene.result());
    }
  }
  SlimmingScene scene(176, 144);
  for (const Frame& expected : single) {
    ASSERT_TRUE(scene.slims_all(frame, 8, {MiddleFace(176, 144)}));
    EXPECT_TRUE(SameFrame(expected, scene.result()));
  }
}

TEST(SlimmingSeveralFaces, CountsMayChangeFromFrameToFrame) {
  SlimmingScene scene(160, 120);
  const std::vector<FaceRecord> faces = {SlimmingFace(50, 40, 25, 25, 0),
                                         SlimmingFace(110, 80, 25, 30, -30)};
  EXPECT_TRUE(scene.slims_all(TextureFrame(160, 120), 8, {}));
  EXPECT_TRUE(scene.slims_all(TextureFrame(160, 120), 8, faces));
  EXPECT_TRUE(scene.slims_all(TextureFrame(160, 120), 8, {faces[1]}));
  EXPECT_TRUE(scene.slims(TextureFrame(160, 120), 3, faces[0]));
  EXPECT_TRUE(scene.slims_all(NoiseFrame(160, 120, 3), 8, {}));
}

// A portrait source laid across a landscape result of the same area, and other mixed sizes: the
// result is what the fixed arithmetic of the passes gives.
TEST(SlimmingAcross, PortraitFramesAreTurned) {
  SlimmingScene scene(480, 640, 640, 480);
  EXPECT_TRUE(scene.engine().m_bRotate);
  EXPECT_TRUE(scene.slims(TextureFrame(480, 640), 5, MiddleFace(480, 640))) << "first";
  EXPECT_TRUE(scene.slims(TextureFrame(480, 640), 5, MiddleFace(480, 640))) << "second";
}

TEST(SlimmingAcross, SmallPortraitFramesAreTurned) {
  SlimmingScene scene(96, 128, 128, 96);
  EXPECT_TRUE(scene.slims(TextureFrame(96, 128), 5, SlimmingFace(50, 70, 20, 25, 10)));
  EXPECT_TRUE(scene.slims(TextureFrame(96, 128), 5, SlimmingFace(50, 70, 20, 25, 10)));
  EXPECT_TRUE(scene.slims_all(TextureFrame(96, 128), 5, {})) << "no face";
}

}  // namespace
}  // namespace lumora::test
