// SPDX-License-Identifier: Apache-2.0
// The gl backend as a module: loaded where it is needed, and told of where it is not to be had. An
// application of its own runs with copies of the library.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "lumora/pipeline/status.h"

namespace lumora::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

constexpr char kModuleFile[] = "lumora/liblumora-pipeline-gl.so";
constexpr char kCpuIsThere[] = "; the device cpu needs none of it";

/// What the application told.
struct Told {
  StatusCode code = StatusCode::Ok;
  std::string message, device, reason, libraries;
};

/// A folder with the library alone, and a root of a machine without a GPU.
class GlModuleTest : public testing::TestWithParam<const char*> {
 protected:
  GlModuleTest() {
    std::string name = (fs::temp_directory_path() / "gl-module-XXXXXX").string();
    folder_ = mkdtemp(name.data());
    fs::copy(LUMORA_PIPELINE_FILE, folder_ / LUMORA_PIPELINE_NAME);
    fs::create_directories(folder_ / "lumora");
    fs::create_directories(root() / "dev/dri");
  }
  ~GlModuleTest() override { fs::remove_all(folder_); }

  fs::path root() const { return folder_ / "root"; }
  fs::path module() const { return folder_ / kModuleFile; }
  void AddGpu() { std::ofstream(root() / "dev/dri/renderD128").put('\n'); }
  void AddModule(const char* file = LUMORA_MODULE_FILE) { fs::copy(file, module()); }

  /// Nothing is told where the application does not start.
  Told Run(const std::string& device, const std::string& settings = "") {
    const std::string line = "export LUMORA_DEVICE=; " + settings + " LD_LIBRARY_PATH='" +
                             folder_.string() + "' LUMORA_SYSTEM_ROOT='" + root().string() + "' '" +
                             LUMORA_PROBE + "' " + device + " " + GetParam();
    std::string text;
    std::FILE* const pipe = popen(line.c_str(), "r");
    for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) text += static_cast<char>(c);
    pclose(pipe);
    std::vector<std::string> fields(1);
    for (const char c : text) {
      c == '|' ? fields.emplace_back() : fields.back() += c;
    }
    fields.resize(5);
    return {static_cast<StatusCode>(std::atoi(fields[0].c_str())), fields[1], fields[2], fields[3],
            fields[4]};
  }

  void ExpectNoGl(const std::string& sentence) {
    const Told gl = Run("gl");
    EXPECT_EQ(gl.code, StatusCode::NoDisplay);
    EXPECT_THAT(gl.message, HasSubstr(sentence));
    EXPECT_THAT(gl.message, testing::EndsWith(kCpuIsThere));
    AddGpu();
    const Told chosen = Run("auto");
    EXPECT_EQ(chosen.code, StatusCode::Ok) << chosen.message;
    EXPECT_EQ(chosen.device, "cpu");
    EXPECT_THAT(chosen.reason, testing::StartsWith("gl is not to be had: "));
    EXPECT_THAT(chosen.reason, HasSubstr(sentence));
  }

  fs::path folder_;
};
INSTANTIATE_TEST_SUITE_P(Of, GlModuleTest, testing::Values("pipeline", "converter"),
                         [](const auto& owner) { return owner.param; });

TEST_P(GlModuleTest, IsLoadedWhenGlIsAskedFor) {
  AddModule();
  const Told asked = Run("gl");
  EXPECT_EQ(asked.code, StatusCode::Ok) << asked.message;
  EXPECT_EQ(asked.device, "gl");
  EXPECT_EQ(asked.libraries, "engine EGL");
  const Told set = Run("auto", "LUMORA_DEVICE=gl");
  EXPECT_EQ(set.device, "gl");
  EXPECT_EQ(set.reason, "LUMORA_DEVICE asks for it");
}

TEST_P(GlModuleTest, IsNotLoadedOnAMachineWithoutAGpuNorWhereCpuIsWanted) {
  AddModule();
  const Told chosen = Run("auto");
  EXPECT_EQ(chosen.device, "cpu");
  EXPECT_EQ(chosen.reason, "this machine has no GPU");
  EXPECT_EQ(chosen.libraries, "");
  AddGpu();
  EXPECT_EQ(Run("cpu").libraries, "");
  EXPECT_EQ(Run("auto", "LUMORA_DEVICE=cpu").libraries, "");
}

TEST_P(GlModuleTest, IsAskedWhereThereMayBeAGpu) {
  AddModule();
  AddGpu();
  const Told chosen = Run("auto");
  EXPECT_EQ(chosen.libraries, "engine EGL");
  // Whichever renderer this machine has.
  EXPECT_THAT(chosen.device + ": " + chosen.reason,
              testing::AnyOf(testing::StartsWith("cpu: gl would be drawn by software, "),
                             testing::StartsWith("gl: gl is drawn by hardware, ")));
}

TEST_P(GlModuleTest, ThatIsMissingIsTold) {
  ExpectNoGl("the part of the library that drives GL is missing: " + module().string());
}

TEST_P(GlModuleTest, OfAnotherVersionIsTold) {
  AddModule(LUMORA_OTHER_MODULE);
  ExpectNoGl("the part of the library that drives GL belongs to another version of it: " +
             module().string());
}

TEST_P(GlModuleTest, ThatIsDamagedIsTold) {
  std::ofstream(module()) << "not a library";
  ExpectNoGl("the part of the library that drives GL cannot be loaded: ");
}

TEST_P(GlModuleTest, WithoutEglIsTold) {
  AddModule();
  std::ofstream(folder_ / "libEGL.so.1").flush();  // found first
  ExpectNoGl("libEGL.so.1");
}

TEST_P(GlModuleTest, WhoseMemoryIsShortIsTold) {
  if (LUMORA_TEST_SANITIZERS != 0) GTEST_SKIP() << "sanitizers reserve address space";
  AddModule();
  // From nothing at all, in which the process itself does not start, to where the module fits.
  bool short_of_memory = false;
  for (int kibibytes = 5000; kibibytes < 40000 && !short_of_memory; kibibytes += 250) {
    const Told told = Run("gl", "exec 2>&-; ulimit -v " + std::to_string(kibibytes) + ";");
    short_of_memory = told.code == StatusCode::EngineFailed && told.message == "out of memory";
    EXPECT_THAT(told.message, testing::Not(HasSubstr("cannot be loaded"))) << kibibytes;
  }
  EXPECT_TRUE(short_of_memory);
}

}  // namespace
}  // namespace lumora::test
