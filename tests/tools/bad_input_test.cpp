// Whatever is wrong with the input or the command line is said in one line, by an exit code of its
// kind, and leaves no file behind.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/tools/pictures.h"
#include "tests/tools/process.h"

namespace lumora::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

void ExpectOneLineOfError(const Result& result, int exit_code, const std::string& part) {
  EXPECT_EQ(result.exit_code, exit_code) << result.err;
  EXPECT_THAT(result.err, StartsWith("lumora: "));
  EXPECT_THAT(result.err, HasSubstr(part));
  EXPECT_EQ(Lines(result.err), 1) << result.err;
  EXPECT_THAT(result.out, IsEmpty());
}

Bytes FirstPart(const Bytes& file, double share) {
  return Bytes(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(
                                                static_cast<double>(file.size()) * share));
}

/// A PNG whose header claims an enormous size.
Bytes Bomb() {
  Bytes file = PngOf(Landscape(40, 40));
  const Bytes side = {0x00, 0x01, 0x86, 0xa0};  // 100000
  std::copy(side.begin(), side.end(), file.begin() + 16);
  std::copy(side.begin(), side.end(), file.begin() + 20);
  return file;
}

TEST(BadInput, FilesThatAreNoUsablePictureEndWithCode3) {
  const Bytes jpeg = JpegOf(Landscape(200, 160), {});
  const Bytes progressive = JpegOf(Landscape(200, 160), {2, 2, 90, false, true});
  const Bytes png = PngOf(Landscape(200, 160));
  Bytes flipped = png;
  flipped[flipped.size() / 2] ^= 0x10;
  const struct {
    const char* name;
    Bytes content;
    const char* says;
  } kFiles[] = {
      {"text.jpg", Bytes{'h', 'e', 'l', 'l', 'o'}, "neither a JPEG nor a PNG"},
      {"empty.jpg", {}, "empty"},
      {"half.jpg", FirstPart(jpeg, 0.5), "cannot read"},
      {"end-missing.jpg", FirstPart(jpeg, 0.97), "cannot read"},
      {"header-only.jpg", FirstPart(jpeg, 0.05), "cannot read"},
      {"half-progressive.jpg", FirstPart(progressive, 0.5), "cannot read"},
      {"half.png", FirstPart(png, 0.5), "cut short or damaged"},
      {"flipped.png", flipped, "cut short or damaged"},
      {"signature.png", FirstPart(png, 9.0 / static_cast<double>(png.size())), "cannot read"},
      {"dot.png", PngOf(Landscape(1, 1)), "1 x 1 pixels, at least 32 x 32"},
      {"dot.jpg", JpegOf(Landscape(1, 1), {}), "1 x 1 pixels, at least 32 x 32"},
      {"narrow.png", PngOf(Landscape(31, 400)), "31 x 400 pixels, at least 32 x 32"},
      {"bomb.png", Bomb(), "more than 200 million"},
  };
  for (const auto& file : kFiles) {
    SCOPED_TRACE(file.name);
    const Folder folder;
    const std::string in = folder.Put(file.name, file.content);
    ExpectOneLineOfError(RunLumora({"photo", in, "-o", folder / "out.png"}), 3, file.says);
    EXPECT_THAT(folder.Names(), testing::ElementsAre(file.name));
  }
}

TEST(BadInput, AMissingFileOrAFolderEndsWithCode3) {
  const Folder folder;
  const std::string out = folder / "out.png";
  ExpectOneLineOfError(RunLumora({"photo", folder / "no.jpg", "-o", out}), 3,
                       "no.jpg: No such file");
  ExpectOneLineOfError(RunLumora({"photo", folder / ".", "-o", out}), 3, "Is a directory");
  ExpectOneLineOfError(RunLumora({"photo", "-", "-o", out}), 3, "standard input: it is empty");
  EXPECT_THAT(folder.Names(), IsEmpty());
}

TEST(BadInput, CommandLinesWithoutSenseEndWithCode2) {
  const Folder folder;
  const std::string in = folder.Put("in.png", PngOf(Landscape(64, 64)));
  const std::string out = folder / "out.png";
  const struct {
    std::vector<std::string> arguments;
    const char* says;
  } kLines[] = {
      {{}, "--help"},
      {{"polish"}, "--help"},
      {{"photo", in}, "--output"},
      {{"photo", "-o", out}, "IN"},
      {{"photo", in, "-o", out, "--slim", "101"}, "slim"},
      {{"photo", in, "-o", out, "--slim", "-1"}, "slim"},
      {{"photo", in, "-o", out, "--slim", "much"}, "slim"},
      {{"photo", in, "-o", out, "--sharpen"}, "--sharpen"},
      {{"photo", in, "-o", folder / "out.gif"}, ".jpg, .jpeg or .png"},
      {{"photo", in, "-o", out, "--compare", folder / "compare"}, ".jpg, .jpeg or .png"},
      {{"photo", in, "-o", out, "--compare", out}, "same name"},
      {{"photo", in, "-o", "-", "--json"}, "standard output"},
      {{"photo", "-", "-o", out, "--faces", "-"}, "standard input"},
      {{"demo"}, "DIR"},
      {{"demo", folder / "demo", "--size", "10"}, "size"},
  };
  for (const auto& line : kLines) {
    SCOPED_TRACE(testing::PrintToString(line.arguments));
    ExpectOneLineOfError(RunLumora(line.arguments), 2, line.says);
  }
  EXPECT_THAT(folder.Names(), testing::ElementsAre("in.png"));
}

TEST(BadInput, AnUnwritableResultIsReportedBeforeTheInputIsRead) {
  const Folder folder;
  const std::string in = folder / "does-not-exist.png";
  std::filesystem::create_directory(folder / "folder.png");
  ExpectOneLineOfError(RunLumora({"photo", in, "-o", folder / "no/out.png"}), 1,
                       "no/out.png: No such file");
  ExpectOneLineOfError(RunLumora({"photo", in, "-o", folder / "folder.png"}), 1, "it is a folder");
  ExpectOneLineOfError(
      RunLumora({"photo", in, "-o", folder / "out.png", "--compare", "/proc/compare.png"}), 1,
      "/proc/compare.png");
  EXPECT_THAT(folder.Names(), testing::ElementsAre("folder.png"));
  ExpectOneLineOfError(RunLumora({"demo", "/proc/demo"}), 1, "/proc/demo");
}

TEST(BadInput, AFacesFileThatIsWrongIsQuotedByPlace) {
  const Folder folder;
  const std::string in = folder.Put("in.png", PngOf(Landscape(64, 64)));
  const std::string faces = folder.Put("f.json", R"({"faces": [{"eyes": [[1, 2], [3]]}]})");
  ExpectOneLineOfError(RunLumora({"photo", in, "-o", folder / "out.png", "--faces", faces}), 3,
                       "f.json: faces[0].eyes[1]: expected [x, y]");
  ExpectOneLineOfError(
      RunLumora({"photo", in, "-o", folder / "out.png", "--faces", folder / "no.json"}), 3,
      "no.json: No such file");
  EXPECT_THAT(folder.Names(), testing::ElementsAre("f.json", "in.png"));
}

TEST(NoFace, ThePictureStaysAsItIsWithANote) {
  const Folder folder;
  for (const char* name : {"in.png", "in.jpg"}) {
    SCOPED_TRACE(name);
    const cv::Mat picture = Landscape(320, 240);
    const Bytes file = name[3] == 'p' ? PngOf(picture) : JpegOf(picture, {});
    const std::string in = folder.Put(name, file);
    const std::string out = folder / (std::string("out-") + name);
    const Result result = RunLumora({"photo", in, "-o", out});
    EXPECT_EQ(result.exit_code, 0);
    EXPECT_THAT(result.err, HasSubstr("no face found"));
    EXPECT_EQ(Lines(result.err), 1) << result.err;
    EXPECT_EQ(ReadFile(out), file);
  }
}

TEST(NoFace, EndsWithCode5WhereOneIsRequired) {
  const Folder folder;
  const std::string in = folder.Put("in.png", PngOf(Landscape(320, 240)));
  const std::string none = folder.Put("none.json", R"({"faces": []})");
  const std::string out = folder / "out.png";
  ExpectOneLineOfError(RunLumora({"photo", in, "-o", out, "--require-face"}), 5, "no face found");
  ExpectOneLineOfError(RunLumora({"photo", in, "-o", out, "--require-face", "--faces", none}), 5,
                       "no face found");
  EXPECT_THAT(folder.Names(), testing::ElementsAre("in.png", "none.json"));
}

TEST(Help, IsPrintedOnStandardOutput) {
  const Result general = RunLumora({"--help"});
  EXPECT_EQ(general.exit_code, 0);
  for (const char* word : {"photo", "demo", "doctor", "Exit codes"}) {
    EXPECT_THAT(general.out, HasSubstr(word));
  }
  const Result photo = RunLumora({"photo", "--help"});
  EXPECT_EQ(photo.exit_code, 0);
  for (const char* word : {"--output", "--slim", "--faces", "--compare", "--explain", "--json",
                           "--require-face", "landmarks68", "5 no face found"}) {
    EXPECT_THAT(photo.out, HasSubstr(word));
  }
  EXPECT_THAT(photo.err, IsEmpty());
  EXPECT_THAT(RunLumora({"--version"}).out, HasSubstr("lumora "));
}

}  // namespace
}  // namespace lumora::test
