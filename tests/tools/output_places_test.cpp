// SPDX-License-Identifier: Apache-2.0
// Where results go: never over an input or another result, and under every name that the file
// system allows.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/tools/pictures.h"
#include "tests/tools/process.h"
#include "tools/lumora/support/failure.h"
#include "tools/lumora/support/places.h"

namespace lumora::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

using Words = std::vector<std::string>;

/// A folder with the same picture, faces and clip under names of every kind.
class Places : public testing::Test {
 protected:
  Places() {
    const cv::Mat picture = Landscape(64, 48);
    png_ = PngOf(picture);
    in_ = folder_.Put("in.png", png_);
    folder_.Put("faces.png", std::string(R"({"faces": []})"));
    folder_.Put("clip.y4m", "YUV4MPEG2 W64 H48 F25:1\nFRAME\n" + std::string(64 * 48 * 3 / 2, 'y'));
    fs::create_directory(folder_ / "sub");
    fs::create_symlink("in.png", folder_ / "link.png");
    fs::create_symlink("link.png", folder_ / "second link.png");
    fs::create_symlink("new.png", folder_ / "dangling.png");
    fs::create_directory_symlink(".", folder_ / "same folder");
    fs::create_hard_link(in_, folder_ / "hard link.png");
    before_ = folder_.Names();
  }

  /// Refused as a wrong command line, with everything as it was.
  void ExpectRefused(const Words& words, const std::string& says) {
    SCOPED_TRACE(testing::PrintToString(words));
    const Result result = RunLumora(words);
    EXPECT_EQ(result.exit_code, 2) << result.err;
    EXPECT_THAT(result.err, HasSubstr(says));
    EXPECT_EQ(Lines(result.err), 1) << result.err;
    EXPECT_EQ(folder_.Names(), before_);
    EXPECT_EQ(ReadFile(in_), png_);
  }

  std::string Path(const std::string& name) const { return folder_ / name; }

  Folder folder_;
  Bytes png_;
  std::string in_;
  std::vector<std::string> before_;
};

TEST_F(Places, TwoPathsToOneFileAreRecognised) {
  const struct {
    const char *first, *second;
  } kSame[] = {{"in.png", "in.png"},
               {"in.png", "./in.png"},
               {"in.png", "sub/../in.png"},
               {"in.png", ".//in.png"},
               {"in.png", "link.png"},
               {"in.png", "second link.png"},
               {"in.png", "hard link.png"},
               {"in.png", "same folder/in.png"},
               {"link.png", "sub/../same folder/hard link.png"},
               {"new.png", "new.png"},
               {"new.png", "./new.png"},
               {"new.png", "sub/../new.png"},
               {"new.png", "same folder/new.png"},
               {"new.png", "dangling.png"},
               {"sub/new.png", "same folder/sub/new.png"}};
  for (const auto& pair : kSame) {
    SCOPED_TRACE(std::string(pair.first) + ", " + pair.second);
    const std::string first = Path(pair.first), second = Path(pair.second);
    EXPECT_THROW(tools::CheckPlacesDiffer({first}, {second}), tools::Failure);
    EXPECT_THROW(tools::CheckPlacesDiffer({second}, {first}), tools::Failure);
    EXPECT_THROW(tools::CheckPlacesDiffer({}, {first, second}), tools::Failure);
    EXPECT_THROW(tools::CheckPlacesDiffer({}, {second, "", first}), tools::Failure);
    EXPECT_NO_THROW(tools::CheckPlacesDiffer({first, second}, {Path("other.png")}));
  }
}

TEST_F(Places, NamesThatOnlyLookAlikeAreAllowed) {
  folder_.Put("old.png", png_);
  EXPECT_NO_THROW(tools::CheckPlacesDiffer(
      {in_, "", "-"}, {Path("old.png"), Path("new.png"), "", Path("sub/new.png"),
                       Path("sub/in.png"), Path("IN.png"), Path("new.png.png")}));
  EXPECT_NO_THROW(tools::CheckPlacesDiffer({"/dev/null"}, {"/dev/null"}));
  EXPECT_THROW(tools::CheckPlacesDiffer({}, {"-", "-"}), tools::Failure);
}

TEST_F(Places, NoResultOfACommandTakesThePlaceOfAnInput) {
  constexpr char kSays[] = "cannot take the place of an input";
  const std::string out = Path("out.png"), faces = Path("faces.png"), link = Path("link.png");
  ExpectRefused({"photo", in_, "-o", in_}, kSays);
  ExpectRefused({"photo", in_, "-o", out, "--compare", Path("hard link.png")}, kSays);
  ExpectRefused({"photo", link, "-o", out, "--explain", in_}, kSays);
  ExpectRefused({"photo", in_, "-o", Path("./faces.png"), "--faces", faces}, kSays);
  ExpectRefused({"rectify", in_, "-o", link, "--degree", "5"}, kSays);
  ExpectRefused({"rectify", in_, "-o", out, "--degree", "5", "--compare", in_}, kSays);
  ExpectRefused({"convert", link, "-o", in_, "--to", "hsi"}, kSays);
  ExpectRefused({"video", link, "-o", in_}, kSays);
  ExpectRefused({"video", in_, "-o", Path("sub/../faces.png"), "--faces", faces}, kSays);
}

TEST_F(Places, NoResultOfACommandTakesThePlaceOfAnother) {
  constexpr char kSays[] = "two results cannot have the same name";
  const std::string first = Path("new.png"), second = Path("sub/../new.png");
  ExpectRefused({"photo", in_, "-o", first, "--compare", second}, kSays);
  ExpectRefused({"photo", in_, "-o", Path("out.png"), "--compare", first, "--explain", second},
                kSays);
  ExpectRefused({"rectify", in_, "-o", first, "--degree", "5", "--compare", second}, kSays);
}

TEST_F(Places, AReportInAFileIsAResultLikeAnyOther) {
  Environment environment;
  environment.out_file = Path("out.png");
  const Result result =
      RunLumora({"photo", in_, "-o", Path("./out.png"), "--json"}, {}, environment);
  EXPECT_EQ(result.exit_code, 2);
  EXPECT_THAT(result.err, HasSubstr("two results cannot have the same name"));
}

TEST_F(Places, ALinkThatLeadsToNoFileYetIsFollowed) {
  const Result result =
      RunLumora({"photo", in_, "-o", Path("dangling.png"), "--faces", Path("faces.png")});
  EXPECT_EQ(result.exit_code, 0) << result.err;
  EXPECT_TRUE(fs::is_symlink(Path("dangling.png")));
  EXPECT_EQ(ReadFile(Path("new.png")), png_);
}

TEST_F(Places, NamesMayBeAsLongAsTheFileSystemAllows) {
  constexpr size_t kMost = 255;  // bytes
  for (const size_t length : {size_t{239}, kMost}) {
    SCOPED_TRACE(length);
    const std::string name = std::string(length - 4, 'n') + ".png";
    const Result result = RunLumora({"photo", in_, "-o", Path(name), "--faces", Path("faces.png")});
    EXPECT_EQ(result.exit_code, 0) << result.err;
    EXPECT_EQ(ReadFile(Path(name)), png_);
    fs::remove(Path(name));
  }
  EXPECT_EQ(folder_.Names(), before_);
  // One byte more is refused before any input is looked at.
  const Result result =
      RunLumora({"photo", Path("missing.png"), "-o", Path(std::string(kMost - 3, 'n') + ".png")});
  EXPECT_EQ(result.exit_code, 1);
  EXPECT_THAT(result.err, HasSubstr("File name too long"));
  EXPECT_EQ(Lines(result.err), 1) << result.err;
  EXPECT_EQ(folder_.Names(), before_);
}

TEST_F(Places, ResultsAreWrittenWithoutProc) {
  if (LUMORA_TEST_SANITIZERS != 0) GTEST_SKIP() << "sanitizers find the stack by /proc";
  if (!ProcCanBeHidden()) GTEST_SKIP() << "this process may not mount anything";
  Environment environment;
  environment.no_proc = true;
  const Words words = {"photo", in_, "-o", Path("out.png"), "--faces", Path("faces.png")};
  const Result result = RunLumora(words, {}, environment);
  EXPECT_EQ(result.exit_code, 0) << result.err;
  EXPECT_EQ(ReadFile(Path("out.png")), png_);
  fs::remove(Path("out.png"));
  EXPECT_EQ(folder_.Names(), before_);
  // What cannot be finished leaves nothing behind, either.
  const Result failed =
      RunLumora({"photo", in_, "-o", Path("out.png"), "--faces", in_}, {}, environment);
  EXPECT_EQ(failed.exit_code, 3) << failed.err;
  EXPECT_EQ(folder_.Names(), before_);
}

}  // namespace
}  // namespace lumora::test
