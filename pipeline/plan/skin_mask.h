// SPDX-License-Identifier: Apache-2.0
// How much of the engine's whitening each pixel of a face takes.
#ifndef LUMORA_PIPELINE_PLAN_SKIN_MASK_H_
#define LUMORA_PIPELINE_PLAN_SKIN_MASK_H_

#include <array>
#include <cstdint>
#include <vector>

#include "lumora/geometry/rectangle.h"
#include "lumora/pipeline/face.h"
#include "pipeline/frames/row_span.h"
#include "pipeline/plan/whitening_geometry.h"

namespace lumora {

/// What the weights of a row are made of: for kernels that compute them on their way. The weight of
/// column x of the mask's bounds is, with `right` = (x % step) / step and i = x / step,
///
///     top = above[i] + right * (above[i + 1] - above[i])
///     bottom = below[i] + right * (below[i + 1] - below[i])
///     top + down * (bottom - top)
///
/// each operation rounded by itself, and 0 outside of `held`.
struct MaskRow {
  /// So many floats behind those of a row may be read, which mean something else or nothing.
  static constexpr int kBeyond = 16;

  const float* above = nullptr;  ///< the grid's numbers above the row or on it
  const float* below = nullptr;  ///< those of the next row of the grid
  float down = 0;                ///< how far the row lies from the first to the second, below 1
  int step = 1;                  ///< columns from one number to the next
  RowSpan held;                  ///< columns, counted from the bounds' first, in ellipse and frame

  /// That formula for the number `i`.
  float Between(int i, float right) const {
    const auto along = [i, right](const float* numbers) {
      return numbers[i] + right * (numbers[i + 1] - numbers[i]);
    };
    const float top = along(above);
    return top + down * (along(below) - top);
  }
};

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

  /// The same row for who computes the weights himself. They hold as long as the mask is not made
  /// anew. Where bounds() reaches beyond the frame, its last column is not in `held`.
  MaskRow RowAt(int y) const;

  /// The share that a pixel of that luma takes of its weight, and all of them.
  float ShareOf(uint8_t luma) const { return luma_share_[luma]; }
  const std::array<float, 256>& luma_shares() const { return luma_share_; }

  /// Where those shares begin to rise, and where they are whole: luma, 0..255.
  float darkest() const { return darkest_; }
  float lit() const { return lit_; }

 private:
  void MakeGrid(const Face& face, const Ellipse& outer);

  PixelRectangle bounds_;
  int width_ = 0;  // of the frame
  int height_ = 0;
  EllipseRows outer_;
  int step_ = 1;     // pixels from one number of the grid to the next
  int columns_ = 0;  // of the grid
  std::vector<float> grid_;
  float darkest_ = 0;
  float lit_ = 1;
  std::array<float, 256> luma_share_{};
};

}  // namespace lumora

#endif  // LUMORA_PIPELINE_PLAN_SKIN_MASK_H_
