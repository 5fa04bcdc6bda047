// SPDX-License-Identifier: Apache-2.0
// A small painter for illustrations: smooth closed shapes, flat or soft.
#ifndef LUMORA_TOOLS_MODULES_DRAWING_PORTRAITS_CANVAS_H_
#define LUMORA_TOOLS_MODULES_DRAWING_PORTRAITS_CANVAS_H_

#include <opencv2/core.hpp>
#include <vector>

namespace lumora::tools {

/// A colour as designers write it: 0xRRGGBB.
using Rgb = unsigned;

/// A mix of two colours: 0 gives `a`, 1 gives `b`.
Rgb Mix(Rgb a, Rgb b, double share_of_b);

/// Points of the drawing plane: units of which 1000 fill the height of the picture, or the part of
/// it that `Canvas::Place` names.
using Points = std::vector<cv::Point2d>;

/// A smooth closed curve through the given points.
Points Smooth(const Points& through);

/// A smooth open curve through the given points.
Points SmoothLine(const Points& through);

/// The same points on the other side of the vertical axis x = 500.
Points Mirrored(const Points& points);
cv::Point2d Mirrored(cv::Point2d point);

/// The right half of a symmetric outline, from the top to the bottom, with its mirror image added.
Points Symmetric(const Points& right_half);

/// An ellipse, turned clockwise by `degrees`.
Points Oval(cv::Point2d centre, double half_width, double half_height, double degrees = 0);

/// A line that is `widest` units thick in its middle and thins out to its ends.
Points Stroke(const Points& line, double widest);

/// How a shape is laid over what is there.
struct Paint {
  Rgb colour = 0;
  double opacity = 1;             ///< 0 to 1
  double blur = 0;                ///< softness of the rim in units (standard deviation)
  const cv::Mat* clip = nullptr;  ///< a mask from `Mask`; nothing is painted outside of it
};

class Canvas {
 public:
  /// A canvas for a picture of `size` pixels. Small ones are drawn at twice that size.
  Canvas(cv::Size size, Rgb background);

  /// From now on 1000 units in both directions are `side` pixels of the picture, from `corner` on.
  void Place(cv::Point2d corner, double side);

  void Fill(const Points& outline, const Paint& paint);
  /// Everything from row `top` units downward gets more and more of the colour.
  void Fade(double top, double bottom, Rgb colour, double opacity);

  /// The area of an outline, for `Paint::clip`.
  cv::Mat Mask(const Points& outline) const;

  /// The picture: 8-bit BGR.
  cv::Mat Picture() const;

 private:
  cv::Rect Reach(const Points& outline, double rim) const;
  cv::Mat MaskOf(const Points& outline, const cv::Rect& area) const;

  cv::Size size_;
  int factor_;          ///< canvas pixels a pixel of the picture
  double scale_ = 1;    ///< canvas pixels a unit
  cv::Point2d origin_;  ///< canvas pixels
  cv::Mat pixels_;
};

}  // namespace lumora::tools

#endif  // LUMORA_TOOLS_MODULES_DRAWING_PORTRAITS_CANVAS_H_
