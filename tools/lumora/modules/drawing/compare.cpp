// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/modules/drawing/compare.h"

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>
#include <string>

namespace lumora::tools {
namespace {

constexpr int kWidest = 1200;  // pixels of each picture
const cv::Scalar kPaper(250, 250, 250);
const cv::Scalar kInk(60, 50, 45);

cv::Mat Fitted(const cv::Mat& picture) {
  if (picture.cols <= kWidest) return picture;
  cv::Mat small;
  const int height = std::max(
      1, static_cast<int>(std::lround(static_cast<double>(picture.rows) * kWidest / picture.cols)));
  cv::resize(picture, small, {kWidest, height}, 0, 0, cv::INTER_AREA);
  return small;
}

void Title(cv::Mat& sheet, const std::string& text, const cv::Rect& bar) {
  const double scale = bar.height / 44.0;
  const int thickness = std::max(1, static_cast<int>(std::lround(scale * 1.6)));
  int below = 0;
  const cv::Size size = cv::getTextSize(text, cv::FONT_HERSHEY_SIMPLEX, scale, thickness, &below);
  cv::putText(sheet, text,
              {bar.x + (bar.width - size.width) / 2, bar.y + (bar.height + size.height) / 2},
              cv::FONT_HERSHEY_SIMPLEX, scale, kInk, thickness, cv::LINE_AA);
}

}  // namespace

cv::Mat TitledRow(const std::vector<Titled>& pictures) {
  std::vector<cv::Mat> fitted;
  fitted.reserve(pictures.size());
  for (const Titled& titled : pictures) fitted.push_back(Fitted(titled.picture));
  const cv::Size size = fitted.front().size();
  const int gap = std::clamp(size.width / 40, 4, 24);
  const int bar = std::clamp(size.width / 12, 20, 56);
  const int count = static_cast<int>(pictures.size());
  cv::Mat sheet(bar + size.height + gap, count * (size.width + gap) + gap, CV_8UC3, kPaper);
  int left = gap;
  for (size_t i = 0; i < pictures.size(); ++i) {
    fitted[i].copyTo(sheet({left, bar, fitted[i].cols, fitted[i].rows}));
    Title(sheet, pictures[i].title, {left, 0, size.width, bar});
    left += size.width + gap;
  }
  return sheet;
}

cv::Mat CompareSheet(const cv::Mat& before, const cv::Mat& after) {
  return TitledRow({{"before", before}, {"after", after}});
}

cv::Mat Stacked(const std::vector<cv::Mat>& pictures) {
  cv::Mat sheet;
  cv::vconcat(pictures, sheet);
  return sheet;
}

}  // namespace lumora::tools
