// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/modules/drawing/portraits/canvas.h"

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>

namespace lumora::tools {
namespace {

constexpr int kShift = 4;        // fractional bits of polygon corners
constexpr int kCurveSteps = 12;  // straight pieces between two points of a smooth curve
constexpr double kUnits = 1000;  // of the drawing plane that fill a place
// Pictures with more pixels are drawn in their own size: their outlines are smooth enough.
constexpr int kMostDoubled = 4'500'000;

cv::Vec3f Bgr(Rgb colour) {
  return {static_cast<float>(colour & 0xff), static_cast<float>((colour >> 8) & 0xff),
          static_cast<float>((colour >> 16) & 0xff)};
}

// Catmull-Rom: a cubic from b to c whose tangents come from the neighbours a and d.
cv::Point2d OnCurve(cv::Point2d a, cv::Point2d b, cv::Point2d c, cv::Point2d d, double t) {
  const double t2 = t * t, t3 = t2 * t;
  return 0.5 *
         (2 * b + (c - a) * t + (2 * a - 5 * b + 4 * c - d) * t2 + (3 * b - a - 3 * c + d) * t3);
}

// Gaussian blur. A wide one works on a smaller copy: what it leaves has no detail to lose.
void Soften(cv::Mat& mask, double deviation) {
  const int factor = std::max(1, static_cast<int>(deviation / 5));
  // The rim continues the shape, so that shapes which leave the picture stay full there.
  if (factor == 1) {
    cv::GaussianBlur(mask, mask, {}, deviation, 0, cv::BORDER_REPLICATE);
    return;
  }
  const cv::Size whole = mask.size();
  const cv::Size reduced(std::max(1, whole.width / factor), std::max(1, whole.height / factor));
  cv::Mat small;
  cv::resize(mask, small, reduced, 0, 0, cv::INTER_AREA);
  cv::GaussianBlur(small, small, {}, deviation / factor, 0, cv::BORDER_REPLICATE);
  cv::resize(small, mask, whole, 0, 0, cv::INTER_LINEAR);
}

}  // namespace

Rgb Mix(Rgb a, Rgb b, double share_of_b) {
  Rgb mixed = 0;
  for (int shift = 0; shift <= 16; shift += 8) {
    const double from = (a >> shift) & 0xff, to = (b >> shift) & 0xff;
    mixed |= static_cast<Rgb>(std::lround(from + (to - from) * share_of_b)) << shift;
  }
  return mixed;
}

Points Smooth(const Points& through) {
  const size_t n = through.size();
  Points curve;
  for (size_t i = 0; i < n; ++i) {
    for (int step = 0; step < kCurveSteps; ++step) {
      curve.push_back(OnCurve(through[(i + n - 1) % n], through[i], through[(i + 1) % n],
                              through[(i + 2) % n], static_cast<double>(step) / kCurveSteps));
    }
  }
  return curve;
}

Points SmoothLine(const Points& through) {
  Points curve;
  for (size_t i = 0; i + 1 < through.size(); ++i) {
    const cv::Point2d before = i > 0 ? through[i - 1] : through[i];
    const cv::Point2d after = i + 2 < through.size() ? through[i + 2] : through[i + 1];
    for (int step = 0; step < kCurveSteps; ++step) {
      curve.push_back(OnCurve(before, through[i], through[i + 1], after,
                              static_cast<double>(step) / kCurveSteps));
    }
  }
  curve.push_back(through.back());
  return curve;
}

cv::Point2d Mirrored(cv::Point2d point) {
  return {kUnits - point.x, point.y};
}

Points Mirrored(const Points& points) {
  Points mirrored;
  for (const cv::Point2d& point : points) mirrored.push_back(Mirrored(point));
  return mirrored;
}

Points Symmetric(const Points& right_half) {
  Points whole = right_half;
  for (auto point = right_half.rbegin(); point != right_half.rend(); ++point) {
    const bool on_axis = std::abs(point->x - kUnits / 2) < 0.5;
    if (!on_axis) whole.push_back(Mirrored(*point));
  }
  return whole;
}

Points Oval(cv::Point2d centre, double half_width, double half_height, double degrees) {
  constexpr int kCorners = 96;
  const double turn = degrees * CV_PI / 180;
  Points outline;
  for (int i = 0; i < kCorners; ++i) {
    const double angle = 2 * CV_PI * i / kCorners;
    const double x = half_width * std::cos(angle), y = half_height * std::sin(angle);
    outline.push_back(centre + cv::Point2d(x * std::cos(turn) - y * std::sin(turn),
                                           x * std::sin(turn) + y * std::cos(turn)));
  }
  return outline;
}

Points Stroke(const Points& line, double widest) {
  const Points curve = SmoothLine(line);
  const size_t last = curve.size() - 1;
  Points upper, lower;
  for (size_t i = 0; i <= last; ++i) {
    const cv::Point2d along = curve[std::min(i + 1, last)] - curve[i > 0 ? i - 1 : 0];
    const double length = std::max(1e-6, std::hypot(along.x, along.y));
    const double half =
        0.5 * widest * std::sin(CV_PI * static_cast<double>(i) / static_cast<double>(last));
    const cv::Point2d across(-along.y / length * half, along.x / length * half);
    upper.push_back(curve[i] + across);
    lower.push_back(curve[i] - across);
  }
  upper.insert(upper.end(), lower.rbegin(), lower.rend());
  return upper;
}

Canvas::Canvas(cv::Size size, Rgb background)
    : size_(size), factor_(size.area() > kMostDoubled ? 1 : 2), pixels_(size * factor_, CV_32FC3) {
  pixels_.setTo(cv::Scalar(Bgr(background)));
  Place({0, 0}, size.height);
}

void Canvas::Place(cv::Point2d corner, double side) {
  scale_ = factor_ * side / kUnits;
  origin_ = corner * factor_;
}

cv::Mat Canvas::Mask(const Points& outline) const {
  return MaskOf(outline, cv::Rect({0, 0}, pixels_.size()));
}

cv::Mat Canvas::MaskOf(const Points& outline, const cv::Rect& area) const {
  std::vector<cv::Point> corners;
  for (const cv::Point2d& point : outline) {
    corners.emplace_back(
        static_cast<int>(std::lround((point.x * scale_ + origin_.x - area.x) * (1 << kShift))),
        static_cast<int>(std::lround((point.y * scale_ + origin_.y - area.y) * (1 << kShift))));
  }
  cv::Mat mask(area.size(), CV_8U, cv::Scalar(0));
  cv::fillPoly(mask, std::vector<std::vector<cv::Point>>{corners}, cv::Scalar(255), cv::LINE_AA,
               kShift);
  return mask;
}

cv::Rect Canvas::Reach(const Points& outline, double rim) const {
  cv::Point2d low = outline.front(), high = outline.front();
  for (const cv::Point2d& point : outline) {
    low = {std::min(low.x, point.x), std::min(low.y, point.y)};
    high = {std::max(high.x, point.x), std::max(high.y, point.y)};
  }
  const cv::Point corner(static_cast<int>(std::floor((low.x - rim) * scale_ + origin_.x)),
                         static_cast<int>(std::floor((low.y - rim) * scale_ + origin_.y)));
  const cv::Point end(static_cast<int>(std::ceil((high.x + rim) * scale_ + origin_.x)),
                      static_cast<int>(std::ceil((high.y + rim) * scale_ + origin_.y)));
  return cv::Rect(corner, end) & cv::Rect({0, 0}, pixels_.size());
}

void Canvas::Fill(const Points& outline, const Paint& paint) {
  const cv::Rect area = Reach(outline, 3.5 * paint.blur + 3);
  if (area.empty()) return;
  cv::Mat mask = MaskOf(outline, area);
  if (paint.blur > 0) Soften(mask, paint.blur * scale_);
  if (paint.clip != nullptr) cv::multiply(mask, (*paint.clip)(area), mask, 1.0 / 255);
  const cv::Vec3f colour = Bgr(paint.colour);
  const float strength = static_cast<float>(paint.opacity / 255);
  cv::Mat target = pixels_(area);
  for (int y = 0; y < area.height; ++y) {
    const uint8_t* covered = mask.ptr<uint8_t>(y);
    cv::Vec3f* row = target.ptr<cv::Vec3f>(y);
    for (int x = 0; x < area.width; ++x) {
      if (covered[x] != 0) {
        row[x] += (colour - row[x]) * (strength * static_cast<float>(covered[x]));
      }
    }
  }
}

void Canvas::Fade(double top, double bottom, Rgb colour, double opacity) {
  const cv::Vec3f target = Bgr(colour);
  for (int y = 0; y < pixels_.rows; ++y) {
    const double along = std::clamp(((y - origin_.y) / scale_ - top) / (bottom - top), 0.0, 1.0);
    const float share = static_cast<float>(along * opacity);
    cv::Vec3f* row = pixels_.ptr<cv::Vec3f>(y);
    for (int x = 0; x < pixels_.cols; ++x) row[x] += (target - row[x]) * share;
  }
}

cv::Mat Canvas::Picture() const {
  cv::Mat small = pixels_, picture;
  if (factor_ != 1) cv::resize(pixels_, small, size_, 0, 0, cv::INTER_AREA);
  small.convertTo(picture, CV_8UC3);
  return picture;
}

}  // namespace lumora::tools
