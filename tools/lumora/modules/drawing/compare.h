// SPDX-License-Identifier: Apache-2.0
// Before/after pictures.
#ifndef LUMORA_TOOLS_MODULES_DRAWING_COMPARE_H_
#define LUMORA_TOOLS_MODULES_DRAWING_COMPARE_H_

#include <opencv2/core.hpp>
#include <string>
#include <vector>

namespace lumora::tools {

struct Titled {
  std::string title;
  cv::Mat picture;  ///< 8-bit BGR
};

/// Pictures of one size side by side, each under its title. Nothing is cropped; pictures wider than
/// 1200 pixels are scaled down to that.
cv::Mat TitledRow(const std::vector<Titled>& pictures);

/// Both pictures under the titles "before" and "after".
cv::Mat CompareSheet(const cv::Mat& before, const cv::Mat& after);

/// Pictures of one width below each other.
cv::Mat Stacked(const std::vector<cv::Mat>& pictures);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_MODULES_DRAWING_COMPARE_H_
