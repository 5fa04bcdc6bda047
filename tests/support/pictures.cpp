// SPDX-License-Identifier: Apache-2.0
#include "support/pictures.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <random>

namespace lumora::test {
namespace {

// A value of 0..1 as a byte, kept off the ends, so that small errors are not clamped away.
uint8_t Inner(double value) {
  return static_cast<uint8_t>(std::lround(8.0 + std::clamp(value, 0.0, 1.0) * 239.0));
}

// Fills a frame from functions of the place in 0..1.
Frame FrameOf(int width, int height, const std::function<double(double, double)>& luma,
              const std::function<double(double, double)>& cr,
              const std::function<double(double, double)>& cb) {
  Frame frame(width, height);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const double s = (x + 0.5) / width;
      const double t = (y + 0.5) / height;
      frame.y(x, y) = Inner(luma(s, t));
      if (x % 2 != 0 || y % 2 != 0) continue;
      frame.cr(x, y) = Inner(cr(s, t));
      frame.cb(x, y) = Inner(cb(s, t));
    }
  }
  return frame;
}

}  // namespace

std::vector<uint8_t> NoiseBytes(size_t count, uint32_t seed) {
  std::mt19937 random(seed);
  std::vector<uint8_t> bytes(count);
  for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random() >> 24);
  return bytes;
}

Frame NoiseFrame(int width, int height, uint32_t seed) {
  Frame frame(width, height);
  frame.bytes = NoiseBytes(frame.bytes.size(), seed);
  return frame;
}

Frame GradientFrame(int width, int height) {
  return FrameOf(
      width, height, [](double s, double) { return 1.0 - s; }, [](double, double t) { return t; },
      [](double s, double t) { return (s + t) / 2; });
}

Frame TextureFrame(int width, int height) {
  const auto wave = [](double s, double t, double a, double b) {
    return std::sin(6.283185307179586 * (a * s + b * t));
  };
  return FrameOf(
      width, height,
      [wave](double s, double t) {
        return 0.35 + 0.3 * s + 0.12 * wave(s, t, 5, 2) + 0.1 * wave(s, t, -3, 7) +
               0.04 * wave(s, t, 11, 9);
      },
      [wave](double s, double t) { return 0.3 + 0.4 * t + 0.2 * wave(s, t, 4, 3); },
      [wave](double s, double t) { return 0.7 - 0.4 * s + 0.2 * wave(s, t, 2, -5); });
}

Image NoiseImage(int width, int height, uint32_t seed) {
  Image image(width, height);
  image.bytes = NoiseBytes(image.bytes.size(), seed);
  return image;
}

Image GradientImage(int width, int height, uint8_t alpha) {
  Image image(width, height);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const double s = (x + 0.5) / width;
      const double t = (y + 0.5) / height;
      uint8_t* pixel = image.pixel(x, y);
      pixel[0] = Inner(s);
      pixel[1] = Inner(t);
      pixel[2] = Inner((s + t) / 2);
      pixel[3] = alpha;
    }
  }
  return image;
}

}  // namespace lumora::test
