// From a face record and the frame's colours to the whitening effect: plain arithmetic, no GL.
#ifndef LUMORA_GEOMETRY_WHITENING_H_
#define LUMORA_GEOMETRY_WHITENING_H_

#include <array>
#include <cstdint>

#include "lumora/geometry/face_record.h"

namespace lumora {

/// Slope of the logistic curve in which intensity is shifted.
constexpr double kLogitSlope = 0.85;

/// An 8-bit intensity as a logit in the shader's units. 0 counts as 1 and 255 as 254, since their
/// own logits are infinite; values outside 0 .. 255 give no number.
float LogitOfIntensity(int value);

/// Hue in degrees, saturation and intensity in 0 .. 255.
struct HsiSample {
  int hue;
  int saturation;
  int intensity;
};

/// The pixel (x, y) of a semi-planar frame, Cr before Cb, whose chroma rows follow `height` luma
/// rows; `stride` is in bytes. Weights are those of analogue YUV with the frame's own chroma
/// scales.
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

/// The matrix, column by column, that takes texture coordinates (u, v, 1) of a width x height frame
/// to the frame of the ellipse, whose line is the unit circle. Half axes of 2 pixels or less give
/// an ellipse that holds next to nothing.
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

/// Sums of the samples of one face.
struct ColourSums {
  int intensity = 0;
  int saturation = 0;
  int count = 0;
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
