// SPDX-License-Identifier: Apache-2.0
// What the command computes with: as it is told, and told.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/tools/clips.h"
#include "tests/tools/pictures.h"
#include "tests/tools/process.h"

namespace lumora::test {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using testing::HasSubstr;

using Words = std::vector<std::string>;

/// A portrait and a clip of it, and the command lines that draw them.
class Devices : public testing::Test {
 protected:
  Words Photo() const {
    return {"photo", in_, "-o", folder_ / "out.png", "--slim", "50", "--faces", faces_};
  }
  Words Video() const {
    return {"video", clip_, "-o", folder_ / "out.y4m", "--slim", "50", "--faces", lines_};
  }
  Words Rectify() const { return {"rectify", in_, "-o", folder_ / "out.png", "--degree", "8"}; }
  Words Convert() const { return {"convert", in_, "-o", folder_ / "out.png", "--to", "hsi"}; }

  static Words With(Words words, const Words& more) {
    words.insert(words.end(), more.begin(), more.end());
    return words;
  }

  const Folder folder_;
  const Sitter sitter_ = PortraitOf(160, 120);
  const Scene scene_ = MovingPortrait(160, 120, 2);
  const std::string in_ = folder_.Put("in.png", PngOf(sitter_.picture));
  const std::string faces_ = folder_.Put("faces.json", sitter_.faces_json);
  const std::string clip_ = folder_.Put("in.y4m", scene_.clip.Text());
  const std::string lines_ = folder_.Put("faces.jsonl", scene_.faces);
};

TEST_F(Devices, OneThatThereIsNotIsAUsageError) {
  const std::vector<std::string> before = folder_.Names();
  const Words commands[] = {Photo(),   Video(),   Rectify(), Convert(), {"demo", folder_ / ""},
                            {"bench"}, {"doctor"}};
  for (const Words& words : commands) {
    SCOPED_TRACE(words.front());
    const Result option = RunLumora(With(words, {"--device", "gpu"}));
    EXPECT_EQ(option.exit_code, 2);
    EXPECT_THAT(option.err, HasSubstr("--device: gpu not in {auto,cpu,gl}"));
    EXPECT_EQ(Lines(option.err), 1) << option.err;
    EXPECT_EQ(folder_.Names(), before);
    const Result setting = RunLumora(words, {}, {{{"LUMORA_DEVICE", "gpu"}}});
    EXPECT_EQ(setting.exit_code, 2);
    EXPECT_THAT(setting.err,
                HasSubstr("LUMORA_DEVICE is \"gpu\", but it has to be auto, gl or cpu"));
    EXPECT_EQ(Lines(setting.err), 1) << setting.err;
  }
}

TEST_F(Devices, ReportsTellWhichOneWorked) {
  for (const Words& words :
       {Photo(), Video(), Rectify(), Words{"bench", "--seconds", "0", "--largest", "0"}}) {
    SCOPED_TRACE(words.front());
    const Result result = RunLumora(With(words, {"--json"}));
    ASSERT_EQ(result.exit_code, 0) << result.err;
    EXPECT_EQ(nlohmann::json::parse(result.out).at("device"), TestDevice());
  }
}

TEST_F(Devices, NoneWorksWhereNothingIsToBeDrawn) {
  for (const Words& words : {Photo(), Video()}) {
    SCOPED_TRACE(words.front());
    Words off = words;
    off[5] = "0";  // the scale
    const Result result = RunLumora(With(off, {"--json"}));
    ASSERT_EQ(result.exit_code, 0) << result.err;
    EXPECT_EQ(nlohmann::json::parse(result.out).at("device"), nullptr);
  }
}

/// A machine without a GPU, and places for caches that nobody has used.
class Untouched {
 public:
  explicit Untouched(const Folder& folder) : caches_(folder / "caches") {
    fs::create_directory(caches_);
    fs::create_directory(folder / "root");
    fs::last_write_time(caches_, kLongAgo);
    environment_.set = {{"LUMORA_SYSTEM_ROOT", folder / "root"},
                        {"LUMORA_CACHE_DIR", (caches_ / "lumora").string()},
                        {"XDG_CACHE_HOME", caches_.string()},
                        {"LD_DEBUG", "libs"},
                        {"LD_DEBUG_OUTPUT", folder / "loaded"}};
    loaded_ = folder / "";
  }

  Environment With(const std::string& device) const {
    Environment environment = environment_;
    environment.set.emplace_back("LUMORA_DEVICE", device);
    return environment;
  }

  /// Whether not even a file was made and removed there.
  bool Holds() const { return fs::last_write_time(caches_) == kLongAgo; }

  /// What the dynamic linker did since the last call.
  std::string Loaded() const {
    std::string text;
    for (const auto& entry : fs::directory_iterator(loaded_)) {
      if (entry.path().stem() != "loaded") continue;
      const Bytes bytes = ReadFile(entry.path().string());
      text.append(bytes.begin(), bytes.end());
      fs::remove(entry.path());
    }
    return text;
  }

 private:
  static inline const fs::file_time_type kLongAgo = fs::file_time_type::clock::now() - 1000h;
  fs::path caches_, loaded_;
  Environment environment_;
};

TEST_F(Devices, TheProcessorNeedsNoDriverAndNoCache) {
  const Untouched machine(folder_);
  const auto drivers = testing::ContainsRegex("libEGL|libGLES|libvulkan|_dri|libLumora\\.so");
  for (const std::string& device : {std::string("cpu"), std::string("auto"), std::string()}) {
    for (const Words& words : {Photo(), Video(), Rectify(), Convert()}) {
      SCOPED_TRACE(words.front() + " " + device);
      const Result result = RunLumora(words, {}, machine.With(device));
      EXPECT_EQ(result.exit_code, 0) << result.err;
      EXPECT_EQ(result.err, "");
      const std::string loaded = machine.Loaded();
      EXPECT_THAT(loaded, HasSubstr("libLumoraPipeline"));
      EXPECT_THAT(loaded, testing::Not(drivers));
      EXPECT_TRUE(machine.Holds());
    }
  }
  // That the question is asked the right way.
  EXPECT_EQ(RunLumora(Photo(), {}, machine.With("gl")).exit_code, 0);
  EXPECT_THAT(machine.Loaded(), drivers);
  EXPECT_FALSE(machine.Holds());
}

TEST_F(Devices, WithoutADisplayTheProcessorWorks) {
  Environment no_driver = {
      {{"__EGL_VENDOR_LIBRARY_FILENAMES", "/dev/null"}, {"LUMORA_DEVICE", ""}}};
  const Result doctor = RunLumora({"doctor", "--json"}, {}, no_driver);
  EXPECT_EQ(doctor.exit_code, 0) << doctor.out << doctor.err;
  EXPECT_EQ(doctor.err, "");
  const auto report = nlohmann::json::parse(doctor.out);
  if (report.at("no_gl") == nullptr) GTEST_SKIP() << "EGL is not dispatched to vendors here";
  EXPECT_EQ(report.at("device"), "cpu");
  EXPECT_THAT(report.at("no_gl").get<std::string>(), HasSubstr("display"));
  EXPECT_GT(report.at("frame_ms").at("cpu").get<double>(), 0);
  EXPECT_EQ(report.at("frame_ms").at("gl"), nullptr);
  EXPECT_EQ(report.at("largest_difference"), nullptr);
  EXPECT_THAT(RunLumora({"doctor"}, {}, no_driver).out, HasSubstr("\nNONE    gl     "));
  for (const Words& words : {Photo(), Video(), Rectify(), Convert()}) {
    SCOPED_TRACE(words.front());
    EXPECT_EQ(RunLumora(words, {}, no_driver).exit_code, 0);
    const Result asked = RunLumora(With(words, {"--device", "gl"}), {}, no_driver);
    EXPECT_EQ(asked.exit_code, 4);
    EXPECT_EQ(Lines(asked.err), 1) << asked.err;
  }
  EXPECT_EQ(RunLumora({"doctor", "--device", "gl"}, {}, no_driver).exit_code, 4);
  EXPECT_EQ(RunLumora({"doctor", "--device", "cpu"}, {}, no_driver).exit_code, 0);
}

TEST_F(Devices, DoctorTriesBoth) {
  const Result result = RunLumora({"doctor", "--json"});
  ASSERT_EQ(result.exit_code, 0) << result.out << result.err;
  const auto report = nlohmann::json::parse(result.out);
  EXPECT_EQ(report.at("device"), TestDevice());
  EXPECT_GT(report.at("frame_ms").at("cpu").get<double>(), 0);
  EXPECT_GT(report.at("frame_ms").at("gl").get<double>(), 0);
  EXPECT_GE(report.at("largest_difference").get<int>(), 0);
  EXPECT_LE(report.at("largest_difference").get<int>(), 4);
  const std::string text = RunLumora({"doctor"}).out;
  for (const char* row : {"device            ", "cpu slimming", "gl slimming", "cpu whitening",
                          "gl whitening", "same picture", "speed             cpu "}) {
    EXPECT_THAT(text, HasSubstr(std::string("OK      ") + row));
  }
  const std::string one = RunLumora({"doctor", "--device", "cpu"}).out;
  EXPECT_THAT(one, HasSubstr("device            cpu: it was asked for\n"));
  EXPECT_THAT(one, testing::Not(HasSubstr("gl slimming")));
}

}  // namespace
}  // namespace lumora::test
