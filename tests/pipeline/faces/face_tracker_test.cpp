// SPDX-License-Identifier: Apache-2.0
// Faces followed from frame to frame.
#include "lumora/pipeline/face_tracker.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "pipeline/faces/landmarks.h"
#include "pipeline/faces/random_faces.h"

namespace lumora::test {
namespace {

Face FaceSeenAt(float x, float y, float eye_distance = 60) {
  return FaceFromEyes({x - eye_distance / 2, y}, {x + eye_distance / 2, y});
}

float EyeX(const Face& face) {
  return Centre(face.landmarks.left_eye).x;
}

TEST(FaceTracker, TakesANewFaceAsItIs) {
  FaceTracker tracker;
  const Face face = FaceSeenAt(200, 150);
  const std::vector<Face> faces = tracker.Detected({face});
  ASSERT_EQ(faces.size(), 1u);
  EXPECT_FLOAT_EQ(EyeX(faces[0]), EyeX(face));
  EXPECT_FLOAT_EQ(faces[0].landmarks.chin.y, face.landmarks.chin.y);
  EXPECT_FLOAT_EQ(faces[0].box.width, face.box.width);
}

TEST(FaceTracker, MovesByAnEqualShareOfTheRestWithEveryFrame) {
  FaceTracker tracker({0.5f, 3, 0.6f});
  tracker.Detected({FaceSeenAt(200, 150)});
  const float start = EyeX(FaceSeenAt(200, 150));
  EXPECT_NEAR(EyeX(tracker.Detected({FaceSeenAt(216, 150)})[0]), start + 8, 0.01);
  EXPECT_NEAR(EyeX(tracker.Skipped()[0]), start + 12, 0.01);
  EXPECT_NEAR(EyeX(tracker.Skipped()[0]), start + 14, 0.01);
}

TEST(FaceTracker, WithoutSmoothingFollowsAtOnce) {
  FaceTracker tracker({0, 3, 0.6f});
  tracker.Detected({FaceSeenAt(200, 150)});
  EXPECT_FLOAT_EQ(EyeX(tracker.Detected({FaceSeenAt(216, 150)})[0]), EyeX(FaceSeenAt(216, 150)));
}

TEST(FaceTracker, CalmsATremblingDetector) {
  std::mt19937 random(7);
  std::normal_distribution<float> tremble(0, 4);
  FaceTracker tracker;
  double raw = 0, calm = 0;
  const float wanted = EyeX(FaceSeenAt(300, 200));
  for (int frame = 0; frame < 200; ++frame) {
    const Face seen = FaceSeenAt(300 + tremble(random), 200);
    const Face shown = tracker.Detected({seen})[0];
    if (frame < 10) continue;
    raw += std::pow(EyeX(seen) - wanted, 2);
    calm += std::pow(EyeX(shown) - wanted, 2);
  }
  EXPECT_LT(calm, raw / 3);
}

TEST(FaceTracker, KeepsFacesThatBlinkAndDropsFacesThatAreGone) {
  FaceTracker tracker({0.5f, 2, 0.6f});
  tracker.Detected({FaceSeenAt(200, 150), FaceSeenAt(500, 150)});
  EXPECT_EQ(tracker.Detected({FaceSeenAt(200, 150)}).size(), 2u);
  EXPECT_EQ(tracker.Detected({FaceSeenAt(200, 150)}).size(), 2u);
  const std::vector<Face> left = tracker.Detected({FaceSeenAt(200, 150)});
  ASSERT_EQ(left.size(), 1u);
  EXPECT_NEAR(EyeX(left[0]), EyeX(FaceSeenAt(200, 150)), 0.01);
}

TEST(FaceTracker, AFaceThatComesBackInTimeStartsItsPatienceAnew) {
  FaceTracker tracker({0.5f, 1, 0.6f});
  for (int round = 0; round < 4; ++round) {
    EXPECT_EQ(tracker.Detected({FaceSeenAt(200, 150)}).size(), 1u);
    EXPECT_EQ(tracker.Detected({}).size(), 1u);
  }
  EXPECT_EQ(tracker.Detected({}).size(), 0u);
}

TEST(FaceTracker, SkippedFramesLoseNobody) {
  FaceTracker tracker({0.5f, 0, 0.6f});
  tracker.Detected({FaceSeenAt(200, 150)});
  for (int frame = 0; frame < 50; ++frame) EXPECT_EQ(tracker.Skipped().size(), 1u);
}

TEST(FaceTracker, TellsNeighboursApartWhateverTheirOrder) {
  FaceTracker tracker({0, 3, 0.6f});
  tracker.Detected({FaceSeenAt(200, 150), FaceSeenAt(300, 150)});
  const std::vector<Face> faces = tracker.Detected({FaceSeenAt(306, 150), FaceSeenAt(206, 150)});
  ASSERT_EQ(faces.size(), 2u);
  EXPECT_FLOAT_EQ(EyeX(faces[0]), EyeX(FaceSeenAt(206, 150)));
  EXPECT_FLOAT_EQ(EyeX(faces[1]), EyeX(FaceSeenAt(306, 150)));
}

TEST(FaceTracker, AFaceFarAwayIsAnotherOne) {
  FaceTracker tracker;
  tracker.Detected({FaceSeenAt(200, 150)});
  const std::vector<Face> faces = tracker.Detected({FaceSeenAt(600, 150)});
  ASSERT_EQ(faces.size(), 2u);
  EXPECT_FLOAT_EQ(EyeX(faces[1]), EyeX(FaceSeenAt(600, 150)));
}

TEST(FaceTracker, TurnsByTheShorterWay) {
  FaceTracker tracker({0.5f, 3, 0.6f});
  Face face = FaceSeenAt(200, 150);
  face.roll_degrees = 170;
  tracker.Detected({face});
  face.roll_degrees = -170;
  EXPECT_NEAR(std::abs(tracker.Detected({face})[0].roll_degrees), 180, 0.01);
}

TEST(FaceTracker, IgnoresFacesWithoutNumbers) {
  FaceTracker tracker;
  Face broken = FaceSeenAt(200, 150);
  broken.landmarks.chin.x = std::numeric_limits<float>::quiet_NaN();
  EXPECT_TRUE(tracker.Detected({broken}).empty());
}

TEST(FaceTracker, IgnoresFacesBeyondEveryFrame) {
  Face known = FaceSeenAt(200, 150);
  const size_t count = NumbersOf(known).size();
  for (size_t i = 0; i < count; ++i) {
    FaceTracker tracker;
    tracker.Detected({known});
    for (const float far : {3e38f, -3e38f, 2e6f}) {
      Face wild = known;
      *NumbersOf(wild)[i] = far;
      for (Face& face : tracker.Detected({wild})) {
        for (const float* number : NumbersOf(face)) ASSERT_LT(std::abs(*number), 1000) << i;
      }
    }
  }
}

TEST(FaceTracker, ForgetsEverybodyAfterACut) {
  FaceTracker tracker;
  tracker.Detected({FaceSeenAt(200, 150)});
  tracker.Reset();
  EXPECT_TRUE(tracker.Skipped().empty());
}

/// Every number of a face, always in the same order.
std::vector<float> BoxAndLandmarks(const Face& face) {
  std::vector<float> numbers = {face.box.x, face.box.y, face.box.width, face.box.height,
                                face.roll_degrees};
  ForEachPoint(face.landmarks, [&numbers](const PointF& point) {
    numbers.insert(numbers.end(), {point.x, point.y});
  });
  return numbers;
}

TEST(FaceTracker, EveryNumberOfAFaceMovesByTheSameShare) {
  Face from = FaceSeenAt(200, 150, 60), to = FaceFromEyes({178, 151}, {246, 160});
  from.box = {110, 80, 160, 200};
  to.box = {118, 92, 168, 188};
  FaceTracker tracker({0.75f, 3, 0.6f});
  tracker.Detected({from});
  const std::vector<float> before = BoxAndLandmarks(from), after = BoxAndLandmarks(to),
                           shown = BoxAndLandmarks(tracker.Detected({to})[0]);
  ASSERT_EQ(before.size(), 5u + 2 * 27);
  for (size_t i = 0; i < before.size(); ++i) {
    ASSERT_NE(before[i], after[i]) << "number " << i << " does not move, so nothing is proved";
    EXPECT_NEAR(shown[i], before[i] + 0.25f * (after[i] - before[i]), 0.01) << "number " << i;
  }
}

TEST(FaceTracker, AFaceThatMovesOnWithinItsReachStaysOneHoweverFarItIsShownBehind) {
  FaceTracker tracker({0.9f, 3, 0.6f});
  const float side = std::max(FaceSeenAt(0, 0).box.width, FaceSeenAt(0, 0).box.height);
  for (int i = 0; i < 20; ++i) {
    const std::vector<Face> faces =
        tracker.Detected({FaceSeenAt(200 + 0.55f * side * static_cast<float>(i), 150)});
    ASSERT_EQ(faces.size(), 1u) << i;
  }
}

TEST(FaceTracker, TheReachIsAShareOfTheLargerSideOfTheBox) {
  for (const RectF& box : {RectF{100, 100, 40, 120}, RectF{100, 100, 120, 40}}) {
    for (const PointF& move : {PointF{70, 0}, PointF{0, 70}, PointF{-70, 0}, PointF{50, -50}}) {
      FaceTracker tracker;  // 0.6 of 120 is 72
      Face face = FaceSeenAt(200, 150);
      face.box = box;
      tracker.Detected({face});
      face.box.x += move.x;
      face.box.y += move.y;
      EXPECT_EQ(tracker.Detected({face}).size(), 1u) << move.x << ", " << move.y;
      face.box.x += 1.1f * move.x;
      face.box.y += 1.1f * move.y;
      EXPECT_EQ(tracker.Detected({face}).size(), 2u) << move.x << ", " << move.y;
    }
  }
}

}  // namespace
}  // namespace lumora::test
