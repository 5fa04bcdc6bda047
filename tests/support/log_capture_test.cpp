// SPDX-License-Identifier: Apache-2.0
#include "support/log_capture.h"

#include <gtest/gtest.h>

#include <cstdarg>
#include <string>
#include <thread>

#include "lumora/platform/log.h"
#include "lumora/platform/settings.h"
#include "support/property_override.h"

namespace lumora::test {
namespace {

int PrintByList(int priority, const char* tag, const char* format, ...)
    __attribute__((format(printf, 3, 4)));
int PrintByList(int priority, const char* tag, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const int result = __android_log_vprint(priority, tag, format, arguments);
  va_end(arguments);
  return result;
}

TEST(LogCaptures, HoldPriorityTagAndFormattedText) {
  LogCapture log;
  __android_log_print(3, "A", "%d of %s\n", 3, "four");
  PrintByList(6, nullptr, "no tag");
  __android_log_print(4, "", "empty tag");
  EXPECT_TRUE(
      LogIs(log, {Debug("A", "3 of four\n"), Error(kNoTag, "no tag"), Info("", "empty tag")}));
  EXPECT_TRUE(LogIs(log, {})) << "taken";
}

TEST(LogCaptures, TellTheNullTagFromTheEmptyOne) {
  LogCapture log;
  __android_log_print(4, nullptr, "x");
  EXPECT_FALSE(LogIs(log.lines(), {Info("", "x")}));
  EXPECT_TRUE(LogIs(log.lines(), {Info(kNoTag, "x")}));
  EXPECT_EQ(log.lines_of(kNoTag).size(), 1u);
  EXPECT_EQ(log.lines_of("").size(), 0u);
}

TEST(LogCaptures, ShowMissingAndExtraLines) {
  LogCapture log;
  __android_log_print(4, "T", "one");
  __android_log_print(4, "T", "extra");
  const testing::AssertionResult result = LogIs(log, {Info("T", "one"), Info("T", "missing")});
  ASSERT_FALSE(result);
  const std::string message = result.message();
  EXPECT_NE(message.find("    INFO \"T\" \"one\"\n"), std::string::npos) << message;
  EXPECT_NE(message.find("  - INFO \"T\" \"missing\"\n"), std::string::npos) << message;
  EXPECT_NE(message.find("  + INFO \"T\" \"extra\"\n"), std::string::npos) << message;
}

TEST(LogCaptures, FindASubsequenceInOrderOnly) {
  const std::vector<LogLine> lines = {Info("T", "a"), Info("T", "b"), Info("T", "c")};
  EXPECT_TRUE(LogHas(lines, {Info("T", "a"), Info("T", "c")}));
  EXPECT_FALSE(LogHas(lines, {Info("T", "c"), Info("T", "a")}));
  EXPECT_FALSE(LogHas(lines, {Error("T", "a")}));
}

TEST(LogCaptures, NestAndHearOtherThreads) {
  LogCapture outer;
  {
    LogCapture inner;
    std::thread([] { __android_log_print(4, "T", "inner"); }).join();
    EXPECT_EQ(inner.count(Info("T", "inner")), 1);
  }
  __android_log_print(6, "T", "outer");
  EXPECT_TRUE(LogIs(outer, {Error("T", "outer")}));
}

TEST(LogLevels, AreAllOnUntilSetAndCounted) {
  unsigned char mask = 0x80;
  const int before = MaskRequests("level test");
  EXPECT_EQ(__korvolog_init_mask("level test", -1, &mask), kAllLevels);
  EXPECT_EQ(mask, kAllLevels);
  {
    const ScopedLogLevels errors_only("level test", LevelBit(6));
    const ScopedLogLevels null_tag(kNoTag, kNoLevels);
    EXPECT_EQ(__korvolog_init_mask("level test", -1, &mask), 0x10);
    EXPECT_EQ(__korvolog_init_mask(nullptr, -1, &mask), 0);
    EXPECT_EQ(__korvolog_init_mask("", -1, &mask), kAllLevels);
  }
  EXPECT_EQ(__korvolog_init_mask("level test", -1, &mask), kAllLevels);
  EXPECT_EQ(MaskRequests("level test"), before + 3);
}

TEST(Properties, AreAbsentUntilSet) {
  char value[platform::kPropertyValueMax] = "x";
  EXPECT_EQ(__system_property_get(kShowMaskProperty, value), 0);
  EXPECT_STREQ(value, "");
  {
    const ScopedProperty outer(kShowMaskProperty, "2");
    const ScopedProperty inner(kShowMaskProperty, "1");
    EXPECT_EQ(__system_property_get(kShowMaskProperty, value), 1);
    EXPECT_STREQ(value, "1");
  }
  EXPECT_EQ(__system_property_get(kShowMaskProperty, value), 0);
  EXPECT_EQ(PropertyReads(kShowMaskProperty), 3);
}

TEST(Properties, AreCutAtTheirLongest) {
  const ScopedProperty set("long", std::string(200, 'v'));
  char value[platform::kPropertyValueMax];
  EXPECT_EQ(__system_property_get("long", value), 91);
  EXPECT_EQ(std::string(value).size(), 91u);
}

}  // namespace
}  // namespace lumora::test
