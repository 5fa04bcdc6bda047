// SPDX-License-Identifier: Apache-2.0
// The parts of video that need no display.
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "tests/tools/clips.h"
#include "tests/tools/pictures.h"
#include "tools/lumora/modules/opencv.h"
#include "tools/lumora/support/failure.h"
#include "tools/lumora/video/face_source.h"
#include "tools/lumora/video/progress.h"
#include "tools/lumora/video/sample_range.h"
#include "tools/lumora/video/y4m.h"

namespace lumora::test {
namespace {

using tools::ClipFrame;
using tools::ParseY4mHeader;
using tools::ProgressText;
using tools::Y4mHeader;

TEST(Y4mHeader, SaysWhatMatters) {
  const Y4mHeader header = ParseY4mHeader(
      "YUV4MPEG2 W641 H480 F30000:1001 It A0:0 C420paldv XYSCSS=420 XCOLORRANGE=FULL", "clip");
  EXPECT_EQ(header.size, (tools::Size{641, 480}));
  EXPECT_NEAR(header.frames_per_second, 29.97, 0.01);
  EXPECT_FALSE(header.mono);
  EXPECT_EQ(header.full_range, true);
  EXPECT_EQ(ParseY4mHeader("YUV4MPEG2 W64 H64 XCOLORRANGE=LIMITED", "").full_range, false);
  EXPECT_EQ(ParseY4mHeader("YUV4MPEG2 W64 H64", "").full_range, std::nullopt);
  EXPECT_TRUE(ParseY4mHeader("YUV4MPEG2 W64 H64 Cmono", "").mono);
  EXPECT_EQ(ParseY4mHeader("YUV4MPEG2 W64 H64 F0:0", "").frames_per_second, 0);
}

TEST(Y4mHeader, EveryChromaPositionOfPlain420IsTaken) {
  for (const char* sampling : {"", " C420", " C420jpeg", " C420mpeg2", " C420paldv"}) {
    const Y4mHeader header = ParseY4mHeader(std::string("YUV4MPEG2 W33 H35") + sampling, "clip");
    EXPECT_FALSE(header.mono) << sampling;
    EXPECT_EQ(ClipFrame(header).stored(), 33u * 35 + 2 * 17 * 18) << sampling;
  }
  for (const char* sampling : {"411", "422", "444", "420p10", "420jpegx", "mono16", "mono9"}) {
    EXPECT_THROW(ParseY4mHeader(std::string("YUV4MPEG2 W33 H35 C") + sampling, "clip"),
                 tools::Failure)
        << sampling;
  }
}

TEST(Y4mReader, CountsTheFramesOfAMonoFileOfOddSize) {
  const Folder folder;
  std::string text = "YUV4MPEG2 W33 H35 Cmono\n";
  for (int i = 0; i < 3; ++i) text += "FRAME\n" + std::string(33 * 35, 'y');
  tools::Y4mReader reader(folder.Put("in.y4m", text));
  EXPECT_EQ(reader.FrameCount(), 3);
  ClipFrame frame(reader.header());
  for (int i = 0; i < 3; ++i) ASSERT_TRUE(reader.Read(frame));
  EXPECT_FALSE(reader.Read(frame));
}

TEST(Y4mReader, CountsTheFramesOfAFile) {
  const Folder folder;
  const Scene scene = MovingPortrait(64, 48, 3);
  tools::Y4mReader reader(folder.Put("in.y4m", scene.clip.Text()));
  EXPECT_EQ(reader.FrameCount(), 3);
  ClipFrame frame(reader.header());
  for (const std::string& expected : scene.clip.frames) {
    ASSERT_TRUE(reader.Read(frame));
    EXPECT_EQ(std::string(frame.bytes().begin(), frame.bytes().end()), expected);
  }
  EXPECT_FALSE(reader.Read(frame));
}

TEST(Y4mReader, KeepsTheParametersOfAFrame) {
  const Folder folder;
  const Clip clip = MovingPortrait(64, 48, 1).clip;
  tools::Y4mReader reader(
      folder.Put("in.y4m", clip.header + "\nFRAME Ixyz\n" + clip.frames.front()));
  ClipFrame frame(reader.header());
  ASSERT_TRUE(reader.Read(frame));
  EXPECT_EQ(reader.frame_line(), "FRAME Ixyz");
}

TEST(SampleRange, WhatDidNotChangeStaysAsItIs) {
  const Y4mHeader header = ParseY4mHeader("YUV4MPEG2 W32 H32", "");
  ClipFrame limited(header), full(header);
  for (size_t i = 0; i < limited.bytes().size(); ++i) {
    limited.bytes()[i] = static_cast<uint8_t>(i % 256);
  }
  const tools::Bytes original = limited.bytes();
  StretchToFull(limited, full);
  MergeFromFull(full, full, limited);
  EXPECT_EQ(limited.bytes(), original);
}

TEST(SampleRange, WhatChangedIsWithinTheLimitedRange) {
  const Y4mHeader header = ParseY4mHeader("YUV4MPEG2 W32 H32", "");
  ClipFrame limited(header), full(header);
  for (size_t i = 0; i < limited.bytes().size(); ++i) {
    limited.bytes()[i] = static_cast<uint8_t>(16 + i % 220);  // 16..235
  }
  const tools::Bytes original = limited.bytes();
  StretchToFull(limited, full);
  EXPECT_EQ(full.bytes()[0], 0);
  EXPECT_EQ(full.bytes()[219], 255);
  EXPECT_EQ(full.bytes()[100], std::lround(100 * 255 / 219.0));
  // Chroma is centred on 128, and 224 steps wide.
  EXPECT_EQ(full.bytes()[1024], std::lround(128 + (original[1024] - 128) * 255 / 224.0));
  ClipFrame brighter = full;
  for (uint8_t& sample : brighter.bytes()) sample = static_cast<uint8_t>(sample < 255 ? 255 : 254);
  MergeFromFull(full, brighter, limited);
  for (size_t i = 0; i < 1024; ++i) EXPECT_GE(limited.bytes()[i], 234) << i;
  for (size_t i = 0; i < 1024; ++i) EXPECT_LE(limited.bytes()[i], 235) << i;
  for (size_t i = 1024; i < original.size(); ++i) EXPECT_NEAR(limited.bytes()[i], 240, 1) << i;
}

TEST(SampleRange, ASingleChangedSampleIsFoundWhereverItIs) {
  const Y4mHeader header = ParseY4mHeader("YUV4MPEG2 W37 H35", "");
  ClipFrame before(header), limited(header);
  const size_t luma = 37 * 35;
  for (size_t i = 0; i < before.bytes().size(); ++i) {
    ClipFrame after = before;
    after.bytes()[i] = 200;
    ClipFrame merged = limited;
    MergeFromFull(before, after, merged);
    for (size_t j = 0; j < merged.bytes().size(); ++j) {
      const long expected = j != i     ? limited.bytes()[j]
                            : i < luma ? std::lround(16 + 200 * 219 / 255.0)
                                       : std::lround(128 + 72 * 224 / 255.0);
      ASSERT_EQ(merged.bytes()[j], expected) << i << " " << j;
    }
  }
}

TEST(SampleRange, MonoStaysWithoutColour) {
  const Y4mHeader header = ParseY4mHeader("YUV4MPEG2 W32 H32 Cmono", "");
  ClipFrame limited(header), full(header);
  StretchToFull(limited, full);
  ClipFrame coloured = full;
  for (uint8_t& sample : coloured.bytes()) sample = 200;
  MergeFromFull(full, coloured, limited);
  for (size_t i = 1024; i < limited.bytes().size(); ++i) ASSERT_EQ(limited.bytes()[i], 128);
}

TEST(ListedFaces, OneLineIsOneFrame) {
  const Folder folder;
  const std::string path = folder.Put(
      "faces.jsonl",
      std::string("{\"faces\": [{\"eyes\": [[20, 20], [40, 20]]}]}\n\n{\"faces\": []}\n"));
  const tools::Image luma({64, 64});
  const auto faces = tools::ListedFaces(path);
  EXPECT_EQ(faces->Next(luma).size(), 1u);
  EXPECT_EQ(faces->Next(luma).size(), 0u);
  EXPECT_EQ(faces->Next(luma).size(), 0u);
  EXPECT_TRUE(faces->Remarks().empty());
  EXPECT_THROW(faces->Next(luma), tools::Failure);
}

TEST(ListedFaces, MoreLinesThanFramesAreRemarkedOn) {
  const Folder folder;
  const auto faces = tools::ListedFaces(folder.Put("faces.jsonl", std::string("\n\n")));
  faces->Next(tools::Image({64, 64}));
  const std::vector<std::string> remarks = faces->Remarks();
  ASSERT_EQ(remarks.size(), 1u);
  EXPECT_NE(remarks[0].find("more lines"), std::string::npos);
}

TEST(DetectedFaces, AFaceIsThereInEveryFrameAndMovesSmoothly) {
  const Sitter sitter = PortraitOf(320, 240);
  cv::Mat luma;
  cv::extractChannel(sitter.picture, luma, 1);
  cv::Mat moved = luma.clone();
  luma.colRange(0, 310).copyTo(moved.colRange(10, 320));
  const auto faces = tools::DetectedFaces(3);
  std::vector<double> places;
  for (int i = 0; i < 9; ++i) {
    const std::vector<Face> found = faces->Next(tools::ImageOf(i < 3 ? luma : moved));
    ASSERT_EQ(found.size(), 1u) << i;
    places.push_back(static_cast<double>(found.front().landmarks.nose_tip.x));
  }
  EXPECT_EQ(places[2], places[0]);
  for (size_t i = 3; i < places.size(); ++i) {
    EXPECT_GT(places[i], places[i - 1]) << i;
    EXPECT_LT(places[i] - places[i - 1], 9) << i;
  }
  EXPECT_NEAR(places.back() - places.front(), 10, 2.5);
}

TEST(DetectedFaces, WhoAsksForTheFirstGetsNoMore) {
  cv::Mat luma;
  cv::extractChannel(PortraitOf(320, 240).picture, luma, 1);
  const auto faces = tools::FirstDetectedFaces(2);
  const tools::Image empty({320, 240});
  for (int i = 0; i < 3; ++i) EXPECT_TRUE(faces->Next(empty).empty()) << i;
  EXPECT_TRUE(faces->Next(tools::ImageOf(luma)).empty());  // not searched
  EXPECT_EQ(faces->Next(tools::ImageOf(luma)).size(), 1u);
  for (int i = 0; i < 3; ++i) EXPECT_TRUE(faces->Next(tools::ImageOf(luma)).empty()) << i;
}

TEST(ProgressText, TellsFrameRateAndTheTimeThatIsLeft) {
  EXPECT_EQ(ProgressText(50, 300, 2.0), "frame 50 of 300, 25.0 frames a second, 0:10 left");
  EXPECT_EQ(ProgressText(100, 100000, 10.0),
            "frame 100 of 100000, 10.0 frames a second, 166:30 left");
  EXPECT_EQ(ProgressText(50, std::nullopt, 2.0), "frame 50, 25.0 frames a second");
}

}  // namespace
}  // namespace lumora::test
