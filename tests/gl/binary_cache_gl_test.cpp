// SPDX-License-Identifier: Apache-2.0
// The program binary cache in good order: what it writes and reads, where, and when not at all.
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <atomic>
#include <csignal>
#include <set>
#include <string>
#include <thread>

#include "gl/cache_fixture.h"
#include "lumora/platform/settings.h"
#include "support/gl_faults.h"

namespace lumora::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

class BinaryCache : public CacheTest {};

TEST_F(BinaryCache, FirstLoadCompilesAndSaves) {
  GLProgRGB2HSI program;
  EXPECT_TRUE(program.Load());
  EXPECT_TRUE(LogIs(log(), Recompiled(CannotOpen(path()), program)));
  EXPECT_THAT(NamesIn(directory().path()), ElementsAreArray(WithSeals({"prog_rgb2hsi.bin"})));
}

TEST_F(BinaryCache, LaterLoadsCompileNothing) {
  const std::string file = GoodFile();
  GlFaults seen;
  GLProgRGB2HSI program;
  EXPECT_TRUE(program.Load());
  EXPECT_TRUE(LogIs(log(), Located(program)));
  EXPECT_EQ(seen.compiles, 0);
  EXPECT_EQ(seen.binaries_given, 1);
  EXPECT_EQ(seen.binaries_taken, 0);
  EXPECT_TRUE(ReadFile(path()) == file);
}

TEST_F(BinaryCache, FileIsTheFormatWordAndTheDriversBytes) {
  GLProgRGB2HSI program;
  ASSERT_TRUE(program.Load());
  EXPECT_TRUE(ReadFile(path()) == ExpectedFile(program));
}

TEST_F(BinaryCache, LoadMessagesCarryTheNullTagNotAnEmptyOne) {
  GoodFile();
  GLProgRGB2HSI program;
  ASSERT_TRUE(program.Load());
  EXPECT_EQ(log().lines_of(kNoTag).size(), 3u);
  EXPECT_THAT(log().lines_of(""), IsEmpty());
}

TEST_F(BinaryCache, LoadAgainDeletesTheEarlierProgram) {
  GLProgRGB2HSI program;
  ASSERT_TRUE(program.Load());
  const GLuint first = program.m_hProgram;
  GlFaults seen;
  ASSERT_TRUE(program.Load());
  EXPECT_THAT(seen.programs_deleted, ElementsAre(first));
  EXPECT_TRUE(glIsProgram(program.m_hProgram));
}

TEST_F(BinaryCache, MissingFileKeepsTheEarlierProgram) {
  GLProgRGB2HSI program;
  ASSERT_TRUE(program.Load());
  const GLuint first = program.m_hProgram;
  std::string missing = directory().file("missing.bin");
  EXPECT_FALSE(program.LoadBinary(missing.data()));
  EXPECT_EQ(program.m_hProgram, first);
  EXPECT_TRUE(glIsProgram(first));
}

// A driver that keeps its binary to itself, or has none, leaves nothing to save.
TEST_F(BinaryCache, WithoutABinaryFromTheDriverNothingIsSaved) {
  GLProgRGB2HSI program;
  GlFaults faults;
  faults.no_binaries = true;
  EXPECT_TRUE(program.Load());
  EXPECT_EQ(faults.binaries_taken, 1);
  EXPECT_THAT(NamesIn(directory().path()), IsEmpty());
  EXPECT_EQ(log().lines(6).size(), 1u) << "only that there is no file yet";
}

TEST_F(BinaryCache, SavingWithoutAProgramTellsItsId) {
  GLProgRGB2HSI program;
  std::string target = directory().file("x.bin");
  EXPECT_FALSE(program.SaveBinary(target.data()));
  EXPECT_TRUE(LogIs(log(), {Error("GLProgram", "[SaveBinary] invalid program id -1")}));
  EXPECT_THAT(NamesIn(directory().path()), IsEmpty());
}

TEST_F(BinaryCache, SavingAndLoadingByHandTakeAnyPath) {
  GLProgRGB2HSI program;
  ASSERT_TRUE(program.Load());
  log().take();
  std::string target = directory().file("by hand");
  EXPECT_TRUE(program.SaveBinary(target.data()));
  EXPECT_TRUE(LogIs(log(), Saved(program)));
  GLProgRGB2HSI other;
  EXPECT_TRUE(other.LoadBinary(target.data()));
  EXPECT_TRUE(LogIs(log(), {}));
  EXPECT_TRUE(other.Use());
}

TEST_F(BinaryCache, LoadingSaysWhenNoProgramCanBeMade) {
  GoodFile();
  GlFaults faults;
  faults.no_programs = true;
  GLProgRGB2HSI program;
  std::string file = path();
  EXPECT_FALSE(program.LoadBinary(file.data()));
  EXPECT_EQ(program.m_hProgram, 0u);
  EXPECT_TRUE(LogIs(log(), {Error("GLProgram", "[LoadBinary] can't create program\n")}));
  EXPECT_EQ(faults.binaries_given, 0);
}

TEST_F(BinaryCache, SourceThatCannotBeBuiltFailsTheLoadAndSavesNothing) {
  GlFaults faults;
  faults.programs_fail = true;
  faults.logs_are_empty = true;
  GLProgRGB2HSI program;
  EXPECT_FALSE(program.Load());
  const Lines failed = {
      Error("GLProgram", "[InitShaderProgram]m_hFaceDistProgram: Could not create program."),
      Error(kNoTag, "[Load] can't load shader")};
  EXPECT_TRUE(LogIs(log(), CannotOpen(path()) + SwitchToCompiling() + failed));
  EXPECT_THAT(NamesIn(directory().path()), IsEmpty());
}

// Without binaries on offer, neither driver nor disk is asked.
void LoadWithoutBinaries(bool GlFaults::*fault, const std::string& directory, LogCapture& log) {
  GlFaults faults;
  faults.*fault = true;
  GLProgRGB2HSI program;
  EXPECT_TRUE(program.Load());
  EXPECT_TRUE(LogIs(log, SwitchToCompiling() + CompiledWell() + Located(program)));
  std::string path = directory + "/by hand";
  EXPECT_FALSE(program.SaveBinary(path.data()));
  EXPECT_FALSE(program.LoadBinary(path.data()));
  EXPECT_TRUE(LogIs(log, {}));
  EXPECT_EQ(faults.binaries_taken, 0);
  EXPECT_EQ(faults.binaries_given, 0);
}

TEST_F(BinaryCache, IsNotTouchedWithoutTheExtension) {
  const std::string file = GoodFile();
  LoadWithoutBinaries(&GlFaults::no_binary_extension, directory().path(), log());
  EXPECT_THAT(NamesIn(directory().path()), ElementsAreArray(WithSeals({"prog_rgb2hsi.bin"})));
  EXPECT_TRUE(ReadFile(path()) == file);
}

TEST_F(BinaryCache, IsNotTouchedWithoutABinaryFormat) {
  LoadWithoutBinaries(&GlFaults::no_binary_formats, directory().path(), log());
  EXPECT_THAT(NamesIn(directory().path()), IsEmpty());
}

TEST_F(BinaryCache, DirectoryIsNotEvenMadeWithoutTheExtension) {
  const ScopedEnvironment environment("LUMORA_CACHE_DIR", directory().file("not/there"));
  LoadWithoutBinaries(&GlFaults::no_binary_extension, directory().path(), log());
  EXPECT_THAT(NamesIn(directory().path()), IsEmpty());
}

// The cache directory chosen by the application, for the length of a test.
struct ScopedCacheDirectory {
  explicit ScopedCacheDirectory(const std::string& path) { platform::SetCacheDirectory(path); }
  ~ScopedCacheDirectory() { platform::SetCacheDirectory(""); }
};

// Whoever chose the directory may want to share it: the umask says with whom. Nobody else may
// write.
TEST_F(BinaryCache, ChosenDirectoryAndFilesAreReadableAsTheUmaskAllows) {
  for (const mode_t mask : {0000u, 0022u, 0027u, 0077u}) {
    SCOPED_TRACE(testing::Message() << "umask " << std::oct << mask);
    const TempDirectory parent;
    const ScopedEnvironment environment("LUMORA_CACHE_DIR", parent.file("deep/er"));
    log().take();
    const mode_t before = umask(mask);
    GLProgRGB2HSI program;
    EXPECT_TRUE(program.Load());
    umask(before);
    const std::string file = parent.file("deep/er/prog_rgb2hsi.bin");
    EXPECT_TRUE(LogIs(log(), Recompiled(CannotOpen(file), program)));
    EXPECT_THAT(NamesIn(parent.file("deep/er")), ElementsAreArray(WithSeals({"prog_rgb2hsi.bin"})));
    for (const std::string& folder : {parent.file("deep"), parent.file("deep/er")}) {
      EXPECT_EQ(ModeOf(folder), 0755u & ~mask) << folder;
    }
    for (const std::string& made : {file, file + ".seal"}) {
      EXPECT_EQ(ModeOf(made), 0644u & ~mask) << made;
    }
  }
}

TEST_F(BinaryCache, DirectoryOfTheApplicationGoesBeforeTheEnvironments) {
  const ScopedCacheDirectory chosen(directory().file("chosen"));
  GLProgRGB2HSI program;
  ASSERT_TRUE(program.Load());
  EXPECT_THAT(NamesIn(directory().path()), ElementsAre("chosen"));
  EXPECT_THAT(NamesIn(directory().file("chosen")),
              ElementsAreArray(WithSeals({"prog_rgb2hsi.bin"})));
}

// A directory name that makes the cache file's path this many characters long.
std::string DirectoryForPathLength(const std::string& parent, size_t length) {
  const size_t file = std::string("/prog_rgb2hsi.bin").size();
  return parent + "/" + std::string(length - parent.size() - 1 - file, 'd');
}

TEST_F(BinaryCache, PathOf255CharactersIsTheLongest) {
  const std::string longest = DirectoryForPathLength(directory().path(), 255);
  const ScopedEnvironment environment("LUMORA_CACHE_DIR", longest);
  GLProgRGB2HSI program;
  ASSERT_TRUE(program.Load());
  EXPECT_THAT(NamesIn(longest), ElementsAreArray(WithSeals({"prog_rgb2hsi.bin"})));
}

TEST_F(BinaryCache, LongerPathsAreNoCacheAndNoHarm) {
  for (const size_t length : {256u, 270u}) {
    const ScopedEnvironment environment("LUMORA_CACHE_DIR",
                                        DirectoryForPathLength(directory().path(), length));
    log().take();
    GLProgRGB2HSI program;
    EXPECT_TRUE(program.Load());
    EXPECT_TRUE(LogIs(log(), SwitchToCompiling() + CompiledWell() + Located(program)));
    EXPECT_THAT(NamesIn(directory().path()), IsEmpty()) << "a name cut short";
  }
}

TEST_F(BinaryCache, ReadersNeverMeetHalfAFile) {
  GLProgRGB2HSI small;
  GLProgYUV2HSI large;
  ASSERT_TRUE(small.Load());
  ASSERT_TRUE(large.Load());
  const std::set<std::string> whole = {ExpectedFile(small), ExpectedFile(large)};
  ASSERT_EQ(whole.size(), 2u);
  std::string shared = directory().file("shared.bin");
  ASSERT_TRUE(small.SaveBinary(shared.data()));

  std::atomic<bool> done = false;
  std::atomic<int> reads = 0;
  int broken = 0;
  std::thread reader([&] {
    while (!done) {
      const auto bytes = ReadFile(shared);
      if (!bytes || whole.count(*bytes) == 0) ++broken;
      ++reads;
    }
  });
  for (int save = 0; save < 200 || reads < 200; ++save) {
    EXPECT_TRUE((save % 2 == 0 ? static_cast<GLProgram&>(large) : small).SaveBinary(shared.data()));
  }
  done = true;
  reader.join();
  EXPECT_EQ(broken, 0) << "of " << reads << " reads";
  EXPECT_THAT(NamesIn(directory().path()),
              ElementsAreArray(WithSeals({"prog_rgb2hsi.bin", "prog_yuv2hsi.bin", "shared.bin"})));
}

// No file of this process grows beyond `bytes` while it lives: a disk that is full.
class FullDisk {
 public:
  explicit FullDisk(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit limit = {bytes, before_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FullDisk() {
    setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, handler_);
  }

 private:
  rlimit before_ = {};
  void (*handler_)(int);
};

TEST_F(BinaryCache, FullDiskKeepsTheOldFileAndLeavesNoScraps) {
  const std::string old = GoodFile();
  GLProgYUV2HSI program;
  ASSERT_TRUE(program.Load());
  log().take();
  std::string target = path();
  {
    const FullDisk disk(1000);
    EXPECT_FALSE(program.SaveBinary(target.data()));
  }
  const Lines errors = log().lines(6);
  ASSERT_EQ(errors.size(), 1u);
  EXPECT_NE(errors[0].text.find("[SaveBinary] "), std::string::npos);
  EXPECT_NE(errors[0].text.find(target), std::string::npos);
  EXPECT_TRUE(ReadFile(path()) == old);
  EXPECT_THAT(NamesIn(directory().path()),
              ElementsAreArray(WithSeals({"prog_rgb2hsi.bin", "prog_yuv2hsi.bin"})));
}

}  // namespace
}  // namespace lumora::test
