// SPDX-License-Identifier: Apache-2.0
// The library's lines and the host program's, which share the platform's log.
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "lumora/gl/gl_helpers.h"
#include "lumora/gl/log.h"
#include "lumora/platform/linux/liblog.h"
#include "support/scoped.h"

namespace {

using lumora::kLogDebug;
using lumora::kLogError;
using lumora::kLogInfo;
using lumora::kLogUnset;
using lumora::LogChannel;
using lumora::test::ScopedEnvironment;

constexpr const char* kHostTag = "Host";

using Line = std::pair<std::string, int>;
std::vector<Line> g_lines;

// Catches what liblog lets through to the process's logger.
class LiblogLines : public testing::Test {
 protected:
  LiblogLines() {
    g_lines.clear();
    __android_log_set_logger([](const __android_logger_data* data, const char* message) {
      g_lines.emplace_back(std::string(data->tag) + ": " + message, data->priority);
    });
  }
  ~LiblogLines() override {
    __android_log_set_logger(__android_log_stderr_logger);
    __android_log_set_minimum_priority(kLogUnset);
  }

  // The lines of a library file that logs for the first time, and of a host program after it.
  static std::vector<Line> LinesOfBoth() {
    g_lines.clear();
    LogChannel g_log_channel{"Library"};
    LOGD("debug %d", 3);
    LOGI("info %d", 4);
    LOGE("error");
    LogLine("unmasked %s", "line");
    __android_log_print(kLogDebug, kHostTag, "debug");
    __android_log_print(kLogInfo, kHostTag, "info");
    return g_lines;
  }
};

const Line kLibraryDebug = {"Library: debug 3", kLogDebug};
const Line kLibraryInfo = {"Library: info 4", kLogInfo};
const Line kLibraryError = {"Library: error", kLogError};
const Line kUnmasked = {"EGLImageTest: unmasked line", kLogInfo};
const Line kHostDebug = {"Host: debug", kLogDebug};
const Line kHostInfo = {"Host: info", kLogInfo};

TEST_F(LiblogLines, OfTheHostAreTheSameWhateverTheLibraryPrints) {
  const struct {
    std::optional<std::string> choice;
    std::vector<Line> lines;
  } rows[] = {
      {std::nullopt, {kLibraryError, kHostInfo}},
      {"error", {kLibraryError, kHostInfo}},
      {"info", {kLibraryInfo, kLibraryError, kUnmasked, kHostInfo}},
      {"debug", {kLibraryDebug, kLibraryInfo, kLibraryError, kUnmasked, kHostInfo}},
  };
  for (const auto& row : rows) {
    const ScopedEnvironment variable("LUMORA_LOG", row.choice);
    EXPECT_EQ(LinesOfBoth(), row.lines) << row.choice.value_or("unset");
    EXPECT_EQ(__android_log_get_minimum_priority(), kLogUnset) << row.choice.value_or("unset");
  }
}

TEST_F(LiblogLines, FollowTheHostsLeastPriorityWhereNobodyChooses) {
  const ScopedEnvironment variable("LUMORA_LOG", std::nullopt);
  __android_log_set_minimum_priority(kLogDebug);
  EXPECT_EQ(LinesOfBoth(), (std::vector<Line>{kLibraryDebug, kLibraryInfo, kLibraryError, kUnmasked,
                                              kHostDebug, kHostInfo}));
  __android_log_set_minimum_priority(kLogError);
  EXPECT_EQ(LinesOfBoth(), (std::vector<Line>{kLibraryError}));
  EXPECT_EQ(__android_log_get_minimum_priority(), kLogError);
}

TEST_F(LiblogLines, AreNotHeldBackByTheHostsLeastPriorityWhereSomebodyChooses) {
  const ScopedEnvironment variable("LUMORA_LOG", "info");
  __android_log_set_minimum_priority(kLogError);
  EXPECT_EQ(LinesOfBoth(), (std::vector<Line>{kLibraryInfo, kLibraryError, kUnmasked}));
  EXPECT_EQ(__android_log_get_minimum_priority(), kLogError);
}

}  // namespace
