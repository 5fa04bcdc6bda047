// SPDX-License-Identifier: Apache-2.0
// The default cache directory: a level for each library and driver, and what becomes of old ones.
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>

#include "gl/cache_fixture.h"
#include "lumora/platform/settings.h"
#include "support/gl_faults.h"

namespace lumora::test {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::SizeIs;

constexpr auto kDay = std::chrono::hours(24);

class CacheLevels : public CacheTest {
 protected:
  std::string home() const { return directory().file("cache"); }
  std::string levels() const { return home() + "/lumora"; }
  std::string level(const std::string& name) const { return levels() + "/" + name; }

  /// Loads as if with the driver of this version; each of them has a level of its own, which is
  /// told.
  static std::string LoadWith(const std::string& version) {
    GlFaults faults;
    faults.driver_version = version;
    GLProgRGB2HSI program;
    EXPECT_TRUE(program.Load());
    return platform::CacheDirectory();
  }

  /// A level that somebody used so many days ago.
  void Plant(const std::string& name, int days, const std::vector<std::string>& files) {
    fs::create_directories(level(name));
    fs::permissions(levels(), fs::perms::owner_all);
    fs::permissions(level(name), fs::perms::owner_all);
    for (const std::string& file : files) WriteFile(level(name) + "/" + file, "old");
    fs::last_write_time(level(name), fs::file_time_type::clock::now() - days * kDay);
  }

 private:
  ScopedEnvironment none_{"LUMORA_CACHE_DIR", std::nullopt};
  ScopedEnvironment cache_home_{"XDG_CACHE_HOME", directory().file("cache")};
};

TEST_F(CacheLevels, OneIsMadeForTheUserAlone) {
  GLProgRGB2HSI program;
  ASSERT_TRUE(program.Load());
  const std::vector<std::string> made = NamesIn(levels());
  ASSERT_THAT(made, SizeIs(1));
  EXPECT_THAT(made[0], MatchesRegex("programs-[0-9.]+-[0-9a-f]{16}"));
  EXPECT_EQ(platform::CacheDirectory(), level(made[0]));
  EXPECT_THAT(NamesIn(level(made[0])), ElementsAreArray(WithSeals({"prog_rgb2hsi.bin"})));
  for (const std::string& folder : {home(), levels(), level(made[0])}) {
    EXPECT_EQ(ModeOf(folder), 0700u) << folder;
  }
  GlFaults seen;
  GLProgRGB2HSI again;
  EXPECT_TRUE(again.Load());
  EXPECT_EQ(seen.compiles, 0);
}

TEST_F(CacheLevels, EachDriverHasItsOwn) {
  const std::string first = LoadWith("1.0");
  const std::string second = LoadWith("2.0");
  EXPECT_NE(first, second);
  EXPECT_EQ(first, LoadWith("1.0"));
  EXPECT_THAT(NamesIn(levels()), SizeIs(2));
  for (const std::string& one : {first, second}) {
    EXPECT_THAT(NamesIn(one), ElementsAreArray(WithSeals({"prog_rgb2hsi.bin"})));
  }
}

TEST_F(CacheLevels, AChosenDirectoryHasNone) {
  const ScopedEnvironment environment("LUMORA_CACHE_DIR", directory().file("chosen"));
  LoadWith("1.0");
  LoadWith("2.0");
  EXPECT_THAT(NamesIn(directory().file("chosen")),
              ElementsAreArray(WithSeals({"prog_rgb2hsi.bin"})));
}

TEST_F(CacheLevels, ForgottenOnesGoAfterAMonth) {
  const std::vector<std::string> files = {"prog_rgb2y.bin", "prog_rgb2y.bin.seal",
                                          ".prog_rgb2y.bin.abcdef"};
  Plant("programs-0.9.0-0123456789abcdef", 31, files);
  Plant("programs-12.34-ffffffffffffffff", 4000, {});
  LoadWith("forgotten ones go");
  EXPECT_THAT(NamesIn(levels()), SizeIs(1));
}

TEST_F(CacheLevels, WhatIsNotSurelyForgottenStays) {
  Plant("programs-0.9.0-0123456789abcdef", 29, {"prog_rgb2y.bin"});
  // Not of our making, or with something that is not.
  Plant("programs-1.0.0-0123456789abcdef", 99, {"prog_rgb2y.bin", "holiday.jpg"});
  Plant("programs-1.0.0-0123456789abcde", 99, {"prog_rgb2y.bin"});
  Plant("programs-1.0.0-0123456789abcdef0", 99, {"prog_rgb2y.bin"});
  Plant("programs-1.0.0-0123456789ABCDEF", 99, {"prog_rgb2y.bin"});
  Plant("programs-1.0.0", 99, {"prog_rgb2y.bin"});
  Plant("programs--0123456789abcdef", 99, {"prog_rgb2y.bin"});
  Plant("my-programs-1.0.0-0123456789abcdef", 99, {"prog_rgb2y.bin"});
  Plant("programs-1.1.0-0123456789abcdef", 99, {"prog_rgb2y.bin"});
  fs::permissions(level("programs-1.1.0-0123456789abcdef"), fs::perms::all);
  fs::create_directories(directory().file("precious"));
  WriteFile(directory().file("precious/prog_rgb2y.bin"), "old");
  fs::last_write_time(directory().file("precious"), fs::file_time_type::clock::now() - 99 * kDay);
  fs::create_directory_symlink(directory().file("precious"),
                               level("programs-1.2.0-0123456789abcdef"));
  WriteFile(level("programs-1.3.0-0123456789abcdef"), "a file");
  fs::last_write_time(level("programs-1.3.0-0123456789abcdef"),
                      fs::file_time_type::clock::now() - 99 * kDay);
  const size_t planted = NamesIn(levels()).size();
  LoadWith("others stay");
  EXPECT_THAT(NamesIn(levels()), SizeIs(planted + 1));
  for (const std::string& name : NamesIn(levels())) {
    if (!fs::is_directory(level(name))) continue;
    EXPECT_TRUE(fs::exists(level(name) + "/prog_rgb2y.bin") ||
                fs::exists(level(name) + "/prog_rgb2hsi.bin"))
        << name;
  }
}

TEST_F(CacheLevels, UseIsNoted) {
  const std::string used = LoadWith("in use");
  LoadWith("another");  // a process asks once for each of its drivers in turn
  const auto long_ago = fs::file_time_type::clock::now() - 99 * kDay;
  fs::last_write_time(used, long_ago);
  EXPECT_EQ(used, LoadWith("in use"));
  EXPECT_GT(fs::last_write_time(used), fs::file_time_type::clock::now() - kDay);
  // Which of the two is older does not matter to the other.
  LoadWith("another");
  EXPECT_THAT(NamesIn(used), ElementsAreArray(WithSeals({"prog_rgb2hsi.bin"})));
}

TEST_F(CacheLevels, AreTheDirectoryOfTheCurrentContextOnly) {
  EXPECT_NE(platform::CacheDirectory(), levels());
  std::string told;
  std::thread([&told] { told = platform::CacheDirectory(); }).join();
  EXPECT_EQ(told, levels());
  EXPECT_THAT(NamesIn(directory().path()), IsEmpty()) << "asking makes nothing";
}

}  // namespace
}  // namespace lumora::test
