// SPDX-License-Identifier: Apache-2.0
// Results beside the picture itself, and what becomes of results that cannot be written whole.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>

#include "tests/tools/pictures.h"
#include "tests/tools/process.h"
#include "tools/lumora/modules/drawing/compare.h"

namespace lumora::test {
namespace {

using testing::HasSubstr;

/// A portrait in a folder, with its faces.
class Results : public testing::Test {
 protected:
  const Sitter sitter_ = PortraitOf(240, 200);
  const Folder folder_;
  const std::string in_ = folder_.Put("in.png", PngOf(sitter_.picture));
  const std::string faces_ = folder_.Put("faces.json", sitter_.faces_json);
  const std::string none_ = folder_.Put("none.json", std::string(R"({"faces": []})"));
};

TEST_F(Results, TheComparisonShowsBeforeOnTheLeftAndAfterOnTheRight) {
  const auto sheet = [&] {
    return tools::CompareSheet(sitter_.picture, Decode(ReadFile(folder_ / "out.png")));
  };
  ASSERT_EQ(RunLumora({"photo", in_, "-o", folder_ / "out.png", "--slim", "100", "--faces", faces_,
                       "--compare", folder_ / "compare.png"})
                .exit_code,
            0);
  EXPECT_EQ(cv::norm(Decode(ReadFile(folder_ / "compare.png")), sheet(), cv::NORM_INF), 0);
  ASSERT_EQ(RunLumora({"rectify", in_, "-o", folder_ / "out.png", "--degree", "20", "--compare",
                       folder_ / "compare.png"})
                .exit_code,
            0);
  EXPECT_EQ(cv::norm(Decode(ReadFile(folder_ / "compare.png")), sheet(), cv::NORM_INF), 0);
}

TEST_F(Results, NewFilesHaveTheRightsThatTheUmaskLeaves) {
  for (const mode_t mask : {mode_t{027}, mode_t{0}}) {
    const mode_t before = umask(mask);
    const std::string out = folder_ / ("out" + std::to_string(mask) + ".png");
    const Result result = RunLumora({"photo", in_, "-o", out, "--faces", none_});
    umask(before);
    ASSERT_EQ(result.exit_code, 0) << result.err;
    struct stat status = {};
    ASSERT_EQ(stat(out.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0666 & ~mask);
  }
}

TEST_F(Results, AFullDiskIsAFailureWhateverIsWritten) {
  if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "this system has no full device";
  const auto expect_failure = [](const Result& result) {
    EXPECT_EQ(result.exit_code, 1);
    EXPECT_THAT(result.err, HasSubstr("No space left on device"));
    EXPECT_EQ(Lines(result.err), 1) << result.err;
  };
  const std::string link = folder_ / "full.png", clip = folder_ / "full.y4m";
  std::filesystem::create_symlink("/dev/full", link);
  std::filesystem::create_symlink("/dev/full", clip);
  expect_failure(RunLumora({"photo", in_, "-o", link, "--slim", "0", "--faces", faces_}));
  const std::string y4m = folder_.Put(
      "in.y4m", "YUV4MPEG2 W64 H48 F25:1 XCOLORRANGE=FULL\nFRAME\n" + std::string(4608, 'y'));
  expect_failure(
      RunLumora({"video", y4m, "-o", clip, "--faces", folder_.Put("l.jsonl", std::string("\n"))}));
  Environment full;
  full.out_file = "/dev/full";
  expect_failure(RunLumora({"photo", in_, "-o", "-", "--slim", "0", "--faces", faces_}, {}, full));
  expect_failure(
      RunLumora({"photo", in_, "-o", folder_ / "o.png", "--slim", "0", "--faces", faces_, "--json"},
                {}, full));
}

TEST_F(Results, AReportIsJsonWhateverBytesItsPathsHave) {
  const std::string in = folder_ / "odd\xff\"\\\n.png";
  std::filesystem::copy_file(in_, in);
  const Result result =
      RunLumora({"photo", in, "-o", folder_ / "out.png", "--faces", none_, "--json"});
  ASSERT_EQ(result.exit_code, 0) << result.err;
  const auto report = nlohmann::json::parse(result.out);
  EXPECT_THAT(report.at("input").get<std::string>(), HasSubstr("odd\xEF\xBF\xBD\"\\\n.png"));
}

}  // namespace
}  // namespace lumora::test
