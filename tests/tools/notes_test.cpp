// SPDX-License-Identifier: Apache-2.0
// What a result leaves out, and what the command line asks for in vain, is told.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <png.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/tools/pictures.h"
#include "tests/tools/png_files.h"
#include "tests/tools/process.h"

namespace lumora::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using Json = nlohmann::json;

class NotesTest : public testing::Test {
 protected:
  /// The notes of a photo without faces, in a result of that name.
  std::string Notes(const std::string& in, const Bytes& content, const std::string& out) {
    folder_.Put(in, content);
    const Result result = RunLumora({"photo", folder_ / in, "-o", folder_ / out, "--faces", none_});
    EXPECT_EQ(result.exit_code, 0) << result.err;
    constexpr char kAlways[] = "no face found";
    EXPECT_THAT(result.err, HasSubstr(kAlways));
    std::string notes;
    for (size_t at = 0, end; at < result.err.size(); at = end + 1) {
      end = result.err.find('\n', at);
      const std::string line = result.err.substr(at, end - at);
      if (line.find(kAlways) == std::string::npos) notes += line + "\n";
    }
    return notes;
  }

  Folder folder_;
  const std::string none_ = folder_.Put("none.json", std::string(R"({"faces": []})"));
};

TEST_F(NotesTest, TheLossOfAnAnimationIsTold) {
  const Bytes still = PngOf(Landscape(64, 48));
  const Bytes animated = WithChunk(still, PngChunk("acTL", {0, 0, 0, 2, 0, 0, 0, 0}));
  EXPECT_THAT(Notes("a.png", animated, "out.jpg"), HasSubstr("animation is lost"));
  EXPECT_THAT(Notes("a.png", animated, "out.png"), IsEmpty());  // the same file
  EXPECT_EQ(ReadFile(folder_ / "out.png"), animated);
  EXPECT_THAT(Notes("a.png", still, "out.jpg"), IsEmpty());
}

TEST_F(NotesTest, TheLossOfTransparencyIsTold) {
  cv::Mat opaque(48, 64, CV_8UC4, cv::Scalar(10, 20, 30, 255)), glass = opaque.clone();
  glass.at<cv::Vec4b>(47, 63)[3] = 254;
  EXPECT_THAT(Notes("a.png", PngOf(glass), "out.jpg"), HasSubstr("transparency is lost"));
  EXPECT_THAT(
      Notes("a.png", PngOf({64, 48}, PngKind{PNG_COLOR_TYPE_GRAY, 8, false, true}), "out.jpg"),
      HasSubstr("transparency is lost"));
  EXPECT_THAT(Notes("a.png", PngOf(glass), "out.png"), IsEmpty());
  EXPECT_THAT(Notes("a.png", PngOf(opaque), "out.jpg"), IsEmpty());
  // convert keeps colours alone.
  folder_.Put("a.png", PngOf(glass));
  const Result result =
      RunLumora({"convert", folder_ / "a.png", "-o", folder_ / "out.nv21", "--to", "nv21"});
  EXPECT_THAT(result.err, HasSubstr("transparency is lost"));
}

TEST_F(NotesTest, TheLossOfWhatFollowsThePictureIsTold) {
  const cv::Mat picture = Landscape(64, 48);
  for (const bool progressive : {false, true}) {
    const Bytes plain = JpegOf(picture, {2, 2, 90, false, progressive});
    Bytes motion = plain, padded = plain;
    const std::string clip = std::string("\0\0\0\x18", 4) + "ftypmp42" + std::string(500, 'v');
    motion.insert(motion.end(), clip.begin(), clip.end());
    padded.insert(padded.end(), 512, 0);
    EXPECT_THAT(Notes("a.jpg", motion, "out.png"),
                HasSubstr("the 512 bytes behind the picture (a motion photo's clip"));
    EXPECT_THAT(Notes("a.jpg", plain, "out.png"), IsEmpty());
    EXPECT_THAT(Notes("a.jpg", padded, "out.png"), IsEmpty());
    EXPECT_THAT(Notes("a.jpg", motion, "out.jpg"), IsEmpty());  // the same file
    EXPECT_EQ(ReadFile(folder_ / "out.jpg"), motion);
  }
  Bytes png = PngOf(picture);
  png.insert(png.end(), 100, 'x');
  EXPECT_THAT(Notes("a.png", png, "out.jpg"), HasSubstr("the 100 bytes behind the picture"));
}

TEST_F(NotesTest, ScalesThatTheEffectLeavesOutAreTold) {
  folder_.Put("in.png", PngOf(Landscape(64, 48)));
  const auto notes = [&](const std::vector<std::string>& look) {
    std::vector<std::string> words = {
        "photo", folder_ / "in.png", "-o", folder_ / "out.png", "--faces", none_};
    words.insert(words.end(), look.begin(), look.end());
    const Result result = RunLumora(words);
    EXPECT_EQ(result.exit_code, 0) << result.err;
    return result.err;
  };
  EXPECT_THAT(notes({"--effect", "saturation", "--whiten", "50"}),
              HasSubstr("--whiten does nothing: --effect saturation leaves it out"));
  EXPECT_THAT(notes({"--effect", "intensity", "--whiten", "50", "--saturate", "1"}),
              HasSubstr("--saturate does nothing: --effect intensity leaves it out"));
  EXPECT_THAT(notes({"--effect", "saturation", "--slim", "50"}),
              HasSubstr("--effect saturation does nothing: the scale that it applies is 0"));
  for (const std::vector<std::string>& look :
       {std::vector<std::string>{"--effect", "saturation", "--saturate", "5"},
        {"--effect", "saturation", "--saturate", "5", "--whiten", "0"},
        {"--whiten", "50"}}) {
    EXPECT_THAT(notes(look), testing::Not(HasSubstr("does nothing")));
  }
}

TEST_F(NotesTest, ExchangedEyesAreTakenWithANote) {
  folder_.Put("in.png", PngOf(Landscape(200, 200)));
  const std::string faces =
      folder_.Put("f.json", std::string(R"({"faces": [{"eyes": [[120, 100], [80, 103]]}]})"));
  const Result result = RunLumora(
      {"photo", folder_ / "in.png", "-o", folder_ / "out.png", "--slim", "0", "--faces", faces});
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_THAT(result.err, HasSubstr("face 1 is turned by 176 degrees; if it is upright, left and "
                                    "right are exchanged"));
}

TEST_F(NotesTest, TheFacesOfAReportAreTakenAsFaces) {
  folder_.Put("in.png", PngOf(Landscape(400, 300)));
  std::string points;
  for (int i = 0; i < 68; ++i) {
    points += (i > 0 ? ",[" : "[") + std::to_string(100.1 + i * 0.7) + "," +
              std::to_string(90.3 + (i * 13) % 50) + "]";
  }
  const auto report = [&](const std::string& text) {
    const std::string faces = folder_.Put("f.json", text);
    const Result result = RunLumora({"photo", folder_ / "in.png", "-o", folder_ / "out.png",
                                     "--slim", "0", "--json", "--faces", faces});
    EXPECT_EQ(result.exit_code, 0) << result.err;
    return result.out;
  };
  const std::string first = report(R"({"faces": [{"eyes": [[150.3, 100.7], [210.5, 110.1]]},
      {"box": [100.3, 80, 120, 119.9], "roll": -12.7}, {"box": [200, 100, 77, 77]},
      {"landmarks68": [)" + points +
                                   "]}]}");
  const std::string again = report(first);
  EXPECT_EQ(Json::parse(first).at("faces").size(), 4u);
  EXPECT_EQ(Json::parse(first).at("faces"), Json::parse(again).at("faces"));
}

}  // namespace
}  // namespace lumora::test
