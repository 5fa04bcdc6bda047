// SPDX-License-Identifier: Apache-2.0
// lumora video as users run it: from files and through pipes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/tools/clips.h"
#include "tests/tools/pictures.h"
#include "tests/tools/process.h"
#include "tests/tools/video_clip.h"

namespace lumora::test {
namespace {

using testing::HasSubstr;

TEST_F(VideoClip, FileAndPipeGiveTheSameBytes) {
  for (const bool listed : {true, false}) {
    SCOPED_TRACE(listed);
    std::vector<std::string> how = {"--slim", "80", "--whiten", "60"};
    if (listed) how.insert(how.end(), {"--faces", faces_});
    const Result from_file = Run(how, scene_.clip.Text());
    ASSERT_EQ(from_file.exit_code, 0) << from_file.err;
    std::vector<std::string> words = {"video", "-", "-o", "-"};
    words.insert(words.end(), how.begin(), how.end());
    const Result piped = RunLumora(words, scene_.clip.Text());
    ASSERT_EQ(piped.exit_code, 0) << piped.err;
    EXPECT_EQ(piped.err, "");
    const std::string file = TextOf(folder_ / "out.y4m");
    EXPECT_TRUE(piped.out == file);
    EXPECT_EQ(file.size(), scene_.clip.Text().size());
    const Clip after = PartsOf(file, kFrameBytes);
    EXPECT_EQ(after.header, scene_.clip.header);
    ASSERT_EQ(after.frames.size(), scene_.clip.frames.size());
    for (size_t i = 0; i < after.frames.size(); ++i) {
      EXPECT_GT(ChangedSamples(scene_.clip.frames[i], after.frames[i]), 500) << i;
    }
  }
}

TEST_F(VideoClip, AFrameIsProcessedAsAPictureWithTheSameFacesIs) {
  // Gray, so that the picture's colour conversion does not come in between.
  Clip gray = scene_.clip;
  for (std::string& frame : gray.frames)
    frame.replace(kWidth * kHeight, std::string::npos, kFrameBytes - kWidth * kHeight, '\x80');
  ASSERT_EQ(Run({"--slim", "80", "--faces", faces_}, gray.Text()).exit_code, 0);
  const Clip after = PartsOf(TextOf(folder_ / "out.y4m"), kFrameBytes);
  const cv::Mat picture(kHeight, kWidth, CV_8U, gray.frames[0].data());
  const std::string in = folder_.Put("in.png", PngOf(picture));
  const std::string face =
      folder_.Put("face.json", scene_.faces.substr(0, scene_.faces.find('\n')));
  ASSERT_EQ(RunLumora({"photo", in, "-o", folder_ / "out.png", "--slim", "80", "--faces", face})
                .exit_code,
            0);
  const cv::Mat expected = Decode(ReadFile(folder_ / "out.png"));
  const cv::Mat luma(kHeight, kWidth, CV_8U, const_cast<char*>(after.frames[0].data()));
  EXPECT_EQ(cv::norm(luma, expected, cv::NORM_INF), 0);
}

TEST_F(VideoClip, FramesWithoutFacesAndFramesWithEverythingOffStayAsTheyAre) {
  const std::string none = folder_.Put("none.jsonl", std::string(6, '\n'));
  ASSERT_EQ(Run({"--faces", none}, scene_.clip.Text()).exit_code, 0);
  EXPECT_TRUE(TextOf(folder_ / "out.y4m") == scene_.clip.Text());
  ASSERT_EQ(Run({"--slim", "0", "--faces", faces_}, scene_.clip.Text()).exit_code, 0);
  EXPECT_TRUE(TextOf(folder_ / "out.y4m") == scene_.clip.Text());
}

TEST_F(VideoClip, TheLineForFfmpegDoesWhatWasWanted) {
  ASSERT_EQ(Run({"--slim", "80", "--faces", faces_}, scene_.clip.Text()).exit_code, 0);
  const std::string expected = TextOf(folder_ / "out.y4m");
  // A stand-in that takes this clip out of any container, and puts any clip into one.
  const std::string stand_in =
      "#!/bin/sh\nfor last; do :; done\n"
      "if [ \"$last\" = - ]; then cat '" +
      (folder_ / "in.y4m") + "'; else cat > \"$last\"; fi\n";
  std::filesystem::permissions(folder_.Put("ffmpeg", stand_in), std::filesystem::perms::owner_all);
  const std::string mp4 = folder_.Put("my clip.mp4", std::string("\0\0\0\x20"
                                                                 "ftypisom",
                                                                 12));
  for (const char* name : {"it's out.mp4", "out again.y4m"}) {
    SCOPED_TRACE(name);
    const std::string out = folder_ / name;
    const Result refused = RunLumora({"video", mp4, "-o", out, "--slim", "80", "--faces", faces_});
    const std::string line = refused.err.substr(refused.err.find('\n') + 1);
    const std::string device = "export LUMORA_DEVICE=" + TestDevice() + "; ";
    const std::string path = "PATH='" + (folder_ / "") + "':\"$PATH\"; ";
    EXPECT_EQ(std::system((device + path + line).c_str()), 0) << line;
    EXPECT_TRUE(TextOf(out) == expected) << line;
  }
}

TEST_F(VideoClip, LimitedRangeStaysWithinItsRange) {
  Clip limited = scene_.clip;
  limited.header = "YUV4MPEG2 W160 H120 F25:1 C420mpeg2 XCOLORRANGE=LIMITED";
  for (std::string& frame : limited.frames) {
    for (size_t i = 0; i < frame.size(); ++i) {
      const double sample = static_cast<uint8_t>(frame[i]);
      const bool luma = i < kWidth * kHeight;
      frame[i] = static_cast<char>(static_cast<uint8_t>(
          std::lround(luma ? 16 + sample * 219 / 255 : 128 + (sample - 128) * 224 / 255)));
    }
  }
  const Result result = Run({"--whiten", "100", "--faces", faces_}, limited.Text());
  ASSERT_EQ(result.exit_code, 0);
  EXPECT_EQ(result.err, "");
  const Clip after = PartsOf(TextOf(folder_ / "out.y4m"), kFrameBytes);
  ASSERT_EQ(after.frames.size(), limited.frames.size());
  int brighter = 0;
  for (size_t i = 0; i < kWidth * kHeight; ++i) {
    const int before = static_cast<uint8_t>(limited.frames[0][i]);
    const int now = static_cast<uint8_t>(after.frames[0][i]);
    ASSERT_GE(now, 16);
    ASSERT_LE(now, 235);
    brighter += now > before + 3 ? 1 : 0;
  }
  EXPECT_GT(brighter, 200);
}

TEST_F(VideoClip, ARangeThatIsNotStatedIsTold) {
  Clip clip = scene_.clip;
  clip.header = "YUV4MPEG2 W160 H120 F25:1";
  const Result whitened = Run({"--whiten", "50", "--faces", faces_}, clip.Text());
  EXPECT_EQ(whitened.exit_code, 0);
  EXPECT_THAT(whitened.err, HasSubstr("taken as limited"));
  EXPECT_EQ(Run({"--whiten", "50", "--range", "full", "--faces", faces_}, clip.Text()).err, "");
  EXPECT_EQ(Run({"--slim", "50", "--faces", faces_}, clip.Text()).err, "");
}

TEST_F(VideoClip, MonoStaysMono) {
  Clip mono;
  mono.header = "YUV4MPEG2 W160 H120 F25:1 Cmono XCOLORRANGE=FULL";
  for (const std::string& frame : scene_.clip.frames) {
    mono.frames.push_back(frame.substr(0, kWidth * kHeight));
  }
  const Result result = Run({"--slim", "80", "--whiten", "50", "--faces", faces_}, mono.Text());
  ASSERT_EQ(result.exit_code, 0) << result.err;
  const Clip after = PartsOf(TextOf(folder_ / "out.y4m"), kWidth * kHeight);
  EXPECT_EQ(after.header, mono.header);
  ASSERT_EQ(after.frames.size(), mono.frames.size());
  EXPECT_GT(ChangedSamples(mono.frames.back(), after.frames.back()), 500);
}

TEST_F(VideoClip, OddSizesWork) {
  const int width = 101, height = 75;
  Clip clip;
  clip.header = "YUV4MPEG2 W101 H75 F25:1 C420jpeg XCOLORRANGE=FULL";
  const size_t bytes = 101 * 75 + 2 * 51 * 38;
  cv::Mat noise(1, static_cast<int>(bytes), CV_8U);
  cv::theRNG().state = 7;
  cv::randu(noise, 60, 200);
  clip.frames.assign(2, std::string(noise.begin<char>(), noise.end<char>()));
  const std::string line = PortraitOf(width, height).faces_json + "\n";
  const std::string faces = folder_.Put("odd.jsonl", line + line);
  const Result result = Run({"--slim", "80", "--whiten", "50", "--faces", faces}, clip.Text());
  ASSERT_EQ(result.exit_code, 0) << result.err;
  const Clip after = PartsOf(TextOf(folder_ / "out.y4m"), bytes);
  ASSERT_EQ(after.frames.size(), 2u);
  EXPECT_GT(ChangedSamples(clip.frames[0], after.frames[0]), 300);
  EXPECT_TRUE(after.frames[0] == after.frames[1]);
}

TEST_F(VideoClip, WhatIsWrongWithinAClipIsToldWithItsFrameAndLeavesNoFile) {
  const std::string whole = scene_.clip.Text();
  const Clip other = MovingPortrait(64, 48, 1).clip;
  const struct {
    const char* name;
    std::string clip;
    const char* says;
  } kClips[] = {
      {"cut", whole.substr(0, whole.size() - 10), "frame 6: cut short: 28790 of 28800 bytes"},
      {"header cut", whole + "FRA", "frame 6: the clip ends within a header"},
      {"joined", whole + other.Text(), "frame 7: a second clip begins here"},
      {"no marker", whole + std::string(100, 'x') + "\n", "frame 7: does not begin with FRAME"},
      {"shifted", whole + std::string(9000, 'x'), "does not begin with FRAME"},
  };
  const std::string faces = folder_.Put("long.jsonl", scene_.faces + scene_.faces);
  for (const auto& clip : kClips) {
    SCOPED_TRACE(clip.name);
    const Result result = Run({"--faces", faces}, clip.clip);
    EXPECT_EQ(result.exit_code, 3);
    EXPECT_THAT(result.err, HasSubstr(clip.says));
    EXPECT_EQ(Lines(result.err), 1) << result.err;
    EXPECT_THAT(folder_.Names(), testing::ElementsAre("faces.jsonl", "in.y4m", "long.jsonl"));
  }
}

TEST_F(VideoClip, AClipWithoutFramesIsFine) {
  const Clip empty = {scene_.clip.header, {}};
  const Result result = Run({}, empty.Text());
  EXPECT_EQ(result.exit_code, 0) << result.err;
  EXPECT_EQ(TextOf(folder_ / "out.y4m"), empty.Text());
}

TEST_F(VideoClip, ReportTellsWhatWasDone) {
  const Result result =
      Run({"--slim", "60", "--whiten", "30", "--faces", faces_, "--json"}, scene_.clip.Text());
  ASSERT_EQ(result.exit_code, 0) << result.err;
  const auto report = nlohmann::json::parse(result.out);
  EXPECT_EQ(report.at("frames"), 6);
  EXPECT_EQ(report.at("frames_with_faces"), 6);
  EXPECT_EQ(report.at("faces"), 6);
  EXPECT_EQ(report.at("chain"), "preview");
  EXPECT_EQ(report.at("range"), "full");
  EXPECT_GT(report.at("engine_ms_per_frame").get<double>(), 0);
  EXPECT_GT(report.at("peak_memory_mib").get<double>(), 1);
}

TEST_F(VideoClip, ProgressIsShownOnATerminalOnly) {
  EXPECT_EQ(Run({"--faces", faces_, "--slim", "50"}, scene_.clip.Text()).err, "");
  if (!TerminalsExist()) GTEST_SKIP() << "this system has no pseudo-terminals";
  Environment on_terminal;
  on_terminal.terminal = true;
  const Result result = RunLumora(
      {"video", folder_ / "in.y4m", "-o", folder_ / "out.y4m", "--slim", "50", "--faces", faces_},
      {}, on_terminal);
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_THAT(result.err, HasSubstr("frame 1 of 6"));
  EXPECT_THAT(result.err, HasSubstr("left"));
}

#ifdef __SANITIZE_ADDRESS__
constexpr bool kFreedMemoryIsHeldBack = true;
#else
constexpr bool kFreedMemoryIsHeldBack = false;
#endif

TEST(VideoMemory, DoesNotGrowWithTheClip) {
  if (kFreedMemoryIsHeldBack) GTEST_SKIP() << "the address sanitizer keeps what is freed";
  const Folder folder;
  const auto peak = [&folder](int frames) {
    const Scene scene = MovingPortrait(320, 240, 1);
    Clip clip = scene.clip;
    std::string faces;
    for (int i = 0; i < frames; ++i) faces += scene.faces;
    clip.frames.assign(static_cast<size_t>(frames), scene.clip.frames.front());
    const std::string in = folder.Put("in.y4m", clip.Text());
    const Result result = RunLumora({"video", in, "-o", folder / "out.y4m", "--slim", "50",
                                     "--faces", folder.Put("f.jsonl", faces), "--json"});
    EXPECT_EQ(result.exit_code, 0) << result.err;
    return nlohmann::json::parse(result.out).at("peak_memory_mib").get<double>();
  };
  peak(2);  // fills the program cache
  const double few = peak(10);
  EXPECT_LT(peak(400), few + 20);  // the clip itself has 46 MB
}

}  // namespace
}  // namespace lumora::test
