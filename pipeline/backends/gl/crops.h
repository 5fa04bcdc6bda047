// SPDX-License-Identifier: Apache-2.0
// Which parts of a frame whitening has to draw.
#ifndef LUMORA_PIPELINE_BACKENDS_GL_CROPS_H_
#define LUMORA_PIPELINE_BACKENDS_GL_CROPS_H_

#include <vector>

#include "lumora/geometry/face_record.h"
#include "lumora/geometry/rectangle.h"

namespace lumora {

/// Around everything that the engine reads, reckons with and changes when it whitens a face: the
/// outer ellipse, the square in which it is measured, and the landmarks of both. May leave the
/// frame.
PixelRectangle WhiteningReach(const FACE_INFO_t& record);

/// The side of a crop that holds `length` pixels: a multiple of 32, longer by no more than an
/// eighth or 31 pixels. There are few of them, so that what the engine is set up for stays while a
/// face moves.
int CropSide(int length);

/// A part of a frame, and what it was laid around.
struct Crop {
  PixelRectangle area;   ///< in the frame, at an even place; its sides are those of CropSide or the
                         ///< frame's
  PixelRectangle reach;  ///< of its faces together; shares no pixel with another crop's

  /// Whether a face of that reach is one of those that the crop was laid around.
  bool Holds(const PixelRectangle& face) const;
};

/// Lays crops around faces of those reaches in a frame whose sides are multiples of 32. Faces whose
/// reaches share a pixel lie in one crop; others do where one crop takes no longer than two. What
/// lies in the frame or to the right and below has no coordinate below 0 in its crop, so that
/// the engine, which cuts towards 0, cuts as in the whole frame. `crops` is filled anew, in the
/// memory that it has.
void LayCrops(const std::vector<PixelRectangle>& reaches, int width, int height,
              std::vector<Crop>* crops);

/// The record of a face, as seen from a crop.
FACE_INFO_t SeenFrom(const Crop& crop, const FACE_INFO_t& record);

}  // namespace lumora

#endif  // LUMORA_PIPELINE_BACKENDS_GL_CROPS_H_
