// SPDX-License-Identifier: Apache-2.0
#include "tools/lumora/modules/drawing/explain.h"

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>
#include <string>

#include "tools/lumora/faces/face_geometry.h"

namespace lumora::tools {
namespace {

// Pixels of the sheet. Small faces enlarge it, so that their numbers can be told apart.
constexpr int kLeastSide = 1000, kMostSide = 2400;
constexpr double kFaceWidth = 500;
constexpr int kFractionBits = 4;

const cv::Scalar kDark(30, 30, 30);
const cv::Scalar kBoxColour(90, 200, 90);
const cv::Scalar kCircleColour(240, 170, 40);
const cv::Scalar kArrowColour(60, 90, 245);
const cv::Scalar kMarkColour(60, 230, 255);
const cv::Scalar kEllipseColour(235, 120, 235);
const cv::Scalar kBlockColour(255, 255, 255);
constexpr double kBlockOpacity = 0.5;

// Cheeks and chin move most: angles from the direction of the chin at which arrows are drawn.
constexpr double kArrowDegrees[] = {-80, -55, -28, 0, 28, 55, 80};
constexpr double kArrowFrom = 0.95, kArrowTo = 0.68;  // radii from the centre

class Sheet {
 public:
  Sheet(const cv::Mat& picture, const std::vector<Face>& faces) {
    const double side = std::max(picture.cols, picture.rows);
    double wanted = 1;
    for (const Face& face : faces) {
      wanted = std::max(wanted, kFaceWidth / std::max(1.0, static_cast<double>(face.box.width)));
    }
    scale_ = std::clamp(wanted, kLeastSide / side, kMostSide / side);
    cv::resize(picture, pixels_, {}, scale_, scale_, scale_ < 1 ? cv::INTER_AREA : cv::INTER_CUBIC);
    line_ = std::max(1, std::max(pixels_.cols, pixels_.rows) / 700);
  }

  /// Everything is drawn twice, a dark rim first, so that it can be seen on any picture.
  void Draw(const Face& face, cv::Size frame) {
    const WarpCircle circle = SlimmingCircle(face, frame.width, frame.height);
    for (const bool rim : {true, false}) {
      const int thickness = rim ? 3 * line_ : line_;
      const auto colour = [rim](const cv::Scalar& plain) { return rim ? kDark : plain; };
      cv::rectangle(pixels_, At({face.box.x, face.box.y}),
                    At({face.box.x + face.box.width, face.box.y + face.box.height}),
                    colour(kBoxColour), thickness, cv::LINE_AA, kFractionBits);
      DrawCircle(circle, colour(kCircleColour), thickness);
      DrawArrows(circle, colour(kArrowColour), thickness);
      for (const lumora::Ellipse& ellipse : WhiteningEllipses(face)) {
        DrawEllipse(ellipse, colour(kEllipseColour), thickness);
      }
    }
    DrawLandmarks(face);
  }

  /// Thin and half transparent: blocks overlap, and what they show is to be seen.
  void Draw(const std::vector<PixelRect>& blocks) {
    cv::Mat outlined = pixels_.clone();
    for (const bool rim : {true, false}) {
      for (const PixelRect& block : blocks) {
        cv::rectangle(outlined, At(Corner(block.x, block.y)),
                      At(Corner(block.x + block.width, block.y + block.height)),
                      rim ? kDark : kBlockColour, rim ? line_ + 2 : line_, cv::LINE_AA,
                      kFractionBits);
      }
    }
    cv::addWeighted(outlined, kBlockOpacity, pixels_, 1 - kBlockOpacity, 0, pixels_);
  }

  cv::Mat pixels() const { return pixels_; }

 private:
  static PointF Corner(int x, int y) { return {static_cast<float>(x), static_cast<float>(y)}; }

  cv::Point At(PointF point) const {
    const auto fixed = [this](float value) {
      return static_cast<int>(
          std::lround(static_cast<double>(value) * scale_ * (1 << kFractionBits)));
    };
    return {fixed(point.x), fixed(point.y)};
  }

  void DrawCircle(const WarpCircle& circle, const cv::Scalar& colour, int thickness) {
    const auto radius = static_cast<double>(circle.radius) * scale_ * (1 << kFractionBits);
    cv::circle(pixels_, At(circle.centre), static_cast<int>(std::lround(radius)), colour, thickness,
               cv::LINE_AA, kFractionBits);
  }

  void DrawEllipse(const lumora::Ellipse& ellipse, const cv::Scalar& colour, int thickness) {
    if (!(ellipse.half_along > 0 && ellipse.half_across > 0)) return;
    const cv::Point axes = At({ellipse.half_along, ellipse.half_across});
    cv::ellipse(pixels_, At(ellipse.centre), {axes.x, axes.y},
                static_cast<double>(ellipse.angle_degrees), 0, 360, colour, thickness, cv::LINE_AA,
                kFractionBits);
  }

  void DrawArrows(const WarpCircle& circle, const cv::Scalar& colour, int thickness) {
    for (const double degrees : kArrowDegrees) {
      const double angle = degrees * CV_PI / 180;
      const double chin_x = static_cast<double>(circle.towards.x);
      const double chin_y = static_cast<double>(circle.towards.y);
      const double x = chin_x * std::cos(angle) - chin_y * std::sin(angle);
      const double y = chin_x * std::sin(angle) + chin_y * std::cos(angle);
      const auto on_ray = [&](double radii) {
        const double reach = radii * static_cast<double>(circle.radius);
        return PointF{circle.centre.x + static_cast<float>(x * reach),
                      circle.centre.y + static_cast<float>(y * reach)};
      };
      cv::arrowedLine(pixels_, Whole(on_ray(kArrowFrom)), Whole(on_ray(kArrowTo)), colour,
                      thickness, cv::LINE_AA, 0, 0.28);
    }
  }

  void DrawLandmarks(const Face& face) {
    const double font = std::clamp(static_cast<double>(face.box.width) * scale_ / 700, 0.3, 1.2);
    const int dot = std::max(2, static_cast<int>(std::lround(4 * font)));
    int number = 0;
    for (const NamedPoint& mark : NamedLandmarks(face.landmarks)) {
      const cv::Point at = Whole(mark.at);
      cv::circle(pixels_, at, dot + 1, kDark, cv::FILLED, cv::LINE_AA);
      cv::circle(pixels_, at, dot, kMarkColour, cv::FILLED, cv::LINE_AA);
      const std::string text = std::to_string(++number);
      const cv::Point beside = at + cv::Point(dot + 1, -dot / 2);
      cv::putText(pixels_, text, beside, cv::FONT_HERSHEY_SIMPLEX, font, kDark, 4, cv::LINE_AA);
      cv::putText(pixels_, text, beside, cv::FONT_HERSHEY_SIMPLEX, font, kMarkColour, 1,
                  cv::LINE_AA);
    }
  }

  cv::Point Whole(PointF point) const {
    return {static_cast<int>(std::lround(static_cast<double>(point.x) * scale_)),
            static_cast<int>(std::lround(static_cast<double>(point.y) * scale_))};
  }

  cv::Mat pixels_;
  double scale_ = 1;  ///< sheet pixels a picture pixel
  int line_ = 1;
};

}  // namespace

cv::Mat ExplainSheet(const cv::Mat& picture, const std::vector<Face>& faces,
                     const std::vector<PixelRect>& blocks) {
  Sheet sheet(picture, faces);
  sheet.Draw(blocks);
  for (const Face& face : faces) sheet.Draw(face, picture.size());
  return sheet.pixels();
}

}  // namespace lumora::tools
