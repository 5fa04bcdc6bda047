// Which pixels of an image a pass can change, from the uniforms that it draws with: plain geometry,
// no GL. Outside its box such a pass writes every pixel just as it reads it, so that it need not be
// drawn there. A box that cannot be told for certain is the whole image.
#ifndef LUMORA_ENGINE_CHANGED_BOX_H_
#define LUMORA_ENGINE_CHANGED_BOX_H_

#include <array>

#include "lumora/platform/graphic_buffer.h"

namespace lumora {

using platform::PixelRectangle;

/// The uniforms of the slimming warp of a whole frame, as GLProgWarp has them.
struct WarpUniforms {
  float centre_x, centre_y;  ///< texture coordinates
  float strength;
  float radius;  ///< texture coordinates, measured along the width
  float limiter_direction, limiter_distance, limiter_scale;
  float aspect_ratio;  ///< frame height / width
};

/// The pixels of a width x height image that the warp can move: those of its circle.
PixelRectangle WarpBox(const WarpUniforms& warp, int width, int height);

/// The pixels of a width x height image inside an ellipse, given by the matrix, column by column,
/// that takes texture coordinates (u, v, 1) to its unit circle.
PixelRectangle EllipseBox(const float matrix[9], int width, int height);

/// The smallest rectangle that holds both; an empty one adds nothing.
PixelRectangle Union(const PixelRectangle& a, const PixelRectangle& b);

/// What a width x height image has around the box: above, below, left and right of it; each may be
/// empty.
std::array<PixelRectangle, 4> Around(const PixelRectangle& box, int width, int height);

/// The rectangle with its sides moved outwards to multiples of `step_x` and `step_y`, then measured
/// in them. An empty one stays empty.
PixelRectangle InSteps(const PixelRectangle& box, int step_x, int step_y);

/// Whether so little of a width x height image lies outside the box that it is not worth the care.
bool CoversMost(const PixelRectangle& box, int width, int height);

}  // namespace lumora

#endif  // LUMORA_ENGINE_CHANGED_BOX_H_
