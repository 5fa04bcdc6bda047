// SPDX-License-Identifier: Apache-2.0
// Properties, level masks and paths as the environment sets them.
#include "lumora/platform/settings.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "lumora/platform/linux/liblog.h"
#include "lumora/platform/log.h"
#include "support/scoped.h"

namespace {

using lumora::test::ScopedEnvironment;
using lumora::test::TempDirectory;
using lumora::test::WriteFile;

constexpr std::nullopt_t kUnset = std::nullopt;
using Choices = std::vector<std::optional<std::string>>;

struct Property {
  int length;
  std::string value;
};

Property Get(const char* name) {
  char value[lumora::platform::kPropertyValueMax];
  std::memset(value, 'x', sizeof(value));
  const int length = __system_property_get(name, value);
  return {length, value};
}

TEST(SystemProperty, AbsentIsEmpty) {
  const ScopedEnvironment none("LUMORA_PROP_FILE", kUnset);
  const Property property = Get("persist.test.absent");
  EXPECT_EQ(property.length, 0);
  EXPECT_EQ(property.value, "");
}

TEST(SystemProperty, ComesFromTheEnvironmentWithDotsAsUnderscores) {
  const ScopedEnvironment variable("LUMORA_PROP_persist_debug_camera_showmask", "1");
  const Property property = Get("persist.debug.camera.showmask");
  EXPECT_EQ(property.length, 1);
  EXPECT_EQ(property.value, "1");
}

TEST(SystemProperty, ValuesHave91BytesAtMost) {
  const ScopedEnvironment variable("LUMORA_PROP_long", std::string(300, 'v'));
  const Property property = Get("long");
  EXPECT_EQ(property.length, 91);
  EXPECT_EQ(property.value, std::string(91, 'v'));
}

TEST(SystemProperty, ComesFromTheFileElse) {
  const TempDirectory directory;
  const std::string path = directory.file("properties");
  WriteFile(path, "a.bc=wrong\n# a.b=wrong\nx.a.b=wrong\na.b=one = two \nwindows=yes\r\nlast=3");
  const ScopedEnvironment file("LUMORA_PROP_FILE", path);
  EXPECT_EQ(Get("a.b").value, "one = two ");
  EXPECT_EQ(Get("windows").value, "yes");
  EXPECT_EQ(Get("last").value, "3");
  EXPECT_EQ(Get("a").length, 0);
  const ScopedEnvironment variable("LUMORA_PROP_a_b", "environment");
  EXPECT_EQ(Get("a.b").value, "environment");
}

TEST(SystemProperty, AMissingFileIsNoFailure) {
  const ScopedEnvironment file("LUMORA_PROP_FILE", "/nonexistent/file");
  EXPECT_EQ(Get("a.b").length, 0);
}

// A pipe that nobody writes into would keep its reader for ever, a device has no end.
TEST(SystemProperty, OnlyARegularFileIsRead) {
  const TempDirectory directory;
  ASSERT_EQ(mkfifo(directory.file("pipe").c_str(), 0600), 0);
  alarm(20);
  for (const std::string& path :
       {directory.file("pipe"), directory.path(), std::string("/dev/zero")}) {
    const ScopedEnvironment file("LUMORA_PROP_FILE", path);
    EXPECT_EQ(Get("a.b").length, 0) << path;
  }
  alarm(0);
}

TEST(SystemProperty, LinesOfTheFileMayHaveAnyLength) {
  const TempDirectory directory;
  const std::string path = directory.file("properties");
  const ScopedEnvironment file("LUMORA_PROP_FILE", path);
  for (const char* const end : {"\n", "\r\n", ""}) {
    for (const size_t size : {0u, 1u, 90u, 91u, 92u, 93u, 5000u, 1000000u}) {
      const std::string value(size, 'v');
      WriteFile(path, std::string(size, 'x') + "=a.b=" + end + "\na.bc=1\na.b=" + value + end);
      EXPECT_EQ(Get("a.b").value, value.substr(0, 91)) << size;
      EXPECT_EQ(Get("a.bc").value, "1");
    }
  }
  WriteFile(path, std::string("a.b=x\0y\n", 8) + "\r\n=\n\n==\r");
  EXPECT_EQ(Get("a.b").length, 3);
  EXPECT_EQ(Get("=").length, 0);
}

constexpr unsigned kVerboseBit = 0x01, kDebugBit = 0x02, kInfoBit = 0x04, kErrorBit = 0x10;

unsigned Mask(const char* tag) {
  unsigned char stored = 0x80;
  const unsigned char returned = __korvolog_init_mask(tag, -1, &stored);
  EXPECT_EQ(stored, returned);
  EXPECT_EQ(stored & 0x80, 0);
  return stored & (kVerboseBit | kDebugBit | kInfoBit | kErrorBit);
}

TEST(LogMask, IsErrorWhereNobodyChooses) {
  for (const std::optional<std::string>& choice : Choices{kUnset, "", "loud"}) {
    const ScopedEnvironment variable("LUMORA_LOG", choice);
    EXPECT_EQ(Mask("Lumora"), kErrorBit);
    EXPECT_EQ(Mask(nullptr), kErrorBit);
  }
}

TEST(LogMask, IncludesWhatIsMoreUrgentThanTheChoice) {
  const struct {
    const char* choice;
    unsigned mask;
  } rows[] = {{"debug", kDebugBit | kInfoBit | kErrorBit},
              {"info", kInfoBit | kErrorBit},
              {"error", kErrorBit}};
  for (const auto& row : rows) {
    const ScopedEnvironment variable("LUMORA_LOG", row.choice);
    EXPECT_EQ(Mask("Lumora"), row.mask) << row.choice;
    EXPECT_EQ(Mask(nullptr), row.mask) << row.choice;
  }
}

TEST(LogMask, FollowsThePriorityThatTheProcessSet) {
  const ScopedEnvironment variable("LUMORA_LOG", kUnset);
  const int before = __android_log_set_minimum_priority(lumora::kLogDebug);
  EXPECT_EQ(Mask("Lumora"), kDebugBit | kInfoBit | kErrorBit);
  {
    const ScopedEnvironment choice("LUMORA_LOG", "error");
    EXPECT_EQ(Mask("Lumora"), kErrorBit);
  }
  __android_log_set_minimum_priority(before);
}

using lumora::platform::CacheDirectory;
using lumora::platform::MakeCacheDirectory;
using lumora::platform::SetCacheDirectory;
using lumora::platform::SetSystemRoot;
using lumora::platform::SystemPath;
using lumora::platform::SystemRoot;

TEST(CacheDirectory, IsBelowTheUsersCacheHome) {
  const ScopedEnvironment none("LUMORA_CACHE_DIR", kUnset);
  const ScopedEnvironment home("HOME", "/home/somebody");
  {
    const ScopedEnvironment cache("XDG_CACHE_HOME", "/var/cache/somebody");
    EXPECT_EQ(CacheDirectory(), "/var/cache/somebody/lumora");
  }
  for (const std::optional<std::string>& unset : Choices{kUnset, "", "relative/path"}) {
    const ScopedEnvironment cache("XDG_CACHE_HOME", unset);
    EXPECT_EQ(CacheDirectory(), "/home/somebody/.cache/lumora");
  }
  const ScopedEnvironment no_cache("XDG_CACHE_HOME", kUnset);
  const ScopedEnvironment no_home("HOME", kUnset);
  EXPECT_EQ(CacheDirectory(), "");
  MakeCacheDirectory();  // nowhere: nothing happens
}

TEST(CacheDirectory, ApplicationGoesBeforeEnvironmentBeforeDefault) {
  const ScopedEnvironment variable("LUMORA_CACHE_DIR", "/from/environment//");
  EXPECT_EQ(CacheDirectory(), "/from/environment");
  SetCacheDirectory("/from/application/");
  EXPECT_EQ(CacheDirectory(), "/from/application");
  SetCacheDirectory("");
  EXPECT_EQ(CacheDirectory(), "/from/environment");
}

void ExpectMode(mode_t mode, const std::string& directory) {
  struct stat status {};
  ASSERT_EQ(stat(directory.c_str(), &status), 0) << directory;
  EXPECT_EQ(status.st_mode & 07777, mode) << directory;
}

TEST(CacheDirectory, AChosenOneIsMadeWithItsParentsAsTheUmaskAllows) {
  for (const mode_t mask : {0000u, 0027u}) {
    const TempDirectory directory;
    SetCacheDirectory(directory.file("a/b/lumora"));
    const mode_t before = umask(mask);
    MakeCacheDirectory();
    umask(before);
    for (const char* made : {"a", "a/b", "a/b/lumora"}) {
      ExpectMode(0755 & ~mask, directory.file(made));
    }
    SetCacheDirectory("");
  }
}

TEST(CacheDirectory, TheDefaultIsMadeForTheUserAlone) {
  const TempDirectory directory;
  const ScopedEnvironment none("LUMORA_CACHE_DIR", kUnset);
  const ScopedEnvironment cache("XDG_CACHE_HOME", directory.file("a/b"));
  const mode_t before = umask(0);
  MakeCacheDirectory();
  umask(before);
  for (const char* made : {"a", "a/b", "a/b/lumora"}) ExpectMode(0700, directory.file(made));
}

TEST(CacheDirectory, AnExistingOneIsLeftAsItIs) {
  const TempDirectory directory;
  chmod(directory.path().c_str(), 0755);
  SetCacheDirectory(directory.path());
  MakeCacheDirectory();
  struct stat status {};
  ASSERT_EQ(stat(directory.path().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0755u);
  SetCacheDirectory("");
}

TEST(FullQuads, AreDrawnWhenTheVariableIsExactlyOne) {
  using lumora::platform::FullQuads;
  const struct {
    std::optional<std::string> value;
    bool expected;
  } kCases[] = {{kUnset, false}, {"", false},   {"0", false},
                {"1", true},     {"11", false}, {"yes", false}};
  for (const auto& row : kCases) {
    const ScopedEnvironment variable("LUMORA_FULL_QUADS", row.value);
    EXPECT_EQ(row.expected, FullQuads()) << row.value.value_or("unset");
  }
}

TEST(SystemRoot, IsEmptyUnlessSomebodyChooses) {
  {
    const ScopedEnvironment none("LUMORA_SYSTEM_ROOT", kUnset);
    EXPECT_EQ(SystemRoot(), "");
  }
  const ScopedEnvironment variable("LUMORA_SYSTEM_ROOT", "/from/environment");
  EXPECT_EQ(SystemRoot(), "/from/environment");
  SetSystemRoot("/from/application/");
  EXPECT_EQ(SystemRoot(), "/from/application");
  SetSystemRoot("/");
  EXPECT_EQ(SystemRoot(), "");
  char path[16];
  EXPECT_TRUE(SystemPath("/sys", path, sizeof(path)));
  EXPECT_STREQ(path, "/sys");
  SetSystemRoot("");
  EXPECT_EQ(SystemRoot(), "/from/environment");
}

}  // namespace
