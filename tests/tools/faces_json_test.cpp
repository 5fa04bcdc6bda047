// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/faces/faces_json.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "tools/lumora/faces/face_geometry.h"
#include "tools/lumora/support/failure.h"

namespace lumora::test {
namespace {

using tools::ExitCode;
using tools::Failure;
using tools::Middle;
using tools::ParseFaces;

constexpr int kWidth = 400, kHeight = 300;

std::vector<std::string> Doubts(const std::string& text) {
  std::vector<std::string> doubts;
  ParseFaces(text, "f.json", {kWidth, kHeight}, nullptr, &doubts);
  return doubts;
}

std::string EyesTurnedBy(double degrees) {
  const double radians = degrees * 3.14159265358979323846 / 180;
  const double x = 25 * std::cos(radians), y = 25 * std::sin(radians);
  return R"({"eyes": [[)" + std::to_string(200 - x) + "," + std::to_string(150 - y) + "],[" +
         std::to_string(200 + x) + "," + std::to_string(150 + y) + "]]}";
}

std::vector<Face> Parse(const std::string& text) {
  return ParseFaces(text, "f.json", {kWidth, kHeight});
}

TEST(FacesJson, EyesBecomeTheEyesOfTheFace) {
  const auto faces = Parse(R"({"faces": [{"eyes": [[150, 100], [210.5, 110]]}]})");
  ASSERT_EQ(faces.size(), 1u);
  EXPECT_NEAR(Middle(faces[0].landmarks.left_eye).x, 150, 1.5);
  EXPECT_NEAR(Middle(faces[0].landmarks.left_eye).y, 100, 1.5);
  EXPECT_NEAR(Middle(faces[0].landmarks.right_eye).x, 210.5, 1.5);
  EXPECT_NEAR(faces[0].roll_degrees, 9.385, 0.01);  // atan(10 / 60.5)
}

TEST(FacesJson, ABoxCanBeTurnedAboutItsMiddle) {
  const auto upright = Parse(R"({"faces": [{"box": [100, 80, 120, 120]}]})");
  const auto turned = Parse(R"({"faces": [{"box": [100, 80, 120, 120], "roll": 90}]})");
  ASSERT_EQ(upright.size(), 1u);
  ASSERT_EQ(turned.size(), 1u);
  EXPECT_NEAR(turned[0].roll_degrees, 90, 0.01);
  // A quarter turn clockwise about (160, 140) takes (x, y) to (300 - y, x - 20).
  const PointF before = Middle(upright[0].landmarks.left_eye);
  const PointF after = Middle(turned[0].landmarks.left_eye);
  EXPECT_NEAR(after.x, 300 - before.y, 2);
  EXPECT_NEAR(after.y, before.x - 20, 2);
}

TEST(FacesJson, LandmarksOfTheIbugAnnotationAreTakenOver) {
  std::string points;
  for (int i = 0; i < 68; ++i) {
    points += (i > 0 ? "," : "") + std::string("[") + std::to_string(100 + i) + "," +
              std::to_string(90 + i) + "]";
  }
  const auto faces = Parse(R"({"faces": [{"landmarks68": [)" + points + "]}]}");
  ASSERT_EQ(faces.size(), 1u);
  EXPECT_FLOAT_EQ(faces[0].landmarks.chin.x, 108);      // point 8 of the annotation
  EXPECT_FLOAT_EQ(faces[0].landmarks.nose_tip.y, 120);  // point 30
}

TEST(FacesJson, FacesTurnedPast120DegreesAreTakenWithADoubt) {
  for (int degrees = -180; degrees <= 180; ++degrees) {
    if (std::abs(degrees) == 120) continue;  // rounding decides
    SCOPED_TRACE(degrees);
    const auto doubts =
        Doubts(R"({"faces": [{"eyes": [[100, 100], [150, 100]]}, )" + EyesTurnedBy(degrees) + "]}");
    ASSERT_EQ(doubts.size(), std::abs(degrees) > 120 ? 1u : 0u);
    if (doubts.empty()) continue;
    EXPECT_THAT(doubts[0], testing::HasSubstr("face 2 is turned by "));
    EXPECT_THAT(doubts[0], testing::HasSubstr("the viewer's left eye comes first"));
  }
  // Who writes down the angle means it.
  EXPECT_TRUE(Doubts(R"({"faces": [{"box": [100, 80, 120, 120], "roll": 175}]})").empty());
}

TEST(FacesJson, AnEmptyListHasNoFaces) {
  EXPECT_TRUE(Parse(R"({"faces": []})").empty());
}

TEST(FacesJson, EveryMistakeIsNamedWithItsPlace) {
  const struct {
    const char* text;
    const char* says;
  } kMistakes[] = {
      {"faces", "f.json: not JSON (at byte"},
      {"{\"faces\": [", "f.json: not JSON (at byte"},
      {"[]", "f.json: expected {\"faces\": [...]}"},
      {"{}", "f.json: expected {\"faces\": [...]}"},
      {R"({"faces": 3})", "f.json: faces: expected a list of faces"},
      {R"({"faces": [3]})", "f.json: faces[0]: expected an object"},
      {R"({"faces": [{}]})", "f.json: faces[0]: expected exactly one of"},
      {R"({"faces": [{"eyes": [[1,2],[9,2]], "box": [1,2,3,4]}]})",
       "f.json: faces[0]: expected exactly one of"},
      {R"({"faces": [{"eyes": [[1,2],[9,2]], "rol": 3}]})",
       "f.json: faces[0]: unknown key \"rol\""},
      {R"({"faces": [{"eyes": [[1,2],[9,2]], "roll": 3}]})", "\"roll\" belongs to \"box\" only"},
      {R"({"faces": [{"eyes": [[50,50],[90,50]]}, {"eyes": "two"}]})",
       "f.json: faces[1].eyes: expected [[x, y], [x, y]]"},
      {R"({"faces": [{"eyes": [[50,50]]}]})", "f.json: faces[0].eyes: expected [[x, y], [x, y]]"},
      {R"({"faces": [{"eyes": [[50,50],[90]]}]})", "f.json: faces[0].eyes[1]: expected [x, y]"},
      {R"({"faces": [{"eyes": [[50,50],[90,"a"]]}]})",
       "f.json: faces[0].eyes[1][1]: expected a number"},
      {R"({"faces": [{"eyes": [[50,50],[90,1e300]]}]})",
       "f.json: faces[0].eyes[1][1]: the number is out of range"},
      {R"({"faces": [{"eyes": [[50,50],[90,1e400]]}]})", "f.json: a number is out of range"},
      {R"({"faces": [{"eyes": [[50,50],[50,51]]}]})",
       "f.json: faces[0].eyes: the eyes are less than 2 pixels apart"},
      {R"({"faces": [{"eyes": [[5000,50],[5090,50]]}]})",
       "f.json: faces[0]: the face lies outside the picture of 400 x 300 pixels"},
      {R"({"faces": [{"box": [1,2,3]}]})",
       "f.json: faces[0].box: expected [x, y, width, height], four numbers, found 3 values"},
      {R"({"faces": [{"box": [1,2,0,4]}]})",
       "f.json: faces[0].box: width and height must be positive"},
      {R"({"faces": [{"box": [1,2,30,40], "roll": null}]})",
       "f.json: faces[0].roll: expected a number"},
      {R"({"faces": [{"landmarks": {}, "box": [1,2,30,40]}]})",
       R"(f.json: faces[0]: "landmarks" needs "box" and "roll" beside it)"},
      {R"({"faces": [{"landmarks": {}, "box": [1,2,30,40], "roll": 0}]})",
       R"(f.json: faces[0].landmarks: "left_eye.left" is missing)"},
      {R"({"faces": [{"landmarks": 3, "box": [1,2,30,40], "roll": 0}]})",
       R"(f.json: faces[0].landmarks: "left_eye.left" is missing)"},
      {R"({"faces": [{"landmarks": {}, "box": [1,2,30,40], "roll": 0, "eyes": []}]})",
       "f.json: faces[0]: unknown key \"eyes\""},
      {R"({"faces": [{"landmarks68": [[1,2]]}]})",
       "f.json: faces[0].landmarks68: expected 68 points [x, y], found 1 values"},
  };
  for (const auto& mistake : kMistakes) {
    SCOPED_TRACE(mistake.text);
    try {
      Parse(mistake.text);
      ADD_FAILURE() << "was accepted";
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.code(), ExitCode::Unreadable);
      EXPECT_THAT(failure.what(), testing::HasSubstr(mistake.says));
    }
  }
}

TEST(FacesJson, LandmarksReachNoFartherThanTheirPictureAllows) {
  const auto text = [](const std::string& chin) {
    std::string points;
    for (int i = 0; i < 68; ++i) points += (i == 0 ? "" : ", ") + (i == 8 ? chin : "[200, 150]");
    return R"({"faces": [{"landmarks68": [)" + points + "]}]}";
  };
  EXPECT_EQ(Parse(text("[200, 6400]")).size(), 1u);  // 16 times 400
  for (const char* chin : {"[200, 6401]", "[-6401, 150]", "[1e6, 150]"}) {
    try {
      Parse(text(chin));
      ADD_FAILURE() << chin << " was accepted";
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.code(), ExitCode::Unreadable);
      EXPECT_THAT(failure.what(),
                  testing::HasSubstr("f.json: faces[0]: chin lies farther away than 16 times"));
    }
  }
}

}  // namespace
}  // namespace lumora::test
