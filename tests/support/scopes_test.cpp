// SPDX-License-Identifier: Apache-2.0
#include "support/scoped.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "support/guarded_buffer.h"

namespace lumora::test {
namespace {

TEST(Environment, ComesBackAsItWas) {
  setenv("LUMORA_SCOPE_TEST", "before", 1);
  {
    const ScopedEnvironment changed("LUMORA_SCOPE_TEST", "after");
    EXPECT_STREQ(std::getenv("LUMORA_SCOPE_TEST"), "after");
    const ScopedEnvironment gone("LUMORA_SCOPE_TEST", std::nullopt);
    EXPECT_EQ(std::getenv("LUMORA_SCOPE_TEST"), nullptr);
  }
  EXPECT_STREQ(std::getenv("LUMORA_SCOPE_TEST"), "before");
  unsetenv("LUMORA_SCOPE_TEST");
}

TEST(Directories, DisappearWithProtectedContents) {
  std::string path;
  {
    const TempDirectory directory;
    path = directory.path();
    WriteFile(directory.file("locked/file"), std::string("a\0b", 3));
    EXPECT_EQ(ReadFile(directory.file("locked/file")), std::string("a\0b", 3));
    std::filesystem::permissions(directory.file("locked"), std::filesystem::perms::none);
  }
  EXPECT_FALSE(std::filesystem::exists(path));
  EXPECT_EQ(ReadFile(path + "/file"), std::nullopt);
}

TEST(GuardedMemoryDeathTest, FaultsOnePastTheGuardedEnd) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  GuardedBuffer end(100, GuardedBuffer::Guard::End);
  end.data()[99] = 1;
  EXPECT_DEATH(static_cast<volatile uint8_t*>(end.data())[100] = 1, "");
  GuardedBuffer begin(100, GuardedBuffer::Guard::Begin);
  EXPECT_DEATH(static_cast<volatile uint8_t*>(begin.data())[-1] = 1, "");
  EXPECT_DEATH(
      {
        begin.protect_from_writing();
        static_cast<volatile uint8_t*>(begin.data())[0] = 1;
      },
      "");
}

TEST(GuardedMemory, NoticesWritesAtTheOtherEnd) {
  GuardedBuffer end(100, GuardedBuffer::Guard::End);
  EXPECT_TRUE(end.intact());
  end.data()[-1] = 0;
  EXPECT_FALSE(end.intact());
  GuardedBuffer begin(100, GuardedBuffer::Guard::Begin);
  begin.data()[100] = 0;
  EXPECT_FALSE(begin.intact());
}

}  // namespace
}  // namespace lumora::test
