// What whitening is to do with each face of a frame.
#ifndef LUMORA_PIPELINE_PLAN_WHITENING_PLAN_H_
#define LUMORA_PIPELINE_PLAN_WHITENING_PLAN_H_

#include <vector>

#include "lumora/engine/gpu_beauty_face.h"
#include "lumora/pipeline/face.h"
#include "lumora/pipeline/look.h"
#include "lumora/pipeline/report.h"
#include "pipeline/frames/frame_copy.h"
#include "pipeline/plan/skin_mask.h"

namespace lumora {

/// A face that can be processed.
struct FaceJob {
  int index = 0;  // among the faces of the call
  Face face;
  FACE_INFO_t record{};
};

/// One face to whiten.
struct WhiteningJob {
  FACE_INFO_t record{};
  int intensity_level = 0;   // as the engine takes them, 0..255
  int saturation_level = 0;  // 0..255
  SkinMask mask;
};

/// The engine's name for what `look` asks for.
BEAUTYSHOT_EFFECT_t EngineEffect(const Look& look);

/// Measures the faces in `frame` as the engine will, and chooses the levels that make the same step
/// of every skin tone: the engine's own levels lift bright skin to white. Faces for which nothing
/// would be shifted have no job. `jobs` receives the jobs in place of what it holds, whose memory
/// is used again; `tones` receives what was measured, behind what it holds.
void PlanWhitening(const PaddedFrame& frame, const std::vector<FaceJob>& faces, const Look& look,
                   std::vector<WhiteningJob>* jobs, std::vector<FaceTone>* tones);

}  // namespace lumora

#endif  // LUMORA_PIPELINE_PLAN_WHITENING_PLAN_H_
