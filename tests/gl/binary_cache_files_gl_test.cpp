// SPDX-License-Identifier: Apache-2.0
// Cache files that are not what they should be: each is told, compiled around and replaced, and the
// driver never sees one.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <functional>
#include <random>
#include <string>
#include <utility>

#include "gl/cache_fixture.h"
#include "lumora/gl/cache_file.h"
#include "support/gl_faults.h"
#include "support/next_function.h"

namespace {

// Done once, after the library asked for the length of a regular file.
std::function<void()> g_after_stat;

}  // namespace

extern "C" int fstat(int file, struct stat* status) {
  const int result = LUMORA_NEXT(fstat)(file, status);
  if (g_after_stat && result == 0 && S_ISREG(status->st_mode)) {
    std::exchange(g_after_stat, nullptr)();
  }
  return result;
}

namespace lumora::test {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAreArray;

class BadCacheFile : public CacheTest {
 protected:
  void SetUp() override {
    CacheTest::SetUp();
    if (HasFatalFailure() || IsSkipped()) return;
    good_ = GoodFile();
  }

  /// Loads with a bad file in place: `refusal` is told; the program works, and the file is a good
  /// one again.
  void ExpectRecovery(const Lines& refusal, const std::string& what) {
    log().take();
    const GlFaults seen;
    GLProgRGB2HSI program;
    EXPECT_TRUE(program.Load()) << what;
    EXPECT_TRUE(LogIs(log(), Recompiled(refusal, program))) << what;
    EXPECT_EQ(seen.binaries_given, 0) << what;
    EXPECT_TRUE(program.Use()) << what;
    EXPECT_TRUE(ReadFile(path()) == ExpectedFile(program)) << what << ": not rewritten";
    EXPECT_THAT(NamesIn(directory().path()), ElementsAreArray(WithSeals({"prog_rgb2hsi.bin"})))
        << what;
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

// Another process cuts the file or writes more to it after its length was asked for: what counts is
// what could be read.
TEST_F(BadCacheFile, CutWhileItIsRead) {
  for (const size_t size : {size_t{0}, size_t{3}, size_t{4}, good_.size() / 2, good_.size() - 1}) {
    const auto cut = [&] { ASSERT_EQ(truncate(path().c_str(), static_cast<off_t>(size)), 0); };
    WriteFile(path(), good_);
    g_after_stat = cut;
    FileBytes bytes;
    const ReadResult result = ReadCacheFile(path().c_str(), 4, &bytes);
    ASSERT_EQ(result, size < 4 ? ReadResult::BadLength : ReadResult::Ok) << size;
    ASSERT_EQ(bytes.size, size);
    EXPECT_TRUE(std::equal(bytes.data.get(), bytes.data.get() + size,
                           reinterpret_cast<const unsigned char*>(good_.data())));

    WriteFile(path(), good_);
    g_after_stat = cut;
    ExpectRecovery(size < 4 ? InvalidLength() : Refused(), "cut to " + std::to_string(size));
    EXPECT_FALSE(g_after_stat) << "nobody asked";
  }
}

TEST_F(BadCacheFile, LongerWhileItIsRead) {
  g_after_stat = [&] { WriteFile(path(), good_ + good_); };
  FileBytes bytes;
  EXPECT_EQ(ReadCacheFile(path().c_str(), 4, &bytes), ReadResult::Ok);
  EXPECT_EQ(bytes.size, good_.size());
}

TEST_F(BadCacheFile, OfAnotherFormat) {
  std::string bad = good_;
  const unsigned int format = 0xDEAD;
  std::memcpy(bad.data(), &format, sizeof(format));
  WriteFile(path(), bad);
  ExpectRecovery(Refused(), "format 0xDEAD");
}

TEST_F(BadCacheFile, OfForeignBytes) {
  WriteFile(path(), "#!/bin/sh\necho this is no program binary\n");
  ExpectRecovery(Refused(), "a script");
  WriteFile(path(), std::string(100000, '\0'));
  ExpectRecovery(Refused(), "zeros");
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
  EXPECT_THAT(NamesIn(directory().path()), ElementsAreArray(WithSeals({"prog_rgb2hsi.bin"})));
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

TEST_F(BadCacheFile, WithTrailingBytes) {
  WriteFile(path(), good_ + std::string(16, 'x'));
  ExpectRecovery(Refused(), "16 bytes more");
}

}  // namespace
}  // namespace lumora::test
