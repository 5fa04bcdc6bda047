// SPDX-License-Identifier: Apache-2.0
// Every call of the image-file routines, made to fail.
#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "lumora/gl/image_files.h"
#include "proofs/faults/fault_layer.h"
#include "proofs/faults/fault_test.h"
#include "support/log_capture.h"
#include "support/scoped.h"

namespace lumora::test {
namespace {

constexpr char kImageTag[] = "EGLImageTest";

class ImageFileFaults : public testing::Test {
 protected:
  // A picture of 2 x 1 pixels with three bytes each.
  ImageFileFaults() : path_(directory_.file("picture")) {
    std::string tga(18, '\0');
    tga[12] = 2;
    tga[14] = 1;
    tga[16] = 24;
    WriteFile(path_, tga + "abcdef");
  }

  std::string Tga() {
    unsigned width = 9;
    unsigned height = 9;
    unsigned format = 0;
    const std::unique_ptr<unsigned char[]> pixels(LoadTGA(path_.c_str(), &width, &height, &format));
    if (pixels == nullptr) return "none";
    return std::string(reinterpret_cast<char*>(pixels.get()), size_t{3} * width * height);
  }

  TempDirectory directory_;
  std::string path_;
};

TEST_F(ImageFileFaults, OfLoad565AreTold) {
  const LogLine cannot_open = Error(kImageTag, "Cannot open input RGB565 file....\n");
  unsigned short pixels[2] = {7, 7};
  const MeantLeaks leaks;  // the stream of a file that cannot be read stays open
  for (const Call call : {Call::Open, Call::Stat, Call::OpenStream}) {
    const FaultScope scope(Fault{call, 1});
    LogCapture log;
    EXPECT_EQ(0, Load565FromFile(path_.c_str(), pixels, 0));
    EXPECT_TRUE(LogIs(log, {Error(kImageTag, "File is fail, fp: 0"), cannot_open}));
  }
  const FaultScope scope(Fault{Call::ReadStream, 1});
  LogCapture log;
  EXPECT_EQ(0, Load565FromFile(path_.c_str(), pixels, 2));
  EXPECT_TRUE(LogIs(log, {Error(kImageTag, "Cannot read input RGB565 file.\n")}));
  EXPECT_EQ(7, pixels[0]);
  EXPECT_EQ(1, scope.failed());
}

TEST_F(ImageFileFaults, OfLoadTgaGiveNothingOrZeros) {
  ASSERT_EQ("abcdef", Tga());
  const struct {
    Fault fault;
    std::string pixels;
  } rows[] = {{{Call::Open, 1}, "none"},
              {{Call::Stat, 1}, "none"},
              {{Call::OpenStream, 1}, "none"},
              {{Call::ReadStream, 1}, ""},  // the header: a picture of nothing
              {{Call::ReadStream, 2}, std::string(6, '\0')},
              {{Call::NewArray, 1}, "none"}};
  CallCounts counts{};
  {
    const FaultScope scope;
    Tga();
    counts = scope.counts();
  }
  EXPECT_EQ(std::size(rows), FaultsOf(counts).size()) << "every call has its row";
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::Message() << row.fault);
    const FaultScope scope(row.fault);
    LogCapture log;
    EXPECT_EQ(row.pixels, Tga());
    EXPECT_TRUE(LogIs(log, {})) << "it has no lines of its own";
    EXPECT_EQ(1, scope.failed());
  }
  EXPECT_EQ("abcdef", Tga());
  TellInjected(std::size(rows));
}

TEST_F(ImageFileFaults, OfStripePatternsWriteNothing) {
  std::vector<unsigned short> pixels(32 * 2, 7);
  {
    const FaultScope scope(Fault{Call::NewArray, 1});
    EXPECT_EQ(0, Create565Pattern(20, 2, 1, pixels.data()));
    EXPECT_EQ(1, scope.failed());
  }
  EXPECT_EQ(std::vector<unsigned short>(32 * 2, 7), pixels);
  const FaultScope scope(Fault{Call::NewArray, 1});
  EXPECT_EQ(0, Create565Pattern(20, 2, 0, nullptr));
  EXPECT_EQ(1, scope.failed());
}

}  // namespace
}  // namespace lumora::test
