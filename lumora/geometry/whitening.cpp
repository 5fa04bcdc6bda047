// SPDX-License-Identifier: Apache-2.0
#include "lumora/geometry/whitening.h"

#include <algorithm>
#include <cmath>

#include "lumora/geometry/rounding.h"

namespace lumora {
namespace {

// How far the long axis is extended beyond its anchor, as a share of anchor to chin.
constexpr float kForeheadShare = 0.7f;
// Bounds of "nearer the horizontal", a quarter and three quarters of pi cut to four decimals.
constexpr float kQuarterTurn = 0.7854f;
constexpr float kThreeQuarterTurn = 2.3562f;
// A face is sampled at about this many places across half its square.
constexpr int64_t kSamplesPerRadius = 30;
// Half axes up to this length, in pixels, make no ellipse.
constexpr float kLeastHalfAxis = 2.0f;
constexpr float kEmptyScale = 99.0f;
constexpr int kEyePadding = 10;

int64_t Difference(int32_t to, int32_t from) {
  return int64_t{to} - int64_t{from};
}

int32_t Middle(int32_t a, int32_t b) {
  return static_cast<int32_t>((int64_t{a} + int64_t{b}) / 2);
}

/// The distance of two points, cut to whole pixels.
int Distance(const fpf_point& a, const fpf_point& b) {
  const auto dx = static_cast<double>(Difference(b.x, a.x));
  const auto dy = static_cast<double>(Difference(b.y, a.y));
  return TruncateToInt(std::sqrt(dx * dx + dy * dy));
}

double DirectionOf(const fpf_point& from, const fpf_point& to) {
  const auto dx = static_cast<float>(Difference(to.x, from.x));
  const auto dy = static_cast<float>(Difference(to.y, from.y));
  return std::atan2(static_cast<double>(dy), static_cast<double>(dx));
}

bool NearerHorizontal(float direction) {
  return (direction > -kQuarterTurn && direction < kQuarterTurn) || direction > kThreeQuarterTurn ||
         direction < -kThreeQuarterTurn;
}

/// Where two axes cross: each coordinate is taken from the axis that runs along it.
struct Crossing {
  double direction;  // of the first axis
  int32_t x;
  int32_t y;
};
Crossing Cross(const fpf_point& p0, const fpf_point& p1, const fpf_point& p2, const fpf_point& p3) {
  const double direction = DirectionOf(p0, p1);
  if (NearerHorizontal(static_cast<float>(direction))) {
    return {direction, Middle(p0.x, p1.x), Middle(p2.y, p3.y)};
  }
  return {direction, Middle(p2.x, p3.x), Middle(p0.y, p1.y)};
}

int ClampToByte(double value) {
  return std::clamp(TruncateToInt(value), 0, 255);
}

/// The hue of a colour whose channels are not all equal: a sixth of a turn a step, rounded.
int HueDegrees(int r, int g, int b, int largest, float range) {
  const auto rounded = [range](int difference, float offset) {
    const float degrees = static_cast<float>(60 * difference) / range + offset;
    return static_cast<int>(degrees + 0.5f);  // NOLINT(bugprone-incorrect-roundings): cut after 0.5
  };
  if (r == largest) return rounded(g - b, g < b ? 360.0f : 0.0f);
  if (g == largest) return rounded(b - r, 120.0f);
  return rounded(r - g, 240.0f);
}

}  // namespace

float LogitOfIntensity(int value) {
  if (value == 0) value = 1;
  if (value == 255) value = 254;
  return static_cast<float>(-std::log(255.0 / value - 1.0) / kLogitSlope);
}

HsiSample HsiOfYuv(int luma, int cr, int cb) {
  const auto v = static_cast<float>((cr - 127.5) / 208.1 * 255.0);
  const auto u = static_cast<float>((cb - 127.5) / 293.6 * 255.0);
  const int r = ClampToByte(luma + 1.13983 * v);
  const int g = ClampToByte(luma - 0.39465 * u - 0.5806 * v);
  const int b = ClampToByte(luma + 2.03211 * u);

  const int largest = std::max({r, g, b});
  const auto range = static_cast<float>(largest - std::min({r, g, b}));
  HsiSample sample{0, 0, largest};
  if (range != 0.0f) sample.hue = HueDegrees(r, g, b, largest, range);
  if (largest != 0) {
    sample.saturation = static_cast<int>(range / static_cast<float>(largest) * 255.0f);
  }
  return sample;
}

HsiSample SampleYuv(const unsigned char* frame, int x, int y, int stride, int height) {
  const int64_t luma_at = int64_t{y} * stride + x;
  const int64_t chroma_at = (x & ~1) + (int64_t{height} + y / 2) * stride;
  return HsiOfYuv(frame[luma_at], frame[chroma_at], frame[chroma_at + 1]);
}

bool EllipseShape::empty() const {
  return half_first <= kLeastHalfAxis || half_second <= kLeastHalfAxis;
}

EllipseShape ShapeOf(const EllipseAxes& axes) {
  const Crossing centre = Cross(axes.p0, axes.p1, axes.p2, axes.p3);
  const auto half_axis = [&axes](const fpf_point& from, const fpf_point& to) {
    const int half = Distance(from, to) / 2;  // whole pixels, before scaling
    return static_cast<float>(axes.padding) + static_cast<float>(half) * axes.scale;
  };
  return {centre.x, centre.y, centre.direction, half_axis(axes.p0, axes.p1),
          half_axis(axes.p2, axes.p3)};
}

void EllipseMatrix(const EllipseAxes& axes, int width, int height, float matrix[9]) {
  const EllipseShape shape = ShapeOf(axes);
  const float a = shape.half_first;
  const float b = shape.half_second;
  std::fill(matrix, matrix + 9, 0.0f);
  matrix[8] = 1.0f;
  if (shape.empty()) {
    matrix[0] = kEmptyScale;
    matrix[4] = kEmptyScale;
    return;
  }
  const auto w = static_cast<float>(width);
  const auto h = static_cast<float>(height);
  const auto direction = static_cast<double>(static_cast<float>(shape.direction));
  const double c = std::cos(direction);
  const double s = std::sin(direction);
  const float u = static_cast<float>(shape.centre_x) / w;
  const float v = static_cast<float>(shape.centre_y) / h;
  // Rotation about the centre by the axis's direction, then division by the half axes.
  matrix[0] = static_cast<float>(c * w / a);
  matrix[1] = static_cast<float>(-w * s / b);
  matrix[3] = static_cast<float>(s * h / a);
  matrix[4] = static_cast<float>(c * h / b);
  matrix[6] = static_cast<float>(-(u * c * w) / a - (v * s * h) / a);
  matrix[7] = static_cast<float>((u * s * w) / b - (v * c * h) / b);
}

FaceGeometry MeasureFace(const FACE_INFO_t& face) {
  const auto middle = [&face](int first, int second) {
    const fpf_point& a = face.landmark(first);
    const fpf_point& b = face.landmark(second);
    return fpf_point{Middle(a.x, b.x), Middle(a.y, b.y), 0};
  };
  const fpf_point& anchor = face.landmark(42);
  const fpf_point& chin = face.landmark(65);
  const auto beyond = [](int32_t from, int32_t towards) {
    const float step = kForeheadShare * static_cast<float>(Difference(towards, from));
    return TruncateToInt(static_cast<double>(static_cast<float>(from) - step));
  };

  FaceGeometry geometry{};
  geometry.side1 = middle(68, 70);
  geometry.side2 = middle(69, 71);
  geometry.forehead = {beyond(anchor.x, chin.x), beyond(anchor.y, chin.y), 0};

  const int across = Distance(geometry.side1, geometry.side2) / 2;
  const int along = Distance(geometry.forehead, chin) / 2;
  const Crossing centre = Cross(geometry.side1, geometry.side2, geometry.forehead, chin);
  geometry.centre_x = centre.x;
  geometry.centre_y = centre.y;
  geometry.sample_radius = across;
  geometry.radius = std::max(across, along);
  geometry.sample_step = across < kSamplesPerRadius ? 1 : across / kSamplesPerRadius;

  const auto half_extent = [&geometry, &chin](int32_t fpf_point::*coordinate) {
    const auto [least, most] = std::minmax({geometry.side1.*coordinate, geometry.side2.*coordinate,
                                            geometry.forehead.*coordinate, chin.*coordinate});
    return Difference(most, least) / 2;
  };
  geometry.half_width = half_extent(&fpf_point::x);
  geometry.half_height = half_extent(&fpf_point::y);
  return geometry;
}

WhiteningShifts ComputeShifts(const ColourSums& sums, int intensity_level, int saturation_level) {
  const int intensity = sums.mean(sums.intensity);
  const int saturation = sums.mean(sums.saturation);

  const int64_t target = std::min<int64_t>(int64_t{intensity_level} + intensity, 255);
  WhiteningShifts shifts{0.0f, 0.0f};
  if (intensity >= kLeastIntensity && intensity <= kMostIntensity) {
    const float lift = LogitOfIntensity(static_cast<int>(target)) - LogitOfIntensity(intensity);
    if (lift > 0.0f) shifts.intensity = lift;  // a lowering, or no number, is no whitening
  }
  if (saturation >= kLeastSaturation && saturation <= kMostSaturation) {
    shifts.saturation = static_cast<float>(saturation_level);
  }
  return shifts;
}

std::array<EllipseAxes, 7> FaceEllipses(const FACE_INFO_t& face, const FaceGeometry& geometry,
                                        float outer_scale) {
  const auto point = [&face](int i) { return face.landmark(i); };
  const auto between = [](int32_t a, int32_t b) {
    return TruncateToInt(
        static_cast<double>((static_cast<float>(a) + static_cast<float>(b)) * 0.5f));
  };
  const fpf_point between_eyes{between(point(57).x, point(61).x), between(point(57).y, point(61).y),
                               0};
  return {{
      {geometry.side1, geometry.side2, geometry.forehead, point(65), 0, outer_scale},
      {point(70), point(71), between_eyes, point(43), 0, 1.0f},
      {point(60), point(59), point(57), point(58), kEyePadding, 1.0f},
      {point(64), point(63), point(61), point(62), kEyePadding, 1.0f},
      {point(12), point(13), point(14), point(15), 0, 1.0f},
      {point(34), point(33), point(35), point(36), kEyePadding, 1.0f},
      {point(39), point(38), point(40), point(41), kEyePadding, 1.0f},
  }};
}

}  // namespace lumora
