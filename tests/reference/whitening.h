// SPDX-License-Identifier: Apache-2.0
// The whitening programs: a lift of intensity and saturation inside an ellipse.
#ifndef LUMORA_REFERENCE_WHITENING_H_
#define LUMORA_REFERENCE_WHITENING_H_

#include <array>

#include "reference/image.h"

namespace lumora::reference {

/// 3 x 3, column after column. Times (u, v, 1) it gives in x and y the place relative to an ellipse
/// that is the unit circle there.
using EllipseMatrix = std::array<double, 9>;

/// The distance of a texture coordinate from an ellipse's centre: below 1 is inside.
double EllipseDistance(const EllipseMatrix& ellipse, Vec2 coordinate);

struct WhiteningUniforms {
  /// 0 outer face, 1 centre ellipse, 2 and 3 the eyes, 4 fourth inner ellipse, 5 and 6 second pair
  /// of eye ellipses.
  std::array<EllipseMatrix, 7> ellipses{};
  double intensity_shift = 0.0;   ///< in logit units
  double saturation_shift = 0.0;  ///< 0..1
  Vec2 tile_scale{1.0, 1.0};      ///< from tile to frame coordinates, program for tiles only
  Vec2 tile_offset;
};

/// The whitened value of an HSI texel at a place of the frame.
Texel Whiten(const Texel& hsi, Vec2 frame_coordinate, const WhiteningUniforms& uniforms);

struct FaceWhitening {
  Sampler input;
  WhiteningUniforms uniforms;
  Texel operator()(Vec2 coordinate) const;
};

/// Keeps what an earlier face has written: pixels whose previous alpha is not 0.
struct FaceWhiteningLarge {
  Sampler input;
  Sampler previous;
  WhiteningUniforms uniforms;
  Texel operator()(Vec2 coordinate) const;
};

}  // namespace lumora::reference

#endif  // LUMORA_REFERENCE_WHITENING_H_
