// SPDX-License-Identifier: Apache-2.0
#include "bench/opencv_slimming.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <opencv2/imgproc.hpp>

namespace lumora::bench {
namespace {

constexpr float kEdgeFade = 0.2f;

}  // namespace

OpenCvSlimming::OpenCvSlimming(Size size, const GLProgWarp& warp)
    : size_(size),
      centre_x_(warp.m_fvController[0]),
      centre_y_(warp.m_fvController[1]),
      strength_(warp.m_fvController[2]),
      radius_(warp.m_fvController[3]),
      aspect_(warp.m_fAspectRatio),
      reach_(warp.m_fvAngleLimiter[1] * warp.m_fvController[3]),
      limiter_scale_(warp.m_fvAngleLimiter[2]),
      map_x_(size.height, size.width, CV_32F),
      map_y_(size.height, size.width, CV_32F) {
  limiter_x_ = reach_ * std::cos(warp.m_fvAngleLimiter[0]);
  limiter_y_ = reach_ * std::sin(warp.m_fvAngleLimiter[0]);
}

void OpenCvSlimming::BuildMap(bool skip) {
  const auto width = static_cast<float>(size_.width);
  const auto height = static_cast<float>(size_.height);
  cv::parallel_for_(cv::Range(0, size_.height), [&](const cv::Range& rows) {
    for (int row = rows.start; row < rows.end; ++row) {
      auto* const to_x = map_x_.ptr<float>(row);
      auto* const to_y = map_y_.ptr<float>(row);
      const float v = (static_cast<float>(row) + 0.5f) / height;
      const float dy = v - centre_y_;
      for (int column = 0; column < size_.width; ++column) {
        const float u = (static_cast<float>(column) + 0.5f) / width;
        const float dx = u - centre_x_;
        const float distance = std::sqrt(dx * dx + dy * dy * aspect_ * aspect_);
        if (skip && distance >= radius_) {
          to_x[column] = static_cast<float>(column);
          to_y[column] = static_cast<float>(row);
          continue;
        }
        const float lx = dx - limiter_x_;
        const float ly = (dy - limiter_y_) * aspect_;
        const float hold = std::min(1.0f, std::sqrt(lx * lx + ly * ly) / limiter_scale_ / reach_);
        const float border = std::min(std::min(u, 1 - u), std::min(v, 1 - v));
        float still = std::min(1.0f, distance / radius_ / hold);
        still = std::min(1.0f, still * (2 - std::pow(border, kEdgeFade)));
        const float pull = 1 + strength_ * distance * (1 - still);
        to_x[column] = (dx * pull + centre_x_) * width - 0.5f;
        to_y[column] = (dy * pull + centre_y_) * height - 0.5f;
      }
    }
  });
}

void OpenCvSlimming::Remap(uint8_t* frame) {
  const cv::Mat nv21(size_.height * 3 / 2, size_.width, CV_8UC1, frame);
  cv::cvtColor(nv21, bgr_, cv::COLOR_YUV2BGR_NV21);
  cv::remap(bgr_, warped_, map_x_, map_y_, cv::INTER_LINEAR, cv::BORDER_REFLECT);
  cv::cvtColor(warped_, i420_, cv::COLOR_BGR2YUV_I420);
  std::memcpy(frame, i420_.data, size_.Pixels());
  const size_t pairs = size_.Pixels() / 4;
  const uint8_t* const cb = i420_.data + size_.Pixels();
  const uint8_t* const cr = cb + pairs;
  uint8_t* const chroma = frame + size_.Pixels();
  for (size_t i = 0; i < pairs; ++i) {
    chroma[2 * i] = cr[i];
    chroma[2 * i + 1] = cb[i];
  }
}

void OpenCvSlimming::RemapPlanes(uint8_t* frame) {
  const cv::Mat luma(size_.height, size_.width, CV_8UC1, frame);
  const cv::Mat chroma(size_.height / 2, size_.width / 2, CV_8UC2, frame + size_.Pixels());
  const cv::Size half(size_.width / 2, size_.height / 2);
  cv::resize(map_x_, half_x_, half, 0, 0, cv::INTER_NEAREST);
  cv::resize(map_y_, half_y_, half, 0, 0, cv::INTER_NEAREST);
  half_x_ *= 0.5f;
  half_y_ *= 0.5f;
  cv::remap(luma, luma_, map_x_, map_y_, cv::INTER_LINEAR, cv::BORDER_REFLECT);
  cv::remap(chroma, chroma_, half_x_, half_y_, cv::INTER_LINEAR, cv::BORDER_REFLECT);
  std::memcpy(frame, luma_.data, size_.Pixels());
  std::memcpy(frame + size_.Pixels(), chroma_.data, size_.Pixels() / 2);
}

}  // namespace lumora::bench
