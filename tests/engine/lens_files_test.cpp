// SPDX-License-Identifier: Apache-2.0
// The sensor and parameter files of a lens, in every shape that they may have.
#include "lumora/engine/internal/lens_files.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <iterator>
#include <ostream>
#include <random>

#include "lumora/platform/settings.h"
#include "support/comma_locale.h"
#include "support/scoped.h"

namespace lumora::test {
namespace {

using engine::ReadLensCoefficients;

constexpr float k0 = 1.00453f;
constexpr float k1 = -0.0214308f;
constexpr float k2 = 0.00571108f;
constexpr float k3 = 0.032517f;
constexpr std::array<float, 4> kDefaults = {k0, k1, k2, k3};

class LensFiles : public testing::Test {
 protected:
  LensFiles() { platform::SetSystemRoot(root_.path()); }
  ~LensFiles() override { platform::SetSystemRoot(""); }

  void write(const std::string& path, const std::string& content) {
    WriteFile(root_.path() + path, content);
  }
  void write_sensor(const std::string& content) { write("/sys/android_camera/sensor", content); }

  TempDirectory root_;
};

TEST_F(LensFiles, WithoutFilesTheDefaultsHold) {
  EXPECT_EQ(kDefaults, ReadLensCoefficients(false));
  EXPECT_EQ(kDefaults, ReadLensCoefficients(true));
}

TEST_F(LensFiles, TheSensorNamesTheFileWithTheCoefficients) {
  write_sensor("back s5k3\n");
  write("/system/etc/s5k3_1", "r_param 1.5 -0.25 0.125 2\n");
  EXPECT_EQ((std::array<float, 4>{1.5f, -0.25f, 0.125f, 2.0f}), ReadLensCoefficients(false));
  EXPECT_EQ(kDefaults, ReadLensCoefficients(true)) << "the other camera has no sensor file";
}

TEST_F(LensFiles, EachCameraHasItsOwnSensor) {
  write_sensor("back one");
  write("/sys/android_camera2/sensor", "front two");
  write("/system/etc/one_1", "r_param 1 1 1 1");
  write("/system/etc/two_1", "r_param 2 2 2 2");
  EXPECT_EQ((std::array<float, 4>{1, 1, 1, 1}), ReadLensCoefficients(false));
  EXPECT_EQ((std::array<float, 4>{2, 2, 2, 2}), ReadLensCoefficients(true));
}

TEST_F(LensFiles, FilesAreReadAgainEachTime) {
  write_sensor("back s5k3\n");
  write("/system/etc/s5k3_1", "r_param 1 2 3 4");
  EXPECT_EQ(1.0f, ReadLensCoefficients(false)[0]);
  write("/system/etc/s5k3_1", "r_param 5 6 7 8");
  EXPECT_EQ(5.0f, ReadLensCoefficients(false)[0]);
  std::filesystem::remove(root_.path() + "/system/etc/s5k3_1");
  EXPECT_EQ(kDefaults, ReadLensCoefficients(false));
}

TEST_F(LensFiles, ADirectoryIsNoFile) {
  std::filesystem::create_directories(root_.path() + "/sys/android_camera/sensor");
  std::filesystem::create_directories(root_.path() + "/system/etc/_1");
  EXPECT_EQ(kDefaults, ReadLensCoefficients(false));
}

TEST_F(LensFiles, NumbersHaveADecimalPointInEveryLocale) {
  write_sensor("back lens");
  const CommaLocale comma;
  write("/system/etc/lens_1", "r_param 1.25 -0.5 .125 2.5e-1");
  EXPECT_EQ((std::array<float, 4>{1.25f, -0.5f, 0.125f, 0.25f}), ReadLensCoefficients(false));
  write("/system/etc/lens_1", "r_param 1,25 2 3 4");
  EXPECT_EQ((std::array<float, 4>{1, k1, k2, k3}), ReadLensCoefficients(false));
  float number = 0;
  EXPECT_EQ(std::sscanf("1,25", "%f", &number), 1);
  EXPECT_EQ(number, 1.25f) << "the host keeps its locale";
}

// All that could be a number or nearly: what counts is what the C library's reader makes of it.
TEST_F(LensFiles, NumbersAreThoseOfTheCLibrary) {
  write_sensor("back lens");
  std::mt19937 random(17);
  const char* const kWords[] = {"1",   "-2.5", "+.5", "3.",    "1e3",  "1E-2", "0x1p3",  "0x.8",
                                "007", "1e",   "1e+", "0x",    "1e50", "-inf", "nan(1)", "infinit",
                                ".",   "-",    "+-1", "1.2.3", "4d",   "1_0",  "1e-60",  "x"};
  const char* const kBetween[] = {" ", " ", " ", "\t", "\n", "  ", ",", ""};
  int all = 0;
  for (int round = 0; round < 300; ++round) {
    std::string text;
    for (int word = 0; word < 4; ++word) {
      const size_t likely = random() % 4 == 0 ? std::size(kWords) : 8;
      text += kWords[random() % likely];
      text += kBetween[random() % std::size(kBetween)];
    }
    std::array<float, 4> expected = kDefaults;
    std::array<float, 4> told = {};
    const int count =
        std::sscanf(text.c_str(), "%f %f %f %f", &told[0], &told[1], &told[2], &told[3]);
    for (size_t i = 0; static_cast<int>(i) < count && std::isfinite(told[i]); ++i) {
      expected[i] = told[i];
    }
    write("/system/etc/lens_1", "r_param=" + text);
    ASSERT_EQ(expected, ReadLensCoefficients(false)) << text;
    all += expected[3] != k3 ? 1 : 0;
  }
  EXPECT_GT(all, 50);
}

// Nobody writes into the pipes, and devices have no end: reading either would never return.
TEST_F(LensFiles, OnlyRegularFilesAreRead) {
  write("/system/etc/lens_1", "r_param 1 2 3 4");
  write("/system/etc/_1", "r_param 5 6 7 8");  // of a sensor without a name
  const std::string sensor = root_.path() + "/sys/android_camera/sensor";
  const std::string lens = root_.path() + "/system/etc/lens_1";
  constexpr std::array<float, 4> kNameless = {5, 6, 7, 8};
  alarm(20);
  std::filesystem::create_directories(root_.path() + "/sys/android_camera");
  ASSERT_EQ(mkfifo(sensor.c_str(), 0600), 0);
  EXPECT_EQ(kNameless, ReadLensCoefficients(false));
  std::filesystem::remove(sensor);
  std::filesystem::create_symlink("/dev/zero", sensor);
  EXPECT_EQ(kNameless, ReadLensCoefficients(false));
  std::filesystem::remove(sensor);

  write_sensor("back lens");
  EXPECT_EQ((std::array<float, 4>{1, 2, 3, 4}), ReadLensCoefficients(false));
  std::filesystem::remove(lens);
  ASSERT_EQ(mkfifo(lens.c_str(), 0600), 0);
  EXPECT_EQ(kDefaults, ReadLensCoefficients(false));
  // One that has something to say is no file either.
  const int pipe = open(lens.c_str(), O_RDWR);
  ASSERT_EQ(::write(pipe, "r_param 1 2 3 4", 15), 15);
  EXPECT_EQ(kDefaults, ReadLensCoefficients(false));
  close(pipe);
  alarm(0);
  std::filesystem::remove(lens);
  write("/elsewhere", "r_param 1 2 3 4");
  std::filesystem::create_symlink(root_.path() + "/elsewhere", lens);
  EXPECT_EQ((std::array<float, 4>{1, 2, 3, 4}), ReadLensCoefficients(false)) << "links lead on";
}

struct Sensor {
  const char* title;
  std::string content;
  std::string name;  ///< what the sensor is called then
};
void PrintTo(const Sensor& sensor, std::ostream* out) {
  *out << sensor.title;
}

class SensorFiles : public LensFiles, public testing::WithParamInterface<Sensor> {};

TEST_P(SensorFiles, NameTheSensorByTheWordAfterTheFirstSpace) {
  write_sensor(GetParam().content);
  const std::string file = "/system/etc/" + GetParam().name + "_1";
  EXPECT_EQ(kDefaults, ReadLensCoefficients(false));
  write(file, "r_param 9 8 7 6");
  EXPECT_EQ((std::array<float, 4>{9, 8, 7, 6}), ReadLensCoefficients(false)) << file;
}

INSTANTIATE_TEST_SUITE_P(
    Contents, SensorFiles,
    testing::Values(Sensor{"TwoWords", "back imx135", "imx135"},
                    Sensor{"ThreeWords", "back imx135 v2", "imx135"},
                    Sensor{"WhiteSpaceBeforeTheWord", "back \t\r\n  imx135\n", "imx135"},
                    Sensor{"SpaceFirst", " imx135", "imx135"},
                    Sensor{"NewlineEndsTheWord", "back imx135\nmore", "imx135"},
                    Sensor{"NoSpace", "imx135", ""}, Sensor{"NoSpaceButATab", "back\timx135", ""},
                    Sensor{"Empty", "", ""}, Sensor{"OnlyASpace", " ", ""},
                    Sensor{"NothingAfterTheSpace", "imx135 \n", ""},
                    Sensor{"ZeroByteBeforeTheSpace", std::string("a\0 b", 4), ""},
                    Sensor{"ZeroByteInTheWord", std::string("a b\0c", 5), "b"},
                    Sensor{"SpaceJustInside", std::string(98, 'x') + " y", "y"},
                    Sensor{"WordBeyondTheHundredthByte", std::string(99, 'x') + " y", ""},
                    Sensor{"SpaceBeyondTheHundredthByte", std::string(150, 'x') + " y", ""},
                    Sensor{"WordCutAtTheHundredthByte", std::string(95, 'x') + " 123456", "1234"},
                    Sensor{"LongestNameThatFits", "x " + std::string(85, 'n') + "\n",
                           std::string(85, 'n')}),
    [](const testing::TestParamInfo<Sensor>& row) { return std::string(row.param.title); });

// A name that leaves no room for the rest of the path names some other file, which is not there.
TEST_F(LensFiles, EndlessSensorNamesAreSafe) {
  for (const size_t length : {86u, 87u, 88u, 98u, 99u, 100u, 5000u}) {
    write_sensor("x " + std::string(length, 'n'));
    EXPECT_EQ(kDefaults, ReadLensCoefficients(false)) << length;
  }
}

struct Parameters {
  const char* title;
  std::string content;
  std::array<float, 4> expected;
};
void PrintTo(const Parameters& parameters, std::ostream* out) {
  *out << parameters.title;
}

class ParameterFiles : public LensFiles, public testing::WithParamInterface<Parameters> {};

TEST_P(ParameterFiles, AreTheNumbersAfterTheKeyAndOneSeparator) {
  write_sensor("back lens");
  write("/system/etc/lens_1", GetParam().content);
  EXPECT_EQ(GetParam().expected, ReadLensCoefficients(false));
}

const Parameters kParameters[] = {
    {"Blank", "r_param 1 2 3 4", {1, 2, 3, 4}},
    {"Equals", "r_param=1 2 3 4", {1, 2, 3, 4}},
    {"EqualsAndBlanks", "r_param=  1   2\t3\n4\n", {1, 2, 3, 4}},
    {"Colon", "r_param:1 2 3 4", {1, 2, 3, 4}},
    {"Newline", "r_param\n1\n2\n3\n4", {1, 2, 3, 4}},
    {"TwoSeparators", "r_param==1 2 3 4", kDefaults},
    {"BlankBeforeEquals", "r_param =1 2 3 4", kDefaults},
    {"ADigitIsASeparatorToo", "r_param7 1 2 3", {1, 2, 3, k3}},
    {"Exponents", "r_param 1e0 -2.5e-1 +.5 0x10", {1, -0.25f, 0.5f, 16}},
    {"OtherTextAround", "lens x\nr_param 1 2 3 4\nend", {1, 2, 3, 4}},
    {"KeyWithinAWord", "pr_params1 2 3 4", {1, 2, 3, 4}},
    {"FirstKeyCounts", "r_param 1 2 3 4 r_param 5 6 7 8", {1, 2, 3, 4}},
    {"MoreNumbers", "r_param 1 2 3 4 5 6", {1, 2, 3, 4}},
    {"ThreeNumbers", "r_param 1 2 3", {1, 2, 3, k3}},
    {"TwoNumbers", "r_param 1 2", {1, 2, k2, k3}},
    {"OneNumber", "r_param 1\n", {1, k1, k2, k3}},
    {"NoNumber", "r_param \n", kDefaults},
    {"KeyAtTheEnd", "r_param", kDefaults},
    {"KeyAndSeparatorAtTheEnd", "r_param=", kDefaults},
    {"NotANumber", "r_param x 2 3 4", kDefaults},
    {"NotANumberLater", "r_param 1 2 x 4", {1, 2, k2, k3}},
    {"CommasEndTheNumbers", "r_param 1,2,3,4", {1, k1, k2, k3}},
    {"NanEndsTheNumbers", "r_param 1 nan 3 4", {1, k1, k2, k3}},
    {"InfEndsTheNumbers", "r_param 1 2 -inf 4", {1, 2, k2, k3}},
    {"InfinityFirst", "r_param infinity 2 3 4", kDefaults},
    {"TooLargeEndsTheNumbers", "r_param 1 2 3 1e999", {1, 2, 3, k3}},
    {"TooLargeAndNegative", "r_param -1e999 2 3 4", kDefaults},
    {"TheLargest", "r_param 3.4028234e38 1 1 1", {3.4028234e38f, 1, 1, 1}},
    {"JustTooLarge", "r_param 1 3.4028236e38 1 1", {1, k1, k2, k3}},
    {"TooSmallIsZero", "r_param 1e-999 -1e-999 3 4", {0, -0.0f, 3, 4}},
    {"OtherCase", "R_PARAM 1 2 3 4", kDefaults},
    {"OtherKey", "k_param 1 2 3 4", kDefaults},
    {"Empty", "", kDefaults},
    {"OnlyBlanks", "   \n\n", kDefaults},
    {"ZeroByteBeforeTheKey", std::string("\0r_param 1 2 3 4", 16), kDefaults},
    {"ZeroByteAfterTheKey", std::string("r_param\0 1 2 3 4", 16), kDefaults},
    {"HundredBytesThatEndInANumber", std::string(88, ' ') + "r_param 1234", {1234, k1, k2, k3}},
    {"NumberCutAtTheHundredthByte", std::string(89, ' ') + "r_param 1234", {123, k1, k2, k3}},
    {"KeyEndsAtTheHundredthByte", std::string(93, ' ') + "r_param 1 2 3 4", kDefaults},
    {"KeyCutAtTheHundredthByte", std::string(94, ' ') + "r_param 1 2 3 4", kDefaults},
    {"KeyBeyondTheHundredthByte", std::string(5000, ' ') + "r_param 1 2 3 4", kDefaults},
    {"LongTextAfterTheNumbers", "r_param 1 2 3 4\n" + std::string(100000, '9'), {1, 2, 3, 4}}};

INSTANTIATE_TEST_SUITE_P(Contents, ParameterFiles, testing::ValuesIn(kParameters),
                         [](const testing::TestParamInfo<Parameters>& row) {
                           return std::string(row.param.title);
                         });

}  // namespace
}  // namespace lumora::test
