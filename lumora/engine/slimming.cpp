// Face slimming of preview frames.
#include "lumora/engine/pass.h"
#include "lumora/geometry/warp.h"
#include "lumora/gl/log.h"
#include "lumora/gl/offscreen_context.h"
#include "lumora/platform/gl_api.h"
#include "lumora/programs/cheek_slimmer_programs.h"

LUMORA_LOG_TAG("Lumora");

namespace android {
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
  return {controller[0],
          controller[1],
          controller[2],
          controller[3],
          limiter[0],
          limiter[1],
          limiter[2],
          program.m_fAspectRatio,
          GLProgCheekSlimmer::kEdgeFade};
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
  const lumora::FaceMeasures face{loc_x, loc_y, dist, chin_dist, roll, shapetype};
  const lumora::WarpRequest request{bLarge ? m_nFullWidth : m_nSrcWidth,
                                    bLarge ? m_nFullHeight : m_nSrcHeight,
                                    Beauty_Level,
                                    dist_level_ratio,
                                    bLarge,
                                    m_bColorCvtMode};
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

lumora::ChangedArea GPUBeautyFace::SlimmingArea() const {
  const auto* program = static_cast<const GLProgWarp*>(m_pProgCheekSlimmer);
  if (program == nullptr || !MayLimitDraws()) return WholeImage();
  return lumora::WarpArea(PreviewWarpOf(*program), m_nAlignedWidth, m_nAlignedHeight);
}

int GPUBeautyFace::DrawFaceDist(int index) {
  return DrawSlimmed(index, SlimmingArea());
}

int GPUBeautyFace::DrawSlimmed(int index, const lumora::ChangedArea& area) {
  if (index < 0) return 0;
  return RunLimitedPass(
      {"DrawFaceDist", m_pProgCheekSlimmer, PackingSource(index), m_pWorkImage[index % 2],
       m_hWorkFbo[index % 2], m_nAlignedWidth, m_nAlignedHeight},
      index == 0 ? m_hRGBFbo : m_hWorkFbo[(index - 1) % 2], area);
}

int GPUBeautyFace::FaceProcess(void* in, void* out, int level, FACE_INFO_t face, int /*unused*/) {
  LOGI("FaceProcess++");
  if (BeginPreviewFrame(in) == 0) return 0;
  if (SetCheekSlimmerParameters(face, level, false) == 0) return 0;
  const lumora::ChangedArea changed = SlimmingArea();
  if (DrawSlimmed(0, changed) == 0 || FinishPreviewFrame(in, out, 1, changed) == 0) return 0;
  LOGI("FaceProcess--");
  return 1;
}

int GPUBeautyFace::FaceProcessMultiface(void* in, void* out, int level, FACE_INFO_t* faces,
                                        int count, int /*unused*/) {
  LOGI("FaceProcess+");
  if (BeginPreviewFrame(in) == 0) return 0;
  lumora::PixelRectangle changed{};
  for (int i = 0; i < count; ++i) {
    if (SetCheekSlimmerParameters(faces[i], level, false) == 0) return 0;
    const lumora::ChangedArea area = SlimmingArea();
    if (DrawSlimmed(i, area) == 0) return 0;
    changed = lumora::Union(changed, area.Box());
  }
  if (FinishPreviewFrame(in, out, count, lumora::ChangedArea(changed)) == 0) return 0;
  LOGI("FaceProcess-");
  return 1;
}

}  // namespace android
