// SPDX-License-Identifier: Apache-2.0
// Damaged, planted and forgotten files in the program cache of one process.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <random>

#include "proofs/cache_safety/cache_setting.h"
#include "proofs/cache_safety/program_pictures.h"
#include "support/gl_test.h"
#include "support/log_capture.h"
#include "support/scoped.h"

namespace lumora::test {
namespace {

namespace fs = std::filesystem;

class CacheDamage : public GlTest {
 protected:
  CacheDamage() : environment_("LUMORA_CACHE_DIR", directory_.path()) {}

  void SetUp() override {
    GlTest::SetUp();
    if (HasFatalFailure()) return;
    right_ = DrawCachedPrograms();
    if (ListingOf(directory_.path()).programs.empty()) {
      GTEST_SKIP() << "this driver has no program binaries";
    }
    for (const ProgramCase& program : programs_) {
      good_.push_back(ReadFile(path(program)).value_or(""));
    }
  }

  const TempDirectory& directory() const { return directory_; }
  std::string path(const ProgramCase& program) const { return directory_.file(program.cache_file); }

  /// A program whose cache file may be anything draws its picture, and its file is good afterwards.
  void ExpectRight(size_t i, const std::string& what) {
    const ProgramPicture picture = DrawCase(programs_[i]);
    EXPECT_EQ(picture.digest, right_[i].digest) << picture.name << ", " << what;
    if (picture.from_cache) return;
    EXPECT_TRUE(ReadFile(path(programs_[i])) == good_[i]) << picture.name << ", " << what;
    ++refused_;
  }

  const std::vector<ProgramCase> programs_ = CachedPrograms();
  std::vector<ProgramPicture> right_;
  std::vector<std::string> good_;
  int refused_ = 0;

 private:
  TempDirectory directory_;
  ScopedEnvironment environment_;
  LogCapture log_;  // keeps the log off the terminal
};

using Random = std::mt19937;

size_t PlaceIn(const std::string& bytes, Random& random) {
  return random() % bytes.size();
}

void FlipBits(std::string& bytes, Random& random) {
  const size_t counts[] = {1, 2, 16, bytes.size()};
  for (size_t count = counts[random() % 4]; count > 0; --count) {
    bytes[PlaceIn(bytes, random)] ^= static_cast<char>(1u << random() % 8);
  }
}

void Truncate(std::string& bytes, Random& random) {
  bytes.resize(PlaceIn(bytes, random));
}

void Extend(std::string& bytes, Random& random) {
  for (size_t count = 1 + random() % 5000; count > 0; --count) {
    bytes += static_cast<char>(random());
  }
}

void ZeroAPart(std::string& bytes, Random& random) {
  const size_t first = PlaceIn(bytes, random);
  const size_t count = 1 + random() % (bytes.size() - first);
  std::memset(&bytes[first], 0, count);
}

void MoveAPart(std::string& bytes, Random& random) {
  const size_t from = PlaceIn(bytes, random);
  const size_t to = PlaceIn(bytes, random);
  std::memmove(&bytes[to], &bytes[from], bytes.size() - std::max(from, to));
}

/// As from another driver: with a format of its own, or by chance with the same one.
void ReplaceAll(std::string& bytes, Random& random) {
  for (size_t i = random() % 2 * sizeof(uint32_t); i < bytes.size(); ++i) {
    bytes[i] = static_cast<char>(random());
  }
}

/// The lengths and counts that a driver may keep in its first words, as extremes.
void ChangeAWord(std::string& bytes, Random& random) {
  constexpr uint32_t kValues[] = {0, 1, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, 0x00010000};
  const uint32_t value = kValues[random() % std::size(kValues)];
  std::memcpy(&bytes[4 * (random() % 16)], &value, sizeof(value));
}

constexpr struct {
  const char* name;
  void (*corrupt)(std::string& bytes, Random& random);
} kCorruptions[] = {
    {"flip bits", FlipBits}, {"truncate", Truncate},     {"extend", Extend},
    {"zero", ZeroAPart},     {"move a part", MoveAPart}, {"replace all", ReplaceAll},
    {"word", ChangeAWord},
};

TEST_F(CacheDamage, RandomCorruptions) {
  Random random(99);
  const int count = Repeats(200, 1000);
  for (int number = 0; number < count; ++number) {
    const size_t i = random() % programs_.size();
    const auto& corruption = kCorruptions[static_cast<size_t>(number) % std::size(kCorruptions)];
    std::string bytes = good_[i];
    corruption.corrupt(bytes, random);
    WriteFile(path(programs_[i]), bytes);
    ExpectRight(i, std::string(corruption.name) + " " + std::to_string(number));
  }
  // A part may be moved onto itself, and a word be what it was.
  EXPECT_GE(refused_, count * 9 / 10);
  std::printf("cache: %d corruptions, %d refused\n", count, refused_);
  for (size_t i = 0; i < programs_.size(); ++i) {
    WriteFile(path(programs_[i]), good_[i]);
    ExpectRight(i, "whole again");
  }
}

// Every program's binary in every other one's place, with all that vouches for it.
TEST_F(CacheDamage, BinariesOfOtherPrograms) {
  std::vector<std::string> seals;
  for (const ProgramCase& program : programs_) {
    seals.push_back(ReadFile(path(program) + ".seal").value_or(""));
  }
  for (size_t i = 0; i < programs_.size(); ++i) {
    for (size_t other = 0; other < programs_.size(); ++other) {
      if (std::string(programs_[i].cache_file) == programs_[other].cache_file) continue;
      WriteFile(path(programs_[i]), good_[other]);
      WriteFile(path(programs_[i]) + ".seal", seals[other]);
      ExpectRight(i, std::string("as ") + programs_[other].name);
    }
  }
  EXPECT_EQ(refused_, kCachedPrograms * (kCachedPrograms - 1));
}

// Where a file belongs there is a link, planted by somebody: the file that it names is not written
// to, and a name without a file gets none.
TEST_F(CacheDamage, PlantedLinksAreReplacedAndNotFollowed) {
  const TempDirectory elsewhere;
  WriteFile(elsewhere.file("victim"), "precious");
  for (const std::string& target : {elsewhere.file("victim"), elsewhere.file("new")}) {
    for (size_t i = 0; i < programs_.size(); ++i) {
      fs::remove(path(programs_[i]));
      fs::create_symlink(target, path(programs_[i]));
      ExpectRight(i, target);
      EXPECT_FALSE(fs::is_symlink(path(programs_[i])));
    }
  }
  EXPECT_EQ(refused_, 2 * kCachedPrograms);
  EXPECT_EQ(ReadFile(elsewhere.file("victim")), "precious");
  EXPECT_FALSE(fs::exists(elsewhere.file("new")));
}

TEST_F(CacheDamage, LinkInTheDirectorysPlaceMakesNone) {
  const TempDirectory elsewhere;
  fs::create_directory_symlink(elsewhere.file("new"), elsewhere.file("link"));
  const ScopedEnvironment environment("LUMORA_CACHE_DIR", elsewhere.file("link"));
  EXPECT_EQ(DrawCase(programs_[0]).digest, right_[0].digest);
  EXPECT_FALSE(fs::exists(elsewhere.file("new")));
}

TEST_F(CacheDamage, ScrapsOfKilledWritersGoWhenTheyAreOld) {
  const std::string file = programs_[0].cache_file;
  const std::string stem = "." + file + ".";
  const auto plant = [&](const std::string& name, int minutes) {
    WriteFile(directory().file(name), "scrap");
    fs::last_write_time(directory().file(name),
                        fs::file_time_type::clock::now() - std::chrono::minutes(minutes));
  };
  const std::vector<std::string> stay = {
      stem + "aaaaaa",  // still being written
      stem + "toolong",
      stem + "short",
      "." + file,
      file + ".backup",                                        // of other makers
      std::string(".") + programs_[1].cache_file + ".aaaaaa",  // waits for its own program
  };
  plant(stay[0], 50);
  for (size_t i = 1; i < stay.size(); ++i) plant(stay[i], 100000);
  plant(stem + "bbbbbb", 70);
  plant(stem + "cccccc", 100000);
  plant("." + file + ".seal.cccccc", 70);
  fs::create_symlink("/etc/hostname", directory().file(stem + "dddddd"));
  fs::create_directory(directory().file(stem + "eeeeee"));

  fs::remove(path(programs_[0]));
  ExpectRight(0, "after a scrap");
  std::vector<std::string> others = stay;
  others.push_back(stem + "dddddd");
  others.push_back(stem + "eeeeee");
  EXPECT_THAT(ListingOf(directory().path()).others, testing::UnorderedElementsAreArray(others));
}

}  // namespace
}  // namespace lumora::test
