// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/video/progress.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "tools/lumora/support/clock.h"

namespace lumora::tools {
namespace {

constexpr double kPause = 200;             // milliseconds between two texts
constexpr char kClearLine[] = "\r\x1b[K";  // back to its start, and erased from there

}  // namespace

std::string ProgressText(int64_t frame, std::optional<int64_t> frames, double seconds) {
  const double rate = static_cast<double>(frame) / std::max(seconds, 1e-3);
  char text[160];
  int length = std::snprintf(text, sizeof(text), "frame %lld", static_cast<long long>(frame));
  std::string line(text, static_cast<size_t>(length));
  if (frames) line += " of " + std::to_string(*frames);
  length = std::snprintf(text, sizeof(text), ", %.1f frames a second", rate);
  line.append(text, static_cast<size_t>(length));
  if (frames && rate > 0) {
    const auto left =
        std::max<int64_t>(0, std::llround(static_cast<double>(*frames - frame) / rate));
    length = std::snprintf(text, sizeof(text), ", %lld:%02lld left",
                           static_cast<long long>(left / 60), static_cast<long long>(left % 60));
    line.append(text, static_cast<size_t>(length));
  }
  return line;
}

Progress::Progress(std::optional<int64_t> frames)
    : frames_(frames), terminal_(isatty(STDERR_FILENO) != 0), start_(Now()) {}

Progress::~Progress() {
  if (shown_ > 0) std::fputs(kClearLine, stderr);
}

void Progress::Show(int64_t frame) {
  const double now = Now();
  if (!terminal_ || now < shown_ + kPause) return;
  shown_ = now;
  std::fprintf(stderr, "%s%s", kClearLine,
               ProgressText(frame, frames_, (now - start_) / 1000).c_str());
  std::fflush(stderr);
}

}  // namespace lumora::tools
