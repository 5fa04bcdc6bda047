// Face whitening of captures, block by block.
#include <algorithm>
#include <cmath>
#include <cstdint>

#include "lumora/convert/sp2yuvxs.h"
#include "lumora/engine/gpu_beauty_face.h"
#include "lumora/engine/pass.h"
#include "lumora/engine/process_rectangle.h"
#include "lumora/engine/whole_frame_store.h"
#include "lumora/geometry/blocks.h"
#include "lumora/geometry/frame_sizes.h"
#include "lumora/geometry/whitening.h"
#include "lumora/gl/log.h"
#include "lumora/gl/no_name.h"
#include "lumora/gl/offscreen_context.h"
#include "lumora/platform/gl_api.h"
#include "lumora/programs/face_whitening_programs.h"

LUMORA_LOG_TAG("Lumora");

namespace android {
namespace {

using lumora::RoundUpTo32;

/// Tells that a block cannot go on between CPU and GPU. Always false.
bool MissingBlock() {
  LOGE("[%s] program or image is missing", "DoFaceWhiteningLarge");
  return false;
}

}  // namespace

int GPUBeautyFace::DrawFaceWhiteLarge(bool bUsePrev) {
  const SEGLImage* previous = bUsePrev ? m_pRGBImage : m_pWorkImage[0];
  if (m_pProgFaceWhitening == nullptr || m_pWorkImage[0] == nullptr || previous == nullptr ||
      m_pWorkImage[2] == nullptr || m_hWorkFbo[2] == lumora::kNoName) {
    LOGE("[%s] program or image is missing", "DrawFaceWhiteLarge");
    return 0;
  }
  GLProgram& program = *m_pProgFaceWhitening;
  program.SetTextures(0, static_cast<int>(m_pWorkImage[0]->m_hTexture));
  program.SetTextures(1, static_cast<int>(previous->m_hTexture));
  glBindFramebuffer(GL_FRAMEBUFFER, m_hWorkFbo[2]);
  lumora::quad::ResetTextureCoordinates();
  DrawQuad(program, lumora::quad::kPositions);
  return 1;
}

int GPUBeautyFace::DoFaceWhiteningLarge(unsigned char* pSrcY, unsigned char* pSrcUV,
                                        FACE_INFO_t* pFaces, int nFaces, int nIntensityLevel,
                                        int nSaturationLevel, BEAUTYSHOT_EFFECT_t eEffect) {
  LOGI("DoFaceWhitening+");
  if (nFaces > lumora::kMaxFaceRecords) {
    LOGE("[%s] %d faces, only %d are processed", "DoFaceWhiteningLarge", nFaces,
         lumora::kMaxFaceRecords);
    nFaces = lumora::kMaxFaceRecords;
  }
  for (int i = 0; i < nFaces; ++i) {
    LOGI("Face Pass %d", i);
    if (SetFaceWhiteningParameters(pFaces[i], nIntensityLevel, nSaturationLevel, eEffect, i, true,
                                   pSrcY) == 0) {
      continue;
    }
    FaceProcessRect& rect = m_rcFaceProcess[i];
    rect = lumora::ProcessRectangleOf(
        lumora::BlocksAroundExtent(m_nFaceWhiteCenterX, m_nFaceWhiteCenterY, m_nFaceWhiteHalfWidth,
                                   m_nFaceWhiteHalfHeight, m_nSrcWidth, m_nSrcHeight));
    const unsigned least_width = static_cast<unsigned>(m_nFullWidth) / 20;
    const unsigned least_height = static_cast<unsigned>(m_nFullHeight) / 20;
    if (static_cast<unsigned>(rect.Width) / least_width == 0 ||
        static_cast<unsigned>(rect.Height) / least_height == 0) {
      continue;
    }
    LOGD("[LumoraLarge Face Whitening]: Process_Rect: X: %d, Y: %d, Width: %d, Height: %d", rect.X,
         rect.Y, rect.Width, rect.Height);
    LOGD("[LumoraLarge]process block");
    const lumora::BlockRange range =
        lumora::ClipToFrame(lumora::RectangleOf(rect), m_nFullWidth, m_nFullHeight);
    lumora::ForEachBlock(range, m_nSrcWidth, m_nSrcHeight,
                         [&](int x, int y) { return WhitenBlock(pSrcY, pSrcUV, i, x, y); });
  }
  m_nResultIdx = 1;
  LOGI("DoFaceWhitening-");
  return 1;
}

bool GPUBeautyFace::WhitenBlock(const unsigned char* pSrcY, const unsigned char* pSrcUV, int face,
                                int x, int y) {
  int width = std::min(m_nSrcWidth, m_nFullWidth - x);
  int height = std::min(m_nSrcHeight, m_nFullHeight - y);
  if (height == 1 && y >= 2) {
    // Rows are expanded in pairs: an odd last row is taken with the pair before it.
    y -= 2;
    height = 3;
  }
  if (width % 32 != 0) {
    // The expansion goes by whole groups of pixels: the last block of a row is widened to the left.
    width = std::min(RoundUpTo32(width), m_nSrcWidth);
    x = std::max(m_nFullWidth - width, 0);
  }
  unsigned char* block = m_pRGBImage != nullptr ? m_pRGBImage->Lock() : nullptr;
  if (block == nullptr) return MissingBlock();
  sp2yuvxs(block, m_nSrcWidth, m_nSrcHeight, pSrcY, pSrcUV, m_nFullWidth, m_nFullHeight, x, y,
           width, height);
  if (m_pRGBImage->Unlock() < 0) return MissingBlock();
  if (DrawColorConvertYUV2HSI() == 0) return false;

  const bool overlaps =
      std::any_of(m_rcFaceProcess, m_rcFaceProcess + face, [&](const FaceProcessRect& earlier) {
        return lumora::HoldsBlockCorner(lumora::RectangleOf(earlier),
                                        {x, y, m_nSrcWidth, m_nSrcHeight});
      });
  if (overlaps && !LoadPreviousResult(x, y, height)) return MissingBlock();

  glViewport(0, 0, m_nAlignedWidth, m_nAlignedHeight);
  auto& program = static_cast<GLProgFaceWhiteningLarge&>(*m_pProgFaceWhitening);
  const auto store_width = static_cast<float>(RoundUpTo32(m_nFullWidth));
  const auto frame_height = static_cast<float>(m_nFullHeight);
  program.m_fScaleController[0] = static_cast<float>(m_nSrcWidth) / store_width;
  program.m_fScaleController[1] = static_cast<float>(m_nSrcHeight) / frame_height;
  program.m_fScaleController[2] = static_cast<float>(x) / store_width;
  program.m_fScaleController[3] = static_cast<float>(y) / frame_height;
  if (DrawFaceWhiteLarge(overlaps) == 0) return false;
  glFlush();
  glFinish();
  return StoreResult(x, y, height) || MissingBlock();
}

bool GPUBeautyFace::LoadPreviousResult(int x, int y, int rows) {
  glFlush();
  glFinish();
  unsigned char* block = m_pRGBImage->Lock();
  const lumora::LockedStoreBlock store(*this, x, y, m_nSrcWidth, rows);
  if (store.texels() == nullptr || block == nullptr) return false;
  BlockCopyRGBA8888DrawBack(store.texels(), block, x, y, RoundUpTo32(m_nSrcWidth), rows,
                            RoundUpTo32(m_nFullWidth), m_nFullHeight);
  return m_pRGBImage->Unlock() >= 0;
}

bool GPUBeautyFace::StoreResult(int x, int y, int rows) {
  const unsigned char* block = m_pWorkImage[2]->Lock();
  const lumora::LockedStoreBlock store(*this, x, y, m_nSrcWidth, rows);
  if (store.texels() == nullptr || block == nullptr) return false;
  BlockCopyRGBA8888(block, store.texels(), x, y, RoundUpTo32(m_nSrcWidth), rows,
                    RoundUpTo32(m_nFullWidth), m_nFullHeight);
  if (!store.WriteBack()) return false;
  m_pWorkImage[2]->Unlock();
  return true;
}

}  // namespace android
