// SPDX-License-Identifier: Apache-2.0
// The platform log, caught line by line.
//
// Link `lumora_log_capture` (an object library): it puts `__android_log_print`,
// `__android_log_vprint` and `__korvolog_init_mask` into the test executable, where the library
// finds them before the platform's own. Without a live LogCapture, lines go nowhere, or to stderr
// when the environment has LUMORA_TEST_LOG.
//
//   LogCapture log;
//   program.Load();
//   EXPECT_TRUE(LogIs(log, {Info(kNoTag, "[Load] get locations"), Error("GLProgram", "...")}));
#ifndef LUMORA_TESTS_SUPPORT_LOG_CAPTURE_H_
#define LUMORA_TESTS_SUPPORT_LOG_CAPTURE_H_

#include <gtest/gtest.h>

#include <cstddef>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace lumora::test {

/// The null tag. It is not the empty one.
constexpr const char* kNoTag = nullptr;

/// One printed line: priority (3 debug, 4 info, 6 error), tag (nothing for the null tag) and the
/// formatted text, trailing newlines included.
struct LogLine {
  int priority = 0;
  std::optional<std::string> tag;
  std::string text;
};
bool operator==(const LogLine& a, const LogLine& b);
std::ostream& operator<<(std::ostream& out, const LogLine& line);

/// Lines to expect. The text takes printf's conversions: Info("Lumora", "[%s] program id %d", ...).
LogLine Debug(const char* tag, const char* format, ...) __attribute__((format(printf, 2, 3)));
LogLine Info(const char* tag, const char* format, ...) __attribute__((format(printf, 2, 3)));
LogLine Error(const char* tag, const char* format, ...) __attribute__((format(printf, 2, 3)));

/// Collects the lines of the whole process (any thread) while it lives. Of nested captures only the
/// innermost collects. Captures end in the reverse order of their making.
class LogCapture {
 public:
  LogCapture();
  ~LogCapture();
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;

  /// The lines so far.
  std::vector<LogLine> lines() const;
  /// The lines so far; the capture is empty afterwards.
  std::vector<LogLine> take();
  /// The lines so far with this priority, or with this tag.
  std::vector<LogLine> lines(int priority) const;
  std::vector<LogLine> lines_of(const char* tag) const;
  /// How often exactly this line was printed.
  int count(const LogLine& line) const;

 private:
  size_t depth_;  // place in the nest of captures
};

/// Whether `actual` is exactly `expected`, in order. The failure message is a diff: lines that
/// agree are indented, missing ones start with "-", extra ones with "+".
testing::AssertionResult LogIs(const std::vector<LogLine>& actual,
                               const std::vector<LogLine>& expected);
/// The same for what a capture holds; takes its lines, so that the next check starts afresh.
testing::AssertionResult LogIs(LogCapture& capture, const std::vector<LogLine>& expected);
/// Whether `expected` occurs in `actual` in this order, with any lines between.
testing::AssertionResult LogHas(const std::vector<LogLine>& actual,
                                const std::vector<LogLine>& expected);

/// Level masks: bit p - 2 enables priority p.
constexpr unsigned char kAllLevels = 0x7F;
constexpr unsigned char kNoLevels = 0x00;
constexpr unsigned char LevelBit(int priority) {
  return static_cast<unsigned char>(1u << (priority - 2));
}

/// Sets what `__korvolog_init_mask` answers for `tag` while it lives (otherwise kAllLevels). The
/// library asks once a file and keeps the answer, so the scope must begin before the first line of
/// the file under test; tests of levels therefore want an executable of their own, or a LogChannel
/// of their own.
class ScopedLogLevels {
 public:
  ScopedLogLevels(const char* tag, unsigned char mask);
  ~ScopedLogLevels();
  ScopedLogLevels(const ScopedLogLevels&) = delete;
  ScopedLogLevels& operator=(const ScopedLogLevels&) = delete;

 private:
  std::string key_;
  std::optional<unsigned char> previous_;
};

/// How often `__korvolog_init_mask` was called for `tag` since the start of the process.
int MaskRequests(const char* tag);

}  // namespace lumora::test

#endif  // LUMORA_TESTS_SUPPORT_LOG_CAPTURE_H_
