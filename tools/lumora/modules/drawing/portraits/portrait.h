// SPDX-License-Identifier: Apache-2.0
// Portraits drawn by the program itself: friendly faces whose landmarks are known exactly, in front
// of wallpaper whose straight lines show every warp.
#ifndef LUMORA_TOOLS_MODULES_DRAWING_PORTRAITS_PORTRAIT_H_
#define LUMORA_TOOLS_MODULES_DRAWING_PORTRAITS_PORTRAIT_H_

#include <opencv2/core.hpp>
#include <vector>

#include "lumora/pipeline/face.h"

namespace lumora::tools {

struct Portrait {
  cv::Mat picture;  ///< 8-bit BGR
  Face face;        ///< in pixels of the picture
};

/// How many different people there are.
int PortraitCount();

/// Draws person `index` (from 0 on) as a picture of `size` x `size` pixels.
Portrait DrawPortrait(int index, int size);

struct Group {
  cv::Mat picture;          ///< 8-bit BGR
  std::vector<Face> faces;  ///< in pixels of the picture
};

/// Draws all of them in one picture, which is wider than high.
Group DrawGroup(cv::Size size);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_MODULES_DRAWING_PORTRAITS_PORTRAIT_H_
