// SPDX-License-Identifier: Apache-2.0
// From a face record and the frame's colours to the whitening effect: plain arithmetic, no GL.
#ifndef LUMORA_GEOMETRY_WHITENING_H_
#define LUMORA_GEOMETRY_WHITENING_H_

#include <algorithm>
#include <array>
#include <cstdint>

#include "lumora/geometry/face_record.h"

namespace lumora {

/// Slope of the logistic curve in which intensity is shifted.
constexpr double kLogitSlope = 0.85;

/// Mean intensities and saturations for which a face is whitened.
constexpr int kLeastIntensity = 51;
constexpr int kMostIntensity = 209;
constexpr int kLeastSaturation = 51;
constexpr int kMostSaturation = 255;

/// An 8-bit intensity as a logit in the shader's units. 0 counts as 1 and 255 as 254, since their
/// own logits are infinite; values outside 0 .. 255 give no number.
float LogitOfIntensity(int value);

/// Hue in degrees, saturation and intensity in 0 .. 255.
struct HsiSample {
  int hue;
  int saturation;
  int intensity;
};

/// The colour of a pixel of those samples. Weights are those of analogue YUV with the frame's own
/// chroma scales.
HsiSample HsiOfYuv(int luma, int cr, int cb);

/// The pixel (x, y) of a semi-planar frame, Cr before Cb, whose chroma rows follow `height` luma
/// rows; `stride` is in bytes.
HsiSample SampleYuv(const unsigned char* frame, int x, int y, int stride, int height);

/// The colour of an HSI texel: hue in red (255 is a turn), saturation in green, intensity in blue.
inline HsiSample SampleTexel(const unsigned char* texel) {
  return {texel[0] * 360 >> 8, texel[1], texel[2]};
}

/// The axes of one ellipse, in pixels: p0 - p1 span the first, p2 - p3 the second; `padding` pixels
/// are added to the half axes after scaling.
struct EllipseAxes {
  fpf_point p0, p1, p2, p3;
  int padding;
  float scale;
};

/// The ellipse of such axes.
struct EllipseShape {
  int32_t centre_x, centre_y;  ///< pixels
  double direction;            ///< of the first axis, radians
  float half_first, half_second;

  /// Half axes of 2 pixels or less make an ellipse that holds next to nothing.
  bool empty() const;
};
EllipseShape ShapeOf(const EllipseAxes& axes);

/// The matrix, column by column, that takes texture coordinates (u, v, 1) of a width x height frame
/// to the frame of the ellipse, whose line is the unit circle.
void EllipseMatrix(const EllipseAxes& axes, int width, int height, float matrix[9]);

/// What whitening measures of a face, in pixels of the frame. Garbage landmarks give garbage
/// numbers but never an overflow.
struct FaceGeometry {
  fpf_point side1, side2;  ///< ends of the cross axis
  fpf_point forehead;      ///< far end of the long axis, whose other end is the chin (landmark 65)
  int64_t centre_x, centre_y;
  int64_t sample_radius;  ///< half side of the sampling square
  int64_t radius;
  int64_t half_width, half_height;
  int64_t sample_step;
};
FaceGeometry MeasureFace(const FACE_INFO_t& face);

/// Calls visit(x, y) for the places where a face is sampled, as far as they lie in a frame of that
/// size: about 30 to each side of its centre. The grid starts at the square's own corner, so that
/// a face at the frame's edge is sampled at the same places as one inside.
template <typename Visit>
void ForEachSample(const FaceGeometry& face, int frame_width, int frame_height, Visit visit) {
  const auto first = [&face](int64_t centre) {
    const int64_t outside = face.sample_radius - centre;
    const int64_t steps = outside > 0 ? (outside + face.sample_step - 1) / face.sample_step : 0;
    return centre - face.sample_radius + steps * face.sample_step;
  };
  const int64_t x1 = std::min<int64_t>(face.centre_x + face.sample_radius, frame_width);
  const int64_t y1 = std::min<int64_t>(face.centre_y + face.sample_radius, frame_height);
  for (int64_t y = first(face.centre_y); y < y1; y += face.sample_step) {
    for (int64_t x = first(face.centre_x); x < x1; x += face.sample_step) {
      visit(static_cast<int>(x), static_cast<int>(y));
    }
  }
}

/// Sums of the samples of one face.
struct ColourSums {
  int intensity = 0;
  int saturation = 0;
  int count = 0;

  /// The mean of one of the sums, cut to a whole number; 0 without samples.
  int mean(int sum) const {
    return count > 0 ? static_cast<int>(static_cast<float>(sum) / static_cast<float>(count)) : 0;
  }
};

/// The shifts that the requested levels (0 .. 255 units) come to on a face of those colours:
/// intensity in logit units, saturation in 0 .. 255 units. Faces that are very dark, very bright or
/// grey are left alone.
struct WhiteningShifts {
  float intensity;
  float saturation;
};
WhiteningShifts ComputeShifts(const ColourSums& sums, int intensity_level, int saturation_level);

/// The seven ellipses of a face, in the order of the shader programs; `outer_scale` enlarges the
/// first.
std::array<EllipseAxes, 7> FaceEllipses(const FACE_INFO_t& face, const FaceGeometry& geometry,
                                        float outer_scale);

}  // namespace lumora

#endif  // LUMORA_GEOMETRY_WHITENING_H_
