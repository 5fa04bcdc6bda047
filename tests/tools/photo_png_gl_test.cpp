// SPDX-License-Identifier: Apache-2.0
// PNG pictures, standard streams, reports and side pictures of the command.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <opencv2/imgproc.hpp>

#include "tests/tools/pictures.h"
#include "tests/tools/process.h"

namespace lumora::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

cv::Mat WithAlpha(const cv::Mat& bgr) {
  cv::Mat alpha(bgr.size(), CV_8U), bgra;
  for (int x = 0; x < alpha.cols; ++x) alpha.col(x).setTo(cv::Scalar(x % 256));
  cv::cvtColor(bgr, bgra, cv::COLOR_BGR2BGRA);
  cv::insertChannel(alpha, bgra, 3);
  return bgra;
}

class PhotoPng : public testing::Test {
 protected:
  /// Slims the picture; returns what was written.
  cv::Mat Slimmed(const cv::Mat& picture, const std::string& amount,
                  const std::string& expected_note = {}) {
    const std::string in = folder_.Put("in.png", PngOf(picture));
    const std::string faces = folder_.Put("faces.json", sitter_.faces_json);
    const Result result =
        RunLumora({"photo", in, "-o", folder_ / "out.png", "--slim", amount, "--faces", faces});
    EXPECT_EQ(result.exit_code, 0) << result.err;
    EXPECT_THAT(result.err, HasSubstr(expected_note));
    EXPECT_EQ(Lines(result.err), expected_note.empty() ? 0 : 1) << result.err;
    return Decode(ReadFile(folder_ / "out.png"));
  }

  Folder folder_;
  Sitter sitter_ = PortraitOf(401, 333);
};

TEST_F(PhotoPng, PixelsAwayFromTheFaceKeepTheirValues) {
  cv::Mat gray;
  cv::cvtColor(sitter_.picture, gray, cv::COLOR_BGR2GRAY);
  for (const cv::Mat& picture : {sitter_.picture, gray, WithAlpha(sitter_.picture)}) {
    SCOPED_TRACE(picture.channels());
    const cv::Mat after = Slimmed(picture, "80");
    ASSERT_EQ(after.size(), picture.size());
    ASSERT_EQ(after.type(), picture.type());
    EXPECT_GT(cv::norm(picture, after, cv::NORM_INF), 60);
    EXPECT_EQ(LargestDifferenceOutside(picture, after, sitter_.centre, sitter_.reach), 0);
  }
}

TEST_F(PhotoPng, TheFaceBecomesNarrowerAtTheJaw) {
  // From the middle of the chin to both sides as long as there is skin, not the dark hair beside
  // it.
  const auto width_of_face = [](const cv::Mat& picture) {
    constexpr int kRow = 222, kMiddle = 200, kLeastRed = 160;
    const auto is_skin = [&picture](int x) {
      return picture.at<cv::Vec3b>(kRow, x)[2] >= kLeastRed;
    };
    int left = kMiddle, right = kMiddle;
    while (is_skin(left - 1)) --left;
    while (is_skin(right + 1)) ++right;
    return right - left;
  };
  const int before = width_of_face(sitter_.picture);
  const int after = width_of_face(Slimmed(sitter_.picture, "100"));
  EXPECT_GT(before, 80);
  EXPECT_LT(after, before * 0.97);
  const int less = width_of_face(Slimmed(sitter_.picture, "40"));
  EXPECT_LT(less, before);
  EXPECT_LT(after, less);
}

TEST_F(PhotoPng, TransparencyIsKept) {
  const cv::Mat picture = WithAlpha(sitter_.picture);
  const cv::Mat after = Slimmed(picture, "80");
  ASSERT_EQ(after.channels(), 4);
  cv::Mat alpha_before, alpha_after;
  cv::extractChannel(picture, alpha_before, 3);
  cv::extractChannel(after, alpha_after, 3);
  EXPECT_EQ(cv::norm(alpha_before, alpha_after, cv::NORM_INF), 0);
}

TEST_F(PhotoPng, Slim0KeepsEveryPixel) {
  EXPECT_EQ(cv::norm(sitter_.picture, Slimmed(sitter_.picture, "0"), cv::NORM_INF), 0);
}

TEST_F(PhotoPng, SixteenBitsAreReducedWithANote) {
  cv::Mat deep;
  sitter_.picture.convertTo(deep, CV_16U, 257);
  const cv::Mat after = Slimmed(deep, "80", "16 bits a channel are reduced to 8");
  ASSERT_EQ(after.type(), CV_8UC3);
  EXPECT_EQ(LargestDifferenceOutside(sitter_.picture, after, sitter_.centre, sitter_.reach), 0);
}

TEST_F(PhotoPng, TheEndingOfTheResultChoosesItsFormat) {
  const std::string faces = folder_.Put("faces.json", sitter_.faces_json);
  const std::string png = folder_.Put("in.png", PngOf(sitter_.picture));
  const std::string jpeg = folder_.Put("in.jpg", JpegOf(sitter_.picture, {1, 1, 98}));
  const std::string to_jpeg = folder_ / "out.JPEG", to_png = folder_ / "out.png";
  EXPECT_EQ(RunLumora({"photo", png, "-o", to_jpeg, "--faces", faces}).exit_code, 0);
  EXPECT_EQ(RunLumora({"photo", jpeg, "-o", to_png, "--faces", faces}).exit_code, 0);
  EXPECT_EQ(ReadFile(to_jpeg)[0], 0xff);
  EXPECT_EQ(ReadFile(to_png)[1], 'P');
  // Both were made of the same picture, by two different ways.
  const cv::Mat a = Decode(ReadFile(to_jpeg)), b = Decode(ReadFile(to_png));
  ASSERT_EQ(a.size(), b.size());
  EXPECT_LT(cv::norm(a, b, cv::NORM_L1) / static_cast<double>(a.total() * 3), 2);
}

TEST_F(PhotoPng, StandardStreamsGiveTheSameAsFiles) {
  const cv::Mat from_file = Slimmed(sitter_.picture, "70");
  const Bytes in = PngOf(sitter_.picture);
  const Result result =
      RunLumora({"photo", "-", "-o", "-", "--slim", "70", "--faces", folder_ / "faces.json"},
                std::string(in.begin(), in.end()));
  ASSERT_EQ(result.exit_code, 0) << result.err;
  const cv::Mat from_stream = Decode(Bytes(result.out.begin(), result.out.end()));
  ASSERT_EQ(from_stream.size(), from_file.size());
  EXPECT_EQ(cv::norm(from_file, from_stream, cv::NORM_INF), 0);
}

TEST_F(PhotoPng, AnOlderResultIsReplacedThroughALink) {
  const std::string in = folder_.Put("in.png", PngOf(sitter_.picture));
  const std::string file = folder_.Put("picture.png", std::string("older"));
  const std::string faces = folder_.Put("faces.json", sitter_.faces_json);
  const std::string link = folder_ / "link.png";
  std::filesystem::create_symlink("picture.png", link);
  std::filesystem::permissions(file, std::filesystem::perms(0640));
  ASSERT_EQ(RunLumora({"photo", in, "-o", link, "--slim", "90", "--faces", faces}).exit_code, 0);
  EXPECT_TRUE(std::filesystem::is_symlink(link));
  EXPECT_EQ(std::filesystem::status(file).permissions(), std::filesystem::perms(0640));
  EXPECT_GT(cv::norm(sitter_.picture, Decode(ReadFile(file)), cv::NORM_INF), 60);
  EXPECT_THAT(folder_.Names(),
              testing::ElementsAre("faces.json", "in.png", "link.png", "picture.png"));
}

TEST_F(PhotoPng, ReportAndSidePicturesTellWhatWasDone) {
  const std::string in = folder_.Put("in.png", PngOf(sitter_.picture));
  const Result result = RunLumora({"photo", in, "-o", folder_ / "out.png", "--slim", "100",
                                   "--compare", folder_ / "compare.png", "--explain",
                                   folder_ / "explain.jpg", "--json", "--require-face"});
  ASSERT_EQ(result.exit_code, 0) << result.err;
  const auto report = nlohmann::json::parse(result.out);
  EXPECT_EQ(report.at("width"), 401);
  EXPECT_EQ(report.at("height"), 333);
  EXPECT_EQ(report.at("look").at("slim"), 100);
  EXPECT_EQ(report.at("chain"), "preview");
  EXPECT_EQ(report.at("buffer").get<std::string>().empty(), TestDevice() == "cpu");
  EXPECT_GT(report.at("timings_ms").at("engine").get<double>(), 0);
  ASSERT_EQ(report.at("faces").size(), 1u);
  const auto& face = report.at("faces")[0];
  EXPECT_EQ(face.at("found_by"), "eyes");
  EXPECT_NEAR(face.at("roll").get<double>(), 0, 4);
  EXPECT_EQ(face.at("landmarks").size(), 27u);
  // Nothing changes outside of the circle that the report names.
  const cv::Mat after = Decode(ReadFile(folder_ / "out.png"));
  const auto& circle = face.at("circle");
  EXPECT_EQ(LargestDifferenceOutside(
                sitter_.picture, after,
                {circle.at("centre")[0].get<double>(), circle.at("centre")[1].get<double>()},
                circle.at("radius").get<double>() + 2),
            0);
  const cv::Mat compare = Decode(ReadFile(folder_ / "compare.png"));
  EXPECT_GT(compare.cols, 2 * 401);
  EXPECT_GT(compare.rows, 333);
  const cv::Mat explain = Decode(ReadFile(folder_ / "explain.jpg"));
  EXPECT_GE(std::max(explain.cols, explain.rows), 1000);
}

TEST(Photograph, ARealFaceIsFoundAndSlimmed) {
  if (!std::filesystem::exists(LUMORA_TEST_PHOTO)) GTEST_SKIP() << "the photograph is not here";
  const Folder folder;
  const Result result =
      RunLumora({"photo", LUMORA_TEST_PHOTO, "-o", folder / "out.png", "--slim", "80", "--json"});
  ASSERT_EQ(result.exit_code, 0) << result.err;
  const auto report = nlohmann::json::parse(result.out);
  ASSERT_EQ(report.at("faces").size(), 1u);
  EXPECT_EQ(report.at("faces")[0].at("found_by"), "eyes");
  // The face of the photograph, looked up by eye: eyes at about (202, 100) and (247, 104).
  const auto& marks = report.at("faces")[0].at("landmarks");
  EXPECT_NEAR(marks.at("left_eye.top")[0].get<double>(), 202, 8);
  EXPECT_NEAR(marks.at("right_eye.top")[0].get<double>(), 247, 8);
  const cv::Mat before = Decode(ReadFile(LUMORA_TEST_PHOTO));
  const cv::Mat after = Decode(ReadFile(folder / "out.png"));
  const auto& circle = report.at("faces")[0].at("circle");
  const cv::Point2d centre(circle.at("centre")[0].get<double>(),
                           circle.at("centre")[1].get<double>());
  const double radius = circle.at("radius").get<double>();
  EXPECT_EQ(LargestDifferenceOutside(before, after, centre, radius + 2), 0);
  EXPECT_GT(cv::norm(before, after, cv::NORM_INF), 60);
}

}  // namespace
}  // namespace lumora::test
