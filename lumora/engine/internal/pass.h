// SPDX-License-Identifier: Apache-2.0
// One drawing pass of the engine, as named fields.
#ifndef LUMORA_ENGINE_INTERNAL_PASS_H_
#define LUMORA_ENGINE_INTERNAL_PASS_H_

#include "lumora/engine/gpu_beauty_face.h"
#include "lumora/engine/internal/target.h"
#include "lumora/geometry/changed_area.h"
#include "lumora/gl/no_name.h"
#include "lumora/gl/quad.h"

namespace lumora::engine {

/// A full-screen quad from one or two textures into a target. Whoever describes one names its
/// program, its input and its destination; the other fields are for the exceptions.
struct Pass {
  /// A pass of `function` over the whole of the engine's images.
  Pass(const android::GPUBeautyFace& engine, const char* function)
      : name(function), width(engine.m_nAlignedWidth), height(engine.m_nAlignedHeight) {}

  const char* name;  ///< of the function, for the log
  GLProgram* program = nullptr;
  GLuint input = kNoName;   ///< texture, as is the next
  GLuint second_input = 0;  ///< 0 where the program has no second one
  Target destination = {};
  int width;  ///< viewport, pixels
  int height;
  bool keep_viewport = false;  ///< draw into the viewport of the moment instead
  const float* positions = quad::kPositions;
  /// Filter to set on whatever texture is bound before the program binds its input; 0 sets none. It
  /// therefore takes effect on that texture's next use, not on this pass's own input.
  GLint filter = 0;
  /// Draw at the texture coordinates of the moment instead of the whole texture.
  bool keep_coordinates = false;
  /// Draw only there, pixels of the destination; null draws the whole viewport.
  const ChangedArea* area = nullptr;
  /// With an area: what lies around it is copied from here to the destination first, because there
  /// the pass would write what it reads. Without a framebuffer it stays as it is.
  Target around = {};
};

/// Whether its program, its inputs and its destination are there.
bool IsComplete(const Pass& pass);

/// Draws a pass. Returns 1, or 0 (ERROR) with nothing drawn when it is not complete.
int RunPass(const Pass& pass);

}  // namespace lumora::engine

#endif  // LUMORA_ENGINE_INTERNAL_PASS_H_
