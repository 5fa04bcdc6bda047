// Cache files that are not what they should be: each is told, compiled around and replaced.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <random>
#include <string>

#include "gl/cache_fixture.h"
#include "gl/gl_faults.h"
#include "lumora/programs/rectification_programs.h"

namespace lumora::test {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

const Lines kBadFormat = {Info("EGLImageTest", "after gl Load Vertex Shader() glError (0x500)\n")};

class BadCacheFile : public CacheTest {
 protected:
  void SetUp() override {
    CacheTest::SetUp();
    if (HasFatalFailure() || IsSkipped()) return;
    good_ = GoodFile();
  }

  /// Loads with a bad file in place: `refusal` is told, `afterwards` while compiling; the program
  /// works, and the file is a good one again.
  void ExpectRecovery(const Lines& refusal, const std::string& what, const Lines& afterwards = {}) {
    log().take();
    GLProgRGB2HSI program;
    EXPECT_TRUE(program.Load()) << what;
    EXPECT_TRUE(LogIs(log(), refusal + SwitchToCompiling() + afterwards + CompiledWell() +
                                 Saved(program) + Located(program)))
        << what;
    EXPECT_TRUE(program.Use()) << what;
    EXPECT_TRUE(ReadFile(path()) == ExpectedFile(program)) << what << ": not rewritten";
    EXPECT_THAT(NamesIn(directory().path()), ElementsAre("prog_rgb2hsi.bin")) << what;
  }

  /// A load that the place of the cache file does not let save; compiles all the same.
  void ExpectNoCache(const std::string& file) {
    log().take();
    GLProgRGB2HSI program;
    EXPECT_TRUE(program.Load());
    const Lines not_saved = {
        Error("GLProgram", "[SaveBinary] can't open %s for writing", file.c_str())};
    EXPECT_TRUE(LogIs(log(), CannotOpen(file) + SwitchToCompiling() + CompiledWell() +
                                 Saved(program) + not_saved + Located(program)));
    EXPECT_TRUE(program.Use());
  }

  std::string good_;
};

TEST_F(BadCacheFile, Missing) {
  fs::remove(path());
  ExpectRecovery(CannotOpen(path()), "missing");
}

TEST_F(BadCacheFile, ShorterThanItsFormatWord) {
  for (size_t size = 0; size < 4; ++size) {
    WriteFile(path(), good_.substr(0, size));
    ExpectRecovery(InvalidLength(), std::to_string(size) + " bytes");
  }
}

TEST_F(BadCacheFile, CutOffAnywhereBehindTheFormatWord) {
  for (size_t size = 4; size < good_.size(); size += size < 64 ? 4 : 97) {
    WriteFile(path(), good_.substr(0, size));
    ExpectRecovery(Refused(), std::to_string(size) + " bytes");
  }
  WriteFile(path(), good_.substr(0, good_.size() - 1));
  ExpectRecovery(Refused(), "one byte missing");
}

TEST_F(BadCacheFile, CorruptedAnywhereBehindTheFormatWord) {
  std::mt19937 random(2024);
  for (int round = 0; round < 100; ++round) {
    std::string bad = good_;
    const size_t count = round % 3 == 0 ? 1 : round % 3 == 1 ? 16 : bad.size() - 4;
    for (size_t i = 0; i < count; ++i) {
      bad[4 + random() % (bad.size() - 4)] ^= static_cast<char>(1 + random() % 255);
    }
    if (bad == good_) continue;  // changed back by accident
    WriteFile(path(), bad);
    ExpectRecovery(Refused(), "corruption " + std::to_string(round));
  }
}

TEST_F(BadCacheFile, OfAnotherFormat) {
  std::string bad = good_;
  const unsigned int format = 0xDEAD;
  std::memcpy(bad.data(), &format, sizeof(format));
  WriteFile(path(), bad);
  // The driver's error waits in the queue for the next check.
  ExpectRecovery(Refused(), "format 0xDEAD", kBadFormat);
}

TEST_F(BadCacheFile, OfForeignBytes) {
  WriteFile(path(), "#!/bin/sh\necho this is no program binary\n");
  ExpectRecovery(Refused(), "a script", kBadFormat);
  WriteFile(path(), std::string(100000, '\0'));
  ExpectRecovery(Refused(), "zeros", kBadFormat);
}

TEST_F(BadCacheFile, OfATooLargeSize) {
  for (const off_t size : {off_t{1} << 31, off_t{1} << 40}) {
    WriteFile(path(), good_);
    ASSERT_EQ(truncate(path().c_str(), size), 0);
    ExpectRecovery(InvalidLength(), std::to_string(size) + " bytes, sparse");
  }
}

TEST_F(BadCacheFile, NamedPipeDoesNotBlock) {
  fs::remove(path());
  ASSERT_EQ(mkfifo(path().c_str(), 0600), 0);
  ExpectRecovery(CannotOpen(path()), "named pipe");
}

TEST_F(BadCacheFile, SymbolicLinkThatLeadsToItself) {
  fs::remove(path());
  fs::create_symlink("prog_rgb2hsi.bin", path());
  ExpectRecovery(CannotOpen(path()), "link loop");
  EXPECT_FALSE(fs::is_symlink(path()));
}

TEST_F(BadCacheFile, SymbolicLinkThatLeadsNowhere) {
  fs::remove(path());
  fs::create_symlink("/nonexistent/program", path());
  ExpectRecovery(CannotOpen(path()), "dangling link");
}

TEST_F(BadCacheFile, NotReadableButReplaceable) {
  if (geteuid() == 0) GTEST_SKIP() << "root reads everything";
  fs::permissions(path(), fs::perms::none);
  ExpectRecovery(CannotOpen(path()), "mode 000");
}

TEST_F(BadCacheFile, DirectoryInItsPlaceStaysAndIsToldAsUnwritable) {
  fs::remove(path());
  WriteFile(path() + "/inside", "kept");
  ExpectNoCache(path());
  EXPECT_THAT(NamesIn(directory().path()), ElementsAre("prog_rgb2hsi.bin"));
  EXPECT_EQ(ReadFile(path() + "/inside"), "kept");
}

TEST_F(BadCacheFile, CacheDirectoryThatCannotBeMade) {
  // A regular file on the way stops root as well.
  const std::string below = path() + "/cache";
  const ScopedEnvironment environment("LUMORA_CACHE_DIR", below);
  for (int start = 0; start < 2; ++start) ExpectNoCache(below + "/prog_rgb2hsi.bin");
  EXPECT_TRUE(ReadFile(path()) == good_);
}

TEST_F(BadCacheFile, CacheDirectoryWithoutWritePermission) {
  if (geteuid() == 0) GTEST_SKIP() << "root writes everywhere";
  fs::remove(path());
  fs::permissions(directory().path(), fs::perms::owner_read | fs::perms::owner_exec);
  ExpectNoCache(path());
}

TEST_F(BadCacheFile, RefusedProgramIsNotDeletedByCompiling) {
  WriteFile(path(), good_.substr(0, 50));
  GlFaults seen;
  GLProgRGB2HSI program;
  ASSERT_TRUE(program.Load());
  ASSERT_EQ(seen.programs_made.size(), 2u) << "one for the binary, one for the source";
  EXPECT_EQ(program.m_hProgram, seen.programs_made[1]);
  EXPECT_TRUE(seen.programs_deleted.empty());
}

TEST_F(BadCacheFile, TrailingBytesAreTheDriversToJudge) {
  WriteFile(path(), good_ + std::string(16, 'x'));
  GLProgRGB2HSI program;
  EXPECT_TRUE(program.Load());
  EXPECT_TRUE(program.Use());
}

// The driver takes any binary that it made itself. What notices is the look-up of a location that
// the other program has not.
TEST_F(BadCacheFile, OfAnotherProgramIsNoticedByItsLocations) {
  GLProgRadialDistortion other;
  ASSERT_TRUE(other.Load());
  const std::string file = directory().file("prog_rgb2y.bin");
  fs::copy_file(directory().file("prog_radial_distortion_mask.bin"), file);
  log().take();
  GLProgRGBtoY program;
  EXPECT_FALSE(program.Load());
  EXPECT_TRUE(LogIs(
      log(), {Info(kNoTag, "[Load] get locations"),
              Error("GLProgram", "[LocIsValid] invalid m_nUniformLoc[UNIFORM_SHIFT] == -1")}));
  EXPECT_EQ(ReadFile(file), ReadFile(directory().file("prog_radial_distortion_mask.bin")))
      << "so that the next load fails as well";
}

}  // namespace
}  // namespace lumora::test
