#include "tools/lumora/picture/jpeg_picture.h"

#include <opencv2/imgproc.hpp>
#include <utility>

#include "tools/lumora/picture/colour_picture.h"

namespace lumora::tools {
namespace {

constexpr int kNoColour = 128;  // chroma of gray

cv::Mat PerPixel(const cv::Mat& plane, SampleArea area, cv::Size picture, int interpolation) {
  cv::Mat pixels;
  cv::resize(plane, pixels, {plane.cols * area.across, plane.rows * area.down}, 0, 0,
             interpolation);
  return pixels(cv::Rect({0, 0}, picture));
}

/// A plane turned upright. Where the last sample stands for fewer pixels than the others, turning
/// moves the boundaries between samples, so that they have to be formed anew.
cv::Mat UprightPlane(const cv::Mat& plane, SampleArea area, cv::Size picture, int orientation) {
  const bool whole = picture.width % area.across == 0 && picture.height % area.down == 0;
  if (whole || orientation == 1) return Upright(plane, orientation);
  const cv::Mat turned = Upright(PerPixel(plane, area, picture, cv::INTER_NEAREST), orientation);
  if (SwapsSides(orientation)) std::swap(area.across, area.down);
  const cv::Size size((turned.cols + area.across - 1) / area.across,
                      (turned.rows + area.down - 1) / area.down);
  cv::Mat result;
  cv::resize(Extended(turned, {size.width * area.across, size.height * area.down}), result, size, 0,
             0, cv::INTER_AREA);
  return result;
}

}  // namespace

JpegPicture::JpegPicture(Bytes file, int orientation)
    : file_(std::move(file)), orientation_(orientation) {
  const JpegLayout layout = ReadJpegLayout(file_);
  areas_ = layout.areas;
  original_ = ReadJpegPlanes(file_);
  for (size_t i = 0; i < original_.size(); ++i) {
    original_[i] = UprightPlane(original_[i], areas_[i], layout.size, orientation);
    planes_.push_back(original_[i].clone());
    if (SwapsSides(orientation)) std::swap(areas_[i].across, areas_[i].down);
  }
}

Frame420 JpegPicture::Frame() const {
  const cv::Size even = EvenSize(size());
  if (planes_.size() == 1) {
    const cv::Mat gray(even / 2, CV_8U, cv::Scalar(kNoColour));
    return {Extended(planes_[0], even), gray, gray.clone()};
  }
  return {Extended(planes_[0], even), ChromaTo420(planes_[1], areas_[1], size()),
          ChromaTo420(planes_[2], areas_[2], size())};
}

void JpegPicture::Merge(const Frame420& before, const Frame420& after) {
  MergeLuma(before.y, after.y, planes_[0]);
  if (planes_.size() == 1) return;
  MergeChroma(before.cb, after.cb, areas_[1], planes_[1]);
  MergeChroma(before.cr, after.cr, areas_[2], planes_[2]);
}

cv::Mat JpegPicture::Bgr() const {
  cv::Mat bgr;
  if (planes_.size() == 1) {
    cv::cvtColor(planes_[0], bgr, cv::COLOR_GRAY2BGR);
    return bgr;
  }
  return BgrOf(planes_[0], PerPixel(planes_[1], areas_[1], size(), cv::INTER_LINEAR),
               PerPixel(planes_[2], areas_[2], size(), cv::INTER_LINEAR));
}

Bytes JpegPicture::Encode(FileFormat format) const {
  if (format == FileFormat::Png) return EncodePng(planes_.size() == 1 ? planes_[0] : Bgr());
  Bytes recoded = WriteJpegPlanes(planes_, file_, SwapsSides(orientation_));
  if (orientation_ != 1) return recoded;
  std::vector<cv::Mat> changed;
  for (size_t i = 0; i < planes_.size(); ++i) changed.push_back(planes_[i] != original_[i]);
  return ReplaceJpegBlocks(file_, recoded, changed);
}

}  // namespace lumora::tools
