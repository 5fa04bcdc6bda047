// Face slimming of captures, block by block.
#include <algorithm>

#include "lumora/engine/gpu_beauty_face.h"
#include "lumora/engine/pass.h"
#include "lumora/engine/process_rectangle.h"
#include "lumora/geometry/blocks.h"
#include "lumora/geometry/rounding.h"
#include "lumora/gl/log.h"
#include "lumora/gl/no_name.h"
#include "lumora/gl/offscreen_context.h"
#include "lumora/platform/gl_api.h"
#include "lumora/programs/cheek_slimmer_programs.h"

LUMORA_LOG_TAG("Lumora");

namespace android {
int GPUBeautyFace::DrawFaceDistLarge() {
  auto* program = static_cast<GLProgWarp*>(m_pProgCheekSlimmer);
  const bool has_source = m_bColorCvtMode
                              ? m_pWorkImage[1] != nullptr
                              : m_hYTexture != lumora::kNoName && m_hCbCrTexture != lumora::kNoName;
  if (program == nullptr || m_hWorkFbo[0] == lumora::kNoName || !has_source) {
    LOGE("[%s] program or image is missing", "DrawFaceDistLarge");
    return 0;
  }
  if (m_bColorCvtMode) {
    program->SetTextures(0, static_cast<int>(m_pWorkImage[1]->m_hTexture));
  } else {
    program->SetTextures(0, static_cast<int>(m_hYTexture));
    program->SetTextures(1, static_cast<int>(m_hCbCrTexture));
  }
  program->m_fvScale[0] = static_cast<float>(m_nSrcWidth) / static_cast<float>(m_nFullWidth);
  program->m_fvScale[1] = static_cast<float>(m_nSrcHeight) / static_cast<float>(m_nFullHeight);
  glBindFramebuffer(GL_FRAMEBUFFER, m_hWorkFbo[0]);
  glViewport(0, 0, m_nAlignedWidth, m_nAlignedHeight);
  lumora::quad::ResetTextureCoordinates();
  DrawQuad(*program, lumora::quad::kPositions);
  return 1;
}

int GPUBeautyFace::FaceProcessLarge(void* in, void* out, int width, int height, int /*unused*/,
                                    FACE_INFO_t* faces, int count, int level) {
  if (m_bColorCvtMode && count > lumora::kMaxFaceRecords) {
    LOGE("[%s] %d faces, only %d are processed", "FaceProcessLarge", count,
         lumora::kMaxFaceRecords);
    count = lumora::kMaxFaceRecords;
  }
  for (int i = 0; i < count; ++i) {
    if (SetCheekSlimmerParameters(faces[i], level, true) == 0) return 1;
    auto& program = static_cast<GLProgWarp&>(*m_pProgCheekSlimmer);
    program.m_fAspectRatio = static_cast<float>(height) / static_cast<float>(width);

    lumora::PixelRectangle rect;
    if (m_bColorCvtMode) {
      rect = lumora::RectangleOf(m_rcFaceProcess[i]);
      const unsigned twentieth = static_cast<unsigned>(m_nFullHeight) / 20;
      if (static_cast<unsigned>(rect.width) / twentieth == 0 ||
          static_cast<unsigned>(rect.height) / twentieth == 0) {
        continue;
      }
      if (m_pWorkImage[1] != nullptr) m_pWorkImage[1]->Unlock();
      LOGD("[LumoraLarge CheekSlimmer HSI]: Process_Rect: X: %d, Y: %d, Width: %d, Height: %d",
           rect.x, rect.y, rect.width, rect.height);
    } else {
      rect = lumora::BlocksAroundFace(faces[i].loc_x, faces[i].loc_y,
                                      std::max(faces[i].dist, faces[i].chin_dist), m_nSrcWidth,
                                      m_nSrcHeight);
      LOGD("[LumoraLarge CheekSlimmer YUV]: Process_Rect: X: %d, Y: %d, Width: %d, Height: %d",
           rect.x, rect.y, rect.width, rect.height);
    }
    LOGD("[LumoraLarge]process block");
    // Columns go on to the padded width, rows end with the frame.
    const lumora::BlockRange range =
        lumora::ClipToFrame(rect, lumora::RoundUpTo32(m_nFullWidth), m_nFullHeight);
    int run = 0;
    lumora::ForEachBlock(range, m_nSrcWidth, m_nSrcHeight, [&](int x, int y) {
      return SlimBlock(in, out, width, height, x, y, run);
    });
  }
  return 1;
}

bool GPUBeautyFace::SlimBlock(void* in, void* out, int width, int height, int x, int y, int& run) {
  auto& program = static_cast<GLProgWarp&>(*m_pProgCheekSlimmer);
  const int columns = std::min(m_nFullWidth - x, m_nSrcWidth);
  const int rows = std::min(m_nFullHeight - y, m_nSrcHeight);
  program.m_fvShift[0] =
      program.m_fvController[0] - static_cast<float>(x) / static_cast<float>(width);
  program.m_fvShift[1] =
      program.m_fvController[1] - static_cast<float>(y) / static_cast<float>(height);
  LOGD("[LumoraLarge Cheek Slimmer]:current run %d", run++);  // counts the lines that were printed
  LOGD("[LumoraLarge Cheek Slimmer Output: %d %d size=%d %d", x, y, columns, rows);
  if (DrawFaceDistLarge() == 0 || DrawRGBtoYY(1) == 0 || DrawRGBtoUV(1) == 0) return false;
  glFlush();
  glFinish();
  return BlockCopyYUV(static_cast<unsigned char*>(in), static_cast<unsigned char*>(out), width,
                      height, x, y, columns, rows) == 1;
}

}  // namespace android
