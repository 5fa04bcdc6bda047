// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>

#include "tests/tools/pictures.h"
#include "tools/lumora/faces/face_finder.h"
#include "tools/lumora/faces/face_geometry.h"
#include "tools/lumora/modules/drawing/compare.h"
#include "tools/lumora/modules/drawing/explain.h"
#include "tools/lumora/modules/drawing/portraits/portrait.h"
#include "tools/lumora/modules/opencv.h"

namespace lumora::test {
namespace {

using tools::CompareSheet;
using tools::DrawPortrait;
using tools::Middle;
using tools::Portrait;
using tools::PortraitCount;

/// Brightness around a point, in a square of `side` pixels.
double Brightness(const cv::Mat& picture, PointF at, int side) {
  const cv::Rect square(static_cast<int>(at.x) - side / 2, static_cast<int>(at.y) - side / 2, side,
                        side);
  const cv::Scalar mean = cv::mean(picture(square));
  return (mean[0] + mean[1] + mean[2]) / 3;
}

TEST(Portraits, LandmarksLieWhereTheDrawingHasThem) {
  ASSERT_GE(PortraitCount(), 4);
  for (int i = 0; i < PortraitCount(); ++i) {
    SCOPED_TRACE(i);
    const Portrait portrait = DrawPortrait(i, 500);
    ASSERT_EQ(portrait.picture.size(), cv::Size(500, 500));
    const FaceLandmarks& marks = portrait.face.landmarks;
    // The pupil is darker than the white of the eye beside it, the brow darker than the skin of the
    // nose.
    for (const FeatureBox& eye : {marks.left_eye, marks.right_eye}) {
      const PointF pupil = Middle(eye);
      const PointF white = {pupil.x + 0.66f * (eye.right.x - pupil.x), pupil.y};
      EXPECT_LT(Brightness(portrait.picture, pupil, 5) + 60,
                Brightness(portrait.picture, white, 3));
    }
    EXPECT_LT(Brightness(portrait.picture, Middle(marks.left_brow), 3) + 15,
              Brightness(portrait.picture, marks.nose_tip, 3));
    // At the jaw the head ends: the picture changes across them.
    const PointF inside = {marks.right_jaw.x - 8, marks.right_jaw.y};
    const PointF outside = {marks.right_jaw.x + 8, marks.right_jaw.y};
    EXPECT_GT(std::abs(Brightness(portrait.picture, inside, 3) -
                       Brightness(portrait.picture, outside, 3)),
              15);
  }
}

TEST(Portraits, SkinTonesAreClearlyDifferent) {
  std::vector<double> tones;
  for (int i = 0; i < PortraitCount(); ++i) {
    const Portrait portrait = DrawPortrait(i, 400);
    const PointF nose = portrait.face.landmarks.nose_tip;
    tones.push_back(Brightness(portrait.picture, nose, 9));
  }
  for (size_t i = 1; i < tones.size(); ++i) EXPECT_LT(tones[i] + 15, tones[i - 1]);
}

TEST(FaceFinder, FindsADrawnFaceByItsEyes) {
  const Portrait portrait = DrawPortrait(0, 512);
  const auto found = tools::FaceFinder().Find(tools::ImageOf(portrait.picture));
  ASSERT_EQ(found.size(), 1u);
  EXPECT_EQ(found[0].found_by, tools::FoundBy::Eyes);
  const PointF left = Middle(found[0].face.landmarks.left_eye);
  const PointF right = Middle(found[0].face.landmarks.right_eye);
  const PointF drawn_left = Middle(portrait.face.landmarks.left_eye);
  const PointF drawn_right = Middle(portrait.face.landmarks.right_eye);
  EXPECT_NEAR(left.x, drawn_left.x, 10);
  EXPECT_NEAR(left.y, drawn_left.y, 10);
  EXPECT_NEAR(right.x, drawn_right.x, 10);
  EXPECT_NEAR(right.y, drawn_right.y, 10);
}

TEST(FaceFinder, FindsATurnedHeadWithItsRoll) {
  const Portrait portrait = DrawPortrait(0, 512);
  for (const double degrees : {30.0, -30.0}) {
    SCOPED_TRACE(degrees);
    cv::Mat turned;  // OpenCV's angles are counter-clockwise
    cv::warpAffine(portrait.picture, turned, cv::getRotationMatrix2D({256, 256}, -degrees, 1),
                   {512, 512}, cv::INTER_LINEAR, cv::BORDER_REPLICATE);
    const auto found = tools::FaceFinder().Find(tools::ImageOf(turned));
    ASSERT_EQ(found.size(), 1u);
    EXPECT_NEAR(found[0].face.roll_degrees, degrees, 6);
  }
}

TEST(FaceFinder, FacesOfLargePicturesAreGivenInTheirOwnPixelsLargestFirst) {
  // Searched in a third of their size; a smaller face to the left of a larger one.
  const Portrait small = DrawPortrait(0, 900), large = DrawPortrait(0, 1300);
  cv::Mat picture(1400, 3000, CV_8UC3, cv::Scalar(200, 190, 180));
  small.picture.copyTo(picture(cv::Rect(100, 200, 900, 900)));
  large.picture.copyTo(picture(cv::Rect(1500, 50, 1300, 1300)));
  const auto found = tools::FaceFinder().Find(tools::ImageOf(picture));
  ASSERT_EQ(found.size(), 2u);
  const auto expect_eye = [](const tools::FoundFace& face, const Portrait& drawn, float x,
                             float y) {
    const PointF eye = Middle(face.face.landmarks.left_eye);
    const PointF expected = Middle(drawn.face.landmarks.left_eye);
    EXPECT_NEAR(eye.x, expected.x + x, 30);
    EXPECT_NEAR(eye.y, expected.y + y, 30);
  };
  expect_eye(found[0], large, 1500, 50);
  expect_eye(found[1], small, 100, 200);
}

TEST(Group, EveryFaceLiesWhereItSays) {
  const tools::Group group = tools::DrawGroup({1200, 900});
  ASSERT_EQ(group.picture.size(), cv::Size(1200, 900));
  ASSERT_EQ(static_cast<int>(group.faces.size()), PortraitCount());
  auto found = tools::FaceFinder().Find(tools::ImageOf(group.picture));
  ASSERT_EQ(found.size(), group.faces.size());
  for (const Face& face : group.faces) {
    const PointF eye = Middle(face.landmarks.left_eye);
    double nearest = 1e9;
    for (const auto& other : found) {
      const PointF at = Middle(other.face.landmarks.left_eye);
      nearest = std::min(nearest, static_cast<double>(std::hypot(at.x - eye.x, at.y - eye.y)));
    }
    EXPECT_LT(nearest, 15);
  }
}

TEST(TitledRow, ShowsEveryPictureInItsPlace) {
  std::vector<tools::Titled> row;
  for (const int value : {40, 80, 120, 160, 200}) {
    row.push_back({"a", cv::Mat(60, 80, CV_8UC3, cv::Scalar(value, 255, 0))});
  }
  const cv::Mat sheet = tools::TitledRow(row);
  int end = 0;
  for (const tools::Titled& titled : row) {
    const cv::Vec3b colour = titled.picture.at<cv::Vec3b>(0, 0);
    cv::Mat mask;
    cv::inRange(sheet, cv::Scalar(colour), cv::Scalar(colour), mask);
    EXPECT_EQ(cv::countNonZero(mask), 60 * 80);
    EXPECT_GE(cv::boundingRect(mask).x, end);
    end = cv::boundingRect(mask).br().x;
  }
}

TEST(CompareSheet, ShowsBothPicturesWhole) {
  const cv::Mat before(90, 120, CV_8UC3, cv::Scalar(200, 10, 10));
  const cv::Mat after(90, 120, CV_8UC3, cv::Scalar(10, 10, 200));
  const cv::Mat sheet = CompareSheet(before, after);
  cv::Mat blue, red;
  cv::inRange(sheet, cv::Scalar(200, 10, 10), cv::Scalar(200, 10, 10), blue);
  cv::inRange(sheet, cv::Scalar(10, 10, 200), cv::Scalar(10, 10, 200), red);
  EXPECT_EQ(cv::countNonZero(blue), 90 * 120);
  EXPECT_EQ(cv::countNonZero(red), 90 * 120);
  EXPECT_LT(cv::boundingRect(blue).x, cv::boundingRect(red).x);
}

TEST(CompareSheet, LargePicturesAreScaledToASensibleWidth) {
  const cv::Mat large(3000, 4000, CV_8UC3, cv::Scalar(100, 100, 100));
  const cv::Mat sheet = CompareSheet(large, large);
  EXPECT_LT(sheet.cols, 2600);
  EXPECT_GT(sheet.rows, 900);
}

TEST(ExplainSheet, DrawsInsideAndKeepsTheRest) {
  const Portrait portrait = DrawPortrait(1, 1400);
  const cv::Mat sheet = tools::ExplainSheet(portrait.picture, {portrait.face}, {});
  ASSERT_EQ(sheet.size(), portrait.picture.size());
  const WarpCircle circle = SlimmingCircle(portrait.face, 1400, 1400);
  const cv::Point2d centre(static_cast<double>(circle.centre.x),
                           static_cast<double>(circle.centre.y));
  // The ellipse of the face reaches above the circle, by less than a third of its radius.
  EXPECT_EQ(LargestDifferenceOutside(sheet, portrait.picture, centre,
                                     static_cast<double>(circle.radius) * 1.33),
            0);
  // The circle is seen at its left and right ends.
  for (const double side : {-1.0, 1.0}) {
    const cv::Point at(static_cast<int>(centre.x + side * static_cast<double>(circle.radius)),
                       static_cast<int>(centre.y));
    EXPECT_NE(sheet.at<cv::Vec3b>(at), portrait.picture.at<cv::Vec3b>(at));
  }
}

TEST(ExplainSheet, ShowsTheEllipsesAndTheBlocks) {
  const Portrait portrait = DrawPortrait(1, 1400);
  const std::vector<PixelRect> blocks = {{20, 1000, 384, 384}};
  const cv::Mat sheet = tools::ExplainSheet(portrait.picture, {portrait.face}, blocks);
  const auto differs = [&](double x, double y) {
    // Whole numbers and the width of a line leave two pixels of play.
    const cv::Rect around(static_cast<int>(x) - 2, static_cast<int>(y) - 2, 5, 5);
    return cv::norm(sheet(around), portrait.picture(around), cv::NORM_INF) > 40;
  };
  for (const lumora::Ellipse& ellipse : WhiteningEllipses(portrait.face)) {
    const double turn = static_cast<double>(ellipse.angle_degrees) * CV_PI / 180;
    EXPECT_TRUE(differs(static_cast<double>(ellipse.centre.x) +
                            static_cast<double>(ellipse.half_along) * std::cos(turn),
                        static_cast<double>(ellipse.centre.y) +
                            static_cast<double>(ellipse.half_along) * std::sin(turn)));
  }
  EXPECT_TRUE(differs(20, 1200));
  EXPECT_TRUE(differs(404, 1200));
  EXPECT_TRUE(differs(200, 1000));
  EXPECT_FALSE(differs(60, 1200));
}

}  // namespace
}  // namespace lumora::test
