// SPDX-License-Identifier: Apache-2.0
// Inputs that ask for more than they should get: endless, oversized, or small files of huge
// pictures.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "tests/tools/pictures.h"
#include "tests/tools/png_files.h"
#include "tests/tools/process.h"

namespace lumora::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

using Words = std::vector<std::string>;

constexpr uint64_t kMiB = uint64_t{1} << 20;

/// Far less than endless input would fill, and enough for what is asked of small ones.
Environment WithAddressSpace(uint64_t bytes) {
  Environment environment;
  environment.address_space = bytes;
  return environment;
}

class Appetite : public testing::Test {
 protected:
  void ExpectRefused(const Words& words, const std::string& says, uint64_t address_space) {
    SCOPED_TRACE(testing::PrintToString(words));
    const Result result = RunLumora(words, {}, WithAddressSpace(address_space));
    EXPECT_EQ(result.exit_code, 3);
    EXPECT_THAT(result.err, HasSubstr(says));
    EXPECT_EQ(Lines(result.err), 1) << result.err;
    EXPECT_FALSE(fs::exists(Path("out.png")));
  }

  std::string Path(const std::string& name) const { return folder_ / name; }

  /// A file of that size whose beginning alone takes space on the disk.
  std::string PutSparse(const std::string& name, const Bytes& start, uint64_t size) const {
    const std::string path = folder_.Put(name, start);
    fs::resize_file(path, size);
    return path;
  }

  Folder folder_;
  const std::string none_ = folder_.Put("none.json", std::string(R"({"faces": []})"));
  const std::string out_ = folder_ / "out.png";
};

TEST_F(Appetite, EndlessInputIsReadNoFurtherThanItsLimit) {
  constexpr uint64_t kEnough = 700 * kMiB;
  const std::string in = folder_.Put("in.png", PngOf(Landscape(64, 48)));
  const std::string clip = folder_.Put(
      "clip.y4m", "YUV4MPEG2 W64 H48 F25:1\nFRAME\n" + std::string(64 * 48 * 3 / 2, 'y'));
  const std::string zeros = "/dev/zero";
  ExpectRefused({"photo", zeros, "-o", out_}, "neither a JPEG nor a PNG", kEnough);
  ExpectRefused({"photo", in, "-o", out_, "--faces", zeros}, "larger than 16 MiB", kEnough);
  ExpectRefused({"video", clip, "-o", Path("out.y4m"), "--slim", "0", "--faces", zeros},
                "line 1: it is longer than 16 MiB", kEnough);
  ExpectRefused({"rectify", zeros, "-o", out_, "--degree", "5"}, "neither a JPEG nor a PNG",
                kEnough);
  ExpectRefused({"convert", zeros, "-o", out_, "--to", "rgb"}, "neither a JPEG nor a PNG", kEnough);
  ExpectRefused(
      {"convert", zeros, "-o", out_, "--to", "rgb", "--format", "nv21", "--size", "64x48"},
      "larger than 4608 bytes", kEnough);
}

TEST_F(Appetite, FilesOverTheLimitAreNotRead) {
  constexpr uint64_t kTooLittleToReadThem = 500 * kMiB;
  const Bytes png = PngOf(Landscape(64, 48));
  const std::string in = folder_.Put("in.png", png);
  ExpectRefused({"photo", PutSparse("large.png", png, 1025 * kMiB), "-o", out_},
                "larger than 1 GiB", kTooLittleToReadThem);
  ExpectRefused({"photo", in, "-o", out_, "--faces", PutSparse("f.json", {'{'}, 900 * kMiB)},
                "larger than 16 MiB", kTooLittleToReadThem);
  const std::string raw = PutSparse("raw.nv21", {0}, 900 * kMiB);
  ExpectRefused({"convert", raw, "-o", out_, "--to", "rgb", "--size", "64x48"},
                "holds 943718400 bytes, but a frame of 64x48 has 4608", kTooLittleToReadThem);
  // A header that nothing can come of is enough to know, however long the file is.
  const Bytes huge = WithChangedByte(png, "IHDR", 1, 0x7f);
  ExpectRefused({"photo", PutSparse("huge.png", huge, 1000 * kMiB), "-o", out_},
                "more than 200 million", kTooLittleToReadThem);
  const std::string text = PutSparse("text.jpg", {'t'}, 1000 * kMiB);
  ExpectRefused({"photo", text, "-o", out_}, "neither a JPEG nor a PNG", kTooLittleToReadThem);
}

TEST_F(Appetite, PipesAreReadToTheirEnd) {
  cv::Mat noise(700, 800, CV_8UC3);  // a file of more than a MiB
  cv::RNG(3).fill(noise, cv::RNG::UNIFORM, 0, 256);
  const Bytes png = PngOf(noise);
  ASSERT_GT(png.size(), kMiB);
  const std::string pipe = Path("pipe");
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  std::thread writer([&] {
    const int fd = open(pipe.c_str(), O_WRONLY);
    for (size_t at = 0; at < png.size();) {
      const ssize_t written = write(fd, &png[at], std::min<size_t>(png.size() - at, 5000));
      if (written <= 0) break;
      at += static_cast<size_t>(written);
    }
    close(fd);
  });
  const Result result = RunLumora({"photo", pipe, "-o", out_, "--faces", none_});
  writer.join();
  EXPECT_EQ(result.exit_code, 0) << result.err;
  EXPECT_EQ(ReadFile(out_), png);
}

TEST_F(Appetite, APictureThatTakesMoreThanHalfOfTheMemoryNeedsForce) {
  if (!kAddressSpaceCounts) GTEST_SKIP() << "memory cannot be limited";
  constexpr uint64_t kMemory = 700 * kMiB;
  // 12 million pixels in a small file: 32 bytes a pixel are 366 MiB, more than 350.
  const Bytes png = PngOf(cv::Mat(3000, 4000, CV_8U, cv::Scalar(80)));
  ASSERT_LT(png.size(), kMiB / 8);
  const std::string in = folder_.Put("in.png", png);
  const std::string says = "needs about 366 MiB of memory, more than half of the 700 MiB";
  const Words photo = {"photo", in, "-o", out_, "--faces", none_};
  ExpectRefused(photo, says, kMemory);
  const std::string jpeg =
      folder_.Put("in.jpg", JpegOf(cv::Mat(3000, 4000, CV_8UC3, cv::Scalar(80, 80, 80)), {}));
  ExpectRefused({"photo", jpeg, "-o", out_, "--faces", none_}, says, kMemory);
  // Where the whole picture is drawn, 48 bytes a pixel.
  const std::string whole = "needs about 549 MiB";
  ExpectRefused({"photo", in, "-o", out_, "--chain", "preview"}, whole, kMemory);
  ExpectRefused({"rectify", in, "-o", out_, "--degree", "5"}, whole, kMemory);
  ExpectRefused({"convert", in, "-o", out_, "--to", "hsi"}, whole, kMemory);
  const std::string raw = PutSparse("raw.nv12", {0}, 4000 * 3000 * 3 / 2);
  ExpectRefused({"convert", raw, "-o", out_, "--to", "hsi", "--size", "4000x3000"}, whole, kMemory);
  const std::string clip = folder_.Put("huge.y4m", std::string("YUV4MPEG2 W4000 H3000 F25:1\n"));
  ExpectRefused({"video", clip, "-o", Path("out.y4m")}, whole, kMemory);
  Words forced = photo;
  forced.emplace_back("--force");
  const Result result = RunLumora(forced, {}, WithAddressSpace(kMemory));
  EXPECT_EQ(result.exit_code, 0) << result.err;
  EXPECT_EQ(ReadFile(out_), png);
  fs::remove(out_);
  // With more memory it needs no force.
  EXPECT_EQ(RunLumora(photo, {}, WithAddressSpace(800 * kMiB)).exit_code, 0);
}

TEST_F(Appetite, WhateverMemoryThereIsTheSentenceIsOurs) {
  if (!kAddressSpaceCounts) GTEST_SKIP() << "memory cannot be limited";
  const std::string in =
      folder_.Put("in.png", PngOf(cv::Mat(1500, 2000, CV_8UC3, cv::Scalar(80, 120, 90))));
  const Words words = {"photo",   in,    "-o",     out_, "--compare", Path("compare.png"),
                       "--faces", none_, "--force"};
  uint64_t starts = 10 * kMiB;  // up to the least that the program starts in
  while (RunLumora({"--version"}, {}, WithAddressSpace(starts)).exit_code != 0) starts += 10 * kMiB;
  bool failed = false;
  int code = -1;
  for (uint64_t memory = starts; code != 0; memory += 10 * kMiB) {
    ASSERT_LT(memory, starts + 1000 * kMiB);
    const Result result = RunLumora(words, {}, WithAddressSpace(memory));
    SCOPED_TRACE(memory >> 20);
    code = result.exit_code;
    if (code == 0) break;
    failed = true;
    EXPECT_EQ(code, 1);
    EXPECT_EQ(result.err, "lumora: out of memory\n");
    EXPECT_FALSE(fs::exists(out_));
  }
  EXPECT_TRUE(failed);
}

}  // namespace
}  // namespace lumora::test
