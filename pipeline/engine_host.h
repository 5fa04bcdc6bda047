// The engine with everything that is bound to its thread.
#ifndef LUMORA_PIPELINE_ENGINE_HOST_H_
#define LUMORA_PIPELINE_ENGINE_HOST_H_

#include <vector>

#include "lumora/engine/gpu_beauty_face.h"
#include "pipeline/frame_copy.h"
#include "pipeline/pipeline.h"

namespace lumora {

/// Owns one engine and prepares it for what is asked of it: each chain of effects has one operation
/// here, which sets the engine up when the frame's size has changed and runs the chain.
///
/// Thread: constructed, used and destroyed on one thread, which has no other engine.
class EngineHost {
 public:
  EngineHost();

  /// Whether the engine has its context; nothing else may be called where it has none.
  bool ready() const { return engine_.m_bEGLReady; }

  /// The preview chain: `out` receives `in` with the faces of `records` slimmed, at least one. The
  /// frames may be the same memory. On failure `out` is left as it was.
  Status Slim(const ConstFrameView& in, const FrameView& out, std::vector<FACE_INFO_t>& records,
              Report* report);

  DeviceInfo Device();

 private:
  Status PreparePreview(int width, int height);
  const char* PreviewFault();
  void SmoothSampling();

  android::GPUBeautyFace engine_;
  PaddedFrame frame_;
  int preview_width_ = 0;  // the size that the engine is set up for; 0 when it is not
  int preview_height_ = 0;
};

}  // namespace lumora

#endif  // LUMORA_PIPELINE_ENGINE_HOST_H_
