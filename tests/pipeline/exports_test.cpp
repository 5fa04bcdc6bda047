// The shared library on its own: everything that the headers declare can be linked.
#include <gtest/gtest.h>

#include <vector>

#include "pipeline/face.h"
#include "pipeline/frame.h"
#include "pipeline/pipeline.h"

namespace lumora::test {
namespace {

TEST(SharedLibrary, OffersTheFaceAdapters) {
  const Face from_eyes = FaceFromEyes({100, 100}, {140, 100});
  EXPECT_GT(SlimmingCircle(from_eyes, 320, 240).radius, 40);
  EXPECT_GT(SlimmingCircle(FaceFromBox({100, 60, 90, 90}), 320, 240).radius, 30);
  PointF points68[68] = {};
  EXPECT_EQ(FaceFromIbug68(points68).box.width, 0);
  PointF points468[468] = {};
  EXPECT_EQ(FaceFromMesh468(points468).box.width, 0);
}

TEST(SharedLibrary, OffersThePipeline) {
  Status status;
  const auto pipeline = Pipeline::Create(&status);
  ASSERT_NE(pipeline, nullptr) << status.message;
  EXPECT_FALSE(pipeline->Device().renderer.empty());
  std::vector<uint8_t> bytes(64 * 64 * 3 / 2, 128);
  const FrameView frame{
      PixelFormat::NV21, 64, 64, {bytes.data(), bytes.data() + 64 * 64, nullptr}, {64, 64, 0}};
  Report report;
  const Face face = FaceFromEyes({24, 28}, {40, 28});
  EXPECT_TRUE(pipeline->Process(AsConst(frame), frame, {face}, Look{50}, &report).ok());
  EXPECT_EQ(report.faces, 1);
}

}  // namespace
}  // namespace lumora::test
