// SPDX-License-Identifier: Apache-2.0
// The numbers between which the weights of a skin mask lie.
#ifndef LUMORA_PIPELINE_PLAN_SKIN_GRID_H_
#define LUMORA_PIPELINE_PLAN_SKIN_GRID_H_

#include "lumora/pipeline/face.h"

namespace lumora {

/// Places on the pixel centres of a frame, `step` pixels apart.
struct SkinGrid {
  int x = 0;  ///< the pixel of the first place
  int y = 0;
  int step = 1;
  int columns = 0;
  int rows = 0;
};

/// Fills `numbers`, row by row, with the weights at the places of `grid`: an even plateau over the
/// face that ends softly at the ellipse `outer`, less on eyes, brows and lips.
///
/// A feature's share is 1 outside of its own ellipse, and the plateau is 0 outside of `outer`: each
/// is computed in its own rows and columns only, which changes no number.
void FillSkinGrid(const SkinGrid& grid, const Face& face, const Ellipse& outer, float* numbers);

}  // namespace lumora

#endif  // LUMORA_PIPELINE_PLAN_SKIN_GRID_H_
