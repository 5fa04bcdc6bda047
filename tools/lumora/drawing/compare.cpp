#include "tools/lumora/drawing/compare.h"

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

cv::Mat CompareSheet(const cv::Mat& before, const cv::Mat& after) {
  const cv::Mat left = Fitted(before), right = Fitted(after);
  const int gap = std::clamp(left.cols / 40, 4, 24);
  const int bar = std::clamp(left.cols / 12, 20, 56);
  cv::Mat sheet(bar + left.rows + gap, 2 * left.cols + 3 * gap, CV_8UC3, kPaper);
  const cv::Rect left_place(gap, bar, left.cols, left.rows);
  const cv::Rect right_place(2 * gap + left.cols, bar, right.cols, right.rows);
  left.copyTo(sheet(left_place));
  right.copyTo(sheet(right_place));
  Title(sheet, "before", {left_place.x, 0, left_place.width, bar});
  Title(sheet, "after", {right_place.x, 0, right_place.width, bar});
  return sheet;
}

cv::Mat Tiled(const std::vector<cv::Mat>& pictures, int columns) {
  const cv::Size tile = pictures.front().size();
  const int count = static_cast<int>(pictures.size());
  const int rows = (count + columns - 1) / columns;
  cv::Mat sheet(rows * tile.height, columns * tile.width, CV_8UC3, kPaper);
  for (int i = 0; i < count; ++i) {
    const cv::Point corner(i % columns * tile.width, i / columns * tile.height);
    pictures[static_cast<size_t>(i)].copyTo(sheet(cv::Rect(corner, tile)));
  }
  return sheet;
}

}  // namespace lumora::tools
