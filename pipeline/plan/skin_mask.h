// SPDX-License-Identifier: Apache-2.0
// How much of the engine's whitening each pixel of a face takes.
#ifndef LUMORA_PIPELINE_PLAN_SKIN_MASK_H_
#define LUMORA_PIPELINE_PLAN_SKIN_MASK_H_

#include <array>
#include <cstdint>
#include <vector>

#include "lumora/geometry/rectangle.h"
#include "lumora/pipeline/face.h"
#include "pipeline/plan/whitening_geometry.h"

namespace lumora {

/// Weights, 0 (the input) to 1 (the engine's result), over the pixels around a face.
///
/// The engine brightens everything in the outer ellipse, most in its middle, in a way that lifts
/// dark pixels furthest. The mask makes skin retouching of it: an even plateau over the face
/// instead of a peak on the nose, an end without a visible line at the ellipse, the input's own
/// eyes, brows and lips, and hair and shadows as dark as they are.
class SkinMask {
 public:
  /// Covers nothing.
  SkinMask() = default;
  /// For a face in a frame of width x height pixels whose skin has that luma (0..255).
  SkinMask(const Face& face, const Ellipse& outer, int skin_luma, int width, int height) {
    Make(face, outer, skin_luma, width, height);
  }
  /// Makes it the mask of another face, in the memory that it has.
  void Make(const Face& face, const Ellipse& outer, int skin_luma, int width, int height);

  /// What the mask covers: whole chroma samples, of which the last one may reach a pixel beyond a
  /// frame with an odd side. Outside, weights are 0.
  const PixelRectangle& bounds() const { return bounds_; }

  /// The weights of a row of bounds(), as `bounds().width` numbers, before the pixels' own luma is
  /// looked at. `y` is a row of the frame. They are 0 outside of the outer ellipse; a pixel beyond
  /// the frame has the weight of its neighbour in it.
  void Row(int y, float* weights) const;

  /// The share that a pixel of that luma takes of its weight.
  float ShareOf(uint8_t luma) const { return luma_share_[luma]; }

 private:
  void MakeGrid(const Face& face, const Ellipse& outer);

  PixelRectangle bounds_;
  int width_ = 0;  // of the frame
  int height_ = 0;
  EllipseRows outer_;
  int step_ = 1;     // pixels from one number of the grid to the next
  int columns_ = 0;  // of the grid
  std::vector<float> grid_;
  std::array<float, 256> luma_share_{};
};

}  // namespace lumora

#endif  // LUMORA_PIPELINE_PLAN_SKIN_MASK_H_
