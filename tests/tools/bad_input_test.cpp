// SPDX-License-Identifier: Apache-2.0
// Whatever is wrong with the input or the command line is said in one line, by an exit code of its
// kind, and leaves no file behind.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/tools/pictures.h"
#include "tests/tools/png_files.h"
#include "tests/tools/process.h"

namespace lumora::test {
namespace {

using testing::EndsWith;
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

JpegKind Rgb() {
  JpegKind kind;
  kind.rgb = true;
  return kind;
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
      {"samples.png", WithChangedByte(png, "IDAT", 0, 0xff), "data is damaged"},
      {"filter.png", WithChangedByte(png, "IDAT", 100, 0x5a), "data is damaged"},
      {"depth.png", WithChangedByte(png, "IHDR", 8, 7), "data is damaged"},
      {"kind.png", WithChangedByte(png, "IHDR", 9, 3), "data is damaged"},
      {"half-rgb.jpg", FirstPart(JpegOf(Landscape(200, 160), Rgb()), 0.5), "cannot read"},
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
      {{"photo", in, "-o", out, "--whiten", "101"}, "whiten"},
      {{"photo", in, "-o", out, "--effect", "glow"}, "effect"},
      {{"photo", in, "-o", out, "--preset", "clown"}, "preset"},
      {{"photo", in, "-o", out, "--chain", "food"}, "chain"},
      {{"rectify", in, "-o", out}, "--degree"},
      {{"rectify", in, "-o", out, "--degree", "1", "--camera", "0"}, "--degree"},
      {{"rectify", in, "-o", out, "--degree", "101"}, "degree"},
      {{"rectify", in, "-o", out, "--radial", "1,2"}, "radial"},
      {{"rectify", in, "-o", out, "--radial", "1e38,0,0,0"}, "4 numbers from -1000 to 1000"},
      {{"rectify", in, "-o", out, "--camera", "2"}, "camera"},
      {{"convert", in, "-o", out}, "--to"},
      {{"convert", in, "-o", out, "--to", "cmyk"}, "to"},
      {{"convert", in, "-o", out, "--to", "nv21"}, "a PNG holds rgb or hsi"},
      {{"convert", in, "-o", folder / "out.jpg", "--to", "rgb"}, "JPEG"},
      {{"convert", in, "-o", out, "--to", "rgb", "--size", "64x64"}, "raw frames"},
      {{"convert", folder / "f.nv21", "-o", out, "--to", "rgb"}, "give --size"},
      {{"convert", folder / "f.nv21", "-o", out, "--to", "rgb", "--size", "64"}, "640x480"},
      {{"convert", folder / "f.nv21", "-o", out, "--to", "rgb", "--size", "64x64x"}, "640x480"},
      {{"convert", folder / "f.nv21", "-o", out, "--to", "rgb", "--size", "1x1"}, "at least 32"},
      {{"convert", folder / "f.nv21", "-o", out, "--to", "rgb", "--size", "99999x99999"},
       "200 million"},
      {{"video", "-", "-o", out, "--faces", "-"}, "standard input"},
      {{"video", in, "-o", "-", "--json"}, "standard output"},
      {{"video", in, "-o", out, "--detect-every", "0"}, "detect-every"},
      {{"demo"}, "DIR"},
      {{"demo", folder / "demo", "--size", "10"}, "size"},
  };
  for (const auto& line : kLines) {
    SCOPED_TRACE(testing::PrintToString(line.arguments));
    ExpectOneLineOfError(RunLumora(line.arguments), 2, line.says);
  }
  EXPECT_THAT(folder.Names(), testing::ElementsAre("in.png"));
}

TEST(BadInput, AWordThatIsNoCommandIsQuotedWithThoseThereAre) {
  const char* const kCommands =
      "the commands are photo, video, rectify, convert, demo, doctor, bench";
  for (const char* word : {"Photo", ""}) {
    SCOPED_TRACE(word);
    const Result result = RunLumora({word, "-o", "out.png"});
    ExpectOneLineOfError(result, 2, "there is no command \"" + std::string(word) + "\"");
    EXPECT_THAT(result.err, HasSubstr(kCommands));
    EXPECT_EQ(RunLumora({"help", word}).err, result.err);
  }
  ExpectOneLineOfError(RunLumora({}), 2, std::string("a command is missing; ") + kCommands);
  ExpectOneLineOfError(RunLumora({"--polish"}), 2, "--polish: there is no such option");
}

TEST(BadInput, ANumberThatIsNoneIsQuoted) {
  const Folder folder;
  const std::string in = folder.Put("in.png", PngOf(Landscape(64, 64)));
  const std::string out = folder / "out.png";
  const struct {
    std::vector<std::string> command;
    std::vector<const char*> options;
  } kCommands[] = {
      {{"photo", in, "-o", out}, {"--slim", "--whiten", "--saturate"}},
      {{"video", in, "-o", out}, {"--slim", "--detect-every"}},
      {{"rectify", in, "-o", out}, {"--degree", "--camera", "--radial"}},
      {{"demo", folder / "demo"}, {"--slim", "--whiten", "--saturate", "--size", "--capture"}},
      {{"bench"}, {"--seconds", "--largest"}},
  };
  for (const auto& [command, options] : kCommands) {
    for (const char* option : options) {
      std::vector<std::string> words = command;
      words.insert(words.end(), {option, "nan"});
      ExpectOneLineOfError(RunLumora(words), 2, std::string(option) + ": \"nan\" is not ");
    }
  }
  for (const char* value : {"0x40x64", "64x", "nanxnan", "9999999999x64"}) {
    ExpectOneLineOfError(
        RunLumora({"convert", folder / "f.nv21", "-o", out, "--to", "rgb", "--size", value}), 2,
        "--size: expected WIDTHxHEIGHT");
  }
  EXPECT_THAT(folder.Names(), testing::ElementsAre("in.png"));
}

TEST(BadInput, AnEmptyValueIsNotTakenForNone) {
  const Folder folder;
  const std::string in = folder.Put("in.png", PngOf(Landscape(64, 64)));
  const std::string out = folder / "out.png";
  ExpectOneLineOfError(RunLumora({"photo", "", "-o", out}), 2, "IN: the value is empty");
  ExpectOneLineOfError(RunLumora({"photo", in, "-o", ""}), 2, "--output: the value is empty");
  for (const char* option : {"--faces", "--compare", "--explain"}) {
    ExpectOneLineOfError(RunLumora({"photo", in, "-o", out, option, ""}), 2,
                         std::string(option) + ": the value is empty");
  }
  ExpectOneLineOfError(RunLumora({"video", in, "-o", out, "--faces", ""}), 2, "--faces");
  ExpectOneLineOfError(RunLumora({"demo", ""}), 2, "DIR: the value is empty");
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

TEST(BadInput, ARawFrameOfAnotherSizeIsReportedInBytes) {
  const Folder folder;
  const std::string frame(64 * 48 * 3 / 2, 'y');
  for (const auto& [name, content] : {std::pair<std::string, std::string>{"more", frame + "y"},
                                      {"less", frame.substr(1)},
                                      {"swapped", std::string(50 * 64 * 3 / 2, 'y')}}) {
    SCOPED_TRACE(name);
    const std::string in = folder.Put(name + ".nv21", content);
    ExpectOneLineOfError(
        RunLumora({"convert", in, "-o", folder / "out.png", "--to", "rgb", "--size", "64x48"}), 3,
        "holds " + std::to_string(content.size()) + " bytes, but a frame of 64x48 has 4608");
  }
  EXPECT_THAT(folder.Names(), testing::ElementsAre("less.nv21", "more.nv21", "swapped.nv21"));
}

TEST(BadInput, ClipsThatCannotBeReadEndWithCode3) {
  const std::string size = "YUV4MPEG2 W64 H48 F25:1 ";
  const struct {
    const char* name;
    std::string content;
    const char* says;
  } kClips[] = {
      {"empty", "", "it is empty"},
      {"text", "hello, world\n", "not a Y4M clip"},
      {"no line end", "YUV4MPEG2 W64 H48", "not a Y4M clip"},
      {"noise", std::string(100000, '\x7f'), "not a Y4M clip"},
      {"no width", "YUV4MPEG2 H48 F25:1\n", "width or height"},
      {"negative", "YUV4MPEG2 W-64 H48\n", "width or height"},
      {"words", "YUV4MPEG2 Wide H48\n", "width or height"},
      {"one pixel", "YUV4MPEG2 W1 H1\n", "1 x 1 pixels, at least 32 x 32"},
      {"enormous", "YUV4MPEG2 W99999 H99999\n", "more than 200 million"},
      {"4:2:2", size + "C422\n", "8-bit 4:2:0 or mono is needed"},
      {"4:4:4", size + "C444\n", "8-bit 4:2:0 or mono is needed"},
      {"10 bits", size + "C420p10\n", "8-bit 4:2:0 or mono is needed"},
  };
  for (const auto& clip : kClips) {
    SCOPED_TRACE(clip.name);
    const Folder folder;
    const std::string in = folder.Put("in.y4m", clip.content);
    ExpectOneLineOfError(RunLumora({"video", in, "-o", folder / "out.y4m"}), 3, clip.says);
    ExpectOneLineOfError(RunLumora({"video", "-", "-o", "-"}, clip.content), 3, clip.says);
    EXPECT_THAT(folder.Names(), testing::ElementsAre("in.y4m"));
  }
}

/// A sentence, and below it a line for a shell.
void ExpectARemedy(const Result& result, int exit_code, const std::string& part,
                   const std::string& remedy) {
  EXPECT_EQ(result.exit_code, exit_code) << result.err;
  EXPECT_THAT(result.err, StartsWith("lumora: "));
  EXPECT_THAT(result.err, HasSubstr(part));
  EXPECT_THAT(result.err, EndsWith("\n  " + remedy + "\n"));
  EXPECT_EQ(Lines(result.err), 2) << result.err;
  EXPECT_THAT(result.out, IsEmpty());
}

TEST(Containers, AreRefusedWithTheLineThatUsesThem) {
  const Folder folder;
  const std::string mp4 = folder.Put("it's me.mp4", std::string("\0\0\0\x0a"
                                                                "ftypisom\n",
                                                                13));
  const std::string quoted = "'" + (folder / "it'\\''s me.mp4") + "'";
  const std::string reads = "ffmpeg -i " + quoted +
                            " -vf scale=out_range=limited -pix_fmt yuv420p -f yuv4mpegpipe - | " +
                            LUMORA_COMMAND + " video - -o ";
  const std::string out = folder / "out.mp4", y4m = folder / "out.y4m";
  ExpectARemedy(RunLumora({"video", mp4, "-o", out, "--slim", "30", "--require-face", "--json"}), 2,
                "out.mp4: lumora writes Y4M clips",
                reads + "- --slim 30 --require-face | ffmpeg -i - -i " + quoted +
                    " -map 0:v -map '1:a?' -c:a copy " + out);
  ExpectARemedy(RunLumora({"video", mp4, "-o", y4m, "--whiten=30", "--json"}), 3,
                "it's me.mp4: not a Y4M clip but an MP4", reads + y4m + " --whiten 30 --json");
  // Named like a clip, with another content; nothing but the content counts.
  const std::string named = folder.Put("named.y4m", std::string("\x1a\x45\xdf\xa3 and so on"));
  ExpectARemedy(RunLumora({"video", named, "-o", y4m}), 3, "not a Y4M clip but a Matroska",
                "ffmpeg -i " + named +
                    " -vf scale=out_range=limited -pix_fmt yuv420p -f yuv4mpegpipe - | " +
                    LUMORA_COMMAND + " video - -o " + y4m);
  ExpectARemedy(RunLumora({"video", "-", "-o", "-"}, "RIFF....AVI "), 3,
                "standard input: not a Y4M clip but an AVI",
                std::string("ffmpeg -i - -vf scale=out_range=limited -pix_fmt yuv420p "
                            "-f yuv4mpegpipe - | ") +
                    LUMORA_COMMAND + " video - -o -");
  ExpectARemedy(RunLumora({"video", "-", "-o", out}, "YUV4MPEG2 W64 H48\n"), 2, "for the sound",
                std::string(LUMORA_COMMAND) + " video - -o - | ffmpeg -i - " + out);
  EXPECT_THAT(folder.Names(), testing::ElementsAre("it's me.mp4", "named.y4m"));
  // Without a result in a container, nor an input, there is nothing to advise.
  ExpectOneLineOfError(RunLumora({"video", folder / "no.mp4", "-o", y4m}), 3, "No such file");
  ExpectOneLineOfError(RunLumora({"video", mp4, "-o", mp4}), 2, "cannot take the place");
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

TEST(NoFace, NoneIsLookedForWhereNothingDependsOnIt) {
  const Folder folder;
  const std::string in = folder.Put("in.png", PngOf(Landscape(320, 240)));
  const std::string out = folder / "out.png";
  const Result off = RunLumora({"photo", in, "-o", out, "--slim", "0", "--whiten", "0"});
  EXPECT_EQ(off.exit_code, 0);
  EXPECT_EQ(off.err, "");
  EXPECT_EQ(ReadFile(out), ReadFile(in));
  for (const std::vector<std::string>& more :
       {std::vector<std::string>{"--json"}, {"--explain", folder / "explained.png"}}) {
    std::vector<std::string> words = {"photo", in, "-o", out, "--slim", "0"};
    words.insert(words.end(), more.begin(), more.end());
    EXPECT_THAT(RunLumora(words).err, HasSubstr("no face found")) << more.front();
  }
  ExpectOneLineOfError(RunLumora({"photo", in, "-o", out, "--slim", "0", "--require-face"}), 5,
                       "no face found");
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
  for (const char* word :
       {"photo", "video", "rectify", "convert", "demo", "doctor", "Exit codes"}) {
    EXPECT_THAT(general.out, HasSubstr(word));
  }
  const Result photo = RunLumora({"photo", "--help"});
  EXPECT_EQ(photo.exit_code, 0);
  for (const char* word : {"--output", "--slim", "--faces", "--compare", "--explain", "--json",
                           "--require-face", "landmarks68", "5 no face found", "--whiten",
                           "--saturate", "--effect", "--preset", "natural", "--chain"}) {
    EXPECT_THAT(photo.out, HasSubstr(word));
  }
  EXPECT_THAT(photo.err, IsEmpty());
  EXPECT_THAT(RunLumora({"--version"}).out, HasSubstr("lumora "));
  EXPECT_EQ(RunLumora({"help"}).out, general.out);
  EXPECT_EQ(RunLumora({"help"}).exit_code, 0);
  EXPECT_EQ(RunLumora({"help", "photo"}).out, photo.out);
  EXPECT_EQ(RunLumora({"help", "photo"}).exit_code, 0);
}

TEST(Modules, LibrariesThatFewCallsNeedAreNotLoadedByTheOthers) {
  const Result libraries = RunLumora({}, {}, {{{"LD_TRACE_LOADED_OBJECTS", "1"}}});
  EXPECT_EQ(libraries.exit_code, 0);
  EXPECT_LE(Lines(libraries.out), 30) << libraries.out;
  const Folder folder;
  const std::string in = folder.Put("in.png", PngOf(Landscape(64, 48)));
  const std::string faces = folder.Put("faces.json", std::string(R"({"faces": []})"));
  const Result photo = RunLumora({"photo", in, "-o", folder / "out.png", "--faces", faces}, {},
                                 {{{"LD_DEBUG", "libs"}}});
  EXPECT_EQ(photo.exit_code, 0) << photo.err;
  EXPECT_THAT(photo.err, HasSubstr("libpng"));
  EXPECT_THAT(photo.err, testing::Not(HasSubstr("opencv")));
}

/// The command alone, with nothing beside it.
TEST(Modules, WithoutTheModulesOnlySearchingAndDrawingFail) {
  const Folder folder;
  Environment alone;
  alone.command = folder / "lumora";
  std::filesystem::copy_file(LUMORA_COMMAND, alone.command);
  const std::string in = folder.Put("in.png", PngOf(Landscape(64, 48)));
  const std::string out = folder / "out.png";
  ExpectOneLineOfError(RunLumora({"photo", in, "-o", out, "--slim", "50"}, {}, alone), 1,
                       "cannot search for faces: ");
  EXPECT_FALSE(std::filesystem::exists(out));
  const std::string sheet = folder / "sheet.png";
  const std::string missing = folder / "missing.png";
  for (const std::string& picture : {in, missing}) {  // told before the picture is read
    ExpectOneLineOfError(
        RunLumora({"photo", picture, "-o", out, "--slim", "0", "--compare", sheet}, {}, alone), 1,
        "cannot draw: ");
    ExpectOneLineOfError(
        RunLumora({"rectify", picture, "-o", out, "--degree", "5", "--compare", sheet}, {}, alone),
        1, "cannot draw: ");
  }
  EXPECT_FALSE(std::filesystem::exists(out));
  EXPECT_EQ(RunLumora({"photo", in, "-o", out, "--slim", "0"}, {}, alone).exit_code, 0);
  EXPECT_EQ(RunLumora({"--help"}, {}, alone).exit_code, 0);
}

}  // namespace
}  // namespace lumora::test
