// SPDX-License-Identifier: Apache-2.0
#include "support/log_capture.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <mutex>
#include <sstream>
#include <utility>

#include "lumora/platform/log.h"

namespace lumora::test {
namespace {

struct LogState {
  std::mutex mutex;
  std::vector<std::vector<LogLine>> captures;  // innermost last
  std::map<std::string, unsigned char> levels;
  std::map<std::string, int> mask_requests;
};

LogState& State() {
  static LogState* state = new LogState;  // outlives every object that logs in its destructor
  return *state;
}

// Keeps the null tag apart from the empty one.
std::string Key(const char* tag) {
  return tag == nullptr ? "null" : std::string("=") + tag;
}

std::optional<std::string> Tag(const char* tag) {
  return tag == nullptr ? std::nullopt : std::optional<std::string>(tag);
}

std::string FormatText(const char* format, va_list arguments) {
  va_list copy;
  va_copy(copy, arguments);
  const int length = std::vsnprintf(nullptr, 0, format, copy);
  va_end(copy);
  if (length < 0) return "(bad format)";
  std::string text(static_cast<size_t>(length) + 1, '\0');
  std::vsnprintf(text.data(), text.size(), format, arguments);
  text.pop_back();
  return text;
}

int Record(int priority, const char* tag, std::string text) {
  const LogLine line{priority, Tag(tag), std::move(text)};
  const int length = static_cast<int>(line.text.size());
  LogState& state = State();
  const std::lock_guard<std::mutex> lock(state.mutex);
  if (!state.captures.empty()) {
    state.captures.back().push_back(line);
  } else if (std::getenv("LUMORA_TEST_LOG") != nullptr) {
    std::ostringstream out;
    out << line << '\n';
    std::fputs(out.str().c_str(), stderr);
  }
  return length;
}

LogLine Line(int priority, const char* tag, const char* format, va_list arguments) {
  return {priority, Tag(tag), FormatText(format, arguments)};
}

// Lengths of the longest common subsequences of all pairs of tails.
std::vector<std::vector<int>> CommonTails(const std::vector<LogLine>& a,
                                          const std::vector<LogLine>& b) {
  std::vector<std::vector<int>> length(a.size() + 1, std::vector<int>(b.size() + 1, 0));
  for (size_t i = a.size(); i-- > 0;) {
    for (size_t j = b.size(); j-- > 0;) {
      length[i][j] =
          a[i] == b[j] ? length[i + 1][j + 1] + 1 : std::max(length[i + 1][j], length[i][j + 1]);
    }
  }
  return length;
}

std::string Diff(const std::vector<LogLine>& actual, const std::vector<LogLine>& expected) {
  const auto common = CommonTails(expected, actual);
  std::ostringstream out;
  size_t i = 0;
  size_t j = 0;
  while (i < expected.size() || j < actual.size()) {
    if (i < expected.size() && j < actual.size() && expected[i] == actual[j]) {
      out << "    " << expected[i++] << '\n';
      ++j;
    } else if (i < expected.size() &&
               (j == actual.size() || common[i + 1][j] >= common[i][j + 1])) {
      out << "  - " << expected[i++] << '\n';
    } else {
      out << "  + " << actual[j++] << '\n';
    }
  }
  return out.str();
}

}  // namespace

bool operator==(const LogLine& a, const LogLine& b) {
  return a.priority == b.priority && a.tag == b.tag && a.text == b.text;
}

std::ostream& operator<<(std::ostream& out, const LogLine& line) {
  const char* priority = line.priority == 3   ? "DEBUG"
                         : line.priority == 4 ? "INFO"
                         : line.priority == 6 ? "ERROR"
                                              : nullptr;
  if (priority != nullptr) {
    out << priority;
  } else {
    out << line.priority;
  }
  out << ' ' << (line.tag ? "\"" + *line.tag + "\"" : "(null)") << " \"";
  for (const char c : line.text) out << (c == '\n' ? std::string("\\n") : std::string(1, c));
  return out << '"';
}

LogLine Debug(const char* tag, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  LogLine line = Line(3, tag, format, arguments);
  va_end(arguments);
  return line;
}

LogLine Info(const char* tag, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  LogLine line = Line(4, tag, format, arguments);
  va_end(arguments);
  return line;
}

LogLine Error(const char* tag, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  LogLine line = Line(6, tag, format, arguments);
  va_end(arguments);
  return line;
}

LogCapture::LogCapture() {
  const std::lock_guard<std::mutex> lock(State().mutex);
  depth_ = State().captures.size();
  State().captures.emplace_back();
}

LogCapture::~LogCapture() {
  const std::lock_guard<std::mutex> lock(State().mutex);
  State().captures.resize(depth_);
}

std::vector<LogLine> LogCapture::lines() const {
  const std::lock_guard<std::mutex> lock(State().mutex);
  return State().captures[depth_];
}

std::vector<LogLine> LogCapture::take() {
  const std::lock_guard<std::mutex> lock(State().mutex);
  return std::exchange(State().captures[depth_], {});
}

std::vector<LogLine> LogCapture::lines(int priority) const {
  std::vector<LogLine> chosen;
  for (const LogLine& line : lines()) {
    if (line.priority == priority) chosen.push_back(line);
  }
  return chosen;
}

std::vector<LogLine> LogCapture::lines_of(const char* tag) const {
  std::vector<LogLine> chosen;
  for (const LogLine& line : lines()) {
    if (line.tag == Tag(tag)) chosen.push_back(line);
  }
  return chosen;
}

int LogCapture::count(const LogLine& line) const {
  const std::vector<LogLine> all = lines();
  return static_cast<int>(std::count(all.begin(), all.end(), line));
}

testing::AssertionResult LogIs(const std::vector<LogLine>& actual,
                               const std::vector<LogLine>& expected) {
  if (actual == expected) return testing::AssertionSuccess();
  return testing::AssertionFailure() << "the log differs (- missing, + extra):\n"
                                     << Diff(actual, expected);
}

testing::AssertionResult LogIs(LogCapture& capture, const std::vector<LogLine>& expected) {
  return LogIs(capture.take(), expected);
}

testing::AssertionResult LogHas(const std::vector<LogLine>& actual,
                                const std::vector<LogLine>& expected) {
  size_t found = 0;
  for (const LogLine& line : actual) {
    if (found < expected.size() && line == expected[found]) ++found;
  }
  if (found == expected.size()) return testing::AssertionSuccess();
  testing::AssertionResult failure = testing::AssertionFailure();
  failure << "the log lacks, in this order, " << expected[found] << "; it holds:\n";
  for (const LogLine& line : actual) failure << "    " << line << '\n';
  return failure;
}

ScopedLogLevels::ScopedLogLevels(const char* tag, unsigned char mask) : key_(Key(tag)) {
  const std::lock_guard<std::mutex> lock(State().mutex);
  auto& levels = State().levels;
  const auto found = levels.find(key_);
  if (found != levels.end()) previous_ = found->second;
  levels[key_] = mask;
}

ScopedLogLevels::~ScopedLogLevels() {
  const std::lock_guard<std::mutex> lock(State().mutex);
  State().levels.erase(key_);
  if (previous_) State().levels[key_] = *previous_;
}

int MaskRequests(const char* tag) {
  const std::lock_guard<std::mutex> lock(State().mutex);
  return State().mask_requests[Key(tag)];
}

}  // namespace lumora::test

// What the library calls. Visible, so that a shared library finds them in the executable first.
extern "C" {

__attribute__((visibility("default"))) int __android_log_print(int priority, const char* tag,
                                                               const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  std::string text = lumora::test::FormatText(format, arguments);
  va_end(arguments);
  return lumora::test::Record(priority, tag, std::move(text));
}

__attribute__((visibility("default"))) int __android_log_vprint(int priority, const char* tag,
                                                                const char* format,
                                                                va_list arguments) {
  return lumora::test::Record(priority, tag, lumora::test::FormatText(format, arguments));
}

__attribute__((visibility("default"))) unsigned char __korvolog_init_mask(const char* tag,
                                                                          int /*unused*/,
                                                                          unsigned char* mask) {
  lumora::test::LogState& state = lumora::test::State();
  const std::lock_guard<std::mutex> lock(state.mutex);
  const std::string key = lumora::test::Key(tag);
  ++state.mask_requests[key];
  const auto found = state.levels.find(key);
  const unsigned char answer =
      found == state.levels.end() ? lumora::test::kAllLevels : found->second;
  __atomic_store_n(mask, answer, __ATOMIC_RELAXED);
  return answer;
}

}  // extern "C"
