// SPDX-License-Identifier: Apache-2.0
// Where Mesa's shader cache has a place, and what is done where it has none.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>

#include "tests/tools/pictures.h"
#include "tools/lumora/support/driver_cache.h"

namespace lumora::test {
namespace {

namespace fs = std::filesystem;
using tools::DriverCanCacheBelow;

TEST(DriverCache, NeedsAFolderOrAPlaceToMakeOne) {
  const Folder folder;
  const std::string file = folder.Put("file", std::string());
  fs::create_directories(folder / "used/mesa_shader_cache");
  fs::create_directories(folder / "newer/mesa_shader_cache_db");
  fs::create_directory(folder / "taken");
  folder.Put("taken/mesa_shader_cache", std::string());
  fs::create_directory_symlink(folder / "used", folder / "link");
  for (const char* name : {"used", "newer", "link", "", "not-yet"}) {
    EXPECT_TRUE(DriverCanCacheBelow(folder / name)) << name;
  }
  for (const char* name : {"file", "file/below", "taken", "no/such"}) {
    EXPECT_FALSE(DriverCanCacheBelow(folder / name)) << name;
  }
  EXPECT_FALSE(DriverCanCacheBelow("/proc"));
  EXPECT_FALSE(DriverCanCacheBelow(""));
  EXPECT_EQ(folder.Names(), (std::vector<std::string>{"file", "link", "newer", "taken", "used"}));
}

TEST(DriverCache, WhatAnotherOwnsIsNoPlace) {
  if (geteuid() == 0) GTEST_SKIP() << "root may write everywhere";
  const Folder folder;
  fs::create_directories(folder / "closed/used/mesa_shader_cache");
  fs::permissions(folder / "closed", fs::perms::owner_read | fs::perms::owner_exec);
  EXPECT_FALSE(DriverCanCacheBelow(folder / "closed"));
  EXPECT_FALSE(DriverCanCacheBelow(folder / "closed/not-yet"));
  EXPECT_TRUE(DriverCanCacheBelow(folder / "closed/used"));
  fs::permissions(folder / "closed", fs::perms::owner_all);
}

/// Variables of this process, back to what they were at the end.
class Variables {
 public:
  Variables() {
    for (size_t i = 0; i < std::size(kNames); ++i) {
      if (const char* const value = std::getenv(kNames[i])) before_[i] = value;
      unsetenv(kNames[i]);
    }
  }
  ~Variables() {
    for (size_t i = 0; i < std::size(kNames); ++i) {
      before_[i] ? setenv(kNames[i], before_[i]->c_str(), 1) : unsetenv(kNames[i]);
    }
  }
  Variables(const Variables&) = delete;
  Variables& operator=(const Variables&) = delete;

 private:
  static constexpr const char* kNames[] = {"XDG_CACHE_HOME", "MESA_SHADER_CACHE_DISABLE",
                                           "MESA_SHADER_CACHE_DIR", "MESA_GLSL_CACHE_DIR"};
  std::optional<std::string> before_[std::size(kNames)];
};

/// What Mesa finds afterwards; "unset" where it is left to itself.
std::string Choice() {
  tools::KeepDriverFromMissingItsCache();
  const char* const value = std::getenv("MESA_SHADER_CACHE_DISABLE");
  return value != nullptr ? value : "unset";
}

TEST(DriverCache, IsSwitchedOffOnlyWhereItHasNoPlaceAndNobodyChose) {
  const Folder folder;
  {
    const Variables variables;
    setenv("XDG_CACHE_HOME", (folder / "").c_str(), 1);
    EXPECT_EQ(Choice(), "unset");
    setenv("XDG_CACHE_HOME", (folder / "no/such").c_str(), 1);
    EXPECT_EQ(Choice(), "true");
  }
  for (const char* choice : {"MESA_SHADER_CACHE_DIR", "MESA_GLSL_CACHE_DIR"}) {
    const Variables variables;
    setenv("XDG_CACHE_HOME", "/proc", 1);
    setenv(choice, "/proc/mine", 1);
    EXPECT_EQ(Choice(), "unset") << choice;
  }
  const Variables variables;
  setenv("XDG_CACHE_HOME", "/proc", 1);
  setenv("MESA_SHADER_CACHE_DISABLE", "false", 1);
  EXPECT_EQ(Choice(), "false");
}

}  // namespace
}  // namespace lumora::test
