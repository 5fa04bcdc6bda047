// Before/after pictures.
#ifndef LUMORA_TOOLS_DRAWING_COMPARE_H_
#define LUMORA_TOOLS_DRAWING_COMPARE_H_

#include <opencv2/core.hpp>
#include <vector>

namespace lumora::tools {

/// Both 8-bit BGR pictures side by side under the titles "before" and "after". Nothing is cropped;
/// pictures wider than 1200 pixels are scaled down to that.
cv::Mat CompareSheet(const cv::Mat& before, const cv::Mat& after);

/// Pictures of one size in rows of `columns`.
cv::Mat Tiled(const std::vector<cv::Mat>& pictures, int columns);

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_DRAWING_COMPARE_H_
