// SPDX-License-Identifier: Apache-2.0
// What the library shows the driver: only what the driver gave it, whole, for the same shader
// texts, from a place where nobody else writes.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <random>
#include <string>

#include "gl/cache_fixture.h"
#include "lumora/programs/programs.h"
#include "support/gl_faults.h"

namespace lumora::test {
namespace {

namespace fs = std::filesystem;

class CacheTrust : public CacheTest {
 protected:
  /// Whether loading goes without the driver's compiler; the program works in any case.
  static bool LoadsFromCache() {
    const GlFaults seen;
    GLProgRGB2HSI program;
    EXPECT_TRUE(program.Load());
    EXPECT_TRUE(program.Use());
    EXPECT_EQ(seen.binaries_given, seen.compiles == 0 ? 1 : 0);
    return seen.compiles == 0;
  }

  /// The cache as it is now is not used, but replaced by a good one.
  void ExpectReplaced(const std::string& what) {
    EXPECT_FALSE(LoadsFromCache()) << what;
    EXPECT_TRUE(LoadsFromCache()) << what << ": not replaced";
  }

  /// The cache as it is now is neither used nor written, and told of twice.
  void ExpectLeftAlone(const std::string& what) {
    log().take();
    EXPECT_FALSE(LoadsFromCache()) << what;
    const Lines told = {
        Error("GLProgram", "[LoadBinary] can't open binary shader file %s", path().c_str()),
        Error("GLProgram", "[SaveBinary] can't open %s for writing", path().c_str())};
    EXPECT_TRUE(LogIs(log().lines(6), told)) << what;
  }
};

TEST_F(CacheTrust, FileWithoutASealIsReplaced) {
  GoodFile();
  fs::remove(seal_path());
  ExpectReplaced("no seal");
}

TEST_F(CacheTrust, DamagedSealVouchesForNothing) {
  GoodFile();
  const std::string seal = ReadFile(seal_path()).value_or("");
  ASSERT_GT(seal.size(), 32u);
  std::mt19937 random(5);
  for (size_t i = 0; i < seal.size(); i += 1 + random() % 5) {
    std::string bad = seal;
    bad[i] ^= static_cast<char>(1u << random() % 8);
    WriteFile(seal_path(), bad);
    ExpectReplaced("bit in byte " + std::to_string(i));
    WriteFile(seal_path(), seal.substr(0, i));
    ExpectReplaced("cut to " + std::to_string(i));
  }
  for (const size_t more : {1u, 40u, 100u, 100000u}) {
    WriteFile(seal_path(), seal + std::string(more, '\n'));
    ExpectReplaced(std::to_string(more) + " bytes more");
  }
}

TEST_F(CacheTrust, SealIsARegularFile) {
  GoodFile();
  const std::string seal = ReadFile(seal_path()).value_or("");
  fs::rename(seal_path(), directory().file("elsewhere"));
  fs::create_symlink("elsewhere", seal_path());
  ExpectReplaced("link");
  EXPECT_FALSE(fs::is_symlink(seal_path()));
  EXPECT_EQ(ReadFile(directory().file("elsewhere")), seal);
  fs::remove(seal_path());
  ASSERT_EQ(mkfifo(seal_path().c_str(), 0600), 0);
  ExpectReplaced("named pipe");
}

TEST_F(CacheTrust, BinaryOfAnotherShaderTextIsReplacedWhateverItsLocations) {
  GLProgHSI2YUV other;  // its locations have the same names
  ASSERT_TRUE(other.Load());
  for (const char* const suffix : {"", ".seal"}) {
    fs::copy_file(directory().file("prog_hsi2yuv.bin") + suffix, path() + suffix);
  }
  ExpectReplaced("of another program");
}

TEST_F(CacheTrust, BinaryThatWasSavedByHandServesNoClass) {
  GLProgHSI2YUV other;
  ASSERT_TRUE(other.Load());
  std::string here = path();
  ASSERT_TRUE(other.SaveBinary(here.data()));
  ExpectReplaced("saved by hand");
}

TEST_F(CacheTrust, BinaryOfAnotherDriverIsReplaced) {
  GoodFile();
  {
    GlFaults faults;
    faults.driver_version = "OpenGL ES 3.2, next year's";
    GLProgRGB2HSI program;
    EXPECT_TRUE(program.Load());
    EXPECT_EQ(faults.compiles, 2);
    EXPECT_EQ(faults.binaries_given, 0);
  }
  ExpectReplaced("of next year's driver");
}

uint32_t Crc32(const unsigned char* bytes, size_t size) {
  uint32_t remainder = 0xFFFFFFFF;
  for (size_t i = 0; i < size; ++i) {
    remainder ^= bytes[i];
    for (int bit = 0; bit < 8; ++bit) remainder = remainder >> 1 ^ (remainder & 1) * 0xEDB88320;
  }
  return ~remainder;
}

// What lets damage get past the driver's own checksum, where it is of the usual kind: a word that
// is the CRC-32 of all that follows it, now or after a length that lies between.
void CorrectChecksum(const std::string& good, std::string* bad) {
  const auto* const bytes = reinterpret_cast<const unsigned char*>(good.data());
  for (size_t at = 4; at + 12 < good.size() && at < 256; ++at) {
    uint32_t word = 0;
    std::memcpy(&word, bytes + at, sizeof(word));
    for (const size_t start : {at + 4, at + 8}) {
      if (word != Crc32(bytes + start, good.size() - start)) continue;
      const auto* const damaged = reinterpret_cast<const unsigned char*>(bad->data());
      word = Crc32(damaged + start, bad->size() - start);
      std::memcpy(&(*bad)[at], &word, sizeof(word));
      return;
    }
  }
}

TEST_F(CacheTrust, DamageWithTheDriversChecksumCorrected) {
  const std::string good = GoodFile();
  std::mt19937 random(11);
  for (int round = 0; round < 40; ++round) {
    std::string bad = good;
    for (int i = 0; i < 8; ++i) {
      bad[64 + random() % (bad.size() - 64)] ^= static_cast<char>(1 + random() % 255);
    }
    CorrectChecksum(good, &bad);
    WriteFile(path(), bad);
    ExpectReplaced("damage " + std::to_string(round));
  }
}

TEST_F(CacheTrust, WhatOthersMayWriteIsNotUsed) {
  GoodFile();
  for (const mode_t mode : {0664u, 0646u, 0666u, 0622u}) {
    for (const std::string& file : {path(), seal_path()}) {
      ASSERT_EQ(chmod(file.c_str(), mode), 0);
      ExpectReplaced(file);
      EXPECT_EQ(ModeOf(file) & 0022, 0u);
    }
  }
  for (const mode_t mode : {0755u, 0711u, 0500u, 0555u}) {
    ASSERT_EQ(chmod(directory().path().c_str(), mode), 0);
    EXPECT_TRUE(LoadsFromCache());
  }
  for (const mode_t mode : {0775u, 0757u, 0777u, 0722u, 01777u, 02770u}) {
    ASSERT_EQ(chmod(directory().path().c_str(), mode), 0);
    ExpectLeftAlone("mode " + std::to_string(mode));
  }
  ASSERT_EQ(chmod(directory().path().c_str(), 0700), 0);
  EXPECT_TRUE(LoadsFromCache());
}

TEST_F(CacheTrust, WhatBelongsToOthersIsNotUsed) {
  if (geteuid() != 0) GTEST_SKIP() << "only root gives files away";
  constexpr uid_t kSomebody = 12345;
  GoodFile();
  for (const std::string& file : {path(), seal_path()}) {
    ASSERT_EQ(chown(file.c_str(), kSomebody, 0), 0);
    ExpectReplaced(file);
  }
  ASSERT_EQ(chown(directory().path().c_str(), kSomebody, 0), 0);
  ExpectLeftAlone("somebody's directory");
}

// A user takes what root made, and what is the user's own.
TEST_F(CacheTrust, RootsFilesServeEveryUser) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can become somebody";
  constexpr uid_t kSomebody = 12345;
  GoodFile();
  ASSERT_EQ(chmod(directory().path().c_str(), 0755), 0);
  ASSERT_EQ(seteuid(kSomebody), 0);
  EXPECT_TRUE(LoadsFromCache());
  ASSERT_EQ(seteuid(0), 0);
  for (const std::string& part : {path(), seal_path(), directory().path()}) {
    ASSERT_EQ(chown(part.c_str(), kSomebody, 0), 0);
  }
  ASSERT_EQ(seteuid(kSomebody), 0);
  EXPECT_TRUE(LoadsFromCache());
  ASSERT_EQ(seteuid(0), 0);
}

// A link to the directory is the user's own business; what counts is the directory.
TEST_F(CacheTrust, DirectoryMayBeALink) {
  GoodFile();
  const TempDirectory elsewhere;
  fs::create_directory_symlink(directory().path(), elsewhere.file("link"));
  const ScopedEnvironment environment("LUMORA_CACHE_DIR", elsewhere.file("link"));
  EXPECT_TRUE(LoadsFromCache());
}

}  // namespace
}  // namespace lumora::test
