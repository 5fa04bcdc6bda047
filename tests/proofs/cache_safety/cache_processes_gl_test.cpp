// SPDX-License-Identifier: Apache-2.0
// The program cache of several processes: started at once, killed, on disks that take nothing,
// after other drivers. No process may fail or draw a wrong picture.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <deque>
#include <filesystem>
#include <iterator>
#include <random>
#include <thread>

#include "proofs/cache_safety/cache_setting.h"
#include "support/scoped.h"

namespace lumora::test {
namespace {

namespace fs = std::filesystem;
using testing::IsEmpty;
using testing::SizeIs;
using Environment = std::vector<std::pair<std::string, std::string>>;

class CacheProcesses : public testing::Test {
 protected:
  void SetUp() override {
    if (BinariesMissing()) GTEST_SKIP() << "this driver has no program binaries";
  }

  /// The cache under test.
  const TempDirectory& directory() const { return directory_; }

  CacheProcess::Options options(std::function<bool()> prepare = {}) const {
    return {directory_.path(), 1, {}, std::move(prepare)};
  }

  /// The pictures of a process with a cache of its own, and `environment`.
  static CacheReport Alone(const Environment& environment = {}) {
    const TempDirectory fresh;
    const CacheReport report = UseCache({fresh.path(), 1, environment, {}});
    EXPECT_EQ(report.failure, "");
    EXPECT_EQ(report.compiled, kCachedPrograms);
    return report;
  }

  static const std::vector<std::string>& RightPictures() {
    static const std::vector<std::string> pictures = Alone().pictures;
    return pictures;
  }

  static void ExpectRight(const CacheReport& report) {
    EXPECT_EQ(report.failure, "");
    EXPECT_EQ(report.pictures, RightPictures());
  }

  /// Every program is in the cache, whole, and nothing else is.
  void ExpectWholeCache() {
    const CacheReport report = UseCache(options());
    ExpectRight(report);
    EXPECT_EQ(report.cached, kCachedPrograms);
    const Listing listing = ListingOf(directory_.path());
    EXPECT_THAT(listing.programs, SizeIs(kCachedPrograms));
    EXPECT_THAT(listing.seals, SizeIs(kCachedPrograms));
    EXPECT_THAT(listing.others, IsEmpty());
  }

 private:
  static bool BinariesMissing() {
    static const bool missing = Alone().files.empty();
    return missing;
  }

  TempDirectory directory_;
};

/// Holds processes back until all of them are there.
class Gate {
 public:
  Gate() { EXPECT_EQ(pipe(ends_), 0); }
  ~Gate() {
    close(ends_[0]);
    if (!open_) close(ends_[1]);
  }
  Gate(const Gate&) = delete;
  Gate& operator=(const Gate&) = delete;

  /// For the processes: returns when the gate opens.
  bool pass() const {
    close(ends_[1]);
    char nothing = 0;
    return read(ends_[0], &nothing, 1) == 0;
  }
  void open() {
    open_ = true;
    close(ends_[1]);
  }

 private:
  int ends_[2] = {-1, -1};
  bool open_ = false;
};

TEST_F(CacheProcesses, StartedAtOnceOnAnEmptyCache) {
  for (int repeat = 0; repeat < Repeats(1, 25); ++repeat) {
    for (const size_t count : {2u, 4u}) {
      SCOPED_TRACE(testing::Message() << count << " processes, repeat " << repeat);
      for (const std::string& name : ListingOf(directory().path()).programs) {
        RemoveProgram(directory().file(name));
      }
      Gate gate;
      std::deque<CacheProcess> processes;
      while (processes.size() < count) {
        processes.emplace_back(options([&gate] { return gate.pass(); }));
      }
      gate.open();
      for (CacheProcess& process : processes) ExpectRight(process.wait());
      ExpectWholeCache();
    }
  }
}

/// What a new process makes of a copy of the cache, which stays as it is.
CacheReport UseCopyOf(const std::string& directory) {
  const TempDirectory parent;
  fs::copy(directory, parent.file("copy"));
  return UseCache({parent.file("copy"), 1, {}, {}});
}

/// Makes what killed processes left look as if it had been left yesterday.
void Age(const std::string& directory) {
  for (const std::string& name : ListingOf(directory).others) {
    const std::string path = directory + "/" + name;
    fs::last_write_time(path, fs::last_write_time(path) - std::chrono::hours(24));
  }
}

TEST_F(CacheProcesses, KilledAtEachStepOfWriting) {
  // What each step leaves under hidden names: the file, then its seal as well, until they take
  // their places.
  constexpr int kHidden[] = {1, 2, 2, 2, 2, 2, 2, 1, 0};
  const int files = Repeats(1, kCachedPrograms);
  for (int file = 0; file < files; ++file) {
    for (size_t step = 0; step < std::size(kHidden); ++step) {
      SCOPED_TRACE(testing::Message() << "file " << file << ", step " << step + 1);
      const size_t before = ListingOf(directory().path()).others.size();
      const Environment death = {{"CACHE_USER_DIES_AT", std::to_string(step + 1)}};
      const CacheReport killed = UseCache({directory().path(), 1, death, {}});
      EXPECT_EQ(killed.failure, "signal 9");
      EXPECT_EQ(ListingOf(directory().path()).others.size(),
                before + static_cast<size_t>(kHidden[step]))
          << "what the dead leave, until it is old";
      ExpectRight(UseCopyOf(directory().path()));
    }
    EXPECT_THAT(ListingOf(directory().path()).programs, SizeIs(file + 1))
        << "the last step leaves the file in its place";
    EXPECT_THAT(ListingOf(directory().path()).seals, SizeIs(file + 1));
  }
  Age(directory().path());
  for (const std::string& name : ListingOf(directory().path()).programs) {
    RemoveProgram(directory().file(name));
  }
  ExpectRight(UseCache(options()));
  ExpectWholeCache();
}

TEST_F(CacheProcesses, KilledAtAnyMoment) {
  std::mt19937 random(7);
  const auto start = std::chrono::steady_clock::now();
  Alone();
  const auto life = std::chrono::duration_cast<std::chrono::microseconds>(
      std::chrono::steady_clock::now() - start);
  int killed = 0;
  const int kills = Repeats(6, 200);
  for (int kill = 0; kill < kills; ++kill) {
    for (const std::string& name : ListingOf(directory().path()).programs) {
      if (random() % 4 != 0) RemoveProgram(directory().file(name));
    }
    CacheProcess process(options());
    std::this_thread::sleep_for(life * (random() % 1000) / 1000);
    process.kill();
    killed += process.wait().failure.empty() ? 0 : 1;
    if (kill % 4 == 0) ExpectRight(UseCopyOf(directory().path()));
  }
  std::printf("cache: %d processes killed at random moments\n", killed);
  EXPECT_GT(killed, kills / 3);
  ExpectRight(UseCache(options()));
  EXPECT_EQ(UseCache(options()).cached, kCachedPrograms);
}

// A disk with room for some programs: those are cached, the others compiled each time, and nothing
// half-written stays.
TEST_F(CacheProcesses, FullDisk) {
  for (const int pages : {1, 2, 3, 4, 5, 9, 14}) {
    SCOPED_TRACE(testing::Message() << pages << " pages");
    CacheProcess::Options small =
        options([&] { return MountSmallDisk(directory().path(), pages); });
    small.rounds = 2;
    bool possible = true;
    const CacheReport report = UseCache(small, &possible);
    if (!possible) GTEST_SKIP() << "mounts are not allowed here";
    EXPECT_EQ(report.failure, "");
    std::vector<std::string> twice = RightPictures();
    twice.insert(twice.end(), RightPictures().begin(), RightPictures().end());
    EXPECT_EQ(report.pictures, twice);
    EXPECT_LT(report.cached, kCachedPrograms);
    EXPECT_EQ(static_cast<size_t>(2 * report.cached), report.files.size()) << "each with its seal";
    for (const std::string& file : report.files) EXPECT_EQ(file.rfind("prog_", 0), 0u) << file;
  }
  EXPECT_THAT(ListingOf(directory().path()).programs, IsEmpty());
}

TEST_F(CacheProcesses, ReadOnlyDisk) {
  const CacheProcess::Options read_only =
      options([&] { return MountReadOnly(directory().path()); });
  bool possible = true;
  const CacheReport empty = UseCache(read_only, &possible);
  if (!possible) GTEST_SKIP() << "mounts are not allowed here";
  ExpectRight(empty);
  EXPECT_EQ(empty.compiled, kCachedPrograms);
  EXPECT_THAT(empty.files, IsEmpty());

  ExpectRight(UseCache(options()));
  const CacheReport filled = UseCache(read_only);
  ExpectRight(filled);
  EXPECT_EQ(filled.cached, kCachedPrograms);

  for (const std::string& name : ListingOf(directory().path()).programs) {
    WriteFile(directory().file(name), "damaged");
  }
  const CacheReport damaged = UseCache(read_only);
  ExpectRight(damaged);
  EXPECT_EQ(damaged.compiled, kCachedPrograms);
  ExpectRight(UseCache(options()));
  ExpectWholeCache();
}

// Other drivers, as far as this one can be made to differ from itself: Mesa's software renderer
// can. Another driver may use that one below itself, and need not work with such settings. Each
// draws as with a cache of its own, whoever filled the cache before.
TEST_F(CacheProcesses, CacheOfAnotherDriver) {
  const std::string renderer = Alone().renderer;
  if (renderer != "llvmpipe") GTEST_SKIP() << renderer << " has no such settings";
  const Environment drivers[] = {
      {}, {{"GALLIUM_DRIVER", "softpipe"}}, {{"GALLIUM_OVERRIDE_CPU_CAPS", "sse4.1"}}};
  for (const Environment& driver : drivers) {
    const std::vector<std::string> right = Alone(driver).pictures;
    for (const Environment& other : drivers) {
      if (&other == &driver) continue;
      SCOPED_TRACE(testing::Message() << (driver.empty() ? "" : driver[0].second) << " after "
                                      << (other.empty() ? "" : other[0].second));
      EXPECT_EQ(UseCache({directory().path(), 1, other, {}}).failure, "");
      const CacheReport report = UseCache({directory().path(), 1, driver, {}});
      EXPECT_EQ(report.failure, "");
      EXPECT_EQ(report.pictures, right);
    }
  }
}

TEST_F(CacheProcesses, NobodyElseCanWriteWhateverTheUmask) {
  for (const mode_t mask : {0000u, 0022u, 0077u}) {
    SCOPED_TRACE(testing::Message() << "umask " << std::oct << mask);
    const TempDirectory parent;
    CacheProcess::Options deep = {parent.file("a/b"), 1, {}, [mask] {
                                    umask(mask);
                                    return true;
                                  }};
    ExpectRight(UseCache(deep));
    int files = 0;
    for (const auto& entry : fs::recursive_directory_iterator(parent.path())) {
      struct stat status = {};
      ASSERT_EQ(lstat(entry.path().c_str(), &status), 0);
      EXPECT_EQ(status.st_mode & 07777, (entry.is_directory() ? 0755u : 0644u) & ~mask)
          << entry.path();
      files += entry.is_directory() ? 0 : 1;
    }
    EXPECT_EQ(files, 2 * kCachedPrograms);
  }
}

}  // namespace
}  // namespace lumora::test
