// SPDX-License-Identifier: Apache-2.0
// The record that the engine gets, and the warp that follows from it.
#include "pipeline/plan/warp_geometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "lumora/geometry/rounding.h"
#include "lumora/pipeline/face.h"
#include "pipeline/plan/warp_model.h"

namespace lumora::test {
namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kDegrees = kPi / 180;

struct FrameSize {
  int width;
  int height;
};

constexpr FrameSize kShapes[] = {{512, 512}, {640, 480}, {480, 640}, {640, 352}, {352, 640}};

std::string Describe(const Face& face, FrameSize size) {
  const PointF& left = face.landmarks.left_eye.top;
  return "frame " + std::to_string(size.width) + " x " + std::to_string(size.height) + ", eye at " +
         std::to_string(left.x) + ", " + std::to_string(left.y) + ", roll " +
         std::to_string(face.roll_degrees) + ", chin at " + std::to_string(face.landmarks.chin.x) +
         ", " + std::to_string(face.landmarks.chin.y);
}

/// An upright or turned face with its eyes' middle at (x, y).
Face FaceAt(double x, double y, double eye_distance, double roll_degrees = 0) {
  const double dx = std::cos(roll_degrees * kDegrees) * eye_distance / 2;
  const double dy = std::sin(roll_degrees * kDegrees) * eye_distance / 2;
  return FaceFromEyes({static_cast<float>(x - dx), static_cast<float>(y - dy)},
                      {static_cast<float>(x + dx), static_cast<float>(y + dy)});
}

WarpModel WarpOf(const Face& face, FrameSize size, int slim = 100) {
  const auto record = MakeFaceRecord(face, size.width, size.height, slim);
  EXPECT_TRUE(record.has_value()) << Describe(face, size);
  return WarpModel(record.value_or(FACE_INFO_t{}), RoundUpTo32(size.width),
                   RoundUpTo32(size.height), kBeautyLevel);
}

/// How far the content seen at `point` has come from, towards the centre of the warp.
double InwardMove(const WarpModel& warp, PointF point) {
  const Vector at = {static_cast<double>(point.x), static_cast<double>(point.y)};
  const Vector from = warp.Source(at);
  return std::hypot(from.x - at.x, from.y - at.y);
}

/// Walks outward from the centre in all directions and gives the smallest step, in pixels of the
/// source, that one pixel of the result makes. Zero or less is a fold.
double SmallestStep(const WarpModel& warp, FrameSize size) {
  constexpr double kStride = 0.5;  // pixels; samples lie at least half a pixel inside the frame
  const Vector centre = warp.centre_pixels();
  double smallest = 1;
  for (int direction = 0; direction < 72; ++direction) {
    const Vector outward = {std::cos(direction * kPi / 36), std::sin(direction * kPi / 36)};
    double before = 0;
    for (double distance = kStride; distance <= warp.radius_pixels() + 1; distance += kStride) {
      const Vector at = {centre.x + outward.x * distance, centre.y + outward.y * distance};
      if (at.x < 0.5 || at.y < 0.5 || at.x > RoundUpTo32(size.width) - 0.5 ||
          at.y > RoundUpTo32(size.height) - 0.5) {
        break;
      }
      const Vector source = warp.Source(at);
      const double along = (source.x - centre.x) * outward.x + (source.y - centre.y) * outward.y;
      smallest = std::min(smallest, (along - before) / kStride);
      before = along;
    }
  }
  return smallest;
}

TEST(FaceRecord, NeverFoldsTheImage) {
  std::mt19937 random(20240517);
  std::uniform_real_distribution<double> unit(0, 1);
  for (const FrameSize& size : kShapes) {
    for (int i = 0; i < 120; ++i) {
      const double eye_distance = 4 + unit(random) * unit(random) * 160;
      Face face = FaceAt(unit(random) * size.width, unit(random) * size.height, eye_distance,
                         unit(random) * 360);
      if (i % 3 == 0) {  // not every face is the canonical one
        const auto pull = static_cast<float>(0.7 + 0.6 * unit(random));
        const PointF nose = face.landmarks.nose_tip;
        PointF& chin = face.landmarks.chin;
        chin = {nose.x + (chin.x - nose.x) * pull, nose.y + (chin.y - nose.y) * pull};
      }
      if (!MakeFaceRecord(face, size.width, size.height, 100)) continue;  // centre left the frame
      EXPECT_GT(SmallestStep(WarpOf(face, size), size), 0.02) << Describe(face, size);
    }
  }
}

TEST(FaceRecord, NeverFoldsTheImageAtItsBorders) {
  for (const FrameSize& size : kShapes) {
    for (const double eye_distance : {20.0, 60.0, 110.0}) {
      for (const double roll : {0.0, 180.0, 37.0}) {
        for (double from_border = 0; from_border < 2.2; from_border += 0.1) {
          const double away = from_border * eye_distance;
          for (const Face& face :
               {FaceAt(away, size.height / 2.0, eye_distance, roll),
                FaceAt(size.width - away, size.height / 2.0, eye_distance, roll),
                FaceAt(size.width / 2.0, away, eye_distance, roll),
                FaceAt(size.width / 2.0, size.height - away, eye_distance, roll)}) {
            if (!MakeFaceRecord(face, size.width, size.height, 100)) continue;
            EXPECT_GT(SmallestStep(WarpOf(face, size), size), 0.02) << Describe(face, size);
          }
        }
      }
    }
  }
}

TEST(FaceRecord, MovesCheeksAndChinClearlyAndLeavesTheEyes) {
  for (const FrameSize& size : kShapes) {
    for (const double eye_distance : {24.0, 50.0}) {
      const Face face = FaceAt(size.width / 2.0, size.height * 0.45, eye_distance);
      const WarpModel full = WarpOf(face, size, 100);
      const WarpModel half = WarpOf(face, size, 50);
      const FaceLandmarks& at = face.landmarks;
      for (const PointF& edge : {at.left_jaw, at.right_jaw, at.chin}) {
        EXPECT_GT(InwardMove(full, edge), 0.09 * eye_distance) << Describe(face, size);
        EXPECT_LT(InwardMove(full, edge), 0.25 * eye_distance) << Describe(face, size);
        EXPECT_GT(InwardMove(half, edge), 0.04 * eye_distance) << Describe(face, size);
        EXPECT_LT(InwardMove(half, edge), 0.13 * eye_distance) << Describe(face, size);
      }
      for (const FeatureBox& eye : {at.left_eye, at.right_eye}) {
        EXPECT_LT(InwardMove(full, eye.top), 0.03 * eye_distance) << Describe(face, size);
        EXPECT_LT(InwardMove(full, eye.bottom), 0.05 * eye_distance) << Describe(face, size);
      }
    }
  }
}

TEST(FaceRecord, KeepsCheeksAndChinWellInsideTheCircle) {
  const Face face = FaceAt(256, 230, 60);
  const WarpCircle circle = SlimmingCircle(face, 512, 512);
  const auto position = [&](const PointF& point) {
    return std::hypot(point.x - circle.centre.x, point.y - circle.centre.y) / circle.radius;
  };
  for (const PointF& point : {face.landmarks.left_jaw, face.landmarks.right_jaw,
                              face.landmarks.chin, face.landmarks.left_temple}) {
    EXPECT_GT(position(point), 0.55);
    EXPECT_LT(position(point), 0.75);
  }
}

TEST(FaceRecord, WidensTheCircleForWideFaces) {
  Face face = FaceAt(256, 230, 60);
  face.landmarks.left_jaw.x -= 30;
  face.landmarks.right_jaw.x += 30;
  const WarpCircle circle = SlimmingCircle(face, 512, 512);
  const float cheek = circle.centre.x - face.landmarks.left_jaw.x;
  EXPECT_LT(cheek, 0.65f * circle.radius);
}

TEST(FaceRecord, SlimsSmallAndLargeFacesByTheSameShare) {
  const FrameSize size = {2048, 2048};
  const auto share = [&](double eye_distance) {
    const Face face = FaceAt(1024, 1024, eye_distance);
    return InwardMove(WarpOf(face, size), face.landmarks.left_jaw) / eye_distance;
  };
  // The fade towards the borders of the frame grows slowly with the size: a sixth is left for it.
  EXPECT_NEAR(share(40) / share(200), 1.0, 0.16);
}

TEST(FaceRecord, StrengthGrowsEvenlyFromZero) {
  const Face face = FaceAt(256, 256, 60);
  const float full = MakeFaceRecord(face, 512, 512, 100)->dist_level_ratio;
  for (int slim = 0; slim <= 100; slim += 10) {
    EXPECT_FLOAT_EQ(MakeFaceRecord(face, 512, 512, slim)->dist_level_ratio,
                    full * static_cast<float>(slim) / 100);
  }
}

TEST(FaceRecord, SlimsFacesThatLeaveTheFrameLess) {
  const auto strength = [](double y) {
    return MakeFaceRecord(FaceAt(256, y, 60), 512, 512, 100)->dist_level_ratio;
  };
  EXPECT_LT(strength(10), 0.5f * strength(200));
  EXPECT_LT(strength(460), 0.5f * strength(200));
  // The change is gradual, so that nothing jumps when a face moves out of a video.
  for (double y = 0; y < 470; y += 1) {
    EXPECT_NEAR(strength(y + 1) / strength(200), strength(y) / strength(200), 0.03) << y;
  }
}

TEST(FaceRecord, LimiterLiesTowardsTheForehead) {
  for (int roll = -170; roll <= 180; roll += 10) {
    const Face face = FaceAt(256, 256, 40, roll);
    const auto record = MakeFaceRecord(face, 512, 512, 100);
    ASSERT_TRUE(record);
    const double direction = (record->roll - 90) * kDegrees;
    // From the chin to the middle of the eyes.
    const double up_x = 256 - static_cast<double>(face.landmarks.chin.x);
    const double up_y = 256 - static_cast<double>(face.landmarks.chin.y);
    const double cosine =
        (std::cos(direction) * up_x + std::sin(direction) * up_y) / std::hypot(up_x, up_y);
    EXPECT_GT(cosine, 0.999) << roll;

    const WarpCircle circle = SlimmingCircle(face, 512, 512);
    EXPECT_NEAR(static_cast<double>(circle.towards.x), -up_x / std::hypot(up_x, up_y), 0.02);
    EXPECT_NEAR(static_cast<double>(circle.towards.y), -up_y / std::hypot(up_x, up_y), 0.02);
  }
}

TEST(FaceRecord, CircleIsTheOneThatTheEngineDraws) {
  for (const FrameSize& size : {FrameSize{500, 333}, FrameSize{640, 480}, FrameSize{100, 1000}}) {
    for (const double eye_distance : {5.0, 20.0, 80.0, 300.0}) {  // the last ones reach the cap
      const Face face = FaceAt(size.width / 2.0, size.height / 3.0, eye_distance);
      if (!MakeFaceRecord(face, size.width, size.height, 100)) continue;
      const WarpModel warp = WarpOf(face, size);
      const WarpCircle circle = SlimmingCircle(face, size.width, size.height);
      EXPECT_NEAR(static_cast<double>(circle.radius), warp.radius_pixels(), 1e-3);
      EXPECT_NEAR(static_cast<double>(circle.centre.x), warp.centre_pixels().x, 1e-3);
      EXPECT_NEAR(static_cast<double>(circle.centre.y), warp.centre_pixels().y, 1e-3);
    }
  }
}

struct UnusableCase {
  const char* name;
  Face face;
};

std::vector<UnusableCase> UnusableFaces() {
  std::vector<UnusableCase> cases;
  const Face good = FaceAt(256, 256, 60);
  cases.push_back({"nothing known", Face{}});
  cases.push_back({"eyes in one point", FaceFromEyes({256, 256}, {256, 256})});
  cases.push_back({"left of the frame", FaceAt(-40, 256, 60)});
  cases.push_back({"right of the frame", FaceAt(520, 256, 60)});
  cases.push_back({"above the frame", FaceAt(256, -100, 60)});
  cases.push_back({"below the frame", FaceAt(256, 500, 60)});
  cases.push_back({"smaller than a pixel", FaceAt(256, 256, 0.5)});
  Face face = good;
  face.landmarks.chin.y = std::numeric_limits<float>::quiet_NaN();
  cases.push_back({"chin not a number", face});
  face = good;
  face.landmarks.left_jaw.x = std::numeric_limits<float>::infinity();
  cases.push_back({"jaw infinite", face});
  face = good;
  face.roll_degrees = std::numeric_limits<float>::quiet_NaN();
  cases.push_back({"roll not a number", face});
  face = good;
  face.landmarks.left_brow.top.x = 1e38f;
  cases.push_back({"brow far outside of every frame", face});
  face = good;
  face.roll_degrees = 1e38f;
  cases.push_back({"turned too often", face});
  return cases;
}

TEST(FaceRecord, FacesThatCannotBeSlimmedGiveNoRecord) {
  for (const UnusableCase& unusable : UnusableFaces()) {
    EXPECT_FALSE(MakeFaceRecord(unusable.face, 512, 512, 100)) << unusable.name;
    EXPECT_EQ(SlimmingCircle(unusable.face, 512, 512).radius, 0) << unusable.name;
  }
}

TEST(FaceRecord, IsAlwaysValidForTheEngine) {
  // Faces in corners, tiny and enormous ones: whatever gives a record gives one the engine takes.
  for (const double eye_distance : {1.2, 3.0, 50.0, 1e4, 1e8}) {
    for (const double x : {0.0, 0.2, 31.9}) {
      const auto record = MakeFaceRecord(FaceAt(x, x, eye_distance), 32, 20000, 100);
      if (!record) continue;
      EXPECT_GE(record->dist_valid, 1);
      EXPECT_GT(record->loc_x, 0);
      EXPECT_GT(record->loc_y, 0);
      EXPECT_GT(record->dist, 0);
      EXPECT_GT(record->chin_dist, 0);
      EXPECT_NE(record->shapetype, 2);
      EXPECT_TRUE(std::isfinite(record->dist_level_ratio));
    }
  }
}

TEST(FaceRecord, CarriesTheLandmarksInTheirRoles) {
  const Face face = FaceAt(300, 200, 100);
  const FACE_INFO_t record = *MakeFaceRecord(face, 640, 480, 50);
  const FaceLandmarks& at = face.landmarks;
  const PointF below_mouth = record.landmark(43).y > record.landmark(15).y
                                 ? PointF{300, static_cast<float>(record.landmark(43).y)}
                                 : PointF{};
  const struct {
    int index;
    PointF point;
  } roles[] = {
      {12, at.mouth.left},
      {13, at.mouth.right},
      {14, at.mouth.top},
      {15, at.mouth.bottom},
      {34, at.left_brow.left},
      {33, at.left_brow.right},
      {35, at.left_brow.top},
      {36, at.left_brow.bottom},
      {39, at.right_brow.left},
      {38, at.right_brow.right},
      {40, at.right_brow.top},
      {41, at.right_brow.bottom},
      {42, at.nasion},
      {43, below_mouth},
      {57, at.left_eye.top},
      {58, at.left_eye.bottom},
      {60, at.left_eye.left},
      {59, at.left_eye.right},
      {61, at.right_eye.top},
      {62, at.right_eye.bottom},
      {64, at.right_eye.left},
      {63, at.right_eye.right},
      {65, at.chin},
      {68, at.left_temple},
      {70, at.left_jaw},
      {69, at.right_temple},
      {71, at.right_jaw},
  };
  for (const auto& role : roles) {
    EXPECT_NEAR(record.landmark(role.index).x, role.point.x, 0.51) << role.index;
    EXPECT_NEAR(record.landmark(role.index).y, role.point.y, 0.51) << role.index;
  }
  EXPECT_LT(record.landmark(43).y, record.landmark(65).y);
  for (int i = FACE_INFO_t::kFirstLandmark; i <= FACE_INFO_t::kLastLandmark; ++i) {
    EXPECT_NEAR(record.landmark(i).x, 300, 106) << i;
    EXPECT_NEAR(record.landmark(i).y, 265, 111) << i;
  }
}

}  // namespace
}  // namespace lumora::test
