// SPDX-License-Identifier: Apache-2.0
// Face slimming of preview frames.
#include "lumora/engine/gpu_beauty_face.h"
#include "lumora/engine/internal/limited_pass.h"
#include "lumora/engine/internal/pass.h"
#include "lumora/engine/internal/preview_frame.h"
#include "lumora/engine/internal/set_up.h"
#include "lumora/engine/internal/target.h"
#include "lumora/geometry/changed_area.h"
#include "lumora/geometry/rectangle.h"
#include "lumora/geometry/warp.h"
#include "lumora/gl/log.h"
#include "lumora/programs/cheek_slimmer_programs.h"

LUMORA_LOG_TAG("Lumora");

namespace android {

namespace internal = lumora::engine;
using lumora::ChangedArea;

namespace {

/// Gives the program a face's warp. The shape of the frame is told apart from it.
void SetWarp(const lumora::Warp& warp, GLProgWarp& program) {
  program.m_fvController[0] = warp.centre_x;
  program.m_fvController[1] = warp.centre_y;
  program.m_fvController[2] = warp.strength;
  program.m_fvController[3] = warp.radius;
  program.m_fvAngleLimiter[0] = warp.limiter_direction;
  program.m_fvAngleLimiter[1] = warp.limiter_distance;
  program.m_fvAngleLimiter[2] = warp.limiter_scale;
}

/// What the preview's program is going to draw.
lumora::Warp PreviewWarpOf(const GLProgWarp& program) {
  const float* controller = program.m_fvController;
  const float* limiter = program.m_fvAngleLimiter;
  lumora::Warp warp{};
  warp.centre_x = controller[0];
  warp.centre_y = controller[1];
  warp.strength = controller[2];
  warp.radius = controller[3];
  warp.limiter_direction = limiter[0];
  warp.limiter_distance = limiter[1];
  warp.limiter_scale = limiter[2];
  warp.aspect_ratio = program.m_fAspectRatio;
  warp.edge_fade = GLProgCheekSlimmer::kEdgeFade;
  return warp;
}

/// What the warp that is set can change of a preview's image.
ChangedArea SlimmingArea(const GPUBeautyFace& engine) {
  const auto* program = static_cast<const GLProgWarp*>(engine.m_pProgCheekSlimmer);
  if (program == nullptr || !internal::MayLimitDraws(engine)) {
    return internal::WholeImage(engine);
  }
  return lumora::WarpArea(PreviewWarpOf(*program), engine.m_nAlignedWidth, engine.m_nAlignedHeight);
}

/// DrawFaceDist, with the area of the warp that is set.
int DrawSlimmed(const GPUBeautyFace& engine, int index, const ChangedArea& area) {
  if (index < 0) return 0;
  internal::Pass pass(engine, "DrawFaceDist");
  pass.program = engine.m_pProgCheekSlimmer;
  pass.destination = internal::WorkTarget(engine, index % 2);
  return RunLimitedPass(pass, internal::TargetAfter(engine, index), area);
}

}  // namespace

int GPUBeautyFace::SetParameters(int loc_x, int loc_y, int dist, int roll, int chin_dist,
                                 int Beauty_Level, int shapetype, bool bLarge,
                                 float dist_level_ratio) {
  auto* program = static_cast<GLProgWarp*>(m_pProgCheekSlimmer);
  if (program == nullptr) {
    LOGE("[%s] program or image is missing", "SetParameters");
    return 0;
  }
  lumora::FaceMeasures face{};
  face.loc_x = loc_x;
  face.loc_y = loc_y;
  face.dist = dist;
  face.chin_dist = chin_dist;
  face.roll = roll;
  face.shape_type = shapetype;
  lumora::WarpRequest request{};
  request.frame_width = bLarge ? m_nFullWidth : m_nSrcWidth;
  request.frame_height = bLarge ? m_nFullHeight : m_nSrcHeight;
  request.beauty_level = Beauty_Level;
  request.level_ratio = dist_level_ratio;
  request.capture = bLarge;
  request.hsi_chain = internal::GoesByHsi(internal::SetUpOf(*this));
  const lumora::FaceWarpParameters warp = lumora::ComputeWarp(face, request);
  LOGI("dist_level = %.2f, dist_level_ratio = %.2f", static_cast<double>(warp.told_strength),
       static_cast<double>(dist_level_ratio));

  // A face without measures leaves the previous warp in place.
  if (warp.valid) SetWarp(warp, *program);
  if (!bLarge) program->m_fAspectRatio = warp.aspect_ratio;
  LOGI(
      "loc_x = %d, loc_y = %d, dist = %d, roll =%d, chin_dist = %d, Beauty_Level = %d, "
      "shapetype = %d",
      loc_x, loc_y, dist, roll, chin_dist, Beauty_Level, shapetype);
  return 1;
}

int GPUBeautyFace::SetCheekSlimmerParameters(FACE_INFO_t face, int level, bool bLarge) {
  const bool measured = face.dist_valid >= 1;
  const int dist = measured ? face.dist : -1;
  const int chin_dist = measured ? face.chin_dist : -1;
  LOGI("dist = %d, chin_dist = %d, chin_dist / dist = %f", dist, chin_dist,
       static_cast<double>(static_cast<float>(chin_dist) / static_cast<float>(dist)));
  return SetParameters(face.loc_x, face.loc_y, dist, face.roll, chin_dist, level, face.shapetype,
                       bLarge, face.dist_level_ratio);
}

int GPUBeautyFace::DrawFaceDist(int index) {
  return DrawSlimmed(*this, index, SlimmingArea(*this));
}

int GPUBeautyFace::FaceProcess(void* in, void* out, int level, FACE_INFO_t face, int /*unused*/) {
  LOGI("FaceProcess++");
  if (!internal::BeginPreviewFrame(*this, in)) return 0;
  if (SetCheekSlimmerParameters(face, level, false) == 0) return 0;
  const ChangedArea changed = SlimmingArea(*this);
  if (DrawSlimmed(*this, 0, changed) == 0) return 0;
  if (!internal::FinishPreviewFrame(*this, {in, out}, 1, changed)) return 0;
  LOGI("FaceProcess--");
  return 1;
}

int GPUBeautyFace::FaceProcessMultiface(void* in, void* out, int level, FACE_INFO_t* faces,
                                        int count, int /*unused*/) {
  LOGI("FaceProcess+");
  if (!internal::BeginPreviewFrame(*this, in)) return 0;
  lumora::PixelRectangle changed{};
  for (int i = 0; i < count; ++i) {
    if (SetCheekSlimmerParameters(faces[i], level, false) == 0) return 0;
    const ChangedArea area = SlimmingArea(*this);
    if (DrawSlimmed(*this, i, area) == 0) return 0;
    changed = lumora::Union(changed, area.Box());
  }
  if (!internal::FinishPreviewFrame(*this, {in, out}, count, ChangedArea(changed))) return 0;
  LOGI("FaceProcess-");
  return 1;
}

}  // namespace android
