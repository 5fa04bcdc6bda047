// SPDX-License-Identifier: Apache-2.0
// Clips in containers: how they are recognised, and the command lines that are shown for them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <random>
#include <regex>
#include <string>
#include <vector>

#include "tests/tools/pictures.h"
#include "tools/lumora/support/shell.h"
#include "tools/lumora/video/containers.h"

namespace lumora::test {
namespace {

using testing::HasSubstr;
using tools::ContainerOf;
using tools::FfmpegLine;
using tools::IsContainerName;
using tools::PlainPath;
using tools::ShellLine;

/// `bytes` at that place among zeros.
Bytes Start(size_t at, const std::string& bytes, size_t length = tools::kContainerStart) {
  Bytes start(length);
  for (size_t i = 0; i < bytes.size(); ++i) start[at + i] = static_cast<uint8_t>(bytes[i]);
  return start;
}

TEST(Container, IsRecognisedByItsStart) {
  const struct {
    Bytes start;
    const char* says;
  } kStarts[] = {
      {Start(4, "ftypisom"), "MP4"},
      {Start(4, "ftypqt  "), "QuickTime"},
      {Start(4, "moov"), "QuickTime"},
      {Start(4, "mdat"), "QuickTime"},
      {Start(0, "\x1a\x45\xdf\xa3"), "Matroska or WebM"},
      {Start(0, "RIFF....AVI LIST"), "AVI"},
      {Start(0, "FLV\x01"), "Flash"},
      {Start(0, "OggS"), "Ogg"},
      {Start(2, "\x01\xba"), "MPEG program"},
      {Start(0, "GIF89a"), "GIF"},
      {Start(4, "ftyp", 8), "MP4"},
  };
  for (const auto& [start, says] : kStarts) {
    EXPECT_THAT(ContainerOf(start).value_or("nothing"), HasSubstr(says));
  }
  for (const size_t before : {size_t{0}, size_t{4}}) {
    Bytes packets(tools::kContainerStart);
    for (size_t at = before; at < packets.size(); at += 188 + before) packets[at] = 0x47;
    EXPECT_THAT(ContainerOf(packets).value_or("nothing"), HasSubstr("transport"));
  }
}

TEST(Container, IsNotSeenInOtherFiles) {
  for (const Bytes& start :
       {Bytes{}, Start(0, "YUV4MPEG2 W64 H48\nFRAME\n"), Start(0, "GGGG"), Start(4, "fty", 7),
        Start(0, "RIFF....WAVE"), Start(0, "hello, world\n"), PngOf(cv::Mat(40, 40, CV_8UC3)),
        JpegOf(cv::Mat(40, 40, CV_8UC3), {})}) {
    EXPECT_EQ(ContainerOf(start), std::nullopt);
  }
  // No length leads beyond what was read.
  std::mt19937 random(3);
  for (size_t length = 0; length < tools::kContainerStart; ++length) {
    Bytes noise(length);
    for (uint8_t& byte : noise) byte = static_cast<uint8_t>(128 + random() % 64);
    EXPECT_EQ(ContainerOf(noise), std::nullopt) << length;
  }
}

TEST(Container, IsExpectedByTheEndingOfAName) {
  for (const char* name : {"a.mp4", "A.MP4", "dir.y4m/a.Mov", "a.y4m.mkv", "-.webm", "a b.avi",
                           "x.ts", "x.m2ts", "x.mpeg", "x.gif", "x.3gp", "x.wmv"}) {
    EXPECT_TRUE(IsContainerName(name)) << name;
  }
  for (const char* name : {"a.y4m", "a", "", "-", "mp4", ".mp4", "a.mp4/b", "a.mp4.y4m", "a.mp44",
                           "a.yuv", "/dev/stdout", "/dev/null"}) {
    EXPECT_FALSE(IsContainerName(name)) << name;
  }
}

/// What a shell prints.
std::string Shell(const std::string& line) {
  std::string output;
  std::FILE* const pipe = popen(line.c_str(), "r");
  std::array<char, 4096> part;
  for (size_t got; (got = std::fread(part.data(), 1, part.size(), pipe)) > 0;) {
    output.append(part.data(), got);
  }
  EXPECT_EQ(pclose(pipe), 0);
  return output;
}

const std::vector<std::string> kAwkward = {"a b",  "it's",   "\"",       "$HOME", "`id`",  "a\\b",
                                           "*",    "1a?",    "~",        "#x",    "a;b",   "a&b",
                                           "a\nb", "a\n",    "(x)",      "!1",    "{a,b}", "",
                                           "''",   "\\'\\'", "\xc3\xa4", "\xff",  "=x",    "a=b"};

TEST(ShellLine, IsReadByAShellAsTheSameWords) {
  std::vector<std::string> words = {"printf", "%s|"};
  std::string expected;
  for (const std::string& word : kAwkward) {
    words.push_back(word);
    expected += word + "|";
  }
  EXPECT_EQ(Shell(ShellLine(words)), expected);
  // Every byte that an argument can have, also next to another quoted one.
  for (int byte = 1; byte < 256; ++byte) {
    const std::string letter(1, static_cast<char>(byte));
    words = {"printf", "%s|"};
    words.push_back(letter + "'" + letter);
    expected = words.back() + "|";
    if (byte % 16 == 0 || byte < 48) {
      EXPECT_EQ(Shell(ShellLine(words)), expected) << byte;
    }
  }
  EXPECT_EQ(ShellLine({"ffmpeg", "-i", "clip.mp4", "0:v"}), "ffmpeg -i clip.mp4 0:v");
}

TEST(PlainPath, IsNeitherAnOptionNorAnAddress) {
  const struct {
    const char *path, *plain;
  } kPaths[] = {{"-", "-"},       {"a.mp4", "a.mp4"},      {"-a.mp4", "./-a.mp4"},
                {"a:b", "./a:b"}, {"/a:b", "/a:b"},        {"http://x", "./http://x"},
                {"./-a", "./-a"}, {"../a.mp4", "../a.mp4"}};
  for (const auto& [path, plain] : kPaths) EXPECT_EQ(PlainPath(path), plain);
}

constexpr char kReads[] =
    "ffmpeg -i clip.mp4 -vf scale=out_range=limited -pix_fmt yuv420p -f yuv4mpegpipe - | ";

TEST(FfmpegLine, StandsWhereAContainerIs) {
  EXPECT_EQ(FfmpegLine("lumora", "clip.mp4", true, "out.y4m", {}),
            std::string(kReads) + "lumora video - -o out.y4m");
  EXPECT_EQ(FfmpegLine("lumora", "clip.mp4", true, "-", {"--slim", "5"}),
            std::string(kReads) + "lumora video - -o - --slim 5");
  EXPECT_EQ(FfmpegLine("lumora", "clip.y4m", false, "out.MP4", {}),
            "lumora video clip.y4m -o - | ffmpeg -i - out.MP4");
  EXPECT_EQ(FfmpegLine("lumora", "-", false, "out.mp4", {}),
            "lumora video - -o - | ffmpeg -i - out.mp4");
}

TEST(FfmpegLine, StandsInTheDocumentation) {
  const struct {
    const char *page, *program;
  } kPages[] = {{"README.md", "build/release/bin/lumora"}, {"docs/command.md", "lumora"}};
  for (const auto& [page, program] : kPages) {
    const std::string line = FfmpegLine(program, "clip.mp4", true, "out.mp4", {});
    const Bytes bytes = ReadFile(std::string(LUMORA_SOURCES "/") + page);
    // On a page the line is broken behind a bar.
    const std::string text =
        std::regex_replace(std::string(bytes.begin(), bytes.end()), std::regex("\\|\n +"), "| ");
    EXPECT_THAT(text, HasSubstr("    " + line + "\n")) << page;
  }
}

TEST(FfmpegLine, TakesTheSoundAlong) {
  const std::string start = std::string(kReads) + "lumora video - -o - | ffmpeg -i - ";
  const std::string sound = "-i clip.mp4 -map 0:v -map '1:a?' ";
  EXPECT_EQ(FfmpegLine("lumora", "clip.mp4", true, "out.mp4", {}),
            start + sound + "-c:a copy out.mp4");
  EXPECT_EQ(FfmpegLine("lumora", "clip.mp4", true, "out.mkv", {}),
            start + sound + "-c:a copy out.mkv");
  // Not every container holds every coding of sound.
  EXPECT_EQ(FfmpegLine("lumora", "clip.mp4", true, "out.webm", {}), start + sound + "out.webm");
  EXPECT_EQ(FfmpegLine("lumora", "clip.mp4", true, "out.gif", {}), start + "out.gif");
}

/// Runs the line with stand-ins for both programs, which note their arguments.
std::vector<std::string> Arguments(const std::string& line) {
  const Folder folder;
  const std::string script =
      "#!/bin/sh\ncat > /dev/null < /dev/null\n"
      "{ printf '%s\\0' \"${0##*/}\" \"$@\"; } > " +
      ShellLine({folder / "words."}) + "$$\n";
  for (const char* name : {"ffmpeg", "lumora"}) {
    const std::string path = folder.Put(name, script);
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
  }
  Shell("PATH=" + ShellLine({folder / ""}) + ":$PATH; " + line);
  std::vector<std::string> calls;
  for (const std::string& name : folder.Names()) {
    if (name.rfind("words.", 0) != 0) continue;
    const Bytes words = ReadFile(folder / name);
    calls.emplace_back(words.begin(), words.end());
  }
  return calls;
}

TEST(FfmpegLine, KeepsEveryNameAndOptionThroughAShell) {
  for (const std::string& name : kAwkward) {
    SCOPED_TRACE(name);
    const std::string in = name + "_.mp4", out = "out " + name + ".mp4";
    const auto zeros = [](const std::vector<std::string>& words) {
      std::string text;
      for (const std::string& word : words) text += word + '\0';
      return text;
    };
    EXPECT_THAT(Arguments(FfmpegLine("lumora", in, true, out, {"--faces", name})),
                testing::UnorderedElementsAre(
                    zeros({"ffmpeg", "-i", in, "-vf", "scale=out_range=limited", "-pix_fmt",
                           "yuv420p", "-f", "yuv4mpegpipe", "-"}),
                    zeros({"lumora", "video", "-", "-o", "-", "--faces", name}),
                    zeros({"ffmpeg", "-i", "-", "-i", PlainPath(in), "-map", "0:v", "-map", "1:a?",
                           "-c:a", "copy", PlainPath(out)})));
  }
}

}  // namespace
}  // namespace lumora::test
