// SPDX-License-Identifier: Apache-2.0
// lumora photo: whitening and slimming in one run, at any size, for any number of faces.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <nlohmann/json.hpp>
#include <opencv2/imgproc.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "tests/tools/pictures.h"
#include "tests/tools/process.h"
#include "tools/lumora/modules/drawing/portraits/portrait.h"

namespace lumora::test {
namespace {

using Json = nlohmann::json;
using testing::HasSubstr;

/// Four people in one picture, and the options that name their faces.
class GroupPhoto : public testing::Test {
 protected:
  void Draw(cv::Size size) {
    picture_ = tools::DrawGroup(size);
    std::ostringstream json;
    json << R"({"faces": [)";
    for (size_t i = 0; i < picture_.faces.size(); ++i) {
      const FaceLandmarks& marks = picture_.faces[i].landmarks;
      json << (i > 0 ? ", " : "") << R"({"eyes": [[)"
           << (marks.left_eye.left.x + marks.left_eye.right.x) / 2 << ", " << marks.left_eye.left.y
           << "], [" << (marks.right_eye.left.x + marks.right_eye.right.x) / 2 << ", "
           << marks.right_eye.left.y << "]]}";
    }
    json << "]}";
    folder_.Put("faces.json", json.str());
    folder_.Put("in.png", PngOf(picture_.picture));
  }

  /// Runs photo with a report.
  Json Photo(const std::vector<std::string>& more) {
    std::vector<std::string> words = {
        "photo",   folder_ / "in.png",     "-o",    folder_ / "out.png",
        "--faces", folder_ / "faces.json", "--json"};
    words.insert(words.end(), more.begin(), more.end());
    const Result result = RunLumora(words);
    EXPECT_EQ(result.exit_code, 0) << result.err;
    after_ = Decode(ReadFile(folder_ / "out.png"));
    return Json::parse(result.out);
  }

  /// How much brighter a cheek got.
  double Brightening(size_t face) const {
    const FaceLandmarks& marks = picture_.faces[face].landmarks;
    const float x = (marks.nose_tip.x + marks.right_jaw.x) / 2;
    const int side = picture_.picture.rows / 60;
    const cv::Rect cheek(static_cast<int>(x) - side / 2,
                         static_cast<int>(marks.nose_tip.y) - side / 2, side, side);
    const cv::Scalar change = cv::mean(after_(cheek)) - cv::mean(picture_.picture(cheek));
    return (change[0] + change[1] + change[2]) / 3;
  }

  /// Whether pixels changed beyond the circles and ellipses that the report names.
  double LargestStrayChange(const Json& report) const {
    cv::Mat difference;
    cv::absdiff(picture_.picture, after_, difference);
    const auto point = [](const Json& json) {
      return cv::Point(static_cast<int>(std::lround(json[0].get<double>())),
                       static_cast<int>(std::lround(json[1].get<double>())));
    };
    for (const Json& face : report.at("faces")) {
      const Json& circle = face.at("circle");
      cv::circle(difference, point(circle.at("centre")),
                 static_cast<int>(circle.at("radius").get<double>()) + 3, cv::Scalar::all(0),
                 cv::FILLED);
      const Json& ellipse = face.at("ellipses")[0];
      cv::ellipse(difference, point(ellipse.at("centre")),
                  point(ellipse.at("half_axes")) + cv::Point(3, 3),
                  ellipse.at("angle").get<double>(), 0, 360, cv::Scalar::all(0), cv::FILLED);
    }
    double largest = 0;
    cv::minMaxLoc(difference.reshape(1), nullptr, &largest);
    return largest;
  }

  const Folder folder_;
  tools::Group picture_;
  cv::Mat after_;
};

TEST_F(GroupPhoto, EveryFaceIsSlimmedAndWhitenedAndNothingElseChanges) {
  Draw({800, 600});
  for (const char* chain : {"preview", "capture"}) {
    SCOPED_TRACE(chain);
    EXPECT_EQ(LargestStrayChange(Photo({"--whiten", "80", "--chain", chain})), 0);
    for (size_t i = 0; i < picture_.faces.size(); ++i) EXPECT_GT(Brightening(i), 1.5) << i;
    const cv::Mat whitened = after_.clone();
    const Json report = Photo({"--slim", "70", "--whiten", "80", "--chain", chain});
    // Where nothing moved, both are equal to the last bit. The smallest face moves by parts of a
    // pixel, which renderers blend with 4 bits or more: that its outline moved is seen all the
    // same.
    for (const Face& face : picture_.faces) {
      const FaceLandmarks& marks = face.landmarks;
      const cv::Rect jaw(static_cast<int>(marks.right_jaw.x) - 12,
                         static_cast<int>(marks.right_jaw.y) - 12, 24, 24);
      EXPECT_GT(cv::norm(whitened(jaw), after_(jaw), cv::NORM_INF), 10);
    }
    EXPECT_EQ(report.at("chain"), chain);
    EXPECT_EQ(report.at("faces").size(), 4u);
    EXPECT_EQ(report.at("tones").size(), 4u);
    for (const Json& tone : report.at("tones")) {
      EXPECT_TRUE(tone.at("intensity_shifted").get<bool>()) << tone;
    }
    EXPECT_EQ(LargestStrayChange(report), 0);
    EXPECT_GT(report.at("peak_memory_mib").get<double>(), 1);
    EXPECT_GT(report.at("timings_ms").at("whiten").get<double>(), 0);
    EXPECT_GT(report.at("timings_ms").at("slim").get<double>(), 0);
    EXPECT_FALSE(report.at("blocks").empty());
  }
}

TEST_F(GroupPhoto, BothChainsGiveTheSameLook) {
  Draw({1200, 900});
  Photo({"--slim", "50", "--whiten", "60", "--chain", "preview"});
  const cv::Mat preview = after_.clone();
  Photo({"--slim", "50", "--whiten", "60", "--chain", "capture"});
  const double changed = cv::norm(preview, picture_.picture, cv::NORM_L1);
  const double apart = cv::norm(preview, after_, cv::NORM_L1);
  EXPECT_LT(apart, 0.25 * changed);
}

TEST_F(GroupPhoto, LargePicturesTakeTheCaptureChainAndTellTheirBlocks) {
  Draw({1600, 1200});
  const Json report =
      Photo({"--slim", "50", "--whiten", "60", "--explain", folder_ / "explain.png"});
  EXPECT_EQ(report.at("chain"), "capture");
  ASSERT_GT(report.at("blocks").size(), 1u);
  for (const Json& block : report.at("blocks")) {
    EXPECT_GE(block[0].get<int>(), 0);
    EXPECT_GE(block[1].get<int>(), 0);
    EXPECT_LE(block[0].get<int>() + block[2].get<int>(), 1600);
    EXPECT_LE(block[1].get<int>() + block[3].get<int>(), 1200);
  }
  EXPECT_EQ(LargestStrayChange(report), 0);
  EXPECT_GE(Decode(ReadFile(folder_ / "explain.png")).cols, 1000);
}

TEST_F(GroupPhoto, TheUsualLookIsThePresetNaturalAndScalesReplaceThoseOfAPreset) {
  Draw({400, 300});
  const Json usual = Photo({}).at("look");
  EXPECT_GT(usual.at("slim"), 0);
  EXPECT_GT(usual.at("whiten"), 0);
  EXPECT_EQ(Photo({"--preset", "natural"}).at("look"), usual);
  const Json mixed = Photo({"--preset", "natural", "--slim", "99"}).at("look");
  EXPECT_EQ(mixed.at("slim"), 99);
  EXPECT_EQ(mixed.at("whiten"), usual.at("whiten"));
  const Json alone = Photo({"--whiten", "10"}).at("look");
  EXPECT_EQ(alone.at("slim"), 0);
  EXPECT_EQ(alone.at("whiten"), 10);
  EXPECT_EQ(alone.at("saturate"), 0);
}

TEST_F(GroupPhoto, EffectsChooseWhatWhiteningDoes) {
  Draw({600, 450});
  const std::vector<std::string> both = {"--whiten", "80", "--saturate", "80", "--effect"};
  const auto with = [&](const char* effect) {
    std::vector<std::string> words = both;
    words.emplace_back(effect);
    EXPECT_EQ(Photo(words).at("look").at("effect"), effect);
    return after_.clone();
  };
  const auto apart = [](const cv::Mat& a, const cv::Mat& b) { return cv::norm(a, b, cv::NORM_L1); };
  const cv::Mat intensity = with("intensity"), saturation = with("saturation");
  const cv::Mat together = with("both"), automatic = with("auto"), mask = with("mask");
  Photo({"--whiten", "80"});
  EXPECT_EQ(apart(intensity, after_), 0);
  Photo({"--saturate", "80"});
  EXPECT_EQ(apart(saturation, after_), 0);
  EXPECT_GT(apart(intensity, saturation), 1000);
  EXPECT_GT(apart(together, intensity), 1000);
  EXPECT_EQ(apart(together, automatic), 0);
  // Nothing is shifted; what is left is rounding on the way through hue and saturation.
  EXPECT_LT(cv::norm(mask, picture_.picture, cv::NORM_INF), 24);
  EXPECT_LT(apart(mask, picture_.picture), 0.35 * apart(intensity, picture_.picture));
}

TEST_F(GroupPhoto, WhatIsExactlyOffLeavesTheFileAsItIs) {
  Draw({400, 300});
  EXPECT_EQ(Photo({"--slim", "0", "--whiten", "0", "--saturate", "0"}).at("chain"), "none");
  EXPECT_EQ(ReadFile(folder_ / "out.png"), ReadFile(folder_ / "in.png"));
}

TEST_F(GroupPhoto, AFaceThatIsTooDarkOrTooBrightToBeWhitenedIsTold) {
  Draw({400, 300});
  folder_.Put("in.png", PngOf(cv::Mat(picture_.picture / 6)));
  const std::string dark = Photo({"--whiten", "50"}).at("notes").dump();
  EXPECT_THAT(dark, HasSubstr("too dark to be whitened"));
  EXPECT_THAT(dark, testing::Not(HasSubstr("bright")));
  folder_.Put("in.png", PngOf(cv::Mat(picture_.picture / 8 + cv::Scalar::all(220))));
  const std::string bright = Photo({"--whiten", "50"}).at("notes").dump();
  EXPECT_THAT(bright, HasSubstr("too bright to be whitened"));
  EXPECT_THAT(bright, testing::Not(HasSubstr("dark")));
}

}  // namespace
}  // namespace lumora::test
