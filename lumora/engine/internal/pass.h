// One drawing pass of the engine, as named fields.
#ifndef LUMORA_ENGINE_PASS_H_
#define LUMORA_ENGINE_PASS_H_

#include "lumora/engine/gpu_beauty_face.h"
#include "lumora/geometry/changed_area.h"
#include "lumora/gl/no_name.h"
#include "lumora/gl/quad.h"

namespace android {

/// A part of a caller's plane, in packed texels, and the place of the plane's first texel.
struct GPUBeautyFace::PlanePart {
  unsigned char* plane;
  lumora::PixelRectangle part;
};

/// A full-screen quad from one image into a framebuffer. The exceptions are the fields with
/// defaults.
struct GPUBeautyFace::Pass {
  const char* name;  ///< the function that draws it, for the log
  GLProgram* program;
  const SEGLImage* source;
  const SEGLImage* destination;
  GLuint target;  ///< framebuffer of the destination
  int width;      ///< viewport, pixels
  int height;
  const float* positions = lumora::quad::kPositions;
  /// Filter to set on whatever texture is bound before the program binds its input; 0 sets none. It
  /// therefore takes effect on that texture's next use, not on this pass's own source.
  GLint filter = 0;
  /// Draw at the texture coordinates of the moment instead of the whole texture.
  bool keep_coordinates = false;
  /// Draw only there, pixels of the destination; null draws the whole viewport.
  const lumora::ChangedArea* area = nullptr;
  /// With an area: framebuffer of the source, which is copied to the destination first, because
  /// outside the area the pass would write what it reads. -1 leaves the destination as it is.
  GLuint copy_from = lumora::kNoName;
};

/// Whether the context draws as the engine set it up: nothing is masked, blended or tested.
/// Otherwise a quad may write less than the pixels that its program computes.
bool DrawsPlainly();

/// The end of every pass, once its inputs, target and viewport are set: makes the program current
/// and draws the quad at those positions and at the texture coordinates of the moment.
void DrawQuad(GLProgram& program, const float* positions);

}  // namespace android

#endif  // LUMORA_ENGINE_PASS_H_
