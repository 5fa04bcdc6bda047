// SPDX-License-Identifier: Apache-2.0
// Y4M clips for the tests of the command.
#ifndef LUMORA_TESTS_TOOLS_CLIPS_H_
#define LUMORA_TESTS_TOOLS_CLIPS_H_

#include <opencv2/core.hpp>
#include <string>
#include <vector>

namespace lumora::test {

struct Clip {
  std::string header;               ///< the first line
  std::vector<std::string> frames;  ///< the samples of each frame
  std::string Text() const;
};

/// The parts of a clip's text, whose frames have `frame_bytes` bytes and plain headers.
Clip PartsOf(const std::string& text, size_t frame_bytes);

/// Luma, Cb and Cr of an 8-bit BGR picture of even size: full-range 4:2:0, one plane after another.
std::string PlanesOf(const cv::Mat& bgr);

/// A portrait that moves a little to the right with every frame, and its faces, one JSON line a
/// frame.
struct Scene {
  Clip clip;
  std::string faces;
};
Scene MovingPortrait(int width, int height, int frames);

}  // namespace lumora::test

#endif  // LUMORA_TESTS_TOOLS_CLIPS_H_
