// SPDX-License-Identifier: Apache-2.0
// Face records in which any number may stand anywhere, given to every operation that takes one.
// Nothing may fault, and nothing outside the caller's frame may be touched; sanitizer builds watch
// the rest.
#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <memory>

#include "engine/capture_scene.h"
#include "lumora/programs/cheek_slimmer_programs.h"
#include "support/pictures.h"

namespace lumora::test {
namespace {

/// Sizes, levels and records of one round.
class GarbageRecords : public testing::Test {
 protected:
  int level() {
    constexpr int kLevels[] = {INT_MIN, -300, -1, 0, 1, 40, 255, 256, 100000, INT_MAX};
    return kLevels[random_() % 10];
  }
  BEAUTYSHOT_EFFECT_t effect() { return static_cast<BEAUTYSHOT_EFFECT_t>(random_() % 17); }
  std::vector<FACE_INFO_t> records(unsigned most) {
    std::vector<FACE_INFO_t> some;
    for (auto i = random_() % (most + 1); i > 0; --i) {
      // One in four is a real face, so that garbage meets what faces leave behind.
      some.push_back(random_() % 4 == 0 ? PortraitFace(80, 60, 30).as<FACE_INFO_t>()
                                        : GarbageRecord(random_));
    }
    return some;
  }

  std::mt19937 random_{17};
};

TEST_F(GarbageRecords, OfPreviewFrames) {
  GPUBeautyFace engine;
  engine.Init(160, 120, 160, 120, nullptr, true);
  const Frame frame = NoiseFrame(160, 120, 1);
  for (int i = 0; i < 60; ++i) {
    CallerFrame caller(frame);
    std::vector<FACE_INFO_t> faces = records(12);
    const int count = static_cast<int>(faces.size());
    EXPECT_EQ(1, engine.LoadPreviewFrameBuffer(caller.luma()));
    EXPECT_EQ(1, engine.ConvertYUV());
    EXPECT_EQ(1, engine.DoFaceWhitening(faces.data(), count, level(), level(), effect()));
    EXPECT_EQ(1, engine.ConvertHSItoYUV());
    EXPECT_EQ(1, engine.FaceProcessMultiface(caller.luma(), caller.chroma(), level(), faces.data(),
                                             count, 0));
    for (const FACE_INFO_t& face : faces) {
      EXPECT_EQ(1, engine.SetFaceWhiteningParameters(face, level(), level(), effect(), INT_MIN,
                                                     true, caller.luma()));
      engine.SetCheekSlimmerParameters(face, level(), random_() % 2 == 0);
    }
    if (count > 0) engine.FaceProcess(caller.luma(), caller.chroma(), level(), faces[0], 0);
    EXPECT_TRUE(caller.intact());
  }
}

void Capture(int width, int height, std::mt19937& random, int rounds,
             const std::function<std::vector<FACE_INFO_t>()>& records,
             const std::function<int()>& level) {
  CaptureScene scene(width, height);
  auto program = std::make_unique<GLProgCheekSlimmerLarge_HSI>();
  ASSERT_TRUE(program->Load());
  scene.engine().m_pProgCheekSlimmer = program.release();
  const Bytes frame = NoisePlanes(width, height, 2);
  for (int i = 0; i < rounds; ++i) {
    CallerFrame caller(width, height, frame);
    std::vector<FACE_INFO_t> faces = records();
    const int count = static_cast<int>(faces.size());
    EXPECT_EQ(1, scene.engine().DoFaceWhiteningLarge(
                     caller.luma(), caller.chroma(), faces.data(), count, level(), level(),
                     static_cast<BEAUTYSHOT_EFFECT_t>(random() % 17)));
    EXPECT_EQ(frame, caller.bytes());
    EXPECT_EQ(
        1, scene.engine().CopyMemYUVfromSrcTextureLarge(caller.luma(), caller.chroma(), 0, count));
    scene.engine().FaceProcessLarge(caller.luma(), caller.chroma(), width, height, 0, faces.data(),
                                    count, level());
    EXPECT_TRUE(caller.intact());
  }
}

TEST_F(GarbageRecords, OfCapturesInBlockMode) {
  const auto some = [this] { return records(12); };
  const auto any_level = [this] { return level(); };
  Capture(160, 120, random_, 20, some, any_level);
  Capture(1408, 500, random_, 8, some, any_level);
  Capture(4128, 400, random_, 3, some, any_level);
}

// Sizes that fit neither blocks nor groups of pixels nor pairs of rows.
TEST_F(GarbageRecords, OfCapturesOfAnySize) {
  const auto some = [this] { return records(4); };
  const auto any_level = [this] { return level(); };
  const int sizes[][2] = {{100, 76},   {33, 41},    {1001, 50}, {1283, 401},
                          {1310, 385}, {1409, 769}, {4099, 61}, {64, 4101}};
  for (const auto& [width, height] : sizes) {
    SCOPED_TRACE(testing::Message() << width << " x " << height);
    Capture(width, height, random_, 4, some, any_level);
  }
}

TEST_F(GarbageRecords, OfCapturesFromPlanes) {
  const int sizes[][2] = {{160, 120}, {1408, 500}, {1283, 401}, {101, 77}};
  for (const auto& [width, height] : sizes) {
    const Bytes frame = NoisePlanes(width, height, 2);
    CallerPlanes planes(width, height, frame);
    GPUBeautyFace engine;
    engine.InitCapture(planes.luma(), planes.chroma(), width, height, nullptr, false);
    for (int i = 0; i < 8; ++i) {
      std::vector<FACE_INFO_t> faces = records(3);
      for (FACE_INFO_t& face : faces) {
        // Blocks without end would take without end.
        face.dist %= 1000;
        face.chin_dist %= 1000;
      }
      EXPECT_EQ(1, engine.FaceProcessLarge(planes.luma(), planes.chroma(), width, height, 0,
                                           faces.data(), static_cast<int>(faces.size()), level()));
      EXPECT_TRUE(planes.intact());
    }
    engine.DeInitCapture();
  }
}

}  // namespace
}  // namespace lumora::test
