// SPDX-License-Identifier: Apache-2.0
// Face whitening of captures, block by block.
#include <algorithm>

#include "lumora/convert/sp2yuvxs.h"
#include "lumora/engine/gpu_beauty_face.h"
#include "lumora/engine/internal/pass.h"
#include "lumora/engine/internal/process_rectangle.h"
#include "lumora/engine/internal/target.h"
#include "lumora/engine/internal/whole_frame_store.h"
#include "lumora/geometry/blocks.h"
#include "lumora/geometry/rectangle.h"
#include "lumora/geometry/rounding.h"
#include "lumora/geometry/whitening.h"
#include "lumora/gl/log.h"
#include "lumora/platform/buffer/cpu_access.h"
#include "lumora/platform/gl_api.h"
#include "lumora/programs/face_whitening_programs.h"

LUMORA_LOG_TAG("Lumora");

namespace android {

namespace internal = lumora::engine;
using lumora::PixelRectangle;
using lumora::RoundUpTo32;
using lumora::platform::CpuAccess;
using lumora::platform::CpuUse;

namespace {

/// The caller's planes, with rows of the full capture width.
struct SourcePlanes {
  const unsigned char* luma;
  const unsigned char* chroma;
};

/// Tells that a block cannot go on between CPU and GPU. Always false.
bool MissingBlock() {
  LOGE("[%s] program or image is missing", "DoFaceWhiteningLarge");
  return false;
}

/// What is expanded for the block of the walk at (x, y).
PixelRectangle PlaceBlock(const GPUBeautyFace& engine, int x, int y) {
  PixelRectangle block = internal::BlockAt(engine, x, y);
  if (block.height == 1 && y >= 2) {
    // Rows are expanded in pairs: an odd last row is taken with the pair before it.
    block.y -= 2;
    block.height = 3;
  }
  if (block.width % 32 != 0) {
    // The expansion goes by whole groups of pixels: the last block of a row is widened to the left.
    block.width = std::min(RoundUpTo32(block.width), engine.m_nSrcWidth);
    block.x = std::max(engine.m_nFullWidth - block.width, 0);
  }
  return block;
}

/// Brings a block of the frame into the input image.
bool LoadBlock(const GPUBeautyFace& engine, const SourcePlanes& planes,
               const PixelRectangle& block) {
  SEGLImage* const input = engine.m_pRGBImage;
  unsigned char* texels = input != nullptr ? input->Lock() : nullptr;
  if (texels == nullptr) return MissingBlock();
  sp2yuvxs(texels, engine.m_nSrcWidth, engine.m_nSrcHeight, planes.luma, planes.chroma,
           engine.m_nFullWidth, engine.m_nFullHeight, block.x, block.y, block.width, block.height);
  return input->Unlock() >= 0 || MissingBlock();
}

/// Whether a face before number `face` of this call has been at the block.
bool WasVisited(const GPUBeautyFace& engine, int face, const PixelRectangle& block) {
  const FaceProcessRect* const records = engine.m_rcFaceProcess;
  return std::any_of(records, records + face, [&](const FaceProcessRect& earlier) {
    return lumora::HoldsBlockCorner(internal::RectangleOf(earlier),
                                    {block.x, block.y, engine.m_nSrcWidth, engine.m_nSrcHeight});
  });
}

/// Brings what earlier faces left at the block from the store into the input image.
bool LoadPreviousResult(const GPUBeautyFace& engine, const PixelRectangle& place) {
  glFlush();
  glFinish();
  SEGLImage* const input = engine.m_pRGBImage;
  return internal::CopyFromStore(engine, input, place) && input->Unlock() >= 0;
}

/// Brings the block's result from work image 2 into the store.
bool StoreResult(const GPUBeautyFace& engine, const PixelRectangle& place) {
  const unsigned char* block = engine.m_pWorkImage[2]->Lock();
  CpuAccess store(internal::WholeFrameStore(engine), CpuUse::Write,
                  {place.x, place.y, engine.m_nSrcWidth, place.height});
  if (store.pixels() == nullptr || block == nullptr) return false;
  GPUBeautyFace::BlockCopyRGBA8888(block, store.pixels(), place.x, place.y,
                                   RoundUpTo32(engine.m_nSrcWidth), place.height,
                                   RoundUpTo32(engine.m_nFullWidth), engine.m_nFullHeight);
  if (!store.End()) return false;
  engine.m_pWorkImage[2]->Unlock();
  return true;
}

/// Tells the program where in the frame the block lies.
void PlaceProgram(const GPUBeautyFace& engine, const PixelRectangle& block) {
  auto& program = static_cast<GLProgFaceWhiteningLarge&>(*engine.m_pProgFaceWhitening);
  const auto store_width = static_cast<float>(RoundUpTo32(engine.m_nFullWidth));
  const auto frame_height = static_cast<float>(engine.m_nFullHeight);
  program.m_fScaleController[0] = static_cast<float>(engine.m_nSrcWidth) / store_width;
  program.m_fScaleController[1] = static_cast<float>(engine.m_nSrcHeight) / frame_height;
  program.m_fScaleController[2] = static_cast<float>(block.x) / store_width;
  program.m_fScaleController[3] = static_cast<float>(block.y) / frame_height;
}

/// Whitens face number `face` in the block of the walk at (x, y).
bool WhitenBlock(GPUBeautyFace& engine, const SourcePlanes& planes, int face, int x, int y) {
  const PixelRectangle block = PlaceBlock(engine, x, y);
  if (!LoadBlock(engine, planes, block)) return false;
  if (engine.DrawColorConvertYUV2HSI() == 0) return false;
  const bool visited = WasVisited(engine, face, block);
  if (visited && !LoadPreviousResult(engine, block)) return MissingBlock();

  glViewport(0, 0, engine.m_nAlignedWidth, engine.m_nAlignedHeight);
  PlaceProgram(engine, block);
  if (engine.DrawFaceWhiteLarge(visited) == 0) return false;
  glFlush();
  glFinish();
  return StoreResult(engine, block) || MissingBlock();
}

/// The blocks of the face that was measured last.
PixelRectangle BlocksOfMeasuredFace(const GPUBeautyFace& engine) {
  return lumora::BlocksAroundExtent(engine.m_nFaceWhiteCenterX, engine.m_nFaceWhiteCenterY,
                                    engine.m_nFaceWhiteHalfWidth, engine.m_nFaceWhiteHalfHeight,
                                    engine.m_nSrcWidth, engine.m_nSrcHeight);
}

}  // namespace

int GPUBeautyFace::DrawFaceWhiteLarge(bool bUsePrev) {
  internal::Pass pass(*this, "DrawFaceWhiteLarge");
  pass.program = m_pProgFaceWhitening;
  pass.input = internal::TextureOf(m_pWorkImage[0]);
  pass.second_input = internal::TextureOf(bUsePrev ? m_pRGBImage : m_pWorkImage[0]);
  pass.destination = internal::WorkTarget(*this, 2);
  pass.keep_viewport = true;
  return RunPass(pass);
}

int GPUBeautyFace::DoFaceWhiteningLarge(unsigned char* pSrcY, unsigned char* pSrcUV,
                                        FACE_INFO_t* pFaces, int nFaces, int nIntensityLevel,
                                        int nSaturationLevel, BEAUTYSHOT_EFFECT_t eEffect) {
  LOGI("DoFaceWhitening+");
  nFaces = internal::FacesWithBlocks("DoFaceWhiteningLarge", nFaces);
  const SourcePlanes planes{pSrcY, pSrcUV};
  for (int i = 0; i < nFaces; ++i) {
    LOGI("Face Pass %d", i);
    if (SetFaceWhiteningParameters(pFaces[i], nIntensityLevel, nSaturationLevel, eEffect, i, true,
                                   pSrcY) == 0) {
      continue;
    }
    const PixelRectangle blocks = BlocksOfMeasuredFace(*this);
    m_rcFaceProcess[i] = internal::ProcessRectangleOf(blocks);
    if (!lumora::IsWorthwhile(blocks, m_nFullWidth, m_nFullHeight)) continue;
    LOGD("[LumoraLarge Face Whitening]: Process_Rect: X: %d, Y: %d, Width: %d, Height: %d",
         blocks.x, blocks.y, blocks.width, blocks.height);
    LOGD("[LumoraLarge]process block");
    const lumora::BlockRange range = lumora::ClipToFrame(blocks, m_nFullWidth, m_nFullHeight);
    lumora::ForEachBlock(range, m_nSrcWidth, m_nSrcHeight,
                         [&](int x, int y) { return WhitenBlock(*this, planes, i, x, y); });
  }
  m_nResultIdx = 1;
  LOGI("DoFaceWhitening-");
  return 1;
}

}  // namespace android
