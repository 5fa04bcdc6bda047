// SPDX-License-Identifier: Apache-2.0
// Where lumora video takes faces from, and what it says where there are none.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/tools/clips.h"
#include "tests/tools/process.h"
#include "tests/tools/video_clip.h"

namespace lumora::test {
namespace {

using testing::HasSubstr;

TEST_F(VideoClip, NoFaceInTheWholeClipIsToldAtItsEnd) {
  const Clip gray = {scene_.clip.header, {6, std::string(kFrameBytes, '\x80')}};
  const std::string none = folder_.Put("none.jsonl", std::string(6, '\n'));
  for (const std::vector<std::string>& more :
       {std::vector<std::string>{"--json"}, {"--json", "--faces", none}}) {
    const Result result = Run(more, gray.Text());
    EXPECT_EQ(result.exit_code, 0);
    EXPECT_THAT(result.err, HasSubstr("in.y4m: no face found, the clip stays as it is"));
    EXPECT_EQ(Lines(result.err), 1) << result.err;
    const auto report = nlohmann::json::parse(result.out);
    EXPECT_EQ(report.at("face_found"), false);
    EXPECT_EQ(report.at("notes").size(), 1u);
    EXPECT_TRUE(TextOf(folder_ / "out.y4m") == gray.Text());
  }
}

TEST_F(VideoClip, WithoutARequiredFaceTheResultKeepsItsOldContent) {
  const Clip gray = {scene_.clip.header, {6, std::string(kFrameBytes, '\x80')}};
  const auto expect_failure = [](const Result& result) {
    EXPECT_EQ(result.exit_code, 5);
    EXPECT_THAT(result.err, HasSubstr(": no face found"));
    EXPECT_EQ(Lines(result.err), 1) << result.err;
  };
  Result result = Run({"--require-face", "--json"}, gray.Text());
  expect_failure(result);
  EXPECT_EQ(result.out, "");
  EXPECT_THAT(folder_.Names(), testing::ElementsAre("faces.jsonl", "in.y4m"));
  folder_.Put("out.y4m", std::string("old"));
  expect_failure(Run({"--require-face"}, gray.Text()));
  expect_failure(Run({"--require-face", "--slim", "0"}, gray.Text()));
  expect_failure(Run({"--require-face"}, Clip{gray.header, {}}.Text()));
  EXPECT_EQ(TextOf(folder_ / "out.y4m"), "old");
  result = RunLumora({"video", "-", "-o", "-", "--require-face"}, gray.Text());
  expect_failure(result);
  EXPECT_TRUE(result.out == gray.Text());
  result = Run({"--require-face", "--slim", "30"}, scene_.clip.Text());
  EXPECT_EQ(result.exit_code, 0) << result.err;
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(TextOf(folder_ / "out.y4m").size(), scene_.clip.Text().size());
}

TEST_F(VideoClip, FacesOutsideTheFrameAreLeftOutAndToldOnce) {
  ASSERT_EQ(Run({"--slim", "80", "--faces", faces_}, scene_.clip.Text()).exit_code, 0);
  const std::string expected = TextOf(folder_ / "out.y4m");
  std::string more;
  for (size_t start = 0, line = 1; start < scene_.faces.size(); ++line) {
    const size_t end = scene_.faces.find('\n', start);
    const std::string faces = scene_.faces.substr(start, end - start);
    const char* const others = R"({"faces": [{"eyes": [[500, 50], [540, 50]]},
        {"box": [-90, 10, 80, 80]}, )";
    // The lines from the third on; their own line breaks would be lines of the file.
    std::string joined = line < 3 ? faces : others + faces.substr(faces.find('[') + 1);
    joined.erase(std::remove(joined.begin(), joined.end(), '\n'), joined.end());
    more += joined + "\n";
    start = end + 1;
  }
  const std::string path = folder_.Put("more.jsonl", more);
  const Result result = Run({"--slim", "80", "--faces", path, "--json"}, scene_.clip.Text());
  ASSERT_EQ(result.exit_code, 0) << result.err;
  EXPECT_TRUE(TextOf(folder_ / "out.y4m") == expected);
  EXPECT_THAT(result.err, HasSubstr("more.jsonl: left out 8 faces outside the frame, "
                                    "first in line 3"));
  EXPECT_EQ(Lines(result.err), 1) << result.err;
  const auto report = nlohmann::json::parse(result.out);
  EXPECT_EQ(report.at("faces"), 6);
  EXPECT_EQ(report.at("faces_left_out"), 8);
  EXPECT_EQ(report.at("frames_with_faces"), 6);
}

TEST_F(VideoClip, EveryFaceIsEitherProcessedOrCountedAsLeftOut) {
  nlohmann::json faces = nlohmann::json::array();
  for (const double x :
       {-9e5, -200.0, -1.0, 0.0, 0.5, 40.0, 80.0, 110.0, 159.0, 160.0, 400.0, 9e5}) {
    for (const double y : {-9e5, -30.0, 0.0, 20.0, 60.0, 90.0, 119.0, 140.0, 9e5}) {
      for (const double size : {2.0, 30.0, 900.0}) {
        faces.push_back({{"eyes", {{x, y}, {x + size, y}}}});
        faces.push_back({{"box", {x, y, size, size}}, {"roll", 90}});
      }
    }
  }
  const std::string path =
      folder_.Put("many.jsonl", nlohmann::json({{"faces", faces}}).dump() + "\n");
  const Clip clip = {scene_.clip.header, {scene_.clip.frames[0]}};
  const Result result = Run({"--slim", "1", "--faces", path, "--json"}, clip.Text());
  ASSERT_EQ(result.exit_code, 0) << result.err;
  const auto report = nlohmann::json::parse(result.out);
  const int processed = report.at("faces"), left_out = report.at("faces_left_out");
  EXPECT_EQ(processed + left_out, static_cast<int>(faces.size()));
  EXPECT_GT(processed, 50);
  EXPECT_GT(left_out, 50);
}

TEST_F(VideoClip, WithEverythingOffNoFaceIsLookedFor) {
  for (const bool whitens : {false, true}) {
    const Result result =
        Run({"--slim", "0", "--whiten", whitens ? "1" : "0", "--json"}, scene_.clip.Text());
    ASSERT_EQ(result.exit_code, 0) << result.err;
    EXPECT_EQ(result.err, "");
    const auto report = nlohmann::json::parse(result.out);
    EXPECT_EQ(report.at("face_found"), whitens ? nlohmann::json(true) : nlohmann::json());
    EXPECT_EQ(report.at("frames_with_faces"), whitens ? 6 : 0);
    EXPECT_EQ(TextOf(folder_ / "out.y4m") == scene_.clip.Text(), !whitens);
  }
}

TEST_F(VideoClip, FacesThatDoNotFitTheClipAreTold) {
  const std::string first = scene_.faces.substr(0, scene_.faces.find('\n') + 1);
  const std::string few = folder_.Put("few.jsonl", first);
  Result result = Run({"--faces", few}, scene_.clip.Text());
  EXPECT_EQ(result.exit_code, 3);
  EXPECT_THAT(result.err, HasSubstr("ends after line 1, but the clip has more frames"));
  const std::string broken = folder_.Put("broken.jsonl", first + "{\"faces\": 3}\n");
  result = Run({"--faces", broken}, scene_.clip.Text());
  EXPECT_EQ(result.exit_code, 3);
  EXPECT_THAT(result.err, HasSubstr("broken.jsonl: line 2: faces: expected a list"));
  const std::string many = folder_.Put("many.jsonl", scene_.faces + first);
  result = Run({"--faces", many}, scene_.clip.Text());
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_THAT(result.err, HasSubstr("more lines than the clip has frames"));
}

}  // namespace
}  // namespace lumora::test
