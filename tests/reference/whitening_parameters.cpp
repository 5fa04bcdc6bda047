// SPDX-License-Identifier: Apache-2.0
#include "reference/whitening_parameters.h"

#include <algorithm>
#include <cmath>

namespace lumora::reference {
namespace {

double Length(Point a, Point b) {
  return std::hypot(b.x - a.x, b.y - a.y);
}

Point Midpoint(Point a, Point b) {
  return {(a.x + b.x) / 2, (a.y + b.y) / 2};
}

float Direction(Point from, Point to) {
  return static_cast<float>(std::atan2(to.y - from.y, to.x - from.x));
}

// Where two axes cross: along each coordinate the axis that lies nearer to it decides.
Point Crossing(Point p0, Point p1, Point p2, Point p3) {
  const float angle = std::abs(Direction(p0, p1));
  const bool horizontal = angle < 0.7854f || angle > 2.3562f;
  const Point first = Midpoint(p0, p1);
  const Point second = Midpoint(p2, p3);
  return horizontal ? Point{first.x, second.y} : Point{second.x, first.y};
}

float SemiAxis(Point a, Point b, int padding, float scale) {
  const int half = static_cast<int>(Length(a, b)) / 2;
  return static_cast<float>(padding) + static_cast<float>(half) * scale;
}

// The end of the long axis beyond `anchor`, seven tenths of the way from `far_end` further on.
int Extend(int anchor, int far_end) {
  return static_cast<int>(static_cast<float>(anchor) - 0.7f * static_cast<float>(far_end - anchor));
}

int Clip(double value) {
  return std::clamp(static_cast<int>(value), 0, 255);
}

int Mean(int64_t sum, int64_t count) {
  if (count == 0) return 0;
  return static_cast<int>(static_cast<float>(sum) / static_cast<float>(count));
}

}  // namespace

EllipseMatrix EllipseTransform(Point p0, Point p1, Point p2, Point p3, int width, int height,
                               int padding, float scale) {
  const float a = SemiAxis(p0, p1, padding, scale);
  const float b = SemiAxis(p2, p3, padding, scale);
  if (a <= 2.0f || b <= 2.0f) return {99, 0, 0, 0, 99, 0, 0, 0, 1};

  // Place relative to the centre in pixels, turned into the axes' frame, over the semi-axes.
  const double angle = static_cast<double>(Direction(p0, p1));
  const double along = std::cos(angle) / static_cast<double>(a);
  const double along_y = std::sin(angle) / static_cast<double>(a);
  const double across = -std::sin(angle) / static_cast<double>(b);
  const double across_y = std::cos(angle) / static_cast<double>(b);
  const Point centre = Crossing(p0, p1, p2, p3);
  return {along * width,
          across * width,
          0,
          along_y * height,
          across_y * height,
          0,
          -(along * centre.x + along_y * centre.y),
          -(across * centre.x + across_y * centre.y),
          1};
}

float LogitOfByte(int value) {
  const int inner = value == 0 ? 1 : value == 255 ? 254 : value;
  return static_cast<float>(-std::log(255.0 / inner - 1.0) / 0.85);
}

HsiSample SampleYuv(const uint8_t* yuv, int x, int y, int stride, int height) {
  const int luma = yuv[y * stride + x];
  const uint8_t* pair = yuv + (x - x % 2) + (height + y / 2) * stride;
  const float v = static_cast<float>((pair[0] - 127.5) / 208.1 * 255.0);
  const float u = static_cast<float>((pair[1] - 127.5) / 293.6 * 255.0);
  const int r = Clip(luma + 1.13983 * static_cast<double>(v));
  const int g = Clip(luma - 0.39465 * static_cast<double>(u) - 0.5806 * static_cast<double>(v));
  const int b = Clip(luma + 2.03211 * static_cast<double>(u));

  const int largest = std::max({r, g, b});
  const float range = static_cast<float>(largest - std::min({r, g, b}));
  HsiSample hsi;
  hsi.intensity = largest;
  if (largest > 0) hsi.saturation = static_cast<int>(range / static_cast<float>(largest) * 255.0f);
  if (range == 0.0f) return hsi;
  const auto degrees = [range](int difference, int offset) {
    return static_cast<int>(static_cast<float>(60 * difference) / range +
                            static_cast<float>(offset) + 0.5f);
  };
  if (r == largest) {
    hsi.hue = degrees(g - b, g < b ? 360 : 0);
  } else if (g == largest) {
    hsi.hue = degrees(b - r, 120);
  } else {
    hsi.hue = degrees(r - g, 240);
  }
  return hsi;
}

HsiSample SampleHsi(const uint8_t* texels, int x, int y, int stride) {
  const uint8_t* texel = texels + (x + y * stride) * 4;
  return {texel[0] * 360 / 256, texel[1], texel[2]};
}

WhiteningParameters MeasureFace(const FaceRecord& face, int intensity_level, int saturation_level,
                                int32_t effect, int width, int height,
                                const std::function<HsiSample(int x, int y)>& sample) {
  const Point e1 = Midpoint(face.landmark(68), face.landmark(70));
  const Point e2 = Midpoint(face.landmark(69), face.landmark(71));
  const Point anchor = face.landmark(42);
  const Point chin = face.landmark(65);
  const Point q{Extend(anchor.x, chin.x), Extend(anchor.y, chin.y)};
  const int r = static_cast<int>(Length(e1, e2)) / 2;

  WhiteningParameters result;
  result.radius = std::max(r, static_cast<int>(Length(q, chin)) / 2);
  result.half_width =
      (std::max({e1.x, e2.x, q.x, chin.x}) - std::min({e1.x, e2.x, q.x, chin.x})) / 2;
  result.half_height =
      (std::max({e1.y, e2.y, q.y, chin.y}) - std::min({e1.y, e2.y, q.y, chin.y})) / 2;
  result.centre = Crossing(e1, e2, q, chin);

  const int step = r < 30 ? 1 : r / 30;
  int64_t intensities = 0;
  int64_t saturations = 0;
  int64_t count = 0;
  for (int y = result.centre.y - r; y < result.centre.y + r; y += step) {
    for (int x = result.centre.x - r; x < result.centre.x + r; x += step) {
      if (x < 0 || x >= width || y < 0 || y >= height) continue;
      const HsiSample hsi = sample(x, y);
      intensities += hsi.intensity;
      saturations += hsi.saturation;
      ++count;
    }
  }
  result.mean_intensity = Mean(intensities, count);
  result.mean_saturation = Mean(saturations, count);

  const int target = std::min(intensity_level + result.mean_intensity, 255);
  float lift = LogitOfByte(target) - LogitOfByte(result.mean_intensity);
  if (!(lift > 0) || result.mean_intensity < 51 || result.mean_intensity > 209) lift = 0;
  const bool colourful = result.mean_saturation >= 51 && result.mean_saturation <= 255;
  const float saturation = colourful ? static_cast<float>(saturation_level) : 0.0f;
  WhiteningUniforms& u = result.uniforms;
  if (effect == kIntensityOnly || effect == kIntensityAndSaturation) {
    u.intensity_shift = static_cast<double>(lift);
  }
  if (effect == kSaturationOnly || effect == kIntensityAndSaturation) {
    u.saturation_shift = static_cast<double>(saturation / 255.0f);
  }
  result.aspect_ratio = static_cast<float>(height) / static_cast<float>(width);

  const auto ellipse = [&](Point p0, Point p1, Point p2, Point p3, int padding, float scale) {
    return EllipseTransform(p0, p1, p2, p3, width, height, padding, scale);
  };
  const auto at = [&](int index) { return face.landmark(index); };
  const auto halfway = [](int a, int b) {
    return static_cast<int>((static_cast<float>(a) + static_cast<float>(b)) * 0.5f);
  };
  const Point between_eyes{halfway(at(57).x, at(61).x), halfway(at(57).y, at(61).y)};
  u.ellipses = {ellipse(e1, e2, q, chin, 0, effect == kEnlargedOuterEllipse ? 1.1f : 1.0f),
                ellipse(at(70), at(71), between_eyes, at(43), 0, 1.0f),
                ellipse(at(60), at(59), at(57), at(58), 10, 1.0f),
                ellipse(at(64), at(63), at(61), at(62), 10, 1.0f),
                ellipse(at(12), at(13), at(14), at(15), 0, 1.0f),
                ellipse(at(34), at(33), at(35), at(36), 10, 1.0f),
                ellipse(at(39), at(38), at(40), at(41), 10, 1.0f)};
  return result;
}

}  // namespace lumora::reference
