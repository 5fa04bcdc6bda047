// SPDX-License-Identifier: Apache-2.0
// From a face and its pixels to the uniforms of the whitening programs.
#ifndef LUMORA_REFERENCE_WHITENING_PARAMETERS_H_
#define LUMORA_REFERENCE_WHITENING_PARAMETERS_H_

#include <cstdint>
#include <functional>

#include "reference/face_record.h"
#include "reference/whitening.h"

namespace lumora::reference {

/// The ellipse whose first axis is p0-p1 and whose second axis is p2-p3, in a frame of
/// width x height pixels. Axes of two pixels or less give the matrix of an empty ellipse.
EllipseMatrix EllipseTransform(Point p0, Point p1, Point p2, Point p3, int width, int height,
                               int padding, float scale);

/// The logit of an 8-bit intensity, for the slope 0.85; 0 counts as 1 and 255 as 254.
float LogitOfByte(int value);

/// Hue in degrees, saturation and intensity in 0..255.
struct HsiSample {
  int hue = 0;
  int saturation = 0;
  int intensity = 0;
};

/// One pixel of a semi-planar frame whose chroma rows follow `height` luma rows of `stride` bytes.
HsiSample SampleYuv(const uint8_t* yuv, int x, int y, int stride, int height);
/// One pixel of an HSI image with rows of `stride` texels.
HsiSample SampleHsi(const uint8_t* texels, int x, int y, int stride);

enum WhiteningEffect : int32_t {
  kIntensityOnly = 3,
  kSaturationOnly = 4,
  kIntensityAndSaturation = 8,
  kEnlargedOuterEllipse = 15  ///< no shift
};

/// What one face's measuring leaves behind.
struct WhiteningParameters {
  int radius = 0;
  int half_width = 0;
  int half_height = 0;
  Point centre;
  int mean_intensity = 0;
  int mean_saturation = 0;
  float aspect_ratio = 0.0f;
  WhiteningUniforms uniforms;
};

/// Measures a face by `sample(x, y)` and chooses shifts and ellipses. The levels are in 0..255.
WhiteningParameters MeasureFace(const FaceRecord& face, int intensity_level, int saturation_level,
                                int32_t effect, int width, int height,
                                const std::function<HsiSample(int x, int y)>& sample);

}  // namespace lumora::reference

#endif  // LUMORA_REFERENCE_WHITENING_PARAMETERS_H_
