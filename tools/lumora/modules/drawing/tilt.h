// SPDX-License-Identifier: Apache-2.0
// Photos of a tilted camera.
#ifndef LUMORA_TOOLS_MODULES_DRAWING_TILT_H_
#define LUMORA_TOOLS_MODULES_DRAWING_TILT_H_

#include <opencv2/core.hpp>

namespace lumora::tools {

/// The picture that rectification by `degree` makes straight: its left side is smaller.
cv::Mat Tilted(const cv::Mat& straight, int degree);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_MODULES_DRAWING_TILT_H_
