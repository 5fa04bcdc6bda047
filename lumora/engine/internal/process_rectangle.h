// SPDX-License-Identifier: Apache-2.0
// What walks over a capture's blocks share: a block, the rectangle of blocks of one face, as a
// member of the engine and as a value, and how many faces have one.
#ifndef LUMORA_ENGINE_INTERNAL_PROCESS_RECTANGLE_H_
#define LUMORA_ENGINE_INTERNAL_PROCESS_RECTANGLE_H_

#include <algorithm>

#include "lumora/engine/gpu_beauty_face.h"
#include "lumora/geometry/rectangle.h"

namespace lumora::engine {

inline PixelRectangle RectangleOf(const android::FaceProcessRect& rect) {
  return {rect.X, rect.Y, rect.Width, rect.Height};
}

inline android::FaceProcessRect ProcessRectangleOf(const PixelRectangle& rectangle) {
  return {rectangle.x, rectangle.y, rectangle.width, rectangle.height, 0};
}

/// The block of the walk at (x, y), as far as it lies in the frame.
inline PixelRectangle BlockAt(const android::GPUBeautyFace& engine, int x, int y) {
  return {x, y, std::min(engine.m_nSrcWidth, engine.m_nFullWidth - x),
          std::min(engine.m_nSrcHeight, engine.m_nFullHeight - y)};
}

/// How many of `faces` faces have a rectangle of blocks; `function` tells in the log that it is not
/// all of them.
int FacesWithBlocks(const char* function, int faces);

}  // namespace lumora::engine

#endif  // LUMORA_ENGINE_INTERNAL_PROCESS_RECTANGLE_H_
