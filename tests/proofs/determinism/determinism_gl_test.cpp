// SPDX-License-Identifier: Apache-2.0
// The same input gives the same bytes: run after run, with any number of renderer threads, with
// shared and with copied image memory.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <map>

#include "support/scoped.h"

namespace lumora::test {
namespace {

using Stages = std::map<std::string, std::string>;

/// What a fresh process renders under the settings of the moment.
Stages Rendered() {
  const TempDirectory folder;
  const TempDirectory cache;
  const ScopedEnvironment program_cache("LUMORA_CACHE_DIR", cache.path());
  const std::string command =
      std::string(LUMORA_RENDER_STAGES) + " " + folder.path() + " >/dev/null";
  EXPECT_EQ(0, std::system(command.c_str()));
  Stages stages;
  for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
    stages[entry.path().filename()] = ReadFile(entry.path()).value_or("");
  }
  return stages;
}

class Determinism : public testing::Test {
 protected:
  static void SetUpTestSuite() { expected_ = Rendered(); }

  static void ExpectTheSame(const std::string& circumstances) {
    const Stages actual = Rendered();
    ASSERT_EQ(18u, expected_.size());
    ASSERT_EQ(expected_.size(), actual.size());
    for (const auto& [name, bytes] : expected_) {
      const auto found = actual.find(name);
      ASSERT_NE(found, actual.end()) << name;
      EXPECT_FALSE(bytes.empty()) << name;
      EXPECT_TRUE(bytes == found->second) << name << " differs " << circumstances;
    }
  }

 private:
  static Stages expected_;
};

Stages Determinism::expected_;

TEST_F(Determinism, RunsGiveTheSameBytes) {
  ExpectTheSame("in another run");
}

TEST_F(Determinism, AnyNumberOfRendererThreadsGivesTheSameBytes) {
  for (const char* threads : {"0", "1", "2", "7"}) {
    const ScopedEnvironment count("LP_NUM_THREADS", threads);
    ExpectTheSame(std::string("with threads: ") + threads);
  }
}

TEST_F(Determinism, CopiedImageMemoryGivesTheSameBytes) {
  const ScopedEnvironment copies("LUMORA_BUFFER", "staged");
  ExpectTheSame("where images are copied");
}

}  // namespace
}  // namespace lumora::test
