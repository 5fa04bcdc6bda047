#include "tools/lumora/picture/colour_picture.h"

#include <opencv2/imgproc.hpp>

namespace lumora::tools {
namespace {

constexpr int kNoColour = 128;  // chroma of gray
constexpr SampleArea kPixel = {1, 1};

cv::Mat FullSize(const cv::Mat& chroma, cv::Size even, int interpolation) {
  cv::Mat full;
  cv::resize(chroma, full, even, 0, 0, interpolation);
  return full;
}

}  // namespace

cv::Mat BgrOf(const cv::Mat& y, const cv::Mat& cb, const cv::Mat& cr) {
  cv::Mat ycrcb, bgr;
  cv::merge(std::vector<cv::Mat>{y, cr, cb}, ycrcb);
  cv::cvtColor(ycrcb, bgr, cv::COLOR_YCrCb2BGR);
  return bgr;
}

cv::Mat BgrOf(const Frame420& frame, cv::Size size) {
  const cv::Size even = frame.y.size();
  return BgrOf(frame.y, FullSize(frame.cb, even, cv::INTER_LINEAR),
               FullSize(frame.cr, even, cv::INTER_LINEAR))(cv::Rect({0, 0}, size));
}

Frame420 FrameOf(const cv::Mat& bgr) {
  cv::Mat ycrcb;
  cv::cvtColor(bgr, ycrcb, cv::COLOR_BGR2YCrCb);
  std::vector<cv::Mat> planes;
  cv::split(ycrcb, planes);
  return {Extended(planes[0], EvenSize(bgr.size())), ChromaTo420(planes[2], kPixel, bgr.size()),
          ChromaTo420(planes[1], kPixel, bgr.size())};
}

cv::Mat ColourPicture::Bgr() const {
  if (pixels_.channels() == 3) return pixels_;
  cv::Mat bgr;
  cv::cvtColor(pixels_, bgr, pixels_.channels() == 1 ? cv::COLOR_GRAY2BGR : cv::COLOR_BGRA2BGR);
  return bgr;
}

Frame420 ColourPicture::Frame() const {
  if (pixels_.channels() != 1) return FrameOf(Bgr());
  const cv::Size even = EvenSize(pixels_.size());
  const cv::Mat gray(even / 2, CV_8U, cv::Scalar(kNoColour));
  return {Extended(pixels_, even), gray, gray.clone()};
}

void ColourPicture::Merge(const Frame420& before, const Frame420& after) {
  if (pixels_.channels() == 1) {
    MergeLuma(before.y, after.y, pixels_);
    return;
  }
  const cv::Size even = before.y.size();
  const cv::Mat chroma_changed = (before.cb != after.cb) | (before.cr != after.cr);
  const cv::Mat changed = (before.y != after.y) | FullSize(chroma_changed, even, cv::INTER_NEAREST);
  const cv::Mat mask = changed(cv::Rect({0, 0}, pixels_.size()));
  cv::Mat result = BgrOf(after, pixels_.size());
  if (pixels_.channels() == 4) {
    cv::Mat alpha;
    cv::extractChannel(pixels_, alpha, 3);
    cv::cvtColor(result, result, cv::COLOR_BGR2BGRA);
    cv::insertChannel(alpha, result, 3);
  }
  result.copyTo(pixels_, mask);
}

bool ColourPicture::IsTransparent() const {
  if (pixels_.channels() != 4) return false;
  cv::Mat alpha;
  cv::extractChannel(pixels_, alpha, 3);
  return cv::countNonZero(alpha != 255) > 0;
}

Bytes ColourPicture::Encode(FileFormat format) const {
  return EncodeNew(pixels_, format);
}

}  // namespace lumora::tools
