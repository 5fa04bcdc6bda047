// SPDX-License-Identifier: Apache-2.0
#include "bench/opencv_box.h"

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>

namespace lumora::bench {
namespace {

/// Whole chroma samples around a circle, as far as they lie in the frame.
cv::Rect BoxAround(PointF centre, float across, float down, Size size) {
  const auto even = [](float value, int limit) {
    return std::clamp(static_cast<int>(std::floor(value / 2)) * 2, 0, limit);
  };
  const int left = even(centre.x - across, size.width), top = even(centre.y - down, size.height);
  const int right = even(centre.x + across + 2, size.width);
  const int bottom = even(centre.y + down + 2, size.height);
  return {left, top, right - left, bottom - top};
}

cv::Rect Half(cv::Rect box) {
  return {box.x / 2, box.y / 2, box.width / 2, box.height / 2};
}

cv::Mat Luma(uint8_t* frame, Size size) {
  return {size.height, size.width, CV_8UC1, frame};
}

cv::Mat Chroma(uint8_t* frame, Size size) {
  return {size.height / 2, size.width / 2, CV_8UC2, frame + size.Pixels()};
}

/// Where the warp takes the pixel at (x, y) from, in pixels.
cv::Point2f Source(const FaceWarp& warp, float x, float y) {
  const float dx = x - warp.centre.x, dy = y - warp.centre.y;
  const float distance = std::sqrt(dx * dx + dy * dy);
  const float lx = x - warp.limiter.x, ly = y - warp.limiter.y;
  const float hold =
      std::min(1.0f, std::sqrt(lx * lx + ly * ly) / (warp.limiter_scale * warp.reach));
  const float u = x / static_cast<float>(warp.frame_width);
  const float v = y / static_cast<float>(warp.frame_height);
  const float border = std::max(0.0f, std::min({u, 1 - u, v, 1 - v}));
  const float weight =
      std::min(1.0f, distance / warp.radius / hold * (2 - std::pow(border, warp.border_exponent)));
  const float pull = warp.strength * distance * (1 - weight);
  return {x + dx * pull, y + dy * pull};
}

}  // namespace

OpenCvWhitening::OpenCvWhitening(Size size, const Face& face, Mask mask)
    : size_(size), ellipse_(WhiteningEllipses(face)[kFaceEllipse]), how_(mask) {
  const float turn = ellipse_.angle_degrees * 0.0174533f;
  const float c = std::cos(turn), s = std::sin(turn);
  box_ = BoxAround(ellipse_.centre, std::hypot(ellipse_.half_along * c, ellipse_.half_across * s),
                   std::hypot(ellipse_.half_along * s, ellipse_.half_across * c), size);
  constexpr float kGain = 1.6f;
  table_.create(1, 256, CV_8UC1);
  for (int i = 0; i < 256; ++i) {
    const float value = static_cast<float>(i) / 255;
    table_.at<uint8_t>(i) =
        cv::saturate_cast<uint8_t>(255 * kGain * value / (1 - value + kGain * value));
  }
}

void OpenCvWhitening::Convert(const cv::Mat& luma, const cv::Mat& chroma) {
  cv::cvtColorTwoPlane(luma, chroma, bgr_, cv::COLOR_YUV2BGR_NV21);
  cv::cvtColor(bgr_, hsv_, cv::COLOR_BGR2HSV);
  cv::extractChannel(hsv_, value_, 2);
  cv::LUT(value_, table_, value_);
  cv::insertChannel(value_, hsv_, 2);
  cv::cvtColor(hsv_, bgr_, cv::COLOR_HSV2BGR);
  cv::cvtColor(bgr_, i420_, cv::COLOR_BGR2YUV_I420);
  const int pairs = box_.area() / 4;
  const cv::Mat cb(box_.height / 2, box_.width / 2, CV_8UC1, i420_.ptr(box_.height));
  const cv::Mat cr(box_.height / 2, box_.width / 2, CV_8UC1, i420_.ptr(box_.height) + pairs);
  const cv::Mat planes[] = {cr, cb};
  cv::merge(planes, 2, pairs_);
}

void OpenCvWhitening::PutBack(cv::Mat& luma, cv::Mat& chroma) {
  const bool blended = how_ == Mask::kBlended;
  mask_.create(box_.size(), blended ? CV_32FC1 : CV_8UC1);
  mask_.setTo(0);
  const cv::Point2f centre(ellipse_.centre.x - static_cast<float>(box_.x),
                           ellipse_.centre.y - static_cast<float>(box_.y));
  const cv::Size2f axes(2 * ellipse_.half_along, 2 * ellipse_.half_across);
  cv::ellipse(mask_, cv::RotatedRect(centre, axes, ellipse_.angle_degrees), blended ? 1.0 : 255.0,
              cv::FILLED);
  const cv::Mat whitened = i420_.rowRange(0, box_.height);
  cv::resize(mask_, half_mask_, pairs_.size(), 0, 0,
             blended ? cv::INTER_LINEAR : cv::INTER_NEAREST);
  if (!blended) {
    whitened.copyTo(luma, mask_);
    pairs_.copyTo(chroma, half_mask_);
    return;
  }
  cv::subtract(1.0, mask_, inverse_);
  cv::subtract(1.0, half_mask_, half_inverse_);
  cv::blendLinear(whitened, luma, mask_, inverse_, blended_);
  cv::blendLinear(pairs_, chroma, half_mask_, half_inverse_, blended_pairs_);
  blended_.copyTo(luma);
  blended_pairs_.copyTo(chroma);
}

void OpenCvWhitening::Run(uint8_t* frame) {
  cv::Mat luma = Luma(frame, size_)(box_), chroma = Chroma(frame, size_)(Half(box_));
  Convert(luma, chroma);
  PutBack(luma, chroma);
}

OpenCvBoxSlimming::OpenCvBoxSlimming(Size size, const Face& face)
    : size_(size), warp_(SlimmingWarp(face, kSlim, size.width, size.height)) {
  box_ = BoxAround(warp_.centre, warp_.radius, warp_.radius, size);
  half_box_ = Half(box_);
  BuildMaps();
}

void OpenCvBoxSlimming::BuildMaps() {
  Build(box_, 1, &luma_map_);
  Build(half_box_, 2, &chroma_map_);
}

void OpenCvBoxSlimming::Build(cv::Rect box, int pixels_a_sample, Map* map) const {
  map->x.create(box.size(), CV_32F);
  map->y.create(box.size(), CV_32F);
  const auto scale = static_cast<float>(pixels_a_sample);
  for (int row = 0; row < box.height; ++row) {
    auto* const to_x = map->x.ptr<float>(row);
    auto* const to_y = map->y.ptr<float>(row);
    for (int column = 0; column < box.width; ++column) {
      const cv::Point2f from = Source(warp_, (static_cast<float>(box.x + column) + 0.5f) * scale,
                                      (static_cast<float>(box.y + row) + 0.5f) * scale);
      to_x[column] = from.x / scale - 0.5f;
      to_y[column] = from.y / scale - 0.5f;
    }
  }
}

void OpenCvBoxSlimming::Run(uint8_t* frame) {
  cv::Mat luma = Luma(frame, size_), chroma = Chroma(frame, size_);
  cv::remap(luma, luma_, luma_map_.x, luma_map_.y, cv::INTER_LINEAR, cv::BORDER_REFLECT);
  cv::remap(chroma, chroma_, chroma_map_.x, chroma_map_.y, cv::INTER_LINEAR, cv::BORDER_REFLECT);
  luma_.copyTo(luma(box_));
  chroma_.copyTo(chroma(half_box_));
}

}  // namespace lumora::bench
