// SPDX-License-Identifier: Apache-2.0
// A clip of a moving portrait, and the command that is run on clips.
#ifndef LUMORA_TESTS_TOOLS_VIDEO_CLIP_H_
#define LUMORA_TESTS_TOOLS_VIDEO_CLIP_H_

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/tools/clips.h"
#include "tests/tools/pictures.h"
#include "tests/tools/process.h"

namespace lumora::test {

inline constexpr int kWidth = 160, kHeight = 120;
inline constexpr size_t kFrameBytes = kWidth * kHeight * 3 / 2;

inline std::string TextOf(const std::string& path) {
  const Bytes bytes = ReadFile(path);
  return {bytes.begin(), bytes.end()};
}

inline int ChangedSamples(const std::string& before, const std::string& after) {
  int changed = 0;
  for (size_t i = 0; i < before.size(); ++i) changed += before[i] != after[i] ? 1 : 0;
  return changed;
}

class VideoClip : public testing::Test {
 protected:
  Result Run(const std::vector<std::string>& more, const std::string& clip) {
    const std::string in = folder_.Put("in.y4m", clip);
    std::vector<std::string> words = {"video", in, "-o", folder_ / "out.y4m"};
    words.insert(words.end(), more.begin(), more.end());
    return RunLumora(words);
  }

  const Scene scene_ = MovingPortrait(kWidth, kHeight, 6);
  const Folder folder_;
  const std::string faces_ = folder_.Put("faces.jsonl", scene_.faces);
};

}  // namespace lumora::test

#endif  // LUMORA_TESTS_TOOLS_VIDEO_CLIP_H_
