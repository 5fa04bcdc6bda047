// The sensor and parameter files of a lens, in every shape that they may have.
#include "lumora/engine/lens_files.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <ostream>

#include "lumora/platform/settings.h"
#include "support/scoped.h"

namespace lumora::test {
namespace {

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
