// SPDX-License-Identifier: Apache-2.0
// The shared library on its own: everything that the headers declare can be linked.
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <thread>
#include <vector>

#include "lumora/pipeline/converter.h"
#include "lumora/pipeline/face.h"
#include "lumora/pipeline/face_tracker.h"
#include "lumora/pipeline/frame.h"
#include "lumora/pipeline/pipeline.h"

namespace lumora::test {
namespace {

// First, so that these threads are the first to want the module of the gl backend.
TEST(SharedLibrary, MakesPipelinesAndConvertersOnAllThreadsAtOnce) {
  std::vector<std::thread> threads;
  std::array<std::array<std::string, 2>, 6> failures;
  for (size_t i = 0; i < failures.size(); ++i) {
    threads.emplace_back([&failure = failures[i], device = i % 3 == 0 ? Device::Cpu : Device::Gl] {
      Status status;
      const auto pipeline = Pipeline::Create({device}, &status);
      failure[0] = pipeline != nullptr && pipeline->Device().device == device
                       ? ""
                       : "none: " + status.message;
      const auto converter = Converter::Create(device, &status);
      failure[1] = converter != nullptr && converter->Device().device == device
                       ? ""
                       : "none: " + status.message;
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const auto& [pipeline, converter] : failures) EXPECT_EQ(pipeline + converter, "");
}

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
  const auto pipeline = Pipeline::Create({Device::Gl}, &status);
  ASSERT_NE(pipeline, nullptr) << status.message;
  EXPECT_FALSE(pipeline->Device().renderer.empty());
  EXPECT_EQ(pipeline->Device().device, Device::Gl);
  EXPECT_EQ(pipeline->Device().reason, "it was asked for");
  std::vector<uint8_t> bytes(64 * 64 * 3 / 2, 128);
  const FrameView frame{
      PixelFormat::NV21, 64, 64, {bytes.data(), bytes.data() + 64 * 64, nullptr}, {64, 64, 0}};
  Report report;
  const Face face = FaceFromEyes({24, 28}, {40, 28});
  EXPECT_TRUE(pipeline->Process({AsConst(frame), frame, {face}, Look{50}}, &report).ok());
  EXPECT_EQ(report.faces, 1);
}

TEST(SharedLibrary, OffersTheConverterAndTheTracker) {
  Status status;
  const auto converter = Converter::Create(Device::Gl, &status);
  ASSERT_NE(converter, nullptr) << status.message;
  std::vector<uint8_t> bytes(64 * 64 * 3 / 2, 128), rgb(64 * 64 * 3);
  const FrameView frame{
      PixelFormat::NV21, 64, 64, {bytes.data(), bytes.data() + 64 * 64, nullptr}, {64, 64, 0}};
  EXPECT_TRUE(converter->Convert(AsConst(frame), {rgb.data(), 64, 64, 3, 64 * 3}, {}).ok());
  FaceTracker tracker;
  EXPECT_EQ(tracker.Detected({FaceFromEyes({24, 28}, {40, 28})}).size(), 1u);
  EXPECT_EQ(tracker.Skipped().size(), 1u);
}

TEST(SharedLibrary, OffersLooksAndWhatTheyAmountTo) {
  const auto look = FindPreset("natural");
  ASSERT_TRUE(look.has_value());
  EXPECT_TRUE(Whitens(*look));
  EXPECT_FALSE(Presets().empty());
  const Face face = FaceFromEyes({100, 100}, {140, 100});
  EXPECT_GT(WhiteningEllipses(face)[kFaceEllipse].half_along, 20);
  EXPECT_GT(SlimmingWarp(face, look->slim, 320, 240).strength, 0);
}

TEST(SharedLibrary, OffersRectification) {
  const auto pipeline = Pipeline::Create({Device::Gl}, nullptr);
  ASSERT_NE(pipeline, nullptr);
  std::vector<uint8_t> bytes(64 * 64 * 3 / 2, 128);
  const FrameView frame{
      PixelFormat::NV21, 64, 64, {bytes.data(), bytes.data() + 64 * 64, nullptr}, {64, 64, 0}};
  EXPECT_TRUE(pipeline->Rectify(AsConst(frame), frame, 5).ok());
  EXPECT_TRUE(pipeline->RectifyRadial(AsConst(frame), frame, LensCoefficients{}).ok());
  EXPECT_TRUE(pipeline->RectifyRadial(AsConst(frame), frame, Camera::Second).ok());
}

}  // namespace
}  // namespace lumora::test
