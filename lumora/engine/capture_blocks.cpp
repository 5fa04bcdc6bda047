// SPDX-License-Identifier: Apache-2.0
// Blocks of a capture: copies between block and frame, and the loop that brings the processed
// blocks back to the caller's planes.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "lumora/engine/gpu_beauty_face.h"
#include "lumora/engine/internal/packed_targets.h"
#include "lumora/engine/internal/process_rectangle.h"
#include "lumora/engine/internal/set_up.h"
#include "lumora/engine/internal/whole_frame_store.h"
#include "lumora/geometry/blocks.h"
#include "lumora/geometry/rectangle.h"
#include "lumora/geometry/rounding.h"
#include "lumora/gl/log.h"
#include "lumora/gl/quad.h"
#include "lumora/platform/gl_api.h"

LUMORA_LOG_TAG("Lumora");

namespace android {

namespace internal = lumora::engine;

namespace {

constexpr size_t kPixelBytes = 4;

/// Calls copy_row(full_offset, block_offset, bytes) for each row of a block at (x, y) of an image
/// of full_width pixels a row; columns beyond the right edge are left out.
template <typename CopyRow>
void ForEachBlockRow(int x, int y, int block_width, int block_height, int full_width,
                     CopyRow copy_row) {
  const int columns = std::min(full_width - x, block_width);
  if (columns <= 0) return;
  for (int row = 0; row < block_height; ++row) {
    const size_t full_row = static_cast<size_t>(y + row) * static_cast<size_t>(full_width);
    const size_t block_row = static_cast<size_t>(row) * static_cast<size_t>(block_width);
    copy_row((full_row + static_cast<size_t>(x)) * kPixelBytes, block_row * kPixelBytes,
             static_cast<size_t>(columns) * kPixelBytes);
  }
}

/// Two planes of a caller's frame, with rows of the full capture width.
struct FramePlanes {
  unsigned char* luma;
  unsigned char* chroma;
};

/// Makes the texture coordinates and, above the size of a texture, work image 2 what the block of
/// the store is drawn from.
bool PrepareBlockSource(const GPUBeautyFace& engine, const lumora::PixelRectangle& block) {
  if (!engine.m_bLargeCapture) {
    // The whole frame is a texture: the block is a rectangle of it.
    const auto width = static_cast<float>(lumora::RoundUpTo32(engine.m_nFullWidth));
    const auto height = static_cast<float>(engine.m_nFullHeight);
    lumora::quad::SetTextureRectangle(static_cast<float>(block.x) / width,
                                      static_cast<float>(block.y) / height,
                                      static_cast<float>(block.x + engine.m_nSrcWidth) / width,
                                      static_cast<float>(block.y + engine.m_nSrcHeight) / height);
    return true;
  }
  SEGLImage* const image = engine.m_pWorkImage[2];
  if (!internal::CopyFromStore(engine, image, block)) {
    LOGE("[%s] program or image is missing", "CopyMemYUVfromSrcTextureLarge");
    return false;
  }
  if (image->Unlock() < 0) return false;
  lumora::quad::ResetTextureCoordinates();
  return true;
}

/// Brings the block at (x, y) of the store back.
bool CopyBlock(GPUBeautyFace& engine, const FramePlanes& planes, int x, int y) {
  const lumora::PixelRectangle block = internal::BlockAt(engine, x, y);
  if (!PrepareBlockSource(engine, block) || engine.DrawColorConvertHSI2YUV() == 0 ||
      engine.DrawRGBtoYY(-1) == 0 || engine.DrawRGBtoUV(-1) == 0) {
    return false;
  }
  glFlush();
  glFinish();
  return engine.BlockCopyYUV(planes.luma, planes.chroma, engine.m_nFullWidth, engine.m_nFullHeight,
                             x, y, block.width, block.height) == 1;
}

/// Brings the blocks of one face back.
bool CopyFaceBlocks(GPUBeautyFace& engine, const FramePlanes& planes, const FaceProcessRect& face) {
  if (engine.m_bLargeCapture) {
    if (engine.m_spLargeBuffer) engine.m_spLargeBuffer->unlock();
  } else if (engine.m_pWorkImage[1] != nullptr) {
    engine.m_pWorkImage[1]->Unlock();
  }
  engine.m_nResultIdx = engine.m_bLargeCapture ? 2 : 1;
  LOGD("[CopyMemYUVfromSrcTextureLarge]process block");

  const lumora::BlockRange range =
      lumora::ClipToFrame(internal::RectangleOf(face), engine.m_nFullWidth, engine.m_nFullHeight);
  return lumora::ForEachBlock(range, engine.m_nSrcWidth, engine.m_nSrcHeight,
                              [&](int x, int y) { return CopyBlock(engine, planes, x, y); });
}

}  // namespace

void GPUBeautyFace::BlockCopyRGBA8888(const unsigned char* pBlock, unsigned char* pFull, int x,
                                      int y, int blockWidth, int blockHeight, int fullWidth,
                                      int /*unused*/) {
  ForEachBlockRow(x, y, blockWidth, blockHeight, fullWidth,
                  [=](size_t full, size_t block, size_t bytes) {
                    std::memcpy(pFull + full, pBlock + block, bytes);
                  });
}

void GPUBeautyFace::BlockCopyRGBA8888DrawBack(const unsigned char* pFull, unsigned char* pBlock,
                                              int x, int y, int blockWidth, int blockHeight,
                                              int fullWidth, int /*unused*/) {
  ForEachBlockRow(x, y, blockWidth, blockHeight, fullWidth,
                  [=](size_t full, size_t block, size_t bytes) {
                    std::memcpy(pBlock + block, pFull + full, bytes);
                  });
}

int GPUBeautyFace::BlockCopyYUV(unsigned char* pDstYStart, unsigned char* pDstUVStart, int stride,
                                int /*unused*/, int x, int y, int width, int rows) {
  if (m_pYYYYImage == nullptr || m_pUVUVImage == nullptr) {
    LOGE("[%s] program or image is missing", "BlockCopyYUV");
    return 0;
  }
  m_pYYYYImage->Unlock();
  m_pUVUVImage->Unlock();
  if (pDstYStart == nullptr || pDstUVStart == nullptr) {
    LOGE("[%s] pDstYStart (%u) or pDstUVStart (%u) is NULL\n", "BlockCopyYUV",
         static_cast<unsigned>(reinterpret_cast<uintptr_t>(pDstYStart)),
         static_cast<unsigned>(reinterpret_cast<uintptr_t>(pDstUVStart)));
    return 0;
  }
  const int columns = std::min(width, m_nYYYYWidth);
  if (columns <= 0) return 1;
  const int last_row = std::min(rows, m_nYYYYHeight);
  const int chroma_rows =
      m_nFullHeight / 2;  // a frame of odd height has no chroma for its last row
  const auto place = [=](unsigned char* plane, int row) {
    return plane + static_cast<ptrdiff_t>(row) * stride + x;
  };
  if (columns % 4 == 0 && stride % 4 == 0 && y >= 0 && y % 2 == 0) {
    const int block_chroma_rows = std::min((last_row + 1) / 2, chroma_rows - y / 2);
    const internal::PlanePart luma_part{place(pDstYStart, y), {0, 0, columns / 4, last_row}};
    const internal::PlanePart chroma_part{place(pDstUVStart, y / 2),
                                          {0, 0, columns / 4, block_chroma_rows}};
    if (internal::ReadPacked(*this, luma_part, chroma_part, stride / 4)) return 1;
  }

  const unsigned char* luma = m_pYYYYImage->Lock();
  const unsigned char* chroma = m_pUVUVImage->Lock();
  if (luma == nullptr || chroma == nullptr) {
    LOGE("[%s] program or image is missing", "BlockCopyYUV");
    return 0;
  }
  const auto bytes = static_cast<size_t>(columns);
  for (int row = 0; row < last_row; ++row) {
    const int frame_row = y + row;
    std::memcpy(place(pDstYStart, frame_row), luma + static_cast<ptrdiff_t>(row) * m_nYYYYWidth,
                bytes);
    if (frame_row % 2 == 0 && frame_row / 2 < chroma_rows) {
      std::memcpy(place(pDstUVStart, frame_row / 2),
                  chroma + static_cast<ptrdiff_t>(row / 2) * m_nUVUVWidth, bytes);
    }
  }
  return 1;
}

int GPUBeautyFace::CopyMemYUVfromSrcTextureLarge(void* pDstY, void* pDstUV, int /*unused*/,
                                                 int nFaces) {
  nFaces = internal::FacesWithBlocks("CopyMemYUVfromSrcTextureLarge", nFaces);
  const FramePlanes planes{static_cast<unsigned char*>(pDstY), static_cast<unsigned char*>(pDstUV)};
  for (int i = 0; i < nFaces; ++i) {
    if (!internal::GoesByHsi(internal::SetUpOf(*this))) return 0;
    const FaceProcessRect& face = m_rcFaceProcess[i];
    const int twentieth = m_nFullHeight / 20;
    if (face.Width / twentieth == 0 || face.Height / twentieth == 0) continue;
    if (!CopyFaceBlocks(*this, planes, face)) return 0;
  }
  return 1;
}

}  // namespace android
