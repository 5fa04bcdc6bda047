// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/modules/drawing/tilt.h"

#include <opencv2/imgproc.hpp>

namespace lumora::tools {

cv::Mat Tilted(const cv::Mat& straight, int degree) {
  const float inset = static_cast<float>(degree) / 100.f;
  const auto width = static_cast<float>(straight.cols);
  const auto height = static_cast<float>(straight.rows);
  cv::Mat places(straight.size(), CV_32FC2), tilted;
  for (int y = 0; y < straight.rows; ++y) {
    for (int x = 0; x < straight.cols; ++x) {
      const float u = ((static_cast<float>(x) + 0.5f) / width - inset / 2) / (1 - inset);
      const float v =
          0.5f + ((static_cast<float>(y) + 0.5f) / height - 0.5f) / (1 - 2 * inset * (1 - u));
      places.at<cv::Vec2f>(y, x) = {u * width - 0.5f, v * height - 0.5f};
    }
  }
  cv::remap(straight, tilted, places, {}, cv::INTER_LINEAR, cv::BORDER_REFLECT);
  return tilted;
}

}  // namespace lumora::tools
