// SPDX-License-Identifier: Apache-2.0
// Image files and test patterns.
#include "lumora/gl/image_files.h"

#include <GLES2/gl2.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <vector>

#include "lumora/gl/segl_image.h"
#include "support/guarded_buffer.h"
#include "support/log_capture.h"
#include "support/meant_leaks.h"
#include "support/scoped.h"

namespace lumora::test {
namespace {

constexpr char kTag[] = "EGLImageTest";
constexpr unsigned short kFill = 0x6666;  // what guarded memory holds

/// Pixels that end at an inaccessible page.
class Pixels {
 public:
  explicit Pixels(size_t count) : memory_(count * 2) {}
  unsigned short* data() { return reinterpret_cast<unsigned short*>(memory_.data()); }
  std::vector<unsigned short> values() { return {data(), data() + memory_.size() / 2}; }
  bool intact() const { return memory_.intact(); }

 private:
  GuardedBuffer memory_;
};

ptrdiff_t OpenFiles() {
  const std::filesystem::directory_iterator files("/proc/self/fd");
  return std::distance(begin(files), end(files));
}

// A pipe that nobody writes into would keep its reader for ever.
TEST(ImageFiles, OnlyRegularFilesAreRead) {
  const TempDirectory directory;
  const std::string pipe = directory.file("pipe");
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  const ptrdiff_t open_files = OpenFiles();
  alarm(20);
  for (const std::string& path : {pipe, directory.path(), std::string("/dev/zero")}) {
    LogCapture log;
    unsigned short pixel = 7;
    EXPECT_EQ(0, Load565FromFile(path.c_str(), &pixel, 0)) << path;
    EXPECT_TRUE(LogIs(log, {Error(kTag, "File is fail, fp: 0"),
                            Error(kTag, "Cannot open input RGB565 file....\n")}));
    unsigned width = 7, height = 7, format = 7;
    EXPECT_EQ(nullptr, LoadTGA(path.c_str(), &width, &height, &format)) << path;
    EXPECT_EQ(width, 7u);
  }
  alarm(0);
  EXPECT_EQ(open_files, OpenFiles());
}

TEST(Load565, NoPixelsOfAFileThatIsThereAreASuccess) {
  TempDirectory directory;
  WriteFile(directory.file("a.raw"), "12345678");
  const ptrdiff_t open_files = OpenFiles();
  LogCapture log;
  EXPECT_EQ(1, Load565FromFile(directory.file("a.raw").c_str(), nullptr, 0));
  EXPECT_TRUE(LogIs(log, {}));
  EXPECT_EQ(open_files, OpenFiles());
}

TEST(Load565, AnyPixelsAreReadAndReportedAsAFailure) {
  TempDirectory directory;
  WriteFile(directory.file("a.raw"), "12345678");
  Pixels pixels(4);
  const ptrdiff_t open_files = OpenFiles();
  LogCapture log;
  EXPECT_EQ(0, Load565FromFile(directory.file("a.raw").c_str(), pixels.data(), 4));
  EXPECT_TRUE(LogIs(log, {Error(kTag, "Cannot read input RGB565 file.\n")}));
  EXPECT_EQ("12345678", std::string(reinterpret_cast<char*>(pixels.data()), 8));
  EXPECT_EQ(open_files + 1, OpenFiles()) << "the file stays open";
}

TEST(Load565, ShortFilesGiveWhatTheyHave) {
  TempDirectory directory;
  WriteFile(directory.file("a.raw"), "12345");
  Pixels pixels(4);
  EXPECT_EQ(0, Load565FromFile(directory.file("a.raw").c_str(), pixels.data(), 4));
  EXPECT_EQ("1234", std::string(reinterpret_cast<char*>(pixels.data()), 4));
  EXPECT_EQ(kFill, pixels.data()[3]);
  EXPECT_TRUE(pixels.intact());
}

TEST(Load565, AMissingFileIsToldTwice) {
  TempDirectory directory;
  LogCapture log;
  EXPECT_EQ(0, Load565FromFile(directory.file("none").c_str(), nullptr, 4));
  EXPECT_TRUE(LogIs(log, {Error(kTag, "File is fail, fp: 0"),
                          Error(kTag, "Cannot open input RGB565 file....\n")}));
}

TEST(Load565, ANegativeNumberOfPixelsReadsNone) {
  TempDirectory directory;
  WriteFile(directory.file("a.raw"), "12345678");
  EXPECT_EQ(0, Load565FromFile(directory.file("a.raw").c_str(), nullptr, -1));
}

std::string TgaHeader(unsigned width, unsigned height, unsigned depth) {
  std::string header(18, '\0');
  const auto number = [&header](size_t at, unsigned value) {
    header[at] = static_cast<char>(value & 255);
    header[at + 1] = static_cast<char>(value >> 8);
  };
  header[2] = 2;
  number(8, 0x1234);  // origin, not looked at
  number(12, width);
  number(14, height);
  header[16] = static_cast<char>(depth);
  header[17] = 0x20;
  return header;
}

struct Tga {
  std::unique_ptr<unsigned char[]> pixels;
  unsigned width = 7, height = 7, format = 7;
};

Tga Load(const std::string& content) {
  TempDirectory directory;
  WriteFile(directory.file("a.tga"), content);
  Tga tga;
  const ptrdiff_t open_files = OpenFiles();
  LogCapture log;
  tga.pixels.reset(LoadTGA(directory.file("a.tga").c_str(), &tga.width, &tga.height, &tga.format));
  EXPECT_TRUE(LogIs(log, {}));
  EXPECT_EQ(open_files, OpenFiles());
  return tga;
}

void ExpectBytes(const std::string& expected, const Tga& tga) {
  ASSERT_NE(nullptr, tga.pixels);
  EXPECT_EQ(expected, std::string(reinterpret_cast<char*>(tga.pixels.get()), expected.size()));
}

TEST(LoadTga, BytesComeAsTheyLieInTheFile) {
  const Tga rgb = Load(TgaHeader(3, 1, 24) + "bgrBGRxyz");
  EXPECT_EQ(3u, rgb.width);
  EXPECT_EQ(1u, rgb.height);
  EXPECT_EQ(static_cast<unsigned>(GL_RGB), rgb.format);
  ExpectBytes("bgrBGRxyz", rgb);

  const Tga rgba = Load(TgaHeader(1, 2, 32) + "bgraBGRAbytes behind");
  EXPECT_EQ(1u, rgba.width);
  EXPECT_EQ(2u, rgba.height);
  EXPECT_EQ(static_cast<unsigned>(GL_RGBA), rgba.format);
  ExpectBytes("bgraBGRA", rgba);
}

TEST(LoadTga, OtherDepthsCountAsRgba) {
  const Tga high_colour = Load(TgaHeader(2, 1, 16) + "1234");
  EXPECT_EQ(static_cast<unsigned>(GL_RGBA), high_colour.format);
  ExpectBytes("1234", high_colour);
  const Tga grey = Load(TgaHeader(2, 2, 8) + "1234");
  EXPECT_EQ(static_cast<unsigned>(GL_RGBA), grey.format);
  ExpectBytes("1234", grey);
  EXPECT_EQ(static_cast<unsigned>(GL_RGB), Load(TgaHeader(1, 1, 31) + "123").format);
  EXPECT_NE(nullptr, Load(TgaHeader(5, 5, 7) + "1234").pixels) << "no byte a pixel";
}

TEST(LoadTga, SizesAreLittleEndian) {
  const Tga tga = Load(TgaHeader(0x0102, 3, 8) + std::string(0x0102 * 3, 'p'));
  EXPECT_EQ(258u, tga.width);
  EXPECT_EQ(3u, tga.height);
}

TEST(LoadTga, AMissingFileGivesNothingAndSaysNothing) {
  TempDirectory directory;
  unsigned width = 7, height = 7, format = 7;
  LogCapture log;
  EXPECT_EQ(nullptr, LoadTGA(directory.file("none").c_str(), &width, &height, &format));
  EXPECT_TRUE(LogIs(log, {}));
}

TEST(LoadTga, ShortFilesGiveZerosForWhatIsMissing) {
  ExpectBytes(std::string("ab\0\0\0\0", 6), Load(TgaHeader(2, 1, 24) + "ab"));
  ExpectBytes(std::string(6, '\0'), Load(TgaHeader(2, 1, 24)));
}

TEST(LoadTga, ShortHeadersHaveZerosForWhatIsMissing) {
  const std::string header = TgaHeader(2, 1, 24);
  Load(header + "abcdef");  // the header kept from the file before must not show
  for (size_t length = 0; length < header.size(); ++length) {
    SCOPED_TRACE(length);
    const Tga tga = Load(header.substr(0, length));
    EXPECT_NE(nullptr, tga.pixels);
    EXPECT_EQ(length > 12 ? 2u : 0u, tga.width);
    EXPECT_EQ(length > 14 ? 1u : 0u, tga.height);
    EXPECT_EQ(length > 16, tga.format == GL_RGB);
  }
}

TEST(LoadTga, AShortFileOfAHugeImage) {
  const Tga tga = Load(TgaHeader(4000, 3000, 24) + "abc");
  EXPECT_EQ(4000u, tga.width);
  EXPECT_EQ(3000u, tga.height);
  ExpectBytes(std::string("abc\0\0\0", 6), tga);
  EXPECT_EQ(0, tga.pixels[4000 * 3000 * 3 - 1]);
}

// Ends the process, with 0 when nothing was loaded.
[[noreturn]] void LoadWithinAGigabyte(const std::string& path) {
  const rlimit limit{1u << 30, 1u << 30};
  setrlimit(RLIMIT_AS, &limit);
  unsigned width = 7, height = 7, format = 7;
  const void* pixels = LoadTGA(path.c_str(), &width, &height, &format);
  std::_Exit(pixels == nullptr && width == 65535 && height == 65535 ? 0 : 1);
}

// In a process of its own whose memory is limited; sanitizers need more than any limit.
TEST(LoadTgaDeathTest, AnImageLargerThanMemoryGivesNothing) {
#if defined(__SANITIZE_ADDRESS__)
  GTEST_SKIP() << "address space cannot be limited here";
#endif
  TempDirectory directory;
  WriteFile(directory.file("a.tga"), TgaHeader(65535, 65535, 255) + "abc");
  EXPECT_EXIT(LoadWithinAGigabyte(directory.file("a.tga")), testing::ExitedWithCode(0), "");
}

std::vector<unsigned short> Counting(size_t count) {
  std::vector<unsigned short> pixels(count);
  for (size_t i = 0; i < count; ++i) pixels[i] = static_cast<unsigned short>(i * 7 + 1);
  return pixels;
}

TEST(InputImageMemcopy, RowsAreLaidOutOnMultiplesOf32) {
  constexpr size_t kWidth = 100;
  constexpr size_t kHeight = 3;
  std::vector<unsigned short> source = Counting(kWidth * kHeight);
  Pixels target(128 * kHeight);
  g_dCountTimeInterval = -5.0;
  g_cTimeStart = 0;
  EXPECT_EQ(1, InputImageMemcopy(source.data(), target.data(), kWidth, kHeight));
  const std::vector<unsigned short> result = target.values();
  for (size_t i = 0; i < result.size(); ++i) {
    const size_t column = i % 128;
    ASSERT_EQ(column < kWidth ? source[i / 128 * kWidth + column] : kFill, result[i]) << i;
  }
  EXPECT_TRUE(target.intact());
  EXPECT_GE(g_cTimeFinish, g_cTimeStart);
  EXPECT_EQ(static_cast<double>(g_cTimeFinish - g_cTimeStart) / 1000.0, g_dCountTimeInterval);
}

TEST(InputImageMemcopy, AlignedRowsAreOneCopyThatIsNotTimed) {
  std::vector<unsigned short> source = Counting(64 * 5);
  Pixels target(64 * 5);
  g_cTimeStart = 11;
  g_cTimeFinish = 22;
  g_dCountTimeInterval = 33.0;
  EXPECT_EQ(1, InputImageMemcopy(source.data(), target.data(), 64, 5));
  EXPECT_EQ(source, target.values());
  EXPECT_EQ(11, g_cTimeStart);
  EXPECT_EQ(22, g_cTimeFinish);
  EXPECT_EQ(33.0, g_dCountTimeInterval);
}

TEST(InputImageMemcopy, OnePixelWideImages) {
  std::vector<unsigned short> source = {5, 6};
  Pixels target(64);
  EXPECT_EQ(1, InputImageMemcopy(source.data(), target.data(), 1, 2));
  EXPECT_EQ(5, target.data()[0]);
  EXPECT_EQ(kFill, target.data()[1]);
  EXPECT_EQ(6, target.data()[32]);
}

TEST(CreateTestPattern, OtherFormatsDoNothing) {
  LogCapture log;
  for (const int format : {-1, 0, 2, 4}) CreateTestPattern(8, 8, format, nullptr);
  EXPECT_TRUE(LogIs(log, {}));
}

TEST(CreateTestPattern, GradientsUnderACheckerboard) {
  const int sizes[][2] = {{2, 2}, {3, 5}, {16, 16}, {37, 50}};
  for (const auto& [width, height] : sizes) {
    GuardedBuffer memory(static_cast<size_t>(width * height) * 4);
    LogCapture log;
    CreateTestPattern(width, height, 1, reinterpret_cast<char*>(memory.data()));
    EXPECT_TRUE(memory.intact());
    std::vector<LogLine> lines = {Debug(kTag, "PIXEL_FORMAT_RGBA_8888 - start")};
    for (int x = 0; x < width; ++x) {
      for (int y = 0; y < height; ++y) {
        const int across = x * 255 / (width - 1);
        const int down = y * 255 / (height - 1);
        const bool bright = (y * 8 / height + x * 8 / width) % 2 == 1;
        const int divisor = bright ? 1 : 2;
        const int expected[4] = {(255 - across) * down / 255 / divisor,
                                 across * (255 - down) / 255 / divisor,
                                 across * down / 255 / divisor, 255};
        for (int channel = 0; channel < 4; ++channel) {
          ASSERT_EQ(expected[channel], memory.data()[(y * width + x) * 4 + channel])
              << x << ", " << y << ", channel " << channel;
        }
        lines.push_back(Debug(kTag, "RGB:%i,%i,%i", expected[0], expected[1], expected[2]));
      }
    }
    EXPECT_TRUE(LogIs(log, lines));
  }
}

unsigned short Stripe(size_t column, size_t width) {
  if (column * 16 < width * 5) return 0xF800;
  return column * 16 > width * 11 ? 0x001F : 0x07E0;
}

TEST(Create565Pattern, StripesOnTightRows) {
  for (const unsigned width : {1u, 16u, 64u, 100u}) {
    Pixels pixels(width * 3);
    Create565Pattern(width, 3, 0, pixels.data());
    const std::vector<unsigned short> result = pixels.values();
    for (size_t i = 0; i < result.size(); ++i) ASSERT_EQ(Stripe(i % width, width), result[i]) << i;
    EXPECT_TRUE(pixels.intact());
  }
  Pixels pixels(100);
  Create565Pattern(100, 1, 0, pixels.data());
  EXPECT_EQ(0xF800, pixels.data()[31]);
  EXPECT_EQ(0x07E0, pixels.data()[32]);
  EXPECT_EQ(0x07E0, pixels.data()[68]);
  EXPECT_EQ(0x001F, pixels.data()[69]);
}

TEST(Create565Pattern, StripesOnAlignedRows) {
  Pixels pixels(128 * 3);
  EXPECT_EQ(1, Create565Pattern(100, 3, 1, pixels.data()));
  const std::vector<unsigned short> result = pixels.values();
  for (size_t i = 0; i < result.size(); ++i) {
    const size_t column = i % 128;
    ASSERT_EQ(column < 100 ? Stripe(column, 100) : kFill, result[i]) << i;
  }
  EXPECT_TRUE(pixels.intact());
}

TEST(Create565Pattern, OtherCasesWriteNothing) {
  Pixels pixels(100 * 3);
  const std::vector<unsigned short> before = pixels.values();
  Create565Pattern(64, 3, 1, pixels.data());
  Create565Pattern(96, 3, 1, pixels.data());
  for (const int mode : {-1, 2, 3}) Create565Pattern(100, 3, mode, pixels.data());
  EXPECT_EQ(before, pixels.values());
}

TEST(Create565Pattern, ANullBufferIsReplacedByOneThatIsLargeEnough) {
  for (const unsigned width : {1u, 33u, 64u, 100u}) {
    for (const int mode : {0, 1, 2}) Create565Pattern(width, 50, mode, nullptr);
  }
  EXPECT_EQ(1, Create565Pattern(100, 50, 1, nullptr));
}

}  // namespace
}  // namespace lumora::test
