// SPDX-License-Identifier: Apache-2.0
// What slimming keeps from face to face, what it prints, and what it refuses.
#include <gtest/gtest.h>

#include <climits>
#include <limits>

#include "engine/slimming_scene.h"
#include "reference/warp_parameters.h"
#include "support/compare.h"
#include "support/log_capture.h"
#include "support/pictures.h"

namespace lumora::test {
namespace {

using reference::SlimmingFace;

constexpr int kWidth = 160;
constexpr int kHeight = 120;

void ExpectWarp(const reference::WarpMembers& expected, const GPUBeautyFace& engine) {
  const auto* warp = static_cast<const GLProgWarp*>(engine.m_pProgCheekSlimmer);
  for (int i = 0; i < 4; ++i) EXPECT_FLOAT_EQ(expected.controller[i], warp->m_fvController[i]) << i;
  for (int i = 0; i < 3; ++i) {
    EXPECT_FLOAT_EQ(expected.angle_limiter[i], warp->m_fvAngleLimiter[i]) << i;
  }
  EXPECT_FLOAT_EQ(expected.aspect_ratio, warp->m_fAspectRatio);
}

// The lines of one set of parameters, of an engine for kWidth x kHeight.
std::vector<LogLine> ParameterLines(const FaceRecord& face, int level) {
  const reference::WarpRequest r = reference::RequestOf(face, level, kWidth, kHeight);
  return {Info("Lumora", "dist = %d, chin_dist = %d, chin_dist / dist = %f", r.dist, r.chin_dist,
               static_cast<double>(static_cast<float>(r.chin_dist) / static_cast<float>(r.dist))),
          Info("Lumora", "dist_level = %.2f, dist_level_ratio = %.2f",
               static_cast<double>(reference::WarpStrength(r)), static_cast<double>(r.ratio)),
          Info("Lumora",
               "loc_x = %d, loc_y = %d, dist = %d, roll =%d, chin_dist = %d, Beauty_Level = %d, "
               "shapetype = %d",
               r.loc_x, r.loc_y, r.dist, r.roll, r.chin_dist, level, r.shape_type)};
}

const FaceRecord kFace = SlimmingFace(80, 60, 40, 30, 15, 0.75f);

TEST(SlimmingState, InvalidFacesLeaveThePreviousWarp) {
  const struct {
    const char* name;
    FaceRecord face;
  } kInvalid[] = {
      {"distances not valid", FaceRecord(kFace).set(FaceRecord::kDistValid, 0)},
      {"distances negatively valid", FaceRecord(kFace).set(FaceRecord::kDistValid, -1)},
      {"no size", FaceRecord(kFace).set(FaceRecord::kDist, 0)},
      {"negative size", FaceRecord(kFace).set(FaceRecord::kDist, -40)},
      {"at the left edge", FaceRecord(kFace).set(FaceRecord::kLocX, 0)},
      {"at the top edge", FaceRecord(kFace).set(FaceRecord::kLocY, 0)},
      {"left of the frame", FaceRecord(kFace).set(FaceRecord::kLocX, -3)},
      {"above the frame", FaceRecord(kFace).set(FaceRecord::kLocY, -3)},
      {"nothing at all", FaceRecord()},
  };
  for (const auto& row : kInvalid) {
    SCOPED_TRACE(row.name);
    SlimmingScene scene(kWidth, kHeight);
    EXPECT_TRUE(scene.slims(TextureFrame(kWidth, kHeight), 5, row.face)) << "no warp yet";
    ASSERT_TRUE(scene.slims(TextureFrame(kWidth, kHeight), 5, kFace));
    ASSERT_TRUE(scene.slims(TextureFrame(kWidth, kHeight), 5, kFace));
    const reference::WarpMembers before = scene.model().warp();
    const Frame warped = scene.result();
    EXPECT_TRUE(scene.slims(TextureFrame(kWidth, kHeight), 9, row.face));
    ExpectWarp(before, scene.engine());
    EXPECT_TRUE(SameFrame(warped, scene.result())) << "the same warp";
    EXPECT_TRUE(scene.slims_all(TextureFrame(kWidth, kHeight), 9, {row.face, kFace, row.face}));
  }
}

TEST(SlimmingState, TheAspectRatioIsRefreshedEvenForInvalidFaces) {
  GPUBeautyFace engine;
  engine.Init(kWidth, kHeight, kWidth, kHeight, nullptr, false);
  auto* warp = static_cast<GLProgWarp*>(engine.m_pProgCheekSlimmer);
  warp->m_fAspectRatio = -1.0f;
  EXPECT_EQ(1, engine.SetCheekSlimmerParameters(FACE_INFO_t{}, 5, false));
  EXPECT_FLOAT_EQ(0.75f, warp->m_fAspectRatio);
  warp->m_fAspectRatio = -1.0f;
  EXPECT_EQ(1, engine.SetCheekSlimmerParameters(kFace.as<FACE_INFO_t>(), 5, true));
  EXPECT_EQ(-1.0f, warp->m_fAspectRatio) << "captures set it themselves";
}

TEST(SlimmingState, ParametersOfCapturesUseTheFullFrame) {
  GPUBeautyFace engine;
  engine.InitCapture(nullptr, nullptr, 1400, 1000, nullptr, false);
  EXPECT_EQ(1, engine.SetCheekSlimmerParameters(kFace.as<FACE_INFO_t>(), 5, true));
  reference::WarpMembers expected;
  ASSERT_TRUE(
      reference::SetParameters(reference::RequestOf(kFace, 5, 1400, 1000, true), &expected));
  ExpectWarp(expected, engine);
  engine.DeInitCapture();
}

TEST(SlimmingTranscript, OneFace) {
  GPUBeautyFace engine;
  engine.Init(kWidth, kHeight, kWidth, kHeight, nullptr, false);
  CallerFrame frame(TextureFrame(kWidth, kHeight));
  LogCapture log;
  ASSERT_EQ(1, engine.FaceProcess(frame.luma(), frame.chroma(), 7, kFace.as<FACE_INFO_t>(), 3));
  std::vector<LogLine> expected = {Info("Lumora", "FaceProcess++")};
  for (const LogLine& line : ParameterLines(kFace, 7)) expected.push_back(line);
  expected.push_back(Info("Lumora", "FaceProcess--"));
  EXPECT_TRUE(LogIs(log, expected));
}

TEST(SlimmingTranscript, SeveralFacesValidOrNot) {
  GPUBeautyFace engine;
  engine.Init(kWidth, kHeight, kWidth, kHeight, nullptr, false);
  const std::vector<FaceRecord> faces = {kFace, FaceRecord(kFace).set(FaceRecord::kDistValid, 0),
                                         SlimmingFace(300, 1, 200, 10, -400, 2.0f)};
  std::vector<FACE_INFO_t> records = RecordsOf(faces);
  CallerFrame frame(TextureFrame(kWidth, kHeight));
  LogCapture log;
  ASSERT_EQ(1, engine.FaceProcessMultiface(frame.luma(), frame.chroma(), 2, records.data(), 3, 0));
  std::vector<LogLine> expected = {Info("Lumora", "FaceProcess+")};
  for (const FaceRecord& face : faces) {
    for (const LogLine& line : ParameterLines(face, 2)) expected.push_back(line);
  }
  expected.push_back(Info("Lumora", "FaceProcess-"));
  EXPECT_TRUE(LogIs(log, expected));
}

TEST(SlimmingTranscript, NoFace) {
  GPUBeautyFace engine;
  engine.Init(kWidth, kHeight, kWidth, kHeight, nullptr, false);
  CallerFrame frame(TextureFrame(kWidth, kHeight));
  LogCapture log;
  ASSERT_EQ(1, engine.FaceProcessMultiface(frame.luma(), frame.chroma(), 2, nullptr, 0, 0));
  EXPECT_TRUE(LogIs(log, {Info("Lumora", "FaceProcess+"), Info("Lumora", "FaceProcess-")}));
}

TEST(SlimmingRefusals, WithoutAnInputImageNothingHappens) {
  GPUBeautyFace engine;
  FACE_INFO_t face = kFace.as<FACE_INFO_t>();
  const Frame picture = TextureFrame(kWidth, kHeight);
  CallerFrame frame(picture);
  CallerPlanes planes(kWidth, kHeight);
  LogCapture log;
  EXPECT_EQ(0, engine.FaceProcess(frame.luma(), planes.chroma(), 5, face, 0));
  EXPECT_EQ(0, engine.FaceProcessMultiface(frame.luma(), planes.chroma(), 5, &face, 1, 0));
  EXPECT_TRUE(LogIs(log, {Info("Lumora", "FaceProcess++"),
                          Error("Lumora", "[SetSrcImage]g_pSrcTexture is not initiated"),
                          Info("Lumora", "FaceProcess+"),
                          Error("Lumora", "[SetSrcImage]g_pSrcTexture is not initiated")}));
  EXPECT_EQ(picture.bytes, frame.bytes());
  EXPECT_EQ(CallerPlanes(kWidth, kHeight).bytes(), planes.bytes());
}

TEST(SlimmingRefusals, AnEngineThatIsNotInitialisedSaysSo) {
  GPUBeautyFace engine;
  engine.Init(kWidth, kHeight, kWidth, kHeight, nullptr, false);
  engine.m_bIsInit = false;
  FACE_INFO_t face = kFace.as<FACE_INFO_t>();
  const Frame picture = TextureFrame(kWidth, kHeight);
  CallerFrame frame(picture);
  LogCapture log;
  EXPECT_EQ(0, engine.FaceProcess(frame.luma(), frame.chroma(), 5, face, 0));
  EXPECT_EQ(0, engine.FaceProcessMultiface(frame.luma(), frame.chroma(), 5, &face, 1, 0));
  EXPECT_TRUE(LogIs(log, {Info("Lumora", "FaceProcess++"), Info("Lumora", "!m_bIsInit"),
                          Info("Lumora", "FaceProcess+"), Info("Lumora", "!m_bIsInit")}));
  EXPECT_EQ(picture.bytes, frame.bytes());
  engine.m_bIsInit = true;
}

// In colour-convert mode the frame of the last LoadPreviewFrameBuffer is slimmed, not the caller's.
TEST(SlimmingColourConvert, TheInputImageIsNotFilledAgain) {
  const Frame loaded = TextureFrame(kWidth, kHeight);
  reference::PreviewModel model(kWidth, kHeight);
  GPUBeautyFace engine;
  engine.Init(kWidth, kHeight, kWidth, kHeight, nullptr, true);
  CallerFrame source(loaded);
  ASSERT_EQ(1, engine.LoadPreviewFrameBuffer(source.luma()));
  for (int i = 0; i < 2; ++i) {
    CallerFrame other(NoiseFrame(kWidth, kHeight, 9));
    ASSERT_EQ(1, engine.FaceProcess(other.luma(), other.chroma(), 5, kFace.as<FACE_INFO_t>(), 0));
    EXPECT_TRUE(WithinFrame(model.face_process(loaded, 5, kFace), other.frame(kWidth, kHeight)));
  }
}

// Whatever bytes a record holds: no crash, nothing undefined, and the frame after it is right
// again.
TEST(SlimmingGarbage, RecordsOfAnyBytesAreSurvived) {
  SlimmingScene scene(kWidth, kHeight);
  const std::vector<uint8_t> noise = NoiseBytes(40 * FaceRecord::kSize, 12);
  for (size_t i = 0; i < 40; ++i) {
    const FaceRecord garbage = FaceRecord::From(&noise[i * FaceRecord::kSize]);
    CallerFrame frame(TextureFrame(kWidth, kHeight));
    FACE_INFO_t record = garbage.as<FACE_INFO_t>();
    EXPECT_EQ(1, scene.engine().FaceProcess(frame.luma(), frame.chroma(), INT_MAX, record, 0));
    record.dist_valid = 1;
    record.loc_x = i % 3 == 0 ? INT_MAX : 1;
    record.loc_y = i % 3 == 1 ? INT_MAX : 1;
    record.dist = i % 2 == 0 ? INT_MAX : 1;
    record.dist_level_ratio = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(1, scene.engine().FaceProcessMultiface(frame.luma(), frame.chroma(), INT_MIN, &record,
                                                     1, 0));
    EXPECT_TRUE(frame.intact());
  }
  ASSERT_TRUE(scene.slims_all(TextureFrame(kWidth, kHeight), 5, {}));
  EXPECT_TRUE(scene.slims(TextureFrame(kWidth, kHeight), 5, kFace));
}

}  // namespace
}  // namespace lumora::test
