// SPDX-License-Identifier: Apache-2.0
// What of a clip is handed on as it is, and what --range says against its header.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/tools/clips.h"
#include "tests/tools/pictures.h"
#include "tests/tools/process.h"

namespace lumora::test {
namespace {

constexpr int kSmallWidth = 96, kSmallHeight = 72;
constexpr size_t kLuma = kSmallWidth * kSmallHeight, kSmallFrameBytes = kLuma * 3 / 2;
const char* const kSize = "YUV4MPEG2 W96 H72";

class ClipForms : public testing::Test {
 protected:
  /// What the command writes for that clip.
  std::string Made(const std::string& clip, const std::vector<std::string>& how) {
    const std::string in = folder_.Put("in.y4m", clip);
    std::vector<std::string> words = {"video", in, "-o", folder_ / "out.y4m", "--faces", faces_};
    words.insert(words.end(), how.begin(), how.end());
    const Result result = RunLumora(words);
    EXPECT_EQ(result.exit_code, 0) << result.err;
    const Bytes bytes = ReadFile(folder_ / "out.y4m");
    return {bytes.begin(), bytes.end()};
  }

  const Scene scene_ = MovingPortrait(kSmallWidth, kSmallHeight, 2);
  const Folder folder_;
  const std::string faces_ = folder_.Put("faces.jsonl", scene_.faces);
};

TEST_F(ClipForms, TheParametersOfTheHeaderAndOfEveryFrameAreHandedOn) {
  const std::vector<std::string> how = {"--slim", "80"};
  const Clip usual = PartsOf(Made(scene_.clip.Text(), how), kSmallFrameBytes);
  ASSERT_EQ(usual.frames.size(), 2u);
  EXPECT_NE(usual.frames[0], scene_.clip.frames[0]);
  const std::string header =
      kSize + std::string(" F30000:1001 It A128:117 C420mpeg2 XYSCSS=420 XCOLORRANGE=LIMITED\n");
  const std::string first = "FRAME Ip XTIME=0.5\n", second = "FRAME It\n";
  const std::string out =
      Made(header + first + scene_.clip.frames[0] + second + scene_.clip.frames[1], how);
  // Slimming moves samples, whatever their place and range are.
  EXPECT_TRUE(out == header + first + usual.frames[0] + second + usual.frames[1]);
}

TEST_F(ClipForms, TheRangeIsThatOfTheHeaderUnlessTheUserKnowsBetter) {
  Clip clip = scene_.clip;
  for (std::string& frame : clip.frames) {  // darker: skin that is nearly white is left alone
    std::transform(frame.begin(), frame.begin() + kLuma, frame.begin(),
                   [](char sample) { return static_cast<char>(static_cast<uint8_t>(sample) / 2); });
  }
  const auto frames = [&](const std::string& stated, const std::string& range) {
    clip.header = kSize + stated;
    return PartsOf(Made(clip.Text(), {"--whiten", "100", "--range", range}), kSmallFrameBytes)
        .frames;
  };
  const auto full = frames(" XCOLORRANGE=FULL", "auto");
  const auto limited = frames(" XCOLORRANGE=LIMITED", "auto");
  EXPECT_TRUE(full != limited);
  EXPECT_TRUE(full != clip.frames);
  EXPECT_TRUE(limited != clip.frames);
  EXPECT_TRUE(frames("", "auto") == limited);
  EXPECT_TRUE(frames(" XCOLORRANGE=LIMITED", "full") == full);
  EXPECT_TRUE(frames(" XCOLORRANGE=FULL", "limited") == limited);
}

}  // namespace
}  // namespace lumora::test
