// SPDX-License-Identifier: Apache-2.0
// Level masks: asked for late, once a file, and heeded at every log site.
#include <gtest/gtest.h>

#include "lumora/gl/gl_helpers.h"
#include "lumora/gl/gl_program.h"
#include "lumora/gl/log.h"
#include "lumora/gl/segl_image.h"
#include "support/gl_test.h"
#include "support/log_capture.h"

namespace lumora::test {
namespace {

// Set before the first line of any file under test: this tag has INFO and nothing else.
const ScopedLogLevels g_image_levels("EGLImageTest", LevelBit(4));

class LogLevels : public GlTest {};

// One test, because each file of the library asks only once in the life of a process.
TEST_F(LogLevels, AreAskedOnceAFileAndHeeded) {
  LogCapture log;
  ASSERT_EQ(MaskRequests("EGLImageTest"), 0) << "asked before there was anything to print";

  EXPECT_EQ(::LogLine("unconditional"), 13);
  EXPECT_EQ(MaskRequests("EGLImageTest"), 0) << "LogLine heeds no mask";
  EXPECT_TRUE(LocIsValid("present", 0));
  EXPECT_EQ(MaskRequests("EGLImageTest"), 0);

  EXPECT_FALSE(LocIsValid("x", -1)) << "the answer does not hang on the log";
  EXPECT_EQ(MaskRequests("EGLImageTest"), 1);
  glEnable(0xFFFF);
  checkGlError("glEnable");
  EXPECT_EQ(MaskRequests("EGLImageTest"), 1);
  EXPECT_TRUE(LogIs(log, {Info("EGLImageTest", "unconditional"),
                          Info("EGLImageTest", "after glEnable() glError (0x500)\n")}));

  // The same tag in another file has a byte of its own.
  SEGLImage image(1);
  EXPECT_EQ(image.Create(32, 4, 1), 1);
  EXPECT_EQ(MaskRequests("EGLImageTest"), 2);
  image.Destroy();
  EXPECT_EQ(MaskRequests("EGLImageTest"), 2);
  EXPECT_TRUE(
      LogIs(log.lines_of("EGLImageTest"), {Info("EGLImageTest", "eglCreateImageKHR() done! ")}))
      << "only the unconditional line";
}

TEST(LogChannels, AskAgainOnlyWhileTheMaskIsUnset) {
  LogChannel channel{"a tag"};
  EXPECT_EQ(channel.mask, 0x80);
  const ScopedLogLevels levels("a tag", LevelBit(3) | LevelBit(6));
  EXPECT_TRUE(channel.Enables(kLogDebug));
  EXPECT_EQ(channel.mask, 0x12);
  EXPECT_FALSE(channel.Enables(kLogInfo));
  EXPECT_TRUE(channel.Enables(kLogError));
  EXPECT_EQ(MaskRequests("a tag"), 1);
}

TEST(LogChannels, AskAtEverySiteWhereThePlatformLeavesBitSevenSet) {
  LogChannel channel{"undecided"};
  const ScopedLogLevels levels("undecided", 0x80 | LevelBit(4));
  for (int site = 1; site <= 3; ++site) {
    EXPECT_TRUE(channel.Enables(kLogInfo)) << "the answer counts all the same";
    EXPECT_FALSE(channel.Enables(kLogError));
    EXPECT_EQ(MaskRequests("undecided"), 2 * site);
  }
}

TEST(LogChannels, AskForTheNullTagAsSuch) {
  LogChannel channel{nullptr};
  const int before = MaskRequests(kNoTag);
  const int before_empty = MaskRequests("");
  const ScopedLogLevels levels(kNoTag, LevelBit(6));
  EXPECT_FALSE(channel.Enables(kLogDebug));
  EXPECT_TRUE(channel.Enables(kLogError));
  EXPECT_EQ(MaskRequests(kNoTag), before + 1);
  EXPECT_EQ(MaskRequests(""), before_empty);
}

TEST(LogChannels, ReachEachPriorityByItsOwnBit) {
  const struct {
    LogPriority priority;
    unsigned char bit;
  } bits[] = {{kLogDebug, 0x02}, {kLogInfo, 0x04}, {kLogError, 0x10}};
  for (const auto& own : bits) {
    for (const auto& other : bits) {
      LogChannel channel{"bits", other.bit};
      EXPECT_EQ(channel.Enables(own.priority), own.bit == other.bit);
    }
  }
}

}  // namespace
}  // namespace lumora::test
