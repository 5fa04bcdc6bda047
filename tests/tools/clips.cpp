// SPDX-License-Identifier: Apache-2.0
#include "tests/tools/clips.h"

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>

#include "tests/tools/pictures.h"

namespace lumora::test {
namespace {

constexpr char kFrameLine[] = "FRAME\n";

char Sample(double value) {
  return static_cast<char>(static_cast<uint8_t>(std::clamp(std::lround(value), 0L, 255L)));
}

}  // namespace

std::string Clip::Text() const {
  std::string text = header + "\n";
  for (const std::string& frame : frames) text += kFrameLine + frame;
  return text;
}

Clip PartsOf(const std::string& text, size_t frame_bytes) {
  Clip clip;
  size_t at = std::min(text.find('\n'), text.size());
  clip.header = text.substr(0, at);
  const size_t step = sizeof(kFrameLine) - 1 + frame_bytes;
  for (++at; at + step <= text.size(); at += step) {
    clip.frames.push_back(text.substr(at + step - frame_bytes, frame_bytes));
  }
  return clip;
}

std::string PlanesOf(const cv::Mat& bgr) {
  std::string y, cb, cr;
  for (int row = 0; row < bgr.rows; ++row) {
    for (int column = 0; column < bgr.cols; ++column) {
      const cv::Vec3b pixel = bgr.at<cv::Vec3b>(row, column);
      const double b = pixel[0], g = pixel[1], r = pixel[2];
      const double luma = 0.299 * r + 0.587 * g + 0.114 * b;
      y += Sample(luma);
      if (row % 2 != 0 || column % 2 != 0) continue;
      cb += Sample(128 + (b - luma) / 1.772);
      cr += Sample(128 + (r - luma) / 1.402);
    }
  }
  return y + cb + cr;
}

Scene MovingPortrait(int width, int height, int frames) {
  constexpr int kStep = 2;  // pixels a frame
  const Sitter sitter = PortraitOf(width, height);
  Scene scene;
  scene.clip.header = "YUV4MPEG2 W" + std::to_string(width) + " H" + std::to_string(height) +
                      " F25:1 Ip A1:1 C420jpeg XCOLORRANGE=FULL";
  for (int i = 0; i < frames; ++i) {
    cv::Mat moved = sitter.picture.clone();
    sitter.picture.colRange(0, width - kStep * i).copyTo(moved.colRange(kStep * i, width));
    scene.clip.frames.push_back(PlanesOf(moved));
    scene.faces += sitter.FacesJson(kStep * i) + "\n";
  }
  return scene;
}

}  // namespace lumora::test
