// SPDX-License-Identifier: Apache-2.0
// The engine and what it is set up for.
#ifndef LUMORA_PIPELINE_BACKENDS_GL_ENGINE_SETUP_H_
#define LUMORA_PIPELINE_BACKENDS_GL_ENGINE_SETUP_H_

#include "lumora/engine/gpu_beauty_face.h"
#include "lumora/pipeline/look.h"
#include "lumora/pipeline/status.h"
#include "pipeline/frames/frame_copy.h"

namespace lumora {

/// The engine's name for an effect that is not Auto.
BEAUTYSHOT_EFFECT_t EngineEffect(Effect effect);

/// Owns one engine and keeps to its order of calls: one set-up at a time, released by its own
/// counterpart. A set-up that fails leaves the engine without one.
///
/// Thread: constructed, used and destroyed on one thread. Where that has more engines, each set-up
/// makes its own context current before it works; whoever used another one since asks for its
/// set-up again.
class EngineSetup {
 public:
  EngineSetup();
  ~EngineSetup() { Release(); }
  EngineSetup(const EngineSetup&) = delete;
  EngineSetup& operator=(const EngineSetup&) = delete;

  android::GPUBeautyFace& engine() { return engine_; }

  /// Makes the engine's context the thread's. False where there is none or the driver refuses.
  bool Use();

  /// The preview chain for frames of that size, kept as long as it fits. `colour` adds what
  /// whitening needs.
  Status Preview(int width, int height, bool colour);
  /// The size of the preview set-up that there is, 0 where there is none.
  int width() const { return width_; }
  int height() const { return height_; }

  /// Makes all images of the preview set-up be sampled with that filter. The engine's passes leave
  /// some with another one than they found, so that results would depend on the frames before.
  void SetPreviewFilters(GLint filter);

  /// A capture in blocks, for whitening.
  Status CaptureBlocks(int width, int height);
  /// A capture from the planes of `frame`, for slimming.
  Status CapturePlanes(PaddedFrame& frame);

  /// Brings rows of `frame` to the plane textures of such a capture; both numbers are even.
  void UpdatePlanes(const PaddedFrame& frame, int first_row, int rows);

  void Release();

 private:
  enum class State { None, Preview, ColourPreview, Blocks, Planes };

  Status Keep(State state, const char* fault);
  const char* PreviewFault(bool colour);
  const char* BlocksFault();
  const char* PlanesFault();

  android::GPUBeautyFace engine_;
  State state_ = State::None;
  int width_ = 0;
  int height_ = 0;
};

/// Releases a capture at the end of a scope: stills are rare and their images large.
class CaptureScope {
 public:
  explicit CaptureScope(EngineSetup& setup) : setup_(setup) {}
  ~CaptureScope() { setup_.Release(); }
  CaptureScope(const CaptureScope&) = delete;
  CaptureScope& operator=(const CaptureScope&) = delete;

 private:
  EngineSetup& setup_;
};

}  // namespace lumora

#endif  // LUMORA_PIPELINE_BACKENDS_GL_ENGINE_SETUP_H_
