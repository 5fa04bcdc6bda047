// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "tests/tools/pictures.h"
#include "tests/tools/process.h"

namespace lumora::test {
namespace {

using testing::HasSubstr;

TEST(Demo, WritesEveryPortraitBeforeAndAfter) {
  const Folder folder;
  const std::string target = folder / "new/demo";
  const Result result =
      RunLumora({"demo", target, "--size", "320", "--slim", "100", "--capture", "1600"});
  ASSERT_EQ(result.exit_code, 0) << result.err;
  EXPECT_EQ(Lines(result.out), 25) << result.out;
  for (int i = 1; i <= 4; ++i) {
    SCOPED_TRACE(i);
    const std::string name = target + "/portrait-" + std::to_string(i);
    const cv::Mat before = Decode(ReadFile(name + "-before.png"));
    const cv::Mat after = Decode(ReadFile(name + "-after.png"));
    ASSERT_EQ(before.size(), cv::Size(320, 320));
    ASSERT_EQ(after.size(), before.size());
    EXPECT_GT(cv::norm(before, after, cv::NORM_INF), 60);
    EXPECT_EQ(LargestDifferenceOutside(before, after, {160, 0.53 * 320}, 0.42 * 320), 0);
    EXPECT_GT(Decode(ReadFile(name + "-compare.png")).cols, 640);
    EXPECT_THAT(result.out, HasSubstr(name + "-compare.png\n"));
  }
  EXPECT_GT(Decode(ReadFile(target + "/overview.png")).cols, 5 * 320);
  EXPECT_EQ(Decode(ReadFile(target + "/group-after.png")).size(), cv::Size(640, 480));
  EXPECT_EQ(Decode(ReadFile(target + "/capture-after.jpg")).size(), cv::Size(1600, 1200));
  EXPECT_THAT(result.out, HasSubstr(target + "/overview.png\n"));
}

/// How much brighter the middle of the cheeks of a demo portrait got, on the average.
double Brightening(const std::string& name) {
  const cv::Mat before = Decode(ReadFile(name + "-before.png"));
  const cv::Mat after = Decode(ReadFile(name + "-after.png"));
  cv::Scalar change;
  for (const double x : {0.4, 0.6}) {
    const cv::Rect cheek(static_cast<int>(x * before.cols) - 6,
                         static_cast<int>(0.52 * before.rows) - 6, 12, 12);
    change += cv::mean(after(cheek)) - cv::mean(before(cheek));
  }
  return (change[0] + change[1] + change[2]) / 6;
}

TEST(Demo, WhitensEverySkinTone) {
  const Folder folder;
  const Result result = RunLumora({"demo", folder / "d", "--size", "320", "--slim", "0", "--whiten",
                                   "100", "--saturate", "0", "--capture", "0"});
  ASSERT_EQ(result.exit_code, 0) << result.err;
  for (int i = 1; i <= 4; ++i) {
    SCOPED_TRACE(i);
    const double brightening = Brightening(folder / ("d/portrait-" + std::to_string(i)));
    EXPECT_GT(brightening, 2);  // bright skin is lifted least
    EXPECT_LT(brightening, 60);
  }
}

TEST(Demo, RectificationMakesTheTiltedPictureStraight) {
  const Folder folder;
  ASSERT_EQ(RunLumora({"demo", folder / "d", "--size", "320", "--capture", "0"}).exit_code, 0);
  const cv::Mat drawn = Decode(ReadFile(folder / "d/portrait-3-before.png"));
  const cv::Mat steps = Decode(ReadFile(folder / "d/portrait-3-steps.png"));
  // The first two pictures of the row, found by the row's own layout: equal gaps, then pictures.
  const int gap = (steps.cols - 5 * drawn.cols) / 6, top = steps.rows - gap - drawn.rows;
  const auto step = [&](int i) {
    return steps(cv::Rect(gap + i * (drawn.cols + gap), top, drawn.cols, drawn.rows));
  };
  const auto difference = [&](const cv::Mat& other) {
    return cv::norm(drawn, other, cv::NORM_L1) / static_cast<double>(drawn.total() * 3);
  };
  EXPECT_GT(difference(step(0)), 8);
  EXPECT_LT(difference(step(1)), 4);  // resampled twice
}

TEST(Doctor, FindsEverythingInOrder) {
  const Result result = RunLumora({"doctor"});
  EXPECT_EQ(result.exit_code, 0) << result.out << result.err;
  for (const char* name :
       {"device", "display", "driver", "buffers", "program binaries", "cache directory",
        "face finder", "drawing", "face classifiers", "gl slimming", "gl whitening", "speed"}) {
    EXPECT_THAT(result.out, HasSubstr(std::string("OK      ") + name));
  }
  EXPECT_THAT(result.out, testing::Not(HasSubstr("FAILED")));
}

TEST(Doctor, ReportsForMachines) {
  const Result result = RunLumora({"doctor", "--json"});
  EXPECT_EQ(result.exit_code, 0);
  const auto report = nlohmann::json::parse(result.out);
  EXPECT_TRUE(report.at("ok").get<bool>());
  EXPECT_GE(report.at("checks").size(), 13u);
  EXPECT_EQ(report.at("device"), TestDevice());
  EXPECT_EQ(report.at("reason"), "LUMORA_DEVICE asks for it");
  EXPECT_EQ(report.at("no_gl"), nullptr);
  EXPECT_GT(report.at("frame_ms").at("gl").get<double>(), 0);
}

TEST(Doctor, SaysWhatIsWrongWithACacheThatCannotBeWritten) {
  const Folder folder;
  const std::string file = folder.Put("file", std::string("not a folder"));
  const Result result = RunLumora({"doctor"}, {}, {{{"LUMORA_CACHE_DIR", file}}});
  if (result.out.find("not offered") != std::string::npos) GTEST_SKIP() << "no cache in use";
  EXPECT_EQ(result.exit_code, 1) << result.out;
  EXPECT_THAT(result.out, HasSubstr("FAILED  cache directory"));
  EXPECT_THAT(result.out, HasSubstr("OK      gl slimming"));
}

TEST(Doctor, SaysWhyACacheIsNotTrusted) {
  const Folder folder;
  namespace fs = std::filesystem;
  const fs::path cache = fs::path(folder / "cache");
  fs::create_directory(cache);
  fs::permissions(cache, fs::perms::all);
  const Environment environment = {{{"LUMORA_CACHE_DIR", cache.string()}}};
  const Result result = RunLumora({"doctor"}, {}, environment);
  if (result.out.find("not offered") != std::string::npos) GTEST_SKIP() << "no cache in use";
  EXPECT_EQ(result.exit_code, 1) << result.out;
  EXPECT_THAT(result.out, HasSubstr("FAILED  cache directory   " + cache.string() +
                                    " is not used: others may write it"));
  fs::permissions(cache, fs::perms::owner_all);
  EXPECT_THAT(RunLumora({"doctor"}, {}, environment).out,
              HasSubstr("OK      cache directory   " + cache.string() + "\n"));
}

#ifdef LUMORA_UNSHARING_DRIVER
TEST(Doctor, SaysThatCopiesWorkWhereSharedMemoryDoesNot) {
  const auto doctor = [](const char* kind) {
    return RunLumora({"doctor"}, {},
                     {{{"LD_PRELOAD", LUMORA_UNSHARING_DRIVER}, {"LUMORA_BUFFER", kind}}});
  };
  const Result shared = doctor("memobj");
  if (shared.out.find("buffers           staged") != std::string::npos) {
    GTEST_SKIP() << "no memory is shared here";
  }
  EXPECT_EQ(shared.exit_code, 1);
  EXPECT_THAT(shared.out, HasSubstr("FAILED  gl slimming"));
  EXPECT_THAT(shared.out, HasSubstr("OK      copied buffers    the tests pass with "
                                    "LUMORA_BUFFER=staged; set it to work with this driver\n"));
  const Result copied = doctor("staged");
  EXPECT_EQ(copied.exit_code, 0) << copied.out;
  EXPECT_THAT(copied.out, testing::Not(HasSubstr("copied buffers")));
}
#endif

TEST(EngineLog, IsSilentUnlessAskedFor) {
  EXPECT_EQ(RunLumora({"doctor"}).err, "");
  EXPECT_THAT(RunLumora({"doctor"}, {}, {{{"LUMORA_LOG", "info"}}}).err, HasSubstr("Lumora: "));
}

TEST(DriverCache, IsNotMissedAloudWhereThereIsNoPlaceForIt) {
  const Folder folder;
  const std::string file = folder.Put("file", std::string("no folder"));
  const std::string in = folder.Put("in.png", PngOf(PortraitOf(64, 64).picture));
  for (const std::string& caches :
       {file, folder / "no/such", std::string("/proc"), std::string()}) {
    SCOPED_TRACE(caches);
    Environment environment;
    environment.set = {{"XDG_CACHE_HOME", caches}, {"LUMORA_CACHE_DIR", folder / "ours"}};
    const Result result = RunLumora({"convert", in, "-o", "-", "--to", "hsi"}, {}, environment);
    EXPECT_EQ(result.exit_code, 0);
    EXPECT_EQ(result.err, "");
  }
}

TEST(NoDisplay, EndsWithCode4) {
  // Without a driver library there is no display.
  const Environment no_driver = {
      {{"__EGL_VENDOR_LIBRARY_FILENAMES", "/dev/null"}, {"LUMORA_DEVICE", "gl"}}};
  const Folder folder;
  const Result doctor = RunLumora({"doctor"}, {}, no_driver);
  if (doctor.exit_code == 0) GTEST_SKIP() << "EGL is not dispatched to vendors here";
  EXPECT_EQ(doctor.exit_code, 4);
  EXPECT_THAT(doctor.out, HasSubstr("FAILED  display"));
  const Sitter sitter = PortraitOf(200, 200);
  const std::string in = folder.Put("in.png", PngOf(sitter.picture));
  const std::string faces = folder.Put("faces.json", sitter.faces_json);
  const Result photo =
      RunLumora({"photo", in, "-o", folder / "out.png", "--faces", faces}, {}, no_driver);
  EXPECT_EQ(photo.exit_code, 4);
  EXPECT_THAT(photo.err, testing::StartsWith("lumora: "));
  EXPECT_EQ(Lines(photo.err), 1) << photo.err;
  EXPECT_THAT(folder.Names(), testing::ElementsAre("faces.json", "in.png"));
}

}  // namespace
}  // namespace lumora::test
