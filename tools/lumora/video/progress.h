// SPDX-License-Identifier: Apache-2.0
// A line on standard error that shows how far long work has come.
#ifndef LUMORA_TOOLS_VIDEO_PROGRESS_H_
#define LUMORA_TOOLS_VIDEO_PROGRESS_H_

#include <cstdint>
#include <optional>
#include <string>

namespace lumora::tools {

/// "frame 120 of 300, 41.5 frames a second, 0:04 left"; the last part needs the number of frames.
std::string ProgressText(int64_t frame, std::optional<int64_t> frames, double seconds);

/// Shows that text while the work goes on, where standard error is a terminal.
class Progress {
 public:
  explicit Progress(std::optional<int64_t> frames);
  /// Removes the line.
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// To be called after each frame.
  void Show(int64_t frame);

 private:
  std::optional<int64_t> frames_;
  bool terminal_;
  double start_, shown_ = 0;  ///< milliseconds
};

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_VIDEO_PROGRESS_H_
