// SPDX-License-Identifier: Apache-2.0
// The engine with everything that is bound to its thread.
#ifndef LUMORA_PIPELINE_BACKENDS_GL_ENGINE_HOST_H_
#define LUMORA_PIPELINE_BACKENDS_GL_ENGINE_HOST_H_

#include "lumora/pipeline/frame.h"
#include "lumora/pipeline/lens.h"
#include "pipeline/backends/gl/chains.h"
#include "pipeline/backends/gl/engine_setup.h"
#include "pipeline/frames/frame_copy.h"
#include "pipeline/support/reported.h"

namespace lumora {

/// Owns the engines of one pipeline and runs frames through its chains.
///
/// Thread: constructed, used and destroyed on one thread. All operations leave a context current
/// and, when they fail, `out` as it was; `in` and `out` may be the same memory. Reports are empty
/// before, and may be null.
class EngineHost {
 public:
  /// Whether the engine has its context; nothing else may be called where it has none.
  bool ready() { return setup_.engine().m_bEGLReady; }

  /// The operations of Backend.
  Status Apply(const FramePlan& plan, const ConstFrameView& in, const FrameView& out,
               Report* report);
  Status Rectify(const ConstFrameView& in, const FrameView& out, int degree, Report* report);
  Status RectifyRadial(const ConstFrameView& in, const FrameView& out, const Lens& lens,
                       Report* report);

  /// Whitens whole frames from now on, as if crops did not pay.
  void WhitenWholeFrames() { memory_.whole_frames = true; }
  /// How many set-ups for crops were made so far.
  int crop_setups_made() const { return crop_setups_.made(); }

 private:
  Status RunEffects(const FramePlan& plan, const ConstFrameView& in, Report* report);
  /// The way of both corrections: `draw` draws from the input image to the first work image.
  template <typename Draw>
  Status Correct(const ConstFrameView& in, const FrameView& out, FramePlace place, Report* report,
                 Draw draw);
  void FreeMemory();

  EngineSetup setup_;
  CropSetups crop_setups_;
  PaddedFrame frame_;
  ChainMemory memory_;
  ReportPlace reports_;
};

}  // namespace lumora

#endif  // LUMORA_PIPELINE_BACKENDS_GL_ENGINE_HOST_H_
